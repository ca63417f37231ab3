#include <prsm/framework/PRSMException.h>
#include <prsm/host/CellListing.h>
#include <prsm/host/Failures.h>
#include <prsm/host/Values.h>

#include <memory>

namespace prsm::host {

namespace {

std::string spacedList(std::string const& commaSeparated) {
    std::string text;
    for (char c : commaSeparated) {
        text += c;
        if (c == ',') text += ' ';
    }
    return text;
}

std::string shown(std::string const& text) {
    return text.empty() ? "\"\"" : text;
}

}  // namespace

CellListing listCells(Sheet const& sheet, std::string const& category) {
    CellListing listing;
    std::unique_ptr<SheetInstance> const instance = sheet.create();
    bool dataUsable = true;
    for (CellInfo const& cell : sheet.cells()) {
        if (!category.empty() && category != toString(cell.category)) continue;
        CellRow row{cell.name, toString(cell.type), toString(cell.category), cell.unit, "",
                    "",        cell.description};
        if (cell.category == CellCategory::UserInput) {
            row.defaultValue = cell.declaredDefault;
            row.validValues = cell.rule;
            if (dataUsable) {
                try {
                    row.defaultValue = shown(displayValue(cell.type, instance->evaluate(cell.name)));
                    if (cell.hasValidValues) row.validValues = spacedList(instance->validValues(cell.name));
                } catch (PRSMException const&) {
                    // A table without this cell's row: this one default stays declared.
                } catch (...) {
                    // The data itself did not load; every further attempt would fail the same way.
                    dataUsable = false;
                    listing.note = "the data of " + sheet.name() + " could not be loaded (" +
                                   describeCurrentException() + "); declared defaults are shown";
                }
            }
        }
        listing.rows.push_back(std::move(row));
    }
    return listing;
}

}  // namespace prsm::host
