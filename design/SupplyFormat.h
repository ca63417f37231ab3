#pragma once
// The supply views of a report in its machine-readable forms: the regulator groups (`supplies.groups`)
// and the decoupling capacitors (`decoupling`). Private to libprsm-design; ReportFormat.cpp calls them.

#include <prsm/design/Estimate.h>

#include <nlohmann/json.hpp>

#include <functional>
#include <string>

namespace prsm::design {

// A capacitor count as a board takes it: whole capacitors, rounded up (a count within a millionth of a
// whole number is that number, not one more), none below 0; NaN for a count the sheet could not make.
double wholeCapacitors(double count);

// Adds `groups` to out["supplies"] and `decoupling` to `out`, when the report has them.
void addSupplyViews(Report const& report, nlohmann::ordered_json& out);

// One CSV line: section, name, rail, quantity, value, unit.
using CsvLine = std::function<void(char const*, std::string const&, std::string const&, char const*,
                                   std::string const&, char const*)>;
// The sections supply_group, supply_group_rail and decoupling.
void supplyViewsCsv(Report const& report, CsvLine const& line);

}  // namespace prsm::design
