#include <prsm/design/Rails.h>
#include <prsm/design/RegionDeclarations.h>
#include <prsm/framework/PRSMSheetRegistry.h>

namespace prsm::design {

// The rails are what the registered sheets declare: the static sheets list every supply of their
// architecture, the block sheets the rails they draw from.
bool isKnownRail(std::string const& rail) {
    for (Sheet const* sheet : SheetRegistry::instance().sheets()) {
        SheetDesign const& d = sheet->design();
        for (auto const* pairs : {&d.voltageInputs, &d.powerOutputs, &d.currentOutputs})
            for (auto const& entry : *pairs)
                if (entry.second == rail) return true;
    }
    return false;
}

std::vector<std::string> const& regionNames() {
    static std::vector<std::string> const names = [] {
        std::vector<std::string> list;
        for (RegionDeclaration const& region : kRegionDeclarations) list.emplace_back(region.name);
        return list;
    }();
    return names;
}

std::string regionTitle(std::string const& region) {
    for (RegionDeclaration const& declared : kRegionDeclarations)
        if (region == declared.name) return declared.title;
    return region;
}

}  // namespace prsm::design
