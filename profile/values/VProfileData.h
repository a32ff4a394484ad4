// profile/values owns the typed values that configuration objects are lists
// of, the protected ones included (over the forms of crypto/).
//
// The base of every typed profile value: the value name it lives under in a
// profile key, the flag that forces its next save, and the operations that
// every kind implements. A configuration object is a list of these.
//
// States of a value: unchanged (current == saved, not modified); edited
// (current != saved); accepted (modified, after Commit); stored (after Save,
// unchanged again). Revert goes from edited back to unchanged without writing.
//
// The virtual operations are declared in a fixed order (their slot numbers are
// noted), which the kinds below and the protected strings extend at the end.
//
// Failures: operations return false and fill a report; the reports of the
// exchange operations carry CONFIG_EXCHANGE_NOT_SUPPORTED or
// CONFIG_VALUE_NOT_CONVERTIBLE with the value's name as their insert.
// Misuse (copying from a value of another kind) throws std::bad_cast.
//
// A value is used by one thread at a time.
#pragma once

#include <windows.h>

#include <oleauto.h>  // after windows.h, which it needs

#include "IProfileDataSink.h"
#include "IProfileDataSource.h"
#include "VProfileStore.h"
#include "VReportMessageParams.h"
#include "VString.h"
#include "VVariant.h"

class VProfileData {
public:
    explicit VProfileData(const VUnicodeString& name) : name_(name) {}
    // Copies the name (sharing its buffer) and both flags, not a pending move
    // from a former name: that belongs to the key the value was read from.
    VProfileData(const VProfileData& other)
        : name_(other.name_), modified_(other.modified_), userFlag_(other.userFlag_) {}
    // Copies the name and the user flag only: the target keeps its own
    // modified flag, so an assigned value keeps its own pending-save state.
    VProfileData& operator=(const VProfileData& other);

    // Slot 0.
    virtual ~VProfileData() = default;

    // Slot 1: sets the value from a text form and makes it the saved value.
    // Integral kinds parse text with strtol in their radix; bool reads its
    // value from source; text kinds read from source and take text as the
    // default when the source does not hold the value.
    virtual bool SetFromText(IProfileDataSource& source, const char* text) = 0;
    // Slot 2: writes the value under its name unless force is false and it is
    // neither modified nor changed; then it is stored (saved = current, not
    // modified). A failed write changes nothing and leaves the reason in the
    // key's error record.
    virtual bool Save(VProfileKey& key, bool force) = 0;
    // Slot 3: current != saved (texts compared exactly, case included).
    virtual bool IsChanged() const = 0;
    // Slot 4: accepts an edit: modified is set when the value changed, and the
    // current value becomes the saved one.
    virtual void Commit() = 0;
    // Slot 5: current = saved.
    virtual void Revert() = 0;
    // Slot 6: current = other's current. other must be of the same kind
    // (std::bad_cast otherwise).
    virtual void CopyFrom(const VProfileData& other) = 0;
    // Slot 7: the value object itself.
    virtual VProfileData* GetData() { return this; }

    // Slots 8, 9, 12 and 13 exchange a text value as the variant type vt. Here
    // they are not supported: they report CONFIG_EXCHANGE_NOT_SUPPORTED (to
    // report, or to the sink's or source's record) and return false.
    // Slot 8: variant (initialised; cleared first) receives value as vt.
    virtual bool GetVariantAs(VARIANT& variant, const VUnicodeString& value, VARTYPE vt,
                              VReportMessageParams& report) const;
    // Slot 9: hands value, as vt, to the sink under the value's name.
    virtual bool WriteAs(IProfileDataSink& sink, const VUnicodeString& value, VARTYPE vt) const;
    // Slot 10: variant (initialised; cleared first) receives the current value
    // in the kind's variant type.
    virtual bool GetVariant(VARIANT& variant, VReportMessageParams& report) const = 0;
    // Slot 11: hands the current value to the sink, as GetVariant makes it.
    virtual bool Write(IProfileDataSink& sink) const;
    // Slot 12: converts variant to vt and gives its text in value.
    virtual bool SetVariantAs(const VARIANT& variant, VUnicodeString& value, VARTYPE vt,
                              VReportMessageParams& report);
    // Slot 13: reads the value's name from source, as vt, into value.
    virtual bool ReadAs(IProfileDataSource& source, VUnicodeString& value, VARTYPE vt,
                        VReportMessageParams& report);
    // Slot 14: converts variant (with VariantChangeType) to the kind's variant
    // type and makes it the current value. On failure reports
    // CONFIG_VALUE_NOT_CONVERTIBLE and leaves the value unchanged.
    virtual bool SetVariant(const VARIANT& variant, VReportMessageParams& report) = 0;
    // Slot 15: reads the current value from source, through SetVariant; the
    // source's success (and SetVariant's), with the reason in its record.
    virtual bool Read(IProfileDataSource& source);

    // Slots 16 and 17: called after a value was written by Save and after it
    // was read by a load. No kind of the library needs them; a configuration
    // object built on VProfileData may.
    virtual void OnSaved() {}
    virtual void OnLoaded() {}

    // Slot 18.
    virtual bool IsModified() const { return modified_; }
    // Slots 19 and 20: a flag (initially set) whose meaning belongs to the
    // configuration object that holds the value.
    virtual bool GetUserFlag() const { return userFlag_; }
    virtual void SetUserFlag(bool set) { userFlag_ = set; }

    const VUnicodeString& GetName() const { return name_; }
    void SetName(const VUnicodeString& name) { name_ = name; }

protected:
    void SetModified(bool modified) { modified_ = modified; }
    // Fills report with CONFIG_EXCHANGE_NOT_SUPPORTED for this value; false.
    bool ExchangeNotSupported(VReportMessageParams& report) const;
    // Fills report with CONFIG_VALUE_NOT_CONVERTIBLE for this value; false.
    bool NotConvertible(VReportMessageParams& report) const;
    // The variant that source keeps under the value's name. On failure report
    // receives the source's record (CONFIG_VALUE_ABSENT when it has none).
    bool ReadVariantFrom(IProfileDataSource& source, VARIANT& variant,
                         VReportMessageParams& report) const;
    // The serialisation of every kind: make(variant, report) fills a variant
    // that goes to sink under the value's name; a variant read from source
    // goes to take(variant, report).
    template <class Make>
    bool WriteVariantTo(IProfileDataSink& sink, Make make) const {
        VVariant variant;
        return make(variant.Get(), sink.GetLastErrorParams()) && sink.Write(name_, variant.Get());
    }
    template <class Take>
    bool ReadVariantFrom(IProfileDataSource& source, VReportMessageParams& report,
                         Take take) const {
        VVariant variant;
        return ReadVariantFrom(source, variant.Get(), report) && take(variant.Get(), report);
    }

    // Loading under a former name (an option renamed between versions), the
    // same for every kind. readUnder(name, isFormer) reads the value kept
    // under name into current and saved and says whether it found one (a
    // blank value under the former name counts as none: an earlier migration
    // left it so); loadDefault() loads under the present name, taking the
    // default when absent, and gives the result. A value found only under the
    // former name is marked modified and the former name is remembered, so
    // that the next Save writes the value under the present name and blanks
    // the former one.
    template <class ReadUnder, class LoadDefault>
    bool LoadWithFormerNameUsing(const VUnicodeString& formerName, ReadUnder readUnder,
                                 LoadDefault loadDefault) {
        formerName_.Empty();
        if (readUnder(name_, false)) return true;
        if (readUnder(formerName, true)) {
            modified_ = true;
            formerName_ = formerName;
            return true;
        }
        return loadDefault();
    }
    // The former name that the next Save must blank; empty when none.
    const VUnicodeString& GetPendingFormerName() const { return formerName_; }
    void ClearPendingFormerName() { formerName_.Empty(); }

private:
    VUnicodeString name_;
    VUnicodeString formerName_;  // not copied, by assignment or copy construction
    bool modified_ = false;
    bool userFlag_ = true;
};
