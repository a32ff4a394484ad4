// The reference-counting base of the program's interfaces. The count starts at
// 1 (the creator's reference), changes atomically, and the object deletes
// itself when it reaches 0. Objects answer no interface queries.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include <atomic>

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
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(references_.fetch_add(1) + 1); }
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
