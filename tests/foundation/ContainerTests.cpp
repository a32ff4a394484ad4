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

    using Map = VMap<VUnicodeString, int>;
    Map map;
    map.SetAt(L"b", 2);
    map.SetAt(L"a", 1);
    map.SetAt(L"b", 3);
    int value = 0;
    EXPECT_TRUE(map.Lookup(L"b", value) && !map.Lookup(L"c", value) && value == 3);
    EXPECT_THROW(map.At(L"c"), Map::OutOfRange);
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
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(object->AddRef(), 2u);
    EXPECT_EQ(object->Release(), 1u);
    EXPECT_FALSE(destroyed);
    EXPECT_EQ(object->Release(), 0u);
    EXPECT_TRUE(destroyed);
}

}  // namespace
