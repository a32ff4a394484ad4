#include "VProfileDword.h"

bool VProfileDword::WriteNumber(VProfileKey& key, uint32_t number) {
    if (!key.SetDword(GetName(), number)) return false;
    const VUnicodeString& formerName = GetPendingFormerName();
    if (!formerName.IsEmpty()) {
        // A key without the former value (another one than the value was read
        // from) has nothing to remove.
        if (!key.DeleteValue(formerName) &&
            key.GetLastErrorParams().GetMessageCode() != ERROR_FILE_NOT_FOUND)
            return false;
        ClearPendingFormerName();
    }
    return true;
}
