#include "GenerationValues.h"

#include <cstdio>
#include <cwchar>
#include <vector>

#include "PrivateValueNames.h"

namespace {

VUnicodeString ValueName(unsigned index) {
    VUnicodeString name;
    name.FormatPositional(L"v%1!03u!", index);
    return name;
}

// The text of value index: it names the generation, and its length changes
// with the generation's number.
VUnicodeString Text(Generation generation, unsigned index) {
    VUnicodeString text;
    text.FormatPositional(L"writer %1!u! generation %2!u! value %3!u! ", generation.writer, generation.number, index);
    for (unsigned dots = 0; dots < 10 + (generation.number + index) % 23; ++dots) text += L'.';
    return text;
}

uint32_t Number(Generation generation, unsigned index) {
    return (generation.writer << 24) ^ (generation.number * 2654435761u) ^ index;
}

std::vector<uint8_t> Bytes(Generation generation, unsigned index) {
    std::vector<uint8_t> bytes(20 + (generation.number + index) % 40);
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(Number(generation, index) >> (i % 4 * 8));
    return bytes;
}

VArray<VUnicodeString> Strings(Generation generation, unsigned index) { return {Text(generation, index), L"second"}; }

// The private values are texts, numbered from here.
constexpr unsigned PrivateIndex = 1000;

// Value 0 is always text: it tells the generation that the others must match.
uint32_t KindOf(unsigned index) { return index == 0 ? ProfileString : index % 4; }

bool ParseText(const VUnicodeString& text, Generation& generation) {
    return std::swscanf(text.c_str(), L"writer %u generation %u", &generation.writer, &generation.number) == 2;
}

bool Complain(const VUnicodeString& name, Generation generation) {
    std::fwprintf(stderr, L"%ls is missing or not of writer %u generation %u\n", name.c_str(), generation.writer,
                  generation.number);
    return false;
}

// Whether value index, of kind, under name holds what generation stores there.
bool Holds(VProfilePrivateKey& key, const VUnicodeString& name, Generation generation, unsigned index, uint32_t kind) {
    switch (kind) {
    case ProfileDword: {
        uint32_t number = 0;
        return key.GetDword(name, number) && number == Number(generation, index);
    }
    case ProfileString: {
        VUnicodeString text;
        return key.GetString(name, text) && text == Text(generation, index);
    }
    case ProfileBinary: {
        const std::vector<uint8_t> expected = Bytes(generation, index);
        std::vector<uint8_t> bytes(expected.size());
        size_t size = bytes.size();
        return key.GetBinary(name, bytes.data(), size) && size == expected.size() && bytes == expected;
    }
    default: {
        VArray<VUnicodeString> strings;
        return key.GetMultiString(name, strings) && strings == Strings(generation, index);
    }
    }
}

}  // namespace

void StoreGeneration(VProfilePrivateKey& key, Generation generation, unsigned count, bool withPrivate) {
    for (unsigned index = 0; index < count; ++index) {
        const VUnicodeString name = ValueName(index);
        switch (KindOf(index)) {
        case ProfileDword: key.SetDword(name, Number(generation, index)); break;
        case ProfileString: key.SetString(name, Text(generation, index)); break;
        case ProfileBinary: {
            const std::vector<uint8_t> bytes = Bytes(generation, index);
            key.SetBinary(name, bytes.data(), bytes.size());
            break;
        }
        default: key.SetMultiString(name, Strings(generation, index));
        }
    }
    if (!withPrivate) return;
    unsigned index = PrivateIndex;
    for (const VUnicodeString& name : GetPrivateValueNames()) key.SetString(name, Text(generation, index++));
}

bool ReadGeneration(VProfilePrivateKey& key, unsigned count, bool withPrivate, Generation& main, Generation& personal) {
    VUnicodeString first;
    if (!key.GetString(ValueName(0), first) || !ParseText(first, main)) return Complain(ValueName(0), main);
    for (unsigned index = 1; index < count; ++index)
        if (!Holds(key, ValueName(index), main, index, KindOf(index))) return Complain(ValueName(index), main);
    if (!withPrivate) return true;
    const VArray<VUnicodeString>& names = GetPrivateValueNames();
    if (!key.GetString(names[0], first) || !ParseText(first, personal)) return Complain(names[0], personal);
    for (unsigned index = 0; index < names.GetCount(); ++index)
        if (!Holds(key, names[index], personal, PrivateIndex + index, ProfileString))
            return Complain(names[index], personal);
    return true;
}
