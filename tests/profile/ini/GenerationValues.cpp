#include "GenerationValues.h"

#include <cstdio>
#include <cwchar>

#include "PrivateValueNames.h"

namespace {

VUnicodeString NameOf(unsigned index, bool isPrivate) {
    if (isPrivate) return GetPrivateValueNames()[index];
    VUnicodeString name;
    name.FormatPositional(L"v%1!03u!", index);
    return name;
}

VUnicodeString Text(Generation generation, unsigned index) {
    VUnicodeString text;
    text.FormatPositional(L"writer %1!u! generation %2!u! value %3!u! ", generation.writer, generation.number, index);
    for (unsigned dots = 0; dots < 10 + (generation.number + index) % 23; ++dots) text += L'.';
    return text;
}

bool ReadGroup(VProfilePrivateKey& key, unsigned count, bool isPrivate, Generation& generation) {
    VUnicodeString text;
    if (key.GetString(NameOf(0, isPrivate), text))
        std::swscanf(text.c_str(), L"writer %u generation %u", &generation.writer, &generation.number);
    for (unsigned index = 0; index < count; ++index) {
        if (!key.GetString(NameOf(index, isPrivate), text) || text != Text(generation, index)) {
            std::fwprintf(stderr, L"%ls is missing or not of writer %u generation %u\n",
                          NameOf(index, isPrivate).c_str(), generation.writer, generation.number);
            return false;
        }
    }
    return true;
}

}  // namespace

void StoreGeneration(VProfilePrivateKey& key, Generation generation, unsigned count, bool withPrivate) {
    for (unsigned index = 0; index < count; ++index) key.SetString(NameOf(index, false), Text(generation, index));
    if (!withPrivate) return;
    for (unsigned index = 0; index < PrivateValueNameCount; ++index)
        key.SetString(NameOf(index, true), Text(generation, index));
}

bool ReadGeneration(VProfilePrivateKey& key, unsigned count, bool withPrivate, Generation& main, Generation& personal) {
    return ReadGroup(key, count, false, main) &&
           (!withPrivate || ReadGroup(key, static_cast<unsigned>(PrivateValueNameCount), true, personal));
}
