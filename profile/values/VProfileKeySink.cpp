#include "VProfileKeySink.h"

#include <cstdint>
#include <vector>

#include "ConfigMessages.h"
#include "VVariant.h"

bool VProfileKeySink::Written(bool succeeded) {
    if (!succeeded) report_ = key_.GetLastErrorParams();
    return succeeded;
}

bool VProfileKeySink::Write(const VUnicodeString& name, const VARIANT& value) {
    VVariant number;
    switch (V_VT(&value)) {
        case VT_BSTR: {
            const BSTR bstr = V_BSTR(&value);
            return Written(key_.SetString(name, VUnicodeString(bstr, SysStringLen(bstr))));
        }
        case VT_BOOL:
            return Written(key_.SetDword(name, V_BOOL(&value) != 0 ? 1 : 0));
        case VT_UI4:
        case VT_UINT:
            return Written(key_.SetDword(name, V_UI4(&value)));
        case VT_I1:
        case VT_UI1:
        case VT_I2:
        case VT_UI2:
        case VT_I4:
        case VT_INT:
            // Every one of them fits VT_I4; the cast to 32 unsigned bits then
            // sign-extends the signed ones.
            if (!number.ChangeTypeFrom(value, VT_I4)) break;
            return Written(key_.SetDword(name, static_cast<uint32_t>(V_I4(&number.Get()))));
        case VT_ARRAY | VT_UI1: {
            std::vector<uint8_t> bytes;
            if (!VVariant::BytesOf(value, bytes)) break;
            return Written(key_.SetBinary(name, bytes.data(), static_cast<uint32_t>(bytes.size())));
        }
        case VT_ARRAY | VT_BSTR:
        case VT_ARRAY | VT_VARIANT: {
            VArray<VUnicodeString> texts;
            if (!VVariant::TextsOf(value, texts)) break;
            return Written(key_.SetMultiString(name, texts));
        }
        default:
            break;
    }
    report_.Set(CONFIG_EXCHANGE_NOT_SUPPORTED, name);
    return false;
}
