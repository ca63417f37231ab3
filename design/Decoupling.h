#pragma once
// The decoupling sheet as a design runs it. Each rail has a load-step input, <RAIL>_STEP_CURRENT, or is
// stepped in parts, <RAIL>_<PART>_STEP_CURRENT: a part named after a region (AIE: the AI engines) takes
// that region's share of the rail's dynamic current, the other part the rest. The sheet answers with a
// count per capacitor value, <RAIL>_<value>uF.

#include <prsm/design/Estimate.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace prsm::design {

class DecouplingCells {
public:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    // Whether `sheet` is laid out as a decoupling sheet: it has load-step inputs.
    static bool fits(Sheet const& sheet);
    // Whether `cell` is a load-step input, which the design sets.
    static bool isStepInput(std::string const& cell);

    struct Part {
        std::string name;    // "aie", "logic": the region, or the rest
        std::size_t cell;    // its step input
        std::size_t region;  // the region index it takes, kNone for the rest of the rail
    };
    struct Rail {
        std::size_t rail;         // in the engine's numbering
        std::vector<Part> parts;  // one part of region kNone when the rail steps whole
        std::vector<std::pair<std::string, std::size_t>> counts;  // capacitor value -> count cell
    };

    // Resolves the cells of the engine's rails that the sheet has.
    DecouplingCells(Sheet const& sheet, std::vector<std::string> const& rails);
    std::vector<Rail> const& rails() const { return m_rails; }

private:
    std::vector<Rail> m_rails;
};

}  // namespace prsm::design
