// The design engine's sheet runner on the test-only TestLoad block, whose power follows by hand:
// CORE_POWER = C * V^2 * f = C[pF] * 1e-12 * V^2 * f[MHz] * 1e6 W, held in float cells (to 1e-7).
#include <prsm/design/SheetRunner.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace prsm::design;

Design testDesign() {
    Design design;
    design.source = "runner.json";
    design.device.fields = {{"part", "TESTDEV"}};
    return design;
}

struct Fixture {
    Design design = testDesign();
    Block block{"core", "TestLoad", 1, {{"CAPACITANCE", "500", "/blocks/0/inputs/CAPACITANCE"}}, "/blocks/0"};
    prsm::Sheet const& sheet = *prsm::SheetRegistry::instance().find("TestLoad");
    std::vector<Warning> warnings;
    SheetRunner runner{block, sheet, design, warnings};
    std::vector<SheetRunner> none;
    std::vector<double> voltage{0.5};  // one rail, VCCINT

    std::size_t cell(std::string const& name) const { return sheet.findCell(name) - sheet.cells().data(); }
    // Calculates with the clock written in by the role (0: left to the inputs) and reads CORE_POWER.
    double power(double clock = 0) {
        double read = -1;
        bool const ok = runner.calculate(
            voltage, none,
            [&](prsm::SheetInstance& instance) {
                if (clock > 0) instance.setNumber(cell("CLOCK_FREQ"), clock);
            },
            [&](prsm::SheetInstance&) { read = runner.number(cell("CORE_POWER")); });
        EXPECT_TRUE(ok) << runner.error();
        return read;
    }
};

TEST(SheetRunner, EachCalculationStartsFreshWithTheRoleWiringWrittenIn) {
    Fixture f;
    f.runner.takeVoltage(f.cell("VCCINT"), 0);
    EXPECT_NEAR(f.power(200), 500e-12 * 0.25 * 200e6, 1e-7);  // 0.025 W at 0.5 V and 200 MHz
    EXPECT_FALSE(f.runner.dirty());
    EXPECT_NEAR(f.power(), 500e-12 * 0.25 * 100e6, 1e-7);  // the default 100 MHz again: 0.0125 W
    f.voltage[0] = 1.0;
    EXPECT_NEAR(f.power(), 500e-12 * 1.0 * 100e6, 1e-7);  // the rail's new voltage: 0.05 W

    // A step that throws fails the calculation with its message, and the next one clears it.
    EXPECT_FALSE(f.runner.calculate(
        f.voltage, f.none, [](prsm::SheetInstance&) {},
        [](prsm::SheetInstance&) { throw std::runtime_error("no figure"); }));
    EXPECT_EQ(f.runner.error(), "no figure");
    f.power();
    EXPECT_EQ(f.runner.error(), "");
}

TEST(SheetRunner, InputChangesAreCheckedKeptAndUndone) {
    Fixture f;
    auto refusal = [&](char const* cell, char const* text) {
        try {
            f.runner.setInput("core", cell, text);
        } catch (DesignError const& e) {
            return std::string(e.what());
        }
        return std::string("accepted");
    };
    EXPECT_EQ(refusal("VCCINT", "0.7"),
              "block \"core\": cell VCCINT is the voltage of rail VCCINT: set it once under /rails");
    EXPECT_EQ(refusal("CORE_POWER", "1"), "block \"core\": CORE_POWER is not an input of TestLoad");
    EXPECT_EQ(refusal("CLOCK_FREQ", "fast").rfind("block \"core\": ", 0), 0u);

    f.power();
    EXPECT_FALSE(f.runner.isGiven("CLOCK_FREQ"));
    f.runner.setInput("core", "CLOCK_FREQ", "300");
    EXPECT_TRUE(f.runner.dirty() && f.runner.validityDue() && f.runner.isGiven("CLOCK_FREQ"));
    EXPECT_NEAR(f.power(), 500e-12 * 0.8 * 0.8 * 300e6, 1e-7);  // the sheet's own 0.8 V: 0.096 W
    EXPECT_TRUE(f.runner.clearInputs());
    EXPECT_FALSE(f.runner.clearInputs());  // nothing left to undo
    EXPECT_FALSE(f.runner.isGiven("CLOCK_FREQ"));
    EXPECT_TRUE(f.runner.isGiven("CAPACITANCE"));               // the file's input stays
    EXPECT_NEAR(f.power(), 500e-12 * 0.8 * 0.8 * 100e6, 1e-7);  // 0.032 W
}

}  // namespace
