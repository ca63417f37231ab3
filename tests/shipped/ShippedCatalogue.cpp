// The shipped sheets against the shipped device catalogue: every part of a sheet's architecture that
// has the features the sheet requires is a valid value of its device inputs and has its own row in every
// table they select. Walks the registry, so a new sheet is covered. CTest points QDI_DATADIR at data/.

#include <prsm/design/DeviceChecks.h>
#include <prsm/framework/PRSMCommonParamControlData.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

namespace {

using prsm::Sheet;
using prsm::SheetRegistry;

struct Part {
    std::string architecture;  // "TALVEX"
    std::string name;          // "ZQVC1902"
    std::string internal;      // "ZQ10S80"
};

// DEVICE_FAMILY.<architecture>.<family> and DEVICE.<family>.<part> = internal name.
std::vector<Part> catalogueParts() {
    PRSMCommonParamControlData const& catalogue = PRSMCommonParamControlData::getGlobal();
    std::vector<Part> parts;
    for (auto const& [familyKey, label] : catalogue.m_DeviceFamily) {
        std::size_t const dot = familyKey.find('.');
        std::string const architecture = familyKey.substr(0, dot), family = familyKey.substr(dot + 1);
        for (auto const& [deviceKey, internal] : catalogue.m_Device)
            if (deviceKey.compare(0, family.size() + 1, family + ".") == 0)
                parts.push_back({architecture, deviceKey.substr(family.size() + 1), internal});
    }
    return parts;
}

// A sheet's architecture is the start of its name: TalvexNoc is a TALVEX sheet.
bool isOf(Sheet const& sheet, std::string const& architecture) {
    std::string const& name = sheet.name();
    if (name.size() < architecture.size()) return false;
    for (std::size_t i = 0; i < architecture.size(); ++i)
        if (std::toupper(static_cast<unsigned char>(name[i])) != architecture[i]) return false;
    return true;
}

bool applies(Sheet const& sheet, Part const& part) {
    for (prsm::PartFeature const& required : sheet.design().requiredFeatures) {
        std::string const has = prsm::design::catalogueFeature(part.name, required.feature);
        if (std::find(required.values.begin(), required.values.end(), has) == required.values.end())
            return false;
    }
    return true;
}

bool listed(std::string const& choices, std::string const& value) {
    return ("," + choices + ",").find("," + value + ",") != std::string::npos;
}

TEST(ShippedCatalogue, EverySheetKnowsEveryPartItAppliesTo) {
    std::vector<Part> const parts = catalogueParts();
    ASSERT_GE(parts.size(), 9u);
    int checked = 0;
    for (Sheet const* sheet : SheetRegistry::instance().sheets()) {
        for (auto const& [input, field] : sheet->design().deviceInputs) {
            if (field != "part" && field != "internal_part") continue;
            for (Part const& part : parts) {
                if (!isOf(*sheet, part.architecture) || !applies(*sheet, part)) continue;
                std::string const value = field == "part" ? part.name : part.internal;
                auto instance = sheet->create();
                instance->set(input, value);
                SCOPED_TRACE(sheet->name() + " " + input + " = " + value);
                if (sheet->findCell(input)->hasValidValues) {
                    EXPECT_TRUE(listed(instance->validValues(input), value)) << instance->validValues(input);
                }
                for (prsm::MissingRow const& missing : instance->tablesWithoutRow(input))
                    ADD_FAILURE() << "no row in " << missing.table;
                ++checked;
            }
        }
    }
    EXPECT_GT(checked, 0);
}

TEST(ShippedCatalogue, SheetsRequireFeaturesThePartsHave) {
    // Each requirement is met by some part: a misspelt feature or value would quietly turn the sheet's
    // checks off.
    std::vector<Part> const parts = catalogueParts();
    for (Sheet const* sheet : SheetRegistry::instance().sheets())
        for (prsm::PartFeature const& required : sheet->design().requiredFeatures)
            for (std::string const& value : required.values)
                EXPECT_TRUE(std::any_of(parts.begin(), parts.end(),
                                        [&](Part const& part) {
                                            return prsm::design::catalogueFeature(part.name,
                                                                                  required.feature) == value;
                                        }))
                    << sheet->name() << " requires " << required.feature << " = " << value;
}

}  // namespace
