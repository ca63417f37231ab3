// The transceiver presets of both architectures against the shipped transceiver data: every preset, on a
// part (and package) with enough quads of its family, gives inputs the transceiver sheet takes as valid.

#include <prsm/framework/PRSMSheetPresets.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace {

// Every preset of the transceiver sheet `name`, placed on a part by `place`, gives inputs the sheet takes
// as valid and a figure.
template <typename Place>
void expectEveryPresetValid(char const* name, Place const& place) {
    prsm::Sheet const& gt = *prsm::SheetRegistry::instance().find(name);
    prsm::Sheet const* presets = prsm::findPresetSheet(gt);
    ASSERT_NE(presets, nullptr);
    for (std::string const& preset : prsm::presetNames(*presets)) {
        SCOPED_TRACE(preset);
        auto link = gt.create();
        for (auto const& [input, value] : prsm::presetInputs(gt, *presets, preset)) link->set(input, value);
        place(*link);
        link->calculate();
        for (prsm::CellInfo const& cell : gt.cells()) {
            if (!cell.validityKey.empty()) {
                EXPECT_EQ(link->isValid(cell.name), 1) << cell.name;
            }
        }
        EXPECT_GT(std::stod(link->get("TOTAL_POWER")), 0.0);
    }
}

TEST(ShippedGtPresets, EveryPresetIsAValidLinkOfItsFamily) {
    // ZQVP1310 in TQD1760 bonds out 8 GTY and 4 GTM quads, ZQVC2606 in TQD1760 8 GTYP quads.
    std::map<std::string, std::string> const partOf{
        {"GTY", "ZQVP1310"}, {"GTM", "ZQVP1310"}, {"GTYP", "ZQVC2606"}};
    expectEveryPresetValid("TalvexGt", [&](prsm::SheetInstance& link) {
        link.set("DEVICE", partOf.at(link.get("GT_TYPE")));
        link.set("PACKAGE", "TQD1760");
    });
}

// ZDM7100 has four GTH and two GTY quads and, as every part with a processing system, one PS-GTR quad.
TEST(ShippedGtPresets, EveryOlderPresetIsAValidLinkOnAPartWithItsFamily) {
    expectEveryPresetValid("DravikGt", [](prsm::SheetInstance& link) { link.set("DEVICE", "ZDM7100"); });
}

}  // namespace
