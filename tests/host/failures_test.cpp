// The host's account of a data file that fails to load names the file, as the library reports it.
#ifdef PRSM_HOST_CORE_LINKED

#include <prsm/framework/PRSMData.h>
#include <prsm/host/Failures.h>

#include "TestData.h"

#include <gtest/gtest.h>
#include <libconfig.h++>

namespace prsm::host {
namespace {

std::string describeLoad(std::string const& relative) {
    testing::internal::CaptureStderr();
    std::string text;
    try {
        libconfig::Config cfg;
        PRSMData::readFile(&cfg, relative);
    } catch (...) {
        text = describeCurrentException();
    }
    testing::internal::GetCapturedStderr();
    return text;
}

TEST(HostFailures, DataFileFailuresNameTheFile) {
    prsm::test::ScopedDataDir scope("/no/such/dir:/nor/this");
    EXPECT_EQ(describeLoad("talvex/Nothing.cfg"),
              "data file powercfg/talvex/Nothing.cfg not found in the data directories (QDI_DATADIR): "
              "/no/such/dir, /nor/this");
}

}  // namespace
}  // namespace prsm::host

#endif
