// The processor-subsystem preset sheet on its shipped table (talvex/PRSMTalvexPssPresetData.cfg): each
// output is the preset's entry, read into a number when the file loads; an entry the table lacks or
// cannot read, and a preset it does not have, fail as the table's own lookup and parse do.
#include <prsm/framework/PRSMException.h>
#include <prsm/models/talvex/PRSMTalvexPssPresetModel.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <string>

namespace {

using Params = PRSMTalvexPssPresetParams;
using Data = PRSMTalvexPssPresetData;
using Model = PRSMTalvexPssPresetModel;

// The message of the table's lookup for a key it lacks.
std::string missing(std::string const& key) {
    return "PRS Exception: key \"" + key + "\" not found in table \"PSS_PRESETS\" [ in function: " +
           "PRSMTalvexPssPresetData::getPssPresets ]";
}

// The message calculate throws for `preset`, or "" when it calculates.
std::string failureOf(std::string const& preset) {
    Params params;
    params[Params::PRESET] = preset;
    try {
        Model::getGlobal().calculate(params);
    } catch (PRSMException const& error) {
        return error.what();
    }
    return "";
}

// LINUX_HEAVY: CPU_CORES = 4, CPU_LOAD = 90.0,
// VCCPSFP = 0.8 (the float nearest 0.8), LPD_MIO_GEM0_VOLTAGE = "1.8"; LINUX_LIGHT, the default, has
// four cores as well.
TEST(PssPreset, OutputsAreThePresetsEntries) {
    Params heavy;
    heavy[Params::PRESET] = "LINUX_HEAVY";
    Model::getGlobal().calculate(heavy);
    EXPECT_EQ(heavy[Params::CPU_CORES], 4);
    EXPECT_EQ(heavy[Params::CPU_LOAD], 90.0f);
    EXPECT_EQ(heavy[Params::VCCPSFP], 0.8f);
    EXPECT_EQ(heavy[Params::LPD_MIO_GEM0_VOLTAGE], "1.8");

    Params byDefault;
    Model::getGlobal().calculate(byDefault);
    EXPECT_EQ(byDefault[Params::CPU_CORES], 4);
}

// calculate reads the float settings first, in the sheet's output order (APU_CLK_FREQ, ...,
// CPU_LOAD, ...), then the int settings (..., CPU_CORES, ...).
TEST(PssPreset, FailsAsTheTableDoesWhereItHoldsNoNumber) {
    EXPECT_EQ(failureOf("NO_SUCH_PRESET"), missing("NO_SUCH_PRESET.APU_CLK_FREQ"));

    Data& data = Data::getMutableGlobal();
    data.m_PssPresets.erase("LINUX_HEAVY.CPU_CORES");  // by hand: the getters read the table itself
    EXPECT_EQ(failureOf("LINUX_HEAVY"), missing("LINUX_HEAVY.CPU_CORES"));
    data.resolve();
    EXPECT_EQ(failureOf("LINUX_HEAVY"), missing("LINUX_HEAVY.CPU_CORES"));

    data.m_PssPresets["LINUX_HEAVY.CPU_CORES"] = "2";
    data.m_PssPresets["LINUX_HEAVY.CPU_LOAD"] = "busy";  // s2f throws std::invalid_argument("stof")
    data.resolve();
    EXPECT_THROW(failureOf("LINUX_HEAVY"), std::invalid_argument);
    EXPECT_EQ(data.getPssPresetsInt("LINUX_HEAVY", static_cast<std::size_t>(Model::IntSetting::CPU_CORES)), 2);

    data.reset();
    EXPECT_EQ(failureOf("LINUX_HEAVY"), "");
}

}  // namespace
