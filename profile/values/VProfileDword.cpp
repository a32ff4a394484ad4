#include "VProfileDword.h"

bool VProfileDword::WriteNumber(VProfileKey& key, uint32_t number) {
    if (!key.SetDword(GetName(), number)) return false;
    const VUnicodeString& formerName = GetPendingFormerName();
    if (!formerName.IsEmpty()) {
        if (!key.DeleteValue(formerName)) return false;
        ClearPendingFormerName();
    }
    return true;
}
