// The reference-counting base of the program's interfaces. The count starts at
// 1 (the creator's reference), changes atomically, and the object deletes
// itself when it reaches 0. Objects answer no interface queries. VRefPtr holds
// one reference and gives it back when it goes.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <atomic>
#include <utility>

template <class I>
class VUnknown : public I {
public:
    VUnknown() = default;
    // A copy is a new object with the creator's single reference.
    VUnknown(const VUnknown& other) : I(other) {}
    VUnknown& operator=(const VUnknown&) { return *this; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
        if (object) *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        return static_cast<ULONG>(references_.fetch_add(1) + 1);
    }
    ULONG STDMETHODCALLTYPE Release() override {
        const LONG remaining = references_.fetch_sub(1) - 1;
        if (remaining == 0) delete this;
        return static_cast<ULONG>(remaining);
    }

protected:
    virtual ~VUnknown() = default;

private:
    std::atomic<LONG> references_{1};
};

// Holds one reference to a reference-counted object: copying adds one, and
// destruction or replacement releases it. Null is allowed.
template <class T>
class VRefPtr {
public:
    VRefPtr() noexcept = default;
    // Takes a reference of its own; the caller keeps the one it has.
    VRefPtr(T* object) noexcept : object_(object) {
        if (object_) object_->AddRef();
    }
    VRefPtr(const VRefPtr& other) noexcept : VRefPtr(other.object_) {}
    VRefPtr(VRefPtr&& other) noexcept : object_(other.object_) { other.object_ = nullptr; }
    VRefPtr& operator=(const VRefPtr& other) noexcept {
        VRefPtr copy(other);
        Swap(copy);
        return *this;
    }
    VRefPtr& operator=(VRefPtr&& other) noexcept {
        VRefPtr taken(std::move(other));
        Swap(taken);
        return *this;
    }
    ~VRefPtr() {
        if (object_) object_->Release();
    }

    // Adopts the creator's reference of a new object (whose count starts at 1).
    static VRefPtr Adopt(T* object) noexcept {
        VRefPtr result;
        result.object_ = object;
        return result;
    }

    T* Get() const noexcept { return object_; }
    T* operator->() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }
    void Swap(VRefPtr& other) noexcept { std::swap(object_, other.object_); }

private:
    T* object_ = nullptr;
};
