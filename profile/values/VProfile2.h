// VProfile2<T, Base>: a typed value of type T kept through the storage kind
// Base (VProfileSz, VProfileMultiSz, VProfileBinary, VProfileTimeSz or a kind
// derived from them). It holds the current and the saved T; Base reads and
// writes its stored form (Base::Stored) and exchanges it as variants, and
// VProfileValueTraits<T> converts between T and that form.
//
// A stored form that does not convert to T (a damaged block, an invalid time
// text) is refused like a failed read: the value keeps what it had and the
// key's record carries CONFIG_VALUE_NOT_CONVERTIBLE with the value's name.
//
// A kind derived from VProfile2 that overrides Load(key) hides the overload
// Load(key, default); bring it back with a using-declaration.
#pragma once

#include <type_traits>

#include "ConfigMessages.h"
#include "VProfileValue.h"

template <class T, class Base>
class VProfile2 : public VProfileValue<T, Base> {
    using Traits = VProfileValueTraits<T>;

public:
    using Value = T;
    using Stored = typename Base::Stored;
    static_assert(std::is_same_v<typename Traits::Stored, Stored>,
                  "the value type's stored form must be the storage kind's");

    // current = saved = defaultValue.
    explicit VProfile2(const VUnicodeString& name, const T& defaultValue = T())
        : VProfileValue<T, Base>(name, defaultValue) {}

    // Slot 1: reads the value from source; when the source reports it absent
    // (CONFIG_VALUE_ABSENT), the text kinds take text as the value (converted
    // from the ANSI code page) and the other kinds keep the current value.
    // On success the value is the saved one and not modified.
    bool SetFromText(IProfileDataSource& source, const char* text) override {
        if (!this->Read(source)) {
            VReportMessageParams& report = source.GetLastErrorParams();
            if (report.GetMessageCode() != CONFIG_VALUE_ABSENT) return false;
            if constexpr (Base::TakesDefaultText) {
                Stored stored;
                if (!Base::StoredFromDefaultText(text, stored) || !Accept(stored, report))
                    return false;
            }
        }
        this->TakeCurrentAsSaved();
        return true;
    }

    // Slot 2. A value loaded under a former name also blanks that name, in a
    // key that holds it.
    bool Save(VProfileKey& key, bool force) override {
        if (!this->NeedsSave(force)) return true;
        Stored stored;
        if (!Traits::ToStored(this->Get(), stored))
            return this->NotConvertible(key.GetLastErrorParams());
        if (!this->WriteValue(key, this->GetName(), stored)) return false;
        const VUnicodeString& formerName = this->GetPendingFormerName();
        if (!formerName.IsEmpty()) {
            // Only a key that holds the former value gets the blank: another
            // one (the value saved elsewhere) would gain a value it never had.
            Stored former;
            if (this->ReadValue(key, formerName, former)) {
                if (!this->WriteValue(key, formerName, Base::BlankStored())) return false;
            } else if (key.GetLastErrorParams().GetMessageCode() != CONFIG_VALUE_ABSENT) {
                return false;
            }
            this->ClearPendingFormerName();
        }
        this->TakeSaved();
        return true;
    }

    bool GetVariant(VARIANT& variant, VReportMessageParams& report) const override {  // slot 10
        Stored stored;
        if (!Traits::ToStored(this->Get(), stored)) return this->NotConvertible(report);
        return this->StoredToVariant(stored, variant, report);
    }

    bool SetVariant(const VARIANT& variant, VReportMessageParams& report) override {  // slot 14
        Stored stored;
        return this->StoredFromVariant(variant, stored, report) && Accept(stored, report);
    }

    // Slot 23: current = saved = the value kept under the name; not modified.
    bool Load(VProfileKey& key) override { return LoadUnder(key, this->GetName(), false); }

    // Load, taking defaultValue as current and saved when the value is absent
    // or malformed; false in that case.
    bool Load(VProfileKey& key, const T& defaultValue) {
        return this->LoadOrDefaultUsing(defaultValue, Loader(key));
    }

    // Loads under the present name, else under formerName (the name an older
    // version used), else takes defaultValue; true when a value was found.
    // Found under formerName, the value is modified, and the next Save writes
    // it under the present name and blanks formerName.
    bool LoadWithFormerName(VProfileKey& key, const VUnicodeString& formerName,
                            const T& defaultValue) {
        return this->LoadWithFormerNameOrDefaultUsing(formerName, defaultValue, Loader(key));
    }

private:
    // A stored form that arrived through a variant or a source becomes the
    // current value, or is refused with CONFIG_VALUE_NOT_CONVERTIBLE.
    bool Accept(const Stored& stored, VReportMessageParams& report) {
        T value = this->Get();
        if (!Traits::FromStored(stored, value)) return this->NotConvertible(report);
        this->Set(value);
        return true;
    }

    // The present name goes through the virtual Load, so that a kind that
    // overrides it is honoured; the former name is read here.
    auto Loader(VProfileKey& key) {
        return [this, &key](const VUnicodeString& name, bool former) {
            return former ? LoadUnder(key, name, true) : Load(key);
        };
    }

    bool LoadUnder(VProfileKey& key, const VUnicodeString& name, bool blankIsAbsent) {
        Stored stored;
        if (!this->ReadValue(key, name, stored)) return false;
        if (blankIsAbsent && Base::IsBlank(stored)) return false;
        T value = this->Get();
        if (!Traits::FromStored(stored, value)) {
            key.GetLastErrorParams().Set(CONFIG_VALUE_NOT_CONVERTIBLE, name);
            return false;
        }
        this->TakeLoaded(value);
        return true;
    }
};
