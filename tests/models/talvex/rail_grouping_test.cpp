// The power-rail grouping sheet on tests/data: every label there is a letter for the key followed by
// the rail's name (F_ for FULL_POWER_MANAGEMENT_M, M_, L_, D_, O_ for MINIMUM_RAILS_M, _L, _L_DVS,
// _L_OD), so a group's expected label is read off the member rail chosen by hand.
#include <prsm/framework/PRSMCommonParamControlData.h>
#include <prsm/framework/PRSMException.h>
#include <prsm/models/talvex/PRSMTalvexPowerRailGroupingModel.h>

#include "ModelFixture.h"
#include "TestData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using Params = PRSMTalvexPowerRailGroupingParams;
using Model = PRSMTalvexPowerRailGroupingModel;
using Data = PRSMTalvexPowerRailGroupingData;

constexpr char kBlank[] = "__BLANK_LITERAL__";

std::vector<std::string> const kFullGroups = {
    "PL_1A",     "PL_1B",     "PL_1C",    "PL_1D",    "PL_1E",    "PL_1F",   "PL_1G",  "PL_1H",
    "PL_2",      "PL_3",      "PL_4",     "PL_5",     "PL_6",     "PMC_1A",  "PMC_1B", "PMC_1C",
    "PMC_2",     "PMC_3",     "LPD_1",    "LPD_2",    "LPD_3",    "LPD_4",   "LPD_5",  "FPD_1",
    "SYSTEM_1A", "SYSTEM_1B", "SYSTEM_2", "SYSTEM_3", "SYSTEM_4", "SYSTEM_5"};
std::vector<std::string> const kMinGroups = {"MIN_RAILS_1A", "MIN_RAILS_1B", "MIN_RAILS_1C", "MIN_RAILS_1D",
                                             "MIN_RAILS_1E", "MIN_RAILS_1F", "MIN_RAILS_1G", "MIN_RAILS_1H",
                                             "MIN_RAILS_2",  "MIN_RAILS_3",  "MIN_RAILS_4A", "MIN_RAILS_4B",
                                             "MIN_RAILS_5A", "MIN_RAILS_5B", "MIN_RAILS_6A", "MIN_RAILS_6B",
                                             "MIN_RAILS_7A", "MIN_RAILS_7B", "MIN_RAILS_8"};

class RailGrouping : public prsm::test::ModelFixture<Model> {
protected:
    void SetUp() override { p[Params::DEVICE_FAMILY] = "FAM_A"; }
    std::string cell(std::string const& name) { return p[Params::string_to_string_enum(name)]; }
    std::string label(std::string const& group) { return cell(group + "_POWER_RAIL_GROUP"); }
    void calculate(char const* strategy, char const* grade) {
        p[Params::POWER_RAIL_CONSOLIDATION] = strategy;
        p[Params::VOLTAGE_GRADE] = grade;
        model.calculate(p);
    }
};

TEST_F(RailGrouping, FullPowerManagementShowsTheDomainGroupsAndBlanksTheOthers) {
    model.calculate(p);  // the defaults: FULL_POWER_MANAGEMENT, grade M, every I/O rail at 1.8 V
    EXPECT_EQ(p[Params::KEY], "FULL_POWER_MANAGEMENT_M");
    EXPECT_EQ(p[Params::IMAGE], "prs/images/e_fm.png");
    EXPECT_EQ(p[Params::VCCINT_POWER_RAIL_GROUP], "F_VCCINT");
    for (auto const& group : kMinGroups) EXPECT_EQ(label(group), kBlank) << group;
    EXPECT_EQ(label("PL_1A"), "F_VCCO33");
    EXPECT_EQ(label("PL_1E"), "F_VCCO135");
    EXPECT_EQ(label("PL_1H"), "F_VCCO10");
    EXPECT_EQ(label("PL_2"), "F_VCCINT");
    EXPECT_EQ(label("PL_3"), "F_VCCRAM");
    EXPECT_EQ(label("PMC_2"), "F_VCCPMC");
    EXPECT_EQ(label("PMC_3"), "F_VCCAUXPMC");
    EXPECT_EQ(label("LPD_1"), "F_VCCOPMIO2");
    EXPECT_EQ(label("LPD_4"), "F_MGTYVCCAUX");
    EXPECT_EQ(label("FPD_1"), "F_VCCPSFP");
    EXPECT_EQ(label("SYSTEM_1A"), "F_VCCO12");
    EXPECT_EQ(label("SYSTEM_5"), "F_VCCHBM");
    // FAM_A labels its GTM supplies, so GTM is in use and PL_4 to PL_6 show the MGTM rails.
    EXPECT_EQ(p[Params::GTY_USED_GTM_NOT_USED], "NO");
    EXPECT_EQ(label("PL_4"), "F_MGTMAVCC");
    EXPECT_EQ(label("PL_6"), "F_MGTMAVTT");
    // Three I/O rails at 1.8 V: PMC_1C shows the first of them, PMC_1A and PMC_1B have none.
    EXPECT_EQ(label("PMC_1C"), "F_VCCOFIO");
    EXPECT_EQ(label("PMC_1A"), kBlank);
    EXPECT_EQ(label("PMC_1B"), kBlank);

    p[Params::VCCOFIO] = "3.3 V";
    p[Params::VCCOPMIO0] = "2.5 V";
    p[Params::VCCOPMIO1] = "2.5 V";
    model.calculate(p);
    EXPECT_EQ(label("PMC_1A"), "F_VCCOFIO");
    EXPECT_EQ(label("PMC_1B"), "F_VCCOPMIO0");
    EXPECT_EQ(label("PMC_1C"), kBlank);

    // FAM_B has no GTM supplies (N/A): GTY in use without GTM, so the MGTY rails.
    p[Params::DEVICE_FAMILY] = "FAM_B";
    p[Params::DEVICE_GRADE] = "INDUSTRIAL";
    model.calculate(p);
    EXPECT_EQ(p[Params::GTY_USED_GTM_NOT_USED], "YES");
    EXPECT_EQ(model.getNumGtm(p, data), 0);
    EXPECT_EQ(model.getUsedGty(p, data), 1);
    EXPECT_EQ(label("PL_5"), "B_MGTYVCCAUX");
    EXPECT_EQ(p[Params::IMAGE], "prs/images/i_fm.png");
}

// The arrangements of the minimum-rails steps: shared core (M), own VCCINT (L), own VCCINT and VCCRAM
// (L_DVS, L_OD).
TEST_F(RailGrouping, MinimumRailsShowsTheStepsOfTheVoltageGrade) {
    calculate("MINIMUM_RAILS", "M");
    for (auto const& group : kFullGroups) EXPECT_EQ(label(group), kBlank) << group;
    EXPECT_EQ(label("MIN_RAILS_1A"), "M_VCCO33");
    EXPECT_EQ(label("MIN_RAILS_2"), "M_VCCPMC");
    EXPECT_EQ(label("MIN_RAILS_3"), "M_VCCAUX");
    EXPECT_EQ(label("MIN_RAILS_4A"), "M_VCCAUXHBM");
    EXPECT_EQ(label("MIN_RAILS_4B"), "M_MGTYAVCC");
    EXPECT_EQ(label("MIN_RAILS_5A"), "M_MGTYVCCAUX");
    EXPECT_EQ(label("MIN_RAILS_5B"), "M_VCCHBM");
    EXPECT_EQ(label("MIN_RAILS_6A"), "M_MGTYAVTT");
    for (char const* group : {"MIN_RAILS_6B", "MIN_RAILS_7A", "MIN_RAILS_7B", "MIN_RAILS_8"})
        EXPECT_EQ(label(group), kBlank) << group;

    calculate("MINIMUM_RAILS", "L");
    EXPECT_EQ(label("MIN_RAILS_3"), "L_VCCINT");
    EXPECT_EQ(label("MIN_RAILS_4A"), kBlank);
    EXPECT_EQ(label("MIN_RAILS_4B"), "L_VCCAUX");
    EXPECT_EQ(label("MIN_RAILS_5A"), "L_MGTYAVCC");
    EXPECT_EQ(label("MIN_RAILS_6B"), "L_VCCHBM");
    EXPECT_EQ(label("MIN_RAILS_7A"), "L_MGTYAVTT");
    EXPECT_EQ(label("MIN_RAILS_8"), kBlank);

    for (char const* grade : {"L_DVS", "L_OD"}) {
        std::string const prefix = grade[2] == 'D' ? "D_" : "O_";
        calculate("MINIMUM_RAILS", grade);
        EXPECT_EQ(label("MIN_RAILS_3"), prefix + "VCCINT");
        EXPECT_EQ(label("MIN_RAILS_4B"), prefix + "VCCRAM");
        EXPECT_EQ(label("MIN_RAILS_5A"), prefix + "VCCAUX");
        EXPECT_EQ(label("MIN_RAILS_5B"), kBlank);
        EXPECT_EQ(label("MIN_RAILS_7B"), prefix + "VCCHBM");
        EXPECT_EQ(label("MIN_RAILS_8"), prefix + "MGTYAVTT");
        EXPECT_EQ(p[Params::IMAGE], "prs/images/e_m" + std::string(grade[2] == 'D' ? "d" : "o") + ".png");
    }
}

// Tolerances and steps do not depend on the strategy: the same text under both, only labels blank.
TEST_F(RailGrouping, ToleranceAndSequenceIgnoreTheStrategy) {
    calculate("FULL_POWER_MANAGEMENT", "M");
    Params const full = p;
    calculate("MINIMUM_RAILS", "M");
    std::vector<std::string> groups = kFullGroups;
    groups.insert(groups.end(), kMinGroups.begin(), kMinGroups.end());
    for (auto const& group : groups)
        for (char const* suffix : {"_DC", "_AC_RIPPLE", "_SEQUENCE"}) {
            auto const cellId = Params::string_to_string_enum(group + suffix);
            ASSERT_NE(cellId, Params::LastString) << group << suffix;
            EXPECT_EQ(p[cellId], full[cellId]) << group << suffix;
        }
    EXPECT_EQ(cell("PL_1A_AC_RIPPLE"), "+2%/-4%");
    EXPECT_EQ(cell("LPD_4_SEQUENCE"), "LPD/4");
    EXPECT_EQ(cell("SYSTEM_1B_SEQUENCE"), "SYSTEM/1");
    EXPECT_EQ(cell("MIN_RAILS_7B_SEQUENCE"), "7");
}

// MIN_RAILS_5A: 1 % / 2 % for L_OD and the DVS grades, 2 % / 10 mV otherwise. MIN_RAILS_4B adds L and
// M_OD to those grades. The flags: DVS for L_DVS, L_DVS_OD; overdrive for the _OD grades; low for L*.
TEST_F(RailGrouping, VoltageGradeFlagsAndTheGradeDependentTolerances) {
    struct Row {
        char const* grade;
        bool step5aCoreOrAux, step4bCoreOrAux;
        char const *dvs, *overdrive, *low;
    };
    Row const rows[] = {
        {"H", false, false, "NO", "NO", "NO"},         {"M", false, false, "NO", "NO", "NO"},
        {"M_OD", false, true, "NO", "YES", "NO"},      {"L", false, true, "NO", "NO", "YES"},
        {"L_OD", true, true, "NO", "YES", "YES"},      {"L_DVS", true, true, "YES", "NO", "YES"},
        {"L_DVS_OD", true, true, "YES", "YES", "YES"}, {"X", false, false, "NO", "NO", "NO"}};
    for (Row const& row : rows) {
        Params q;  // cells read through the dispatch table: no rail table needed
        q[Params::VOLTAGE_GRADE] = row.grade;
        EXPECT_EQ(model.stringDispatchTable(q, data, "MIN_RAILS_5A_DC"), row.step5aCoreOrAux ? "1%" : "2%")
            << row.grade;
        EXPECT_EQ(model.stringDispatchTable(q, data, "MIN_RAILS_5A_AC_RIPPLE"),
                  row.step5aCoreOrAux ? "2%" : "10mV pk-pk")
            << row.grade;
        EXPECT_EQ(model.stringDispatchTable(q, data, "MIN_RAILS_4B_DC"), row.step4bCoreOrAux ? "1%" : "2%")
            << row.grade;
        EXPECT_EQ(model.stringDispatchTable(q, data, "MIN_RAILS_4B_AC_RIPPLE"),
                  row.step4bCoreOrAux ? "2%" : "10mV pk-pk")
            << row.grade;
        EXPECT_EQ(model.stringDispatchTable(q, data, "IS_DVS"), row.dvs) << row.grade;
        EXPECT_EQ(model.stringDispatchTable(q, data, "IS_OVERDRIVE"), row.overdrive) << row.grade;
        EXPECT_EQ(model.stringDispatchTable(q, data, "IS_L_GRAGE"), row.low) << row.grade;
    }
}

TEST_F(RailGrouping, MissingRowsThrowAndInputsAreCheckedAgainstTheirLists) {
    p[Params::DEVICE_FAMILY] = "FAM_C";  // no VCCSOC row
    EXPECT_THROW(model.calculate(p), PRSMException);
    p[Params::DEVICE_FAMILY] = "FAM_B";  // no MINIMUM_RAILS_M rows at all
    p[Params::POWER_RAIL_CONSOLIDATION] = "MINIMUM_RAILS";
    EXPECT_THROW(model.calculate(p), PRSMException);
    p[Params::DEVICE_FAMILY] = "FAM_A";  // every row, but no picture for this grade and key
    p[Params::DEVICE_GRADE] = "INDUSTRIAL";
    p[Params::VOLTAGE_GRADE] = "L";
    EXPECT_THROW(model.calculate(p), PRSMException);

    // Validity: no int cells, so the int dispatch reaches the string inputs' checks by function name.
    Params q;
    EXPECT_EQ(model.intDispatchTable(q, data, "calculateIsValidVOLTAGE_GRADE"), 1);  // default M
    EXPECT_EQ(model.intDispatchTable(q, data, "calculateIsValidDEVICE_FAMILY"), 0);  // TALVEX_COMPUTE
    q[Params::VCCOPMIO2] = "1.2 V";
    EXPECT_EQ(model.intDispatchTable(q, data, "calculateIsValidVCCOPMIO2"), 0);
    EXPECT_EQ(model.calculateValidValuesVccofio(q, data), "3.3 V,2.5 V,1.8 V");
    EXPECT_EQ(model.calculateValidValuesPowerRailConsolidation(q, data),
              "FULL_POWER_MANAGEMENT,MINIMUM_RAILS");
    EXPECT_EQ(model.stringDispatchTable(q, data, "POWER_RAIL_CONSOLIDATION"), "FULL_POWER_MANAGEMENT");
}

// The shipped file has a row for every family of the catalogue, every strategy and voltage grade it
// offers, every rail, and a picture for every device grade and key.
TEST_F(RailGrouping, ShippedDataIsComplete) {
    prsm::test::ScopedDataDir dir(prsm::test::shippedDataDir());
    Data const shipped;
    PRSMCommonParamControlData const catalogue;
    std::vector<std::string> families;
    for (auto const& [key, name] : catalogue.m_DeviceFamily)
        if (key.rfind("TALVEX.", 0) == 0) families.push_back(key.substr(7));
    ASSERT_EQ(families.size(), 4u);
    auto const offered = shipped.getDropdownLists("DEVICE_FAMILY");
    for (auto const& family : families)
        EXPECT_NE(std::find(offered.begin(), offered.end(), family), offered.end()) << family;
    auto const strategies = shipped.getDropdownLists("POWER_RAIL_CONSOLIDATION");
    auto const grades = shipped.getDropdownLists("VOLTAGE_GRADE");
    EXPECT_EQ(grades.size(), 7u);
    for (auto const& family : offered)
        for (auto const& strategy : strategies)
            for (auto const& grade : grades) {
                Params q;
                q[Params::DEVICE_FAMILY] = family;
                q[Params::POWER_RAIL_CONSOLIDATION] = strategy;
                q[Params::VOLTAGE_GRADE] = grade;
                for (auto const& deviceGrade : shipped.getDropdownLists("DEVICE_GRADE")) {
                    q[Params::DEVICE_GRADE] = deviceGrade;
                    std::vector<std::string> outputs;
                    q.getStringModelOutputNames(outputs);
                    for (auto const& name : outputs)
                        EXPECT_NO_THROW(model.stringDispatchTable(q, shipped, name))
                            << family << strategy << grade;
                    q.resetModelOutputs();
                    q.resetIntermediateCalculations();
                }
                EXPECT_EQ(model.calculateIsValidVoltageGrade(q, shipped), true);
            }
}

}  // namespace
