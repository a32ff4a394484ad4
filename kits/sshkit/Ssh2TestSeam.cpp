#include "Ssh2TestSeam.h"

#include <cwchar>

#include "SelfTests.h"

namespace SSH2::Testing {

bool BreakSelfTest(const wchar_t* name) {
    for (size_t index = 0; index < Detail::GetSelfTestCount(); ++index) {
        if (wcscmp(Detail::GetSelfTestName(index), name) == 0) {
            Detail::g_brokenSelfTest.store(static_cast<int>(index));
            return true;
        }
    }
    return false;
}

void RepairSelfTests() { Detail::g_brokenSelfTest.store(-1); }

}  // namespace SSH2::Testing
