// The current and saved value that every typed value of type T holds, and the
// operations that only compare or copy the two, shared by VProfile<T> and
// VProfile2<T, Base>. VProfileValueTraits<T>::Equal decides what "changed" is.
#pragma once

#include <typeinfo>

#include "VProfileData.h"
#include "VProfileValueTraits.h"

template <class T, class Base>
class VProfileValue : public Base {
public:
    const T& Get() const { return current_; }
    void Set(const T& value) { current_ = value; }
    const T& GetSaved() const { return saved_; }

    bool IsChanged() const override {
        return !VProfileValueTraits<T>::Equal(current_, saved_);
    }  // slot 3

    void Commit() override {  // slot 4
        if (IsChanged()) this->SetModified(true);
        saved_ = current_;
    }

    void Revert() override { current_ = saved_; }  // slot 5

    // Slot 6: std::bad_cast when other holds no T kept through Base.
    void CopyFrom(const VProfileData& other) override {
        current_ = dynamic_cast<const VProfileValue&>(other).current_;
    }

protected:
    // current = saved = defaultValue.
    VProfileValue(const VUnicodeString& name, const T& defaultValue)
        : Base(name), current_(defaultValue), saved_(defaultValue) {}

    // Whether Save has anything to write.
    bool NeedsSave(bool force) const { return force || this->IsModified() || IsChanged(); }
    // current = saved = value (a default taken in place of an absent value).
    void Reset(const T& value) { current_ = saved_ = value; }
    // After a read: value is the current and the saved value; not modified.
    void TakeLoaded(const T& value) {
        Reset(value);
        this->SetModified(false);
        this->OnLoaded();
    }
    // After a write of the current value: it is the saved value; not modified.
    void TakeSaved() {
        saved_ = current_;
        this->SetModified(false);
        this->OnSaved();
    }
    // After SetFromText: the current value is the saved one; not modified.
    void TakeCurrentAsSaved() {
        saved_ = current_;
        this->SetModified(false);
    }

    // The loads that every kind offers, given its loadUnder(name, isFormer),
    // which reads the value kept under name and says whether it found one.
    // Loads under the present name, else takes defaultValue and gives false.
    template <class LoadUnder>
    bool LoadOrDefaultUsing(const T& defaultValue, LoadUnder loadUnder) {
        if (loadUnder(this->GetName(), false)) return true;
        Reset(defaultValue);
        return false;
    }
    // Present name, else formerName, else defaultValue (VProfileData::LoadWithFormerNameUsing).
    template <class LoadUnder>
    bool LoadWithFormerNameOrDefaultUsing(const VUnicodeString& formerName, const T& defaultValue,
                                          LoadUnder loadUnder) {
        return this->LoadWithFormerNameUsing(
            formerName, loadUnder, [&] { return LoadOrDefaultUsing(defaultValue, loadUnder); });
    }

private:
    T current_;
    T saved_;
};
