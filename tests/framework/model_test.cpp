// Model evaluation, on the test-only sheet: defaults, memoisation, validity, dispatch and the registry.
#include <prsm/framework/PRSMException.h>
#include <prsm/framework/PRSMSheetRegistry.h>
#include <prsm/tests/framework/PRSMTestSamplerModel.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace {

using Params = PRSMTestSamplerParams;
using Model = PRSMTestSamplerModel;

// Defaults: RATE 0.5, SCALE 2 x 0.5 = 1, lane loads 0.5, mode FAST (capacitances 2 and 3.5).
// TOTAL = 0.5 x 2 x 1 + 0.5 x 3.5 x 1 + 0.25 = 3.
TEST(Model, CalculateAppliesDefaultsAndComputesEveryOutput) {
    Model const& model = Model::getGlobal();
    Params p;
    model.calculate(p);
    EXPECT_EQ(p[Params::TOTAL], 3.0f);
    EXPECT_EQ(p[Params::LABEL], "FAST:2");
    EXPECT_EQ(p[Params::COUNT_OUT], 4);
    EXPECT_EQ(p[Params::SCALE], 1.0f);
    EXPECT_EQ(p[Params::LANE_B_LOAD], 0.5f);
    EXPECT_EQ(p[Params::PLACEHOLDER], 0.25f);
    EXPECT_EQ(p[Params::GET_MAX_RATE], FLT_MAX);  // bounds are evaluated on demand only
    EXPECT_EQ(model.className(), "PRSMTestSamplerModel");
}

TEST(Model, CachedCellsStayUntilTheNextCalculate) {
    Model const& model = Model::getGlobal();
    auto const& data = PRSMTestSamplerData::getGlobal();
    Params p;
    model.calculate(p);
    p[Params::MODE] = "SLOW";  // capacitances 0.5 and 1: 0.25 + 0.5 + 0.25 = 1
    EXPECT_EQ(model.floatDispatchTable(p, data, "TOTAL"), 3.0f);
    model.calculate(p);
    EXPECT_EQ(model.floatDispatchTable(p, data, "TOTAL"), 1.0f);
    EXPECT_EQ(model.calculateLanePower(p, data, Model::Lane::B), 0.5f);
    EXPECT_EQ(Model::memberName(Model::Lane::B), "B");
    EXPECT_EQ(model.intDispatchTable(p, data, "COUNT"), 2);
    EXPECT_EQ(model.intDispatchTable(p, data, "TOTAL"), 0);
    EXPECT_EQ(model.floatDispatchTable(p, data, "missing"), 0.0f);
    EXPECT_EQ(model.stringDispatchTable(p, data, "COUNT"), "");
}

TEST(Model, ValidityIsReportedNeverEnforced) {
    Model const& model = Model::getGlobal();
    auto const& data = PRSMTestSamplerData::getGlobal();
    Params p;
    p[Params::COUNT] = -1;  // below the range: the unsigned test fails it
    p[Params::RATE] = 1.0f;
    p[Params::MODE] = "TURBO";
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_COUNT"), 0);
    EXPECT_EQ(p[Params::IS_VALID_COUNT], 0);
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_RATE"), 1);
    EXPECT_EQ(model.intDispatchTable(p, data, "calculateIsValidMODE"), 0);
    EXPECT_EQ(model.calculateValidValuesMode(p, data), "FAST,SLOW");
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MIN_RATE"), 0.0f);
    EXPECT_EQ(model.floatDispatchTable(p, data, "GET_MAX_RATE"), 1.0f);
    p[Params::COUNT] = 10;
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_COUNT"), 1);
    p[Params::COUNT] = 11;
    EXPECT_EQ(model.intDispatchTable(p, data, "IS_VALID_COUNT"), 0);
    // An unknown mode has no capacitance row: the lookup names the table and the key.
    try {
        model.calculate(p);
        FAIL() << "expected a missing key";
    } catch (PRSMException const& e) {
        EXPECT_STREQ(e.what(),
                     "PRS Exception: key \"TURBO.A\" not found in table \"LANE_CAP\" [ in function: "
                     "PRSMTestSamplerData::getLaneCap ]");
    }
}

TEST(Model, RegistryDrivesTheSheetByName) {
    prsm::Sheet const* sheet = prsm::SheetRegistry::instance().find("TestSampler");
    ASSERT_NE(sheet, nullptr);
    prsm::CellInfo const* rate = sheet->findCell("RATE");
    ASSERT_NE(rate, nullptr);
    EXPECT_EQ(rate->declaredDefault, "0.5");
    EXPECT_EQ(rate->validityKey, "IS_VALID_RATE");
    EXPECT_EQ(sheet->findCell("MODE")->validityKey, "calculateIsValidMODE");
    auto instance = sheet->create();
    instance->set("MODE", "SLOW");
    instance->set("COUNT", "3");
    EXPECT_THROW(instance->set("COUNT", "3.5"), std::invalid_argument);
    EXPECT_THROW(instance->set("RATE", "fast"), std::invalid_argument);
    EXPECT_THROW(instance->set("NOPE", "1"), std::invalid_argument);
    // One number rule by name, the host's: no blanks, '+', hexadecimal, inf or nan; values that fit.
    for (char const* text : {" 3", "3 ", "+3", "0x3", "3e", ".", "-", "2147483648", "1e10"})
        EXPECT_THROW(instance->set("COUNT", text), std::invalid_argument) << text;
    for (char const* text : {"nan", "inf", "-Infinity", "1e39", "1e-50", "0x1p3", "1,5", ""})
        EXPECT_THROW(instance->set("RATE", text), std::invalid_argument) << text;
    instance->set("RATE", "-2.5e-1");
    EXPECT_EQ(instance->get("RATE"), "-0.25");
    instance->set("RATE", "5e-1");  // back to its default
    instance->set("COUNT", "-2147483648");
    EXPECT_EQ(instance->get("COUNT"), "-2147483648");
    instance->set("COUNT", "0.3e1");  // a whole number, however written
    EXPECT_EQ(instance->get("COUNT"), "3");
    instance->calculate();
    EXPECT_EQ(instance->get("TOTAL"), "1");
    EXPECT_EQ(instance->get("LABEL"), "SLOW:3");
    EXPECT_EQ(instance->evaluate("GET_MAX_RATE"), "1");
    EXPECT_EQ(instance->isValid("COUNT"), 1);
    EXPECT_EQ(instance->validValues("MODE"), "FAST,SLOW");
}

// By position, a number cell is evaluated as the figure its text reads back as: a float's nine significant
// digits, not the float widened (0.1f is 0.100000001490116..., its text 0.100000001).
TEST(Model, NumbersEvaluateByPositionAsTheirTextReads) {
    prsm::Sheet const& sheet = *prsm::SheetRegistry::instance().find("TestSampler");
    auto position = [&](std::string const& name) {
        return static_cast<std::size_t>(sheet.findCell(name) - sheet.cells().data());
    };
    auto instance = sheet.create();
    instance->set("RATE", "0.1");
    instance->set("COUNT", "3");
    // LANE_A_LOAD defaults to RATE, 0.1f; SCALE to 2 x RATE, 0.2f = 0.200000002980..., text 0.200000003.
    EXPECT_EQ(instance->evaluateNumber(position("LANE_A_LOAD")), 0.100000001);
    EXPECT_NE(instance->evaluateNumber(position("LANE_A_LOAD")), static_cast<double>(0.1f));
    EXPECT_EQ(instance->evaluateNumber(position("SCALE")), 0.200000003);
    EXPECT_EQ(instance->evaluateNumber(position("COUNT_OUT")), 6.0);  // 2 x 3, an int exactly
    EXPECT_EQ(instance->evaluateNumber(position("LABEL")), 0.0);      // text is no number
    instance->set("RATE", "1e-7");  // 1.00000001168...e-07: the text in exponent form, 1.00000001e-07
    EXPECT_EQ(instance->evaluateNumber(position("RATE")), 1.00000001e-7);
    EXPECT_THROW(instance->evaluateNumber(sheet.cells().size()), std::out_of_range);

    // Every number cell, evaluated either way on a fresh set, gives the same figure.
    auto byName = sheet.create();
    auto byPosition = sheet.create();
    for (std::size_t c = 0; c < sheet.cells().size(); ++c) {
        if (sheet.cells()[c].type == prsm::CellType::String) continue;
        std::string const text = byName->evaluate(sheet.cells()[c].name);
        EXPECT_EQ(byPosition->evaluateNumber(c), std::strtod(text.c_str(), nullptr)) << sheet.cells()[c].name;
    }
}

// Messages name a list input's valid choices; a long list is cut after `shown` of them.
TEST(Model, ChoicesAreNamedAndLongListsShortened) {
    EXPECT_EQ(prsm::describeChoices("FAST,SLOW"), "one of FAST, SLOW");
    EXPECT_EQ(prsm::describeChoices("A,B,C,D,E,F,G,H"), "one of A, B, C, D, E, F, G, H");  // 8: all of them
    // 11 choices, 8 shown: 11 - 8 = 3 more.
    EXPECT_EQ(prsm::describeChoices("A,B,C,D,E,F,G,H,I,J,K"), "one of A, B, C, D, E, F, G, H, ... (3 more)");
    EXPECT_EQ(prsm::describeChoices("A,B,C", 2), "one of A, B, ... (1 more)");
    EXPECT_EQ(prsm::describeChoices(",A,,B,"), "one of A, B");  // empty items are no choice
    EXPECT_EQ(prsm::describeChoices(""), "no value: its list of valid values is empty");
}

TEST(Exception, MessageNamesTheFunction) {
    PRSMException const e("bad things", "f");
    EXPECT_STREQ(e.what(), "PRS Exception: bad things [ in function: f ]");
}

}  // namespace
