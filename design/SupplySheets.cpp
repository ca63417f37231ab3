#include <prsm/design/Catalogue.h>
#include <prsm/design/Decoupling.h>
#include <prsm/design/RailGroups.h>
#include <prsm/design/SupplySheets.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <exception>

namespace prsm::design {

namespace {

bool ofPartsArchitecture(Sheet const& sheet, Device const& device) {
    std::string const* part = device.find("part");
    std::string const architecture = part ? catalogue::architectureOf(*part) : std::string();
    return architecture.empty() || sheet.design().architecture.empty() ||
           sheet.design().architecture == architecture;
}

// Whether the sheet's input that takes the device's package offers `package`.
bool offersPackage(Sheet const& sheet, std::string const& package) {
    for (auto const& [cell, field] : sheet.design().deviceInputs) {
        if (field != "package") continue;
        try {
            std::string const values = "," + sheet.create()->validValues(cell) + ",";
            return values.find("," + package + ",") != std::string::npos;
        } catch (...) {  // no data: the sheet cannot say
            return false;
        }
    }
    return false;
}

}  // namespace

std::string defaultGroupingSheet(Device const& device) {
    for (Sheet const* sheet : SheetRegistry::instance().sheets())
        if (RailGrouping::fits(*sheet) && ofPartsArchitecture(*sheet, device)) return sheet->name();
    return {};
}

std::string defaultDecouplingSheet(Device const& device) {
    std::string const* package = device.find("package");
    if (package == nullptr) return {};
    for (Sheet const* sheet : SheetRegistry::instance().sheets())
        if (DecouplingCells::fits(*sheet) && ofPartsArchitecture(*sheet, device) &&
            offersPackage(*sheet, *package))
            return sheet->name();
    return {};
}

}  // namespace prsm::design
