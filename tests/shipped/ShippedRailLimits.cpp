// The catalogue's core-rail maximum of every part is the static data's device-wide MAX_CURRENT: the one
// figure the report compares VCCINT's total current with. CTest points QDI_DATADIR at data/.

#include <prsm/framework/PRSMCommonParamControlData.h>
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/models/dravik/PRSMDravikStaticData.h>
#include <prsm/models/talvex/PRSMTalvexStaticData.h>

#include <gtest/gtest.h>

#include <string>

namespace {

template <typename StaticData>
void expectCoreLimitsMatch(StaticData const& data) {
    PRSMCommonParamControlData const& catalogue = PRSMCommonParamControlData::getGlobal();
    ASSERT_FALSE(data.m_MaxCurrent.empty());
    for (auto const& [device, amperes] : data.m_MaxCurrent) {
        float const core = catalogue.getParamVarsFloatOrError(device, "VCCINT_MAX_CURRENT");
        ASSERT_NE(core, prsm::kFloatNotSet) << device << " has no VCCINT_MAX_CURRENT in the catalogue";
        EXPECT_EQ(core, static_cast<float>(amperes)) << device;
    }
}

TEST(ShippedRailLimits, TheCoreRailsMaximumIsTheDevicesMaxCurrent) {
    expectCoreLimitsMatch(PRSMTalvexStaticData::getGlobal());
    expectCoreLimitsMatch(PRSMDravikStaticData::getGlobal());
}

}  // namespace
