// A suite that runs against every back end of the profile store (StoreBackEnds.cpp), each test
// on a fresh place of its own (a registry key, a pair of folders).
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "ConfigMessages.h"
#include "VProfileStore.h"

// Every back end reports a missing value alike, so that typed values fall back to defaults.
inline void ExpectValueAbsent(VReportMessageParams& report, const wchar_t* name) {
    EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(CONFIG_VALUE_ABSENT));
    ASSERT_EQ(report.GetArguments().GetCount(), 1u);
    EXPECT_EQ(report.GetArguments()[0], name);
}

// One place for one test's settings; destroying it removes the place.
class StorePlace {
public:
    virtual ~StorePlace() = default;
    // A new store on the place, seeing what the stores before it persisted.
    virtual std::unique_ptr<VProfileStore> Open(bool readOnly) = 0;
};

struct StoreBackEnd {
    std::string name;
    std::function<std::unique_ptr<StorePlace>()> makePlace;
};

StoreBackEnd RegistryBackEnd();
StoreBackEnd IniFileBackEnd();

inline std::ostream& operator<<(std::ostream& out, const StoreBackEnd& backEnd) { return out << backEnd.name; }

inline std::string BackEndName(const ::testing::TestParamInfo<StoreBackEnd>& info) { return info.param.name; }

class StoreBehaviour : public ::testing::TestWithParam<StoreBackEnd> {
protected:
    void SetUp() override { place_ = GetParam().makePlace(); }
    void TearDown() override { place_.reset(); }

    std::unique_ptr<VProfileStore> Open(bool readOnly = false) { return place_->Open(readOnly); }

    std::unique_ptr<StorePlace> place_;
};
