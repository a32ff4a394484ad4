// IClonable: a configuration object that copies itself member by member,
// through which a holder copies parts whose classes it does not know.
// VClonedRef holds one such part and clones it when the holder is copied.
#pragma once

#include <stdexcept>
#include <typeinfo>

#include "VUnknown.h"

class IClonable : public IUnknown {
public:
    // A new object equal to this one, with one reference, which the caller
    // takes over (VRefPtr::Adopt). Strings share their buffers with this
    // object's, sensitivity included.
    virtual IClonable* Clone() const = 0;

protected:
    virtual ~IClonable() = default;
};

// One reference to a T (an IClonable); copying the holder clones the object,
// so that a copied configuration never shares a part with its source.
template <class T>
class VClonedRef {
public:
    VClonedRef() = default;
    // Adopts object's creator reference.
    explicit VClonedRef(T* object) : object_(VRefPtr<T>::Adopt(object)) {}
    VClonedRef(const VClonedRef& other) : object_(CloneOf(other.object_.Get())) {}
    VClonedRef(VClonedRef&&) noexcept = default;
    VClonedRef& operator=(const VClonedRef& other) {
        VClonedRef copy(other);
        object_.Swap(copy.object_);
        return *this;
    }
    VClonedRef& operator=(VClonedRef&&) noexcept = default;

    T* Get() const { return object_.Get(); }
    T* operator->() const { return object_.Get(); }
    T& operator*() const { return *object_; }
    explicit operator bool() const { return static_cast<bool>(object_); }

    // The clone of object (null for null), cast back to T; std::bad_cast
    // when a clone is not of the class of its source.
    static VRefPtr<T> CloneOf(const T* object) {
        if (!object) return VRefPtr<T>();
        const auto clone = VRefPtr<IClonable>::Adopt(object->Clone());
        auto* typed = dynamic_cast<T*>(clone.Get());
        if (!typed) throw std::bad_cast();
        return VRefPtr<T>(typed);
    }

private:
    VRefPtr<T> object_;
};
