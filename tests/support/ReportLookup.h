#pragma once
// What the design tests look up in a report by name. A name the report lacks throws, naming it, so the
// test fails there rather than on a default figure.

#include <prsm/design/Estimate.h>

#include <optional>
#include <stdexcept>
#include <string>

namespace prsm::test {

inline design::RailResult const& rail(design::Report const& report, std::string const& name) {
    for (design::RailResult const& r : report.rails)
        if (r.rail == name) return r;
    throw std::runtime_error("no rail " + name);
}

inline design::ResourceUse resource(design::Report const& report, std::string const& name) {
    for (design::ResourceUse const& r : report.resources)
        if (r.resource == name) return r;
    throw std::runtime_error("no resource " + name);
}

// What the static sheet's count input holds; none when the design feeds it nothing.
inline std::optional<double> held(design::Report const& report, std::string const& cell) {
    for (auto const& [name, value] : report.staticCounts)
        if (name == cell) return value;
    return std::nullopt;
}

inline double boardInput(design::BoardResult const& board, std::string const& cell) {
    for (auto const& [name, value] : board.currents)
        if (name == cell) return value;
    throw std::runtime_error("no board input " + cell);
}

}  // namespace prsm::test
