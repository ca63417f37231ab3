#include <prsm/design/Rails.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <algorithm>

namespace prsm::design {

namespace {

// The device's supply rails: every rail the static-power sheet knows a voltage of.
char const* const kSupplyRails[] = {
    "ADCAVCC",    "ADCAVCCAUX", "DACAVCC",   "DACAVCCAUX", "DACAVTT",   "MGTMAVCC",    "MGTMAVTT",
    "MGTMVCCAUX", "MGTYAVCC",   "MGTYAVTT",  "MGTYPAVCC",  "MGTYPAVTT", "MGTYPVCCAUX", "MGTYVCCAUX",
    "VAUXPSGTA",  "VCCAUX",     "VCCAUXHBM", "VCCAUXLPD",  "VCCAUXPLL", "VCCAUXPMC",   "VCCAUXSMON",
    "VCCBATT",    "VCCCPM5",    "VCCCPM5N",  "VCCFPD",     "VCCFUSE",   "VCCHBM",      "VCCHNICX",
    "VCCHSAMS",   "VCCINT",     "VCCINTCPM", "VCCINTGT",   "VCCINTIO",  "VCCINTIOHBM", "VCCIOHBM",
    "VCCLPD",     "VCCME",      "VCCO10",    "VCCO11",     "VCCO12",    "VCCO135",     "VCCO15",
    "VCCO18",     "VCCO25",     "VCCO33",    "VCCOFIO",    "VCCOPMIO0", "VCCOPMIO1",   "VCCOPMIO2",
    "VCCPMC",     "VCCPSFP",    "VCCPSGTA",  "VCCPSLP",    "VCCRAM",    "VCCSOC",      "VCCVCUINT",
    "VCCVDU",     "VTTPSGTA"};

}  // namespace

bool isKnownRail(std::string const& rail) {
    if (std::find(std::begin(kSupplyRails), std::end(kSupplyRails), rail) != std::end(kSupplyRails))
        return true;
    for (Sheet const* sheet : SheetRegistry::instance().sheets()) {
        SheetDesign const& d = sheet->design();
        for (auto const* pairs : {&d.voltageInputs, &d.powerOutputs, &d.currentOutputs})
            for (auto const& entry : *pairs)
                if (entry.second == rail) return true;
    }
    return false;
}

std::vector<std::string> const& regionNames() {
    static std::vector<std::string> const names{"logic", "io", "gt", "ps_pmc", "noc", "aie", "hbm"};
    return names;
}

std::string regionTitle(std::string const& region) {
    if (region == "logic") return "programmable logic";
    if (region == "io") return "I/O";
    if (region == "gt") return "transceivers";
    if (region == "ps_pmc") return "processing system and controller";
    if (region == "noc") return "network-on-chip";
    if (region == "aie") return "AI engine";
    if (region == "hbm") return "memory stacks";
    return region;
}

}  // namespace prsm::design
