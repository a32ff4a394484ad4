// The behaviour that every back end of the profile store shares, as one
// value-parameterised suite (StoreBehaviourTests.cpp), instantiated with a
// StoreBackEnd per back end (StoreBackEnds.cpp) that gives every test a fresh
// place of its own (a registry key, a pair of folders) and opens stores on it.
// Suites of the libraries above the store derive from StoreBehaviour to run
// against both back ends too.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "ConfigMessages.h"
#include "VProfileStore.h"

// The record of a read that found nothing under name: every back end says so
// the same way, so that typed values can fall back to their defaults.
inline void ExpectValueAbsent(VReportMessageParams& report, const wchar_t* name) {
    EXPECT_EQ(report.GetMessageCode(), static_cast<DWORD>(CONFIG_VALUE_ABSENT));
    ASSERT_EQ(report.GetArguments().GetCount(), 1u);
    EXPECT_EQ(report.GetArguments()[0], name);
}

// One place for one test's settings; destroying it removes the place.
class StorePlace {
public:
    virtual ~StorePlace() = default;
    // A new store on the place. Each store sees what the stores before it
    // persisted (the file back end writes when a key object goes or flushes).
    virtual std::unique_ptr<VProfileStore> Open(bool readOnly) = 0;
};

struct StoreBackEnd {
    std::string name;
    std::function<std::unique_ptr<StorePlace>()> makePlace;
};

// The registry under a sandbox key, and the INI files in a temporary folder.
StoreBackEnd RegistryBackEnd();
StoreBackEnd IniFileBackEnd();

inline std::ostream& operator<<(std::ostream& out, const StoreBackEnd& backEnd) { return out << backEnd.name; }

// Names the instantiated tests after the back end.
inline std::string BackEndName(const ::testing::TestParamInfo<StoreBackEnd>& info) { return info.param.name; }

class StoreBehaviour : public ::testing::TestWithParam<StoreBackEnd> {
protected:
    void SetUp() override { place_ = GetParam().makePlace(); }
    void TearDown() override { place_.reset(); }

    std::unique_ptr<VProfileStore> Open(bool readOnly = false) { return place_->Open(readOnly); }

    std::unique_ptr<StorePlace> place_;
};
