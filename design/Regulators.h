#pragma once
// The regulators a design declares ("regulators" in a design file): read and checked with the file, then
// loaded with the estimate's rail currents.

#include <prsm/design/Estimate.h>

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <string>
#include <vector>

namespace prsm::design {

// Reports one problem at a JSON pointer.
using ProblemSink = std::function<void(std::string const& pointer, std::string const& message)>;

// Reads the "regulators" array. Refuses a rail that is unknown or fed by two regulators, a rating that
// is not above 0 and an efficiency outside (0, 1] or with loads that do not increase.
std::vector<Regulator> readRegulators(nlohmann::ordered_json const& section, ProblemSink const& fail);

// The regulator's efficiency at `load` A: linear between its points, flat beyond them.
double efficiencyAt(Regulator const& regulator, double load);

// Fills report.regulators, supplyInputPower and unregulatedPower from report.rails, and warns about a
// regulator whose load or power-up current is beyond its rating. An incomplete report gets none.
void loadRegulators(std::vector<Regulator> const& regulators, Report& report);

}  // namespace prsm::design
