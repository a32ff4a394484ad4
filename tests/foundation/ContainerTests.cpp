// VArray, VMap and the VUnknown reference-counting base.
#include <gtest/gtest.h>

#include "VContainers.h"
#include "VString.h"
#include "VUnknown.h"

namespace {

TEST(Containers, IndexingPastTheCountThrowsAndAMapKeepsOneValuePerKeyInKeyOrder) {
    VArray<VUnicodeString> names{L"a", L"b"};
    names.InsertAt(1, L"between");
    EXPECT_THROW(names[3], VArray<VUnicodeString>::OutOfRange);
    EXPECT_THROW(names.RemoveAt(3), VArray<VUnicodeString>::OutOfRange);
    EXPECT_THROW(names.InsertAt(4, L"x"), VArray<VUnicodeString>::OutOfRange);
    names.RemoveAt(0);
    EXPECT_EQ(names, (VArray<VUnicodeString>{L"between", L"b"}));
    VMap<VUnicodeString, int> map;
    for (const auto& [key, value] : {std::pair{L"b", 2}, {L"a", 1}, {L"b", 3}})
        map.SetAt(key, value);
    int value = 0;
    EXPECT_TRUE(map.Lookup(L"b", value) && !map.Lookup(L"c", value) && value == 3);
    EXPECT_THROW(map.At(L"c"), decltype(map)::OutOfRange);
    EXPECT_EQ(map.begin()->first, L"a");
    EXPECT_TRUE(map.RemoveKey(L"a") && !map.RemoveKey(L"a") && map.GetCount() == 1u);
}

class ICounted : public IUnknown {};

class Counted : public VUnknown<ICounted> {
public:
    explicit Counted(bool& destroyed) : destroyed_(destroyed) {}
    ~Counted() override { destroyed_ = true; }

private:
    bool& destroyed_;
};

TEST(Unknown, TheCountStartsAtOneAndTheObjectGoesAtZeroAnsweringNoOtherInterface) {
    bool destroyed = false;
    ICounted* object = new Counted(destroyed);
    void* out = object;
    EXPECT_EQ(object->QueryInterface(IID_IUnknown, &out), static_cast<HRESULT>(0x80004002));
    EXPECT_TRUE(out == nullptr && object->AddRef() == 2 && object->Release() == 1 && !destroyed);
    EXPECT_TRUE(object->Release() == 0 && destroyed);
}

}  // namespace
