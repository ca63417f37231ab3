#include <prsm/framework/PRSMSheetRegistry.h>

#include <algorithm>

namespace prsm {

char const* toString(CellType type) {
    switch (type) {
        case CellType::Int:
            return "int";
        case CellType::Float:
            return "float";
        case CellType::String:
            return "string";
    }
    return "";
}

char const* toString(CellCategory category) {
    switch (category) {
        case CellCategory::UserInput:
            return "input";
        case CellCategory::ModelOutput:
            return "output";
        case CellCategory::IntermediateCalculation:
            return "intermediate";
    }
    return "";
}

std::string describeChoices(std::string const& validValues, std::size_t shown) {
    std::string text;
    std::size_t count = 0;
    for (std::size_t start = 0; start <= validValues.size();) {
        std::size_t const end = std::min(validValues.find(',', start), validValues.size());
        if (end > start && count++ < shown)
            text += (text.empty() ? "one of " : ", ") + validValues.substr(start, end - start);
        start = end + 1;
    }
    if (count == 0) return "no value: its list of valid values is empty";
    if (count > shown) text += ", ... (" + std::to_string(count - shown) + " more)";
    return text;
}

CellInfo const* Sheet::findCell(std::string const& name) const {
    for (CellInfo const& cell : cells())
        if (cell.name == name) return &cell;
    return nullptr;
}

SheetDesign const& Sheet::design() const {
    static SheetDesign const none;
    return none;
}

SheetRegistry& SheetRegistry::instance() {
    static SheetRegistry registry;
    return registry;
}

void SheetRegistry::add(Sheet const& sheet) {
    m_sheets.push_back(&sheet);
}

Sheet const* SheetRegistry::find(std::string const& name) const {
    for (Sheet const* sheet : m_sheets)
        if (sheet->name() == name) return sheet;
    return nullptr;
}

std::vector<Sheet const*> SheetRegistry::sheets() const {
    std::vector<Sheet const*> sorted = m_sheets;
    std::sort(sorted.begin(), sorted.end(),
              [](Sheet const* a, Sheet const* b) { return a->name() < b->name(); });
    return sorted;
}

}  // namespace prsm
