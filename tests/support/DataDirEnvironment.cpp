#include "TestData.h"

#include <gtest/gtest.h>

namespace {

class DataDirEnvironment : public ::testing::Environment {
public:
    void SetUp() override {
        std::string const dirs = prsm::test::testDataDir() + ":" + prsm::test::shippedDataDir();
        ::setenv("QDI_DATADIR", dirs.c_str(), 1);
    }
};

::testing::Environment* const environment = ::testing::AddGlobalTestEnvironment(new DataDirEnvironment);

}  // namespace
