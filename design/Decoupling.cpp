#include <prsm/design/Decoupling.h>
#include <prsm/design/Rails.h>

#include <algorithm>
#include <cctype>

namespace prsm::design {

namespace {

constexpr char kStep[] = "_STEP_CURRENT";
constexpr char kCapacitor[] = "uF";

bool endsWith(std::string const& text, std::string const& end) {
    return text.size() > end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::string lowered(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

std::size_t regionOf(std::string const& part) {
    std::vector<std::string> const& regions = regionNames();
    auto const found = std::find(regions.begin(), regions.end(), part);
    return found == regions.end() ? DecouplingCells::kNone
                                  : static_cast<std::size_t>(found - regions.begin());
}

}  // namespace

bool DecouplingCells::isStepInput(std::string const& cell) {
    return endsWith(cell, kStep);
}

bool DecouplingCells::fits(Sheet const& sheet) {
    return std::any_of(sheet.cells().begin(), sheet.cells().end(), [](CellInfo const& c) {
        return c.category == CellCategory::UserInput && isStepInput(c.name);
    });
}

DecouplingCells::DecouplingCells(Sheet const& sheet, std::vector<std::string> const& rails) {
    std::vector<CellInfo> const& cells = sheet.cells();
    for (std::size_t r = 0; r < rails.size(); ++r) {
        Rail rail{r, {}, {}};
        std::string const prefix = rails[r] + "_";
        for (std::size_t c = 0; c < cells.size(); ++c) {
            std::string const& name = cells[c].name;
            if (name.compare(0, prefix.size(), prefix) != 0) continue;
            std::string const rest = name.substr(prefix.size());
            if (cells[c].category == CellCategory::UserInput && isStepInput(name)) {
                if (rest == kStep + 1) {  // the whole rail
                    rail.parts.push_back({"", c, kNone});
                } else if (rest.find('_') == rest.size() - (sizeof kStep - 1)) {  // one part of it
                    std::string const part = lowered(rest.substr(0, rest.find('_')));
                    rail.parts.push_back({part, c, regionOf(part)});
                }
            } else if (cells[c].category != CellCategory::UserInput && endsWith(rest, kCapacitor) &&
                       rest.find('_') == std::string::npos) {
                rail.counts.emplace_back(rest, c);
            }
        }
        if (!rail.counts.empty()) m_rails.push_back(std::move(rail));
    }
}

}  // namespace prsm::design
