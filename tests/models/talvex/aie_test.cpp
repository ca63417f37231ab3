// The AI-engine sheets on tests/data: every figure below is worked out by hand from those files.
// Coefficients (per MHz): idle 0.001, scalar 0.002, 16-bit 0.01, 8-bit 0.02, floating 0.03, FFT 0.04,
// bank 0.0001, interconnect 0.001, interface row 0.01 + 0.001 per column, PL stream 0.0002, network
// stream 0.0005; PLL 0.5 on VCCINT and 0.25 on VCCAUX; characterised at 0.8 V. The default part's
// scale is 0.5 (DEFAULT 2.0); its interface row has 10 columns, 20 PL and 4 network streams.
// The second generation adds 4-bit kernels (0.005) and memory tiles (0.002, six on the device).
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/models/talvex/PRSMTalvexAie2Model.h>
#include <prsm/models/talvex/PRSMTalvexAieModel.h>

#include "ModelFixture.h"
#include "TestData.h"

#include <gtest/gtest.h>

namespace {

using Params = PRSMTalvexAieParams;
using Model = PRSMTalvexAieModel;
using Data = PRSMTalvexAieData;

class Aie : public prsm::test::ModelFixture<Model> {
protected:
    // 16 cores and 256 banks (32 tiles) at 1000 MHz, half load, half read/write rate.
    void sixteenCores(Params& q) {
        q[Params::AIE_CORES] = 16;
        q[Params::NUM_MEMORY_BANKS] = 256;
        q[Params::CLK_FREQ] = 1000.0f;
        q[Params::CORE_LOAD] = 0.5f;
        q[Params::MEMORY_READ_WRITE_RATE] = 0.5f;
    }
};

// The default tile count is formed in float: 2147483646 cores round up to 2^31 there, one past the int
// range, and the count saturates at 2147483647 rather than wrapping; 2^30 cores convert exactly.
TEST_F(Aie, DefaultTilesStayInTheIntRange) {
    p[Params::AIE_CORES] = 1 << 30;
    EXPECT_EQ(model.getAieTiles(p, data), 1 << 30);
    Params q;
    q[Params::AIE_CORES] = 2147483646;
    EXPECT_EQ(model.getAieTiles(q, data), 2147483647);
}

TEST_F(Aie, NoCoresNoPower) {
    EXPECT_EQ(calc(Params::TOTAL_POWER), 0.0f);
    EXPECT_EQ(p[Params::AIE_VCCINT_POWER], 0.0f);
    EXPECT_EQ(p[Params::AIE_VCCAUX_POWER], 0.0f);
    EXPECT_EQ(p[Params::VOLTAGE_SCALING], 1.0f);
    p[Params::NUM_MEMORY_BANKS] = 256;  // memory and streams without a core stay unpowered
    p[Params::PL_INTERFACE_STREAMS] = 5;
    EXPECT_EQ(calc(Params::TOTAL_POWER), 0.0f);
    EXPECT_EQ(p[Params::AIE_SHIM_POWER], 0.0f);
}

// Tiles: (0.5 x 0.01 + 0.003) x 16 x 1000 = 128, x 0.5 = 64; 16 idle tiles 16 x 1000 x 0.001 x 0.5 = 8;
// PLL 0.5: core group 72.5. Banks 256 x 0.5 x 1000 x 0.0001 x 0.5 = 6.4; interconnect 32 x 0.12 x
// 1000 x 0.001 x 0.5 = 1.92; interface row 1000 x (10 x 0.001 + 0.01) x 0.5 = 10; 30 PL streams
// limited to 20: 20 x 1000 x 0.0002 x 0.5 = 2; 2 network streams 2 x 1000 x 0.0005 x 0.5 = 0.5;
// PLL 0.25: memory group 21.07. Total 93.57, of which 0.25 on VCCAUX.
TEST_F(Aie, SixteenCoresBreakdown) {
    sixteenCores(p);
    p[Params::PL_INTERFACE_STREAMS] = 30;
    p[Params::NOC_AXIMMS_INTERFACE_STREAMS] = 2;
    EXPECT_NEAR(calc(Params::TOTAL_POWER), 93.57f, 1e-3);
    EXPECT_EQ(p[Params::AIE_TILES], 32);
    EXPECT_NEAR(p[Params::AIE_IDLE_POWER], 8.0f, 1e-5);
    EXPECT_NEAR(p[Params::AIE_CORE_POWER], 72.5f, 1e-4);
    EXPECT_NEAR(p[Params::AIE_MEMORY_POWER], 6.4f, 1e-5);
    EXPECT_NEAR(p[Params::AIE_INTERCONNECT_STREAM_POWER], 1.92f, 1e-5);
    EXPECT_NEAR(p[Params::AIE_SHIM_POWER_TOP], 10.0f, 1e-5);
    EXPECT_NEAR(p[Params::AIE_PL_SHIM_POWER], 2.0f, 1e-5);
    EXPECT_NEAR(p[Params::AIE_NOC_SHIM_POWER], 0.5f, 1e-6);
    EXPECT_NEAR(p[Params::AIE_MEM_POWER], 21.07f, 1e-4);
    EXPECT_NEAR(p[Params::AIE_VCCINT_POWER], 93.32f, 1e-3);
    EXPECT_EQ(p[Params::AIE_VCCAUX_POWER], 0.25f);
    EXPECT_EQ(p[Params::AIE_CORE_MEM_POWER], p[Params::TOTAL_POWER]);
}

TEST_F(Aie, KernelWorkloadVoltageAndDeviceScale) {
    auto const tiles = [this](char const* kernel, char const* workload) {
        Params q;
        sixteenCores(q);
        q[Params::KERNEL_TYPE] = kernel;
        q[Params::WORKLOAD_TYPE] = workload;
        return model.calculateAieTilePower(q, data);
    };
    EXPECT_NEAR(tiles("Complex", "DSP"), 64.0f, 1e-4);
    EXPECT_EQ(tiles("Complex", "DSP"), tiles("Int16", "DSP"));
    EXPECT_NEAR(tiles("Int8", "DSP"), 0.013f * 16000 * 0.5f, 1e-3);
    EXPECT_NEAR(tiles("Floating", "DSP"), 0.018f * 16000 * 0.5f, 1e-3);
    EXPECT_NEAR(tiles("FFT", "DSP"), 16000 * 0.5f * 0.04f * 0.5f, 1e-3);  // no idle or scalar floor
    EXPECT_NEAR(tiles("Int16", "ML"), 44.8f, 1e-4);
    EXPECT_EQ(tiles("Int4", "DSP"), 0.0f);  // not a kernel of this generation

    p[Params::VCCINT] = 0.88f;  // 1.1^2.3
    EXPECT_NEAR(calc(Params::VOLTAGE_SCALING), 1.245097f, 1e-5);
    p[Params::VCCINT] = 0.72f;  // 0.9^2.3
    EXPECT_NEAR(calc(Params::VOLTAGE_SCALING), 0.784798f, 1e-5);

    p[Params::DEVICE] = "ZQVC1204";  // no row of its own: DEFAULT
    p.resetIntermediateCalculations();
    EXPECT_EQ(model.calculateVccintScale(p, data), 2.0f);
    Data edited = data;
    edited.m_BlockPowerScale.erase("DEFAULT.AIE_VCCINT");
    p.resetIntermediateCalculations();
    EXPECT_EQ(model.calculateVccintScale(p, edited), 1.0f);
    edited.m_SimConditions["PSIM_VOLTAGE"] = 0.0f;
    Params q;
    EXPECT_EQ(model.calculateVoltageScaling(q, edited), 0.0f);
}

TEST_F(Aie, ValidityAndLimits) {
    auto const valid = [this](Params::IntEnum cell, int value, char const* name) {
        Params q;
        q[cell] = value;
        return model.intDispatchTable(q, data, name);
    };
    EXPECT_EQ(valid(Params::AIE_CORES, 400, "IS_VALID_AIE_CORES"), 1);
    EXPECT_EQ(valid(Params::AIE_CORES, 401, "IS_VALID_AIE_CORES"), 0);
    EXPECT_EQ(valid(Params::AIE_CORES, -1, "IS_VALID_AIE_CORES"), 0);
    EXPECT_EQ(valid(Params::NUM_MEMORY_BANKS, 3200, "IS_VALID_NUM_MEMORY_BANKS"), 1);
    EXPECT_EQ(valid(Params::NUM_MEMORY_BANKS, 3201, "IS_VALID_NUM_MEMORY_BANKS"), 0);
    EXPECT_EQ(valid(Params::PL_INTERFACE_STREAMS, 20, "IS_VALID_PL_INTERFACE_STREAMS"), 1);
    EXPECT_EQ(valid(Params::PL_INTERFACE_STREAMS, 21, "IS_VALID_PL_INTERFACE_STREAMS"), 0);
    EXPECT_EQ(valid(Params::NOC_AXIMMS_INTERFACE_STREAMS, 5, "IS_VALID_NOC_AXIMMS_INTERFACE_STREAMS"), 0);
    EXPECT_EQ(valid(Params::NOC_AXIMMS_INTERFACE_STREAMS, -1, "IS_VALID_NOC_AXIMMS_INTERFACE_STREAMS"), 0);

    p[Params::CORE_LOAD] = 1.0f;
    p[Params::MEMORY_READ_WRITE_RATE] = -0.1f;
    EXPECT_TRUE(model.calculateIsValidCoreLoad(p, data));
    EXPECT_FALSE(model.calculateIsValidMemoryReadWriteRate(p, data));
    EXPECT_EQ(p[Params::IS_VALID_MEMORY_READ_WRITE_RATE], 0);
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_NUM_MEMORY_BANKS"), 3200.0f);

    EXPECT_EQ(model.calculateValidValuesKernelType(p, data), "Int16,Int8,Floating,Complex,FFT");
    p[Params::INTERNAL_DEVICE_NAME] = "ZQ10S60";
    EXPECT_FALSE(model.calculateIsValidInternalDeviceName(p, data));
    EXPECT_EQ(model.calculatePlStreams(p, data), 0);  // no interface row known: no streams
}

// The second generation: 4-bit tiles (0.5 x 0.005 + 0.003) x 16000 x 0.5 = 44; ten memory tiles limited
// to six, 6 x 0.5 x 1000 x 0.002 x 0.5 = 3. With the idle tiles, PLLs, banks, interconnect and
// interface row of the first generation's breakdown (8 + 0.5 + 6.4 + 1.92 + 10 + 0.25): 74.07.
TEST(Aie2, MemoryTilesAndFourBitKernels) {
    PRSMTalvexAie2Model const& model = PRSMTalvexAie2Model::getGlobal();
    PRSMTalvexAie2Data const& data = PRSMTalvexAie2Data::getGlobal();
    using P = PRSMTalvexAie2Params;
    P p;
    model.calculate(p);
    EXPECT_EQ(p[P::TOTAL_POWER], 0.0f);
    EXPECT_EQ(p[P::INTERNAL_DEVICE_NAME], "ZQ10S90");

    p.resetUserInputs();  // AIE_TILES keeps its stored default otherwise
    p[P::AIE_CORES] = 16;
    p[P::NUM_MEMORY_BANKS] = 256;
    p[P::CLK_FREQ] = 1000.0f;
    p[P::CORE_LOAD] = 0.5f;
    p[P::MEMORY_READ_WRITE_RATE] = 0.5f;
    p[P::KERNEL_TYPE] = "Int4";
    p[P::MEM_TILES] = 10;
    model.calculate(p);
    EXPECT_NEAR(p[P::AIE_TILE_POWER], 44.0f, 1e-4);
    EXPECT_NEAR(p[P::AIE_MEM_TILE_POWER], 3.0f, 1e-5);
    EXPECT_NEAR(p[P::TOTAL_POWER], 74.07f, 1e-3);
    EXPECT_NEAR(p[P::AIE_VCCINT_POWER] + p[P::AIE_VCCAUX_POWER], 74.07f, 1e-3);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_MEM_TILES"), 0);
    p[P::KERNEL_TYPE] = "Complex";
    model.calculate(p);
    EXPECT_NEAR(p[P::AIE_TILE_POWER], 64.0f, 1e-4);
}

// The shipped files: 16 cores at 975 MHz and 60 % load cost on the order of a watt, and every part
// with an array has its interface row in the file of its generation.
TEST(AieShipped, MagnitudesAndDevices) {
    prsm::test::ScopedDataDir dir(prsm::test::shippedDataDir());
    Data const first;
    PRSMTalvexAie2Data const second;
    Params p;
    p[Params::AIE_CORES] = 16;
    p[Params::CORE_LOAD] = 0.6f;
    float const watts = Model::getGlobal().calculateTotalPower(p, first);
    EXPECT_GT(watts, 0.3f);
    EXPECT_LT(watts, 3.0f);
    PRSMTalvexAie2Params q;
    q[PRSMTalvexAie2Params::AIE_CORES] = 16;
    q[PRSMTalvexAie2Params::CORE_LOAD] = 0.6f;
    float const watts2 = PRSMTalvexAie2Model::getGlobal().calculateTotalPower(q, second);
    EXPECT_GT(watts2, 0.3f);
    EXPECT_LT(watts2, 3.0f);
    for (auto const& device : first.getDropdownLists("DEVICE_INT_NAMES"))
        EXPECT_NE(first.getShimDataOrError(device, "PL_STREAMS"), prsm::kIntNotSet) << device;
    for (auto const& device : second.getDropdownLists("DEVICE_INT_NAMES"))
        EXPECT_NE(second.getShimDataOrError(device, "MEM_TILES"), prsm::kIntNotSet) << device;
}

}  // namespace
