#include "VProfileKeySource.h"

#include <cstdint>

#include "ConfigMessages.h"
#include "VProfileBinary.h"
#include "VVariant.h"

bool VProfileKeySource::Read(const VUnicodeString& name, VARIANT& value) {
    // The key tells the kinds apart only by refusing the wrong one as absent,
    // so each kind is tried in turn; any other failure ends the search.
    const auto absent = [this] {
        return key_.GetLastErrorParams().GetMessageCode() == CONFIG_VALUE_ABSENT;
    };
    VVariant read;
    uint32_t number = 0;
    VUnicodeString text;
    VArray<VUnicodeString> texts;
    VBinaryBlock bytes;
    if (key_.GetDword(name, number)) {
        V_VT(&read.Get()) = VT_UI4;
        V_UI4(&read.Get()) = number;
    } else if (absent() && key_.GetString(name, text)) {
        read.SetText(text);
    } else if (absent() && key_.GetMultiString(name, texts)) {
        read.SetTexts(texts);
    } else if (absent() && VProfileBinary::ReadBlock(key_, name, bytes)) {
        read.SetBytes(bytes);
    } else {
        report_ = key_.GetLastErrorParams();
        return false;
    }
    read.MoveTo(value);
    return true;
}
