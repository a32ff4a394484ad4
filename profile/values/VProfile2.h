// VProfile2<T, Base>: a typed value of type T kept through the storage kind
// Base (VProfileSz, VProfileMultiSz, VProfileBinary, VProfileTimeSz or a kind
// derived from them). It holds the current and the saved T; Base reads and
// writes its stored form (Base::Stored) and exchanges it as variants, and
// VProfileValueTraits<T> converts between T and that form.
//
// A stored form that does not convert to T (a damaged block, an invalid time
// text) is refused like a failed read: the value keeps what it had and the
// key's record carries CONFIG_VALUE_NOT_CONVERTIBLE with the value's name.
#pragma once

#include <type_traits>
#include <typeinfo>

#include "ConfigMessages.h"
#include "VProfileData.h"
#include "VProfileValueTraits.h"

template <class T, class Base>
class VProfile2 : public Base {
    using Traits = VProfileValueTraits<T>;

public:
    using Value = T;
    using Stored = typename Base::Stored;
    static_assert(std::is_same_v<typename Traits::Stored, Stored>,
                  "the value type's stored form must be the storage kind's");

    // current = saved = defaultValue.
    explicit VProfile2(const VUnicodeString& name, const T& defaultValue = T())
        : Base(name), current_(defaultValue), saved_(defaultValue) {}

    const T& Get() const { return current_; }
    void Set(const T& value) { current_ = value; }
    const T& GetSaved() const { return saved_; }

    // Slot 1: reads the value from source; when the source reports it absent
    // (CONFIG_VALUE_ABSENT), the text kinds take text as the value (converted
    // from the ANSI code page) and the other kinds keep the current value.
    // On success the value is the saved one and not modified.
    bool SetFromText(IProfileDataSource& source, const char* text) override {
        if (!Read(source)) {
            VReportMessageParams& report = source.GetLastErrorParams();
            if (report.GetMessageCode() != CONFIG_VALUE_ABSENT) return false;
            if constexpr (Base::TakesDefaultText) {
                Stored stored;
                T value = current_;
                if (!Base::StoredFromDefaultText(text, stored) || !Traits::FromStored(stored, value))
                    return this->NotConvertible(report);
                current_ = value;
            }
        }
        saved_ = current_;
        this->SetModified(false);
        return true;
    }

    // Slot 2. A value loaded under a former name also blanks that name.
    bool Save(VProfileKey& key, bool force) override {
        if (!force && !this->IsModified() && !IsChanged()) return true;
        Stored stored;
        if (!Traits::ToStored(current_, stored)) {
            key.GetLastErrorParams().Set(CONFIG_VALUE_NOT_CONVERTIBLE, this->GetName());
            return false;
        }
        if (!this->WriteValue(key, this->GetName(), stored)) return false;
        const VUnicodeString& formerName = this->GetPendingFormerName();
        if (!formerName.IsEmpty()) {
            if (!this->WriteValue(key, formerName, Base::BlankStored())) return false;
            this->ClearPendingFormerName();
        }
        saved_ = current_;
        this->SetModified(false);
        this->OnSaved();
        return true;
    }

    bool IsChanged() const override { return !Traits::Equal(current_, saved_); }  // slot 3

    void Commit() override {  // slot 4
        if (IsChanged()) this->SetModified(true);
        saved_ = current_;
    }

    void Revert() override { current_ = saved_; }  // slot 5

    // Slot 6: std::bad_cast when other is not a VProfile2<T, Base>.
    void CopyFrom(const VProfileData& other) override { current_ = dynamic_cast<const VProfile2&>(other).current_; }

    bool GetVariant(VARIANT& variant, VReportMessageParams& report) const override {  // slot 10
        Stored stored;
        if (!Traits::ToStored(current_, stored)) return this->NotConvertible(report);
        return this->StoredToVariant(stored, variant, report);
    }

    bool Write(IProfileDataSink& sink) const override {  // slot 11
        Stored stored;
        if (!Traits::ToStored(current_, stored)) return this->NotConvertible(sink.GetLastErrorParams());
        return this->WriteStored(sink, stored);
    }

    bool SetVariant(const VARIANT& variant, VReportMessageParams& report) override {  // slot 14
        Stored stored;
        if (!this->StoredFromVariant(variant, stored, report)) return false;
        return Accept(stored, report);
    }

    bool Read(IProfileDataSource& source) override {  // slot 15
        VReportMessageParams& report = source.GetLastErrorParams();
        Stored stored;
        if (!this->ReadStored(source, stored, report)) return false;
        return Accept(stored, report);
    }

    // Slot 23: current = saved = the value kept under the name; not modified.
    bool Load(VProfileKey& key) override { return LoadUnder(key, this->GetName(), false); }

    // Load, taking defaultValue as current and saved when the value is absent
    // or malformed; false in that case.
    bool Load(VProfileKey& key, const T& defaultValue) {
        if (Load(key)) return true;
        current_ = saved_ = defaultValue;
        return false;
    }

    // Loads under the present name, else under formerName (the name an older
    // version used), else takes defaultValue; true when a value was found.
    // Found under formerName, the value is modified, and the next Save writes
    // it under the present name and blanks formerName.
    bool LoadWithFormerName(VProfileKey& key, const VUnicodeString& formerName, const T& defaultValue) {
        return this->LoadWithFormerNameUsing(
            formerName, [&](const VUnicodeString& name, bool former) { return LoadUnder(key, name, former); },
            [&] { return Load(key, defaultValue); });
    }

private:
    // A stored form that arrived through a variant or a source becomes the
    // current value, or is refused with CONFIG_VALUE_NOT_CONVERTIBLE.
    bool Accept(const Stored& stored, VReportMessageParams& report) {
        T value = current_;
        if (!Traits::FromStored(stored, value)) return this->NotConvertible(report);
        current_ = value;
        return true;
    }

    bool LoadUnder(VProfileKey& key, const VUnicodeString& name, bool blankIsAbsent) {
        Stored stored;
        if (!this->ReadValue(key, name, stored)) return false;
        if (blankIsAbsent && Base::IsBlank(stored)) return false;
        T value = current_;
        if (!Traits::FromStored(stored, value)) {
            key.GetLastErrorParams().Set(CONFIG_VALUE_NOT_CONVERTIBLE, name);
            return false;
        }
        current_ = saved_ = value;
        this->SetModified(false);
        this->OnLoaded();
        return true;
    }

    T current_;
    T saved_;
};
