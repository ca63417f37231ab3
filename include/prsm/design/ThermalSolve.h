#pragma once
// The junction temperature of a device whose leakage grows with temperature: the root of
//   Tj = Ta + theta_ja * (P_dynamic + P_static(Tj)).
//
// The answer is a point of a fixed grid of temperatures: the grid point at which the package first
// sheds all the power drawn, just above one at which it does not. A grid point does not depend on where
// the search started, so a solve that starts from the previous solution after a small change lands, bit
// for bit, where a solve from the ambient lands, in two static calculations instead of five or six.

#include <functional>
#include <optional>

namespace prsm::design {

// The grid step, degC: exact in float and in double, and so are its multiples below 1024 degC.
constexpr double kThermalGrid = 1.0 / 16384;
// No steady state: the junction passes this temperature, or a solve this many static calculations.
constexpr double kRunawayTemperature = 250.0;
constexpr int kMaxThermalCalculations = 100;

struct ThermalProblem {
    double ambient = 25;      // degC
    double thetaJa = 0;       // degC/W
    double dynamicPower = 0;  // W
};

// An earlier solution, to start from: the leakage there, how fast it grows with temperature, and how it
// moves with the dynamic power (a static sheet may take the die's own rise above the junction from it).
struct ThermalStart {
    double junction = 0;      // degC
    double staticPower = 0;   // W
    double belowPower = 0;    // W, one grid step below the junction
    double dynamicPower = 0;  // W, of the design solved
    double slope = 0;         // dP_static / dTj, W/degC
    double dynamicSlope = 0;  // dP_static / dP_dynamic at a given junction, W/W
};

struct ThermalSolution {
    enum Outcome { Converged, Runaway, Failed };
    Outcome outcome = Failed;
    double junction = 0;               // degC: the solution; for a runaway, the temperature it passed
    double staticPower = 0;            // W at the solution
    int calculations = 0;              // static calculations made, a warm start's included
    std::optional<ThermalStart> next;  // where the next solve may start
};

// Calculates the static power at a junction temperature (W); false when it cannot, which ends the
// solve. The last call a converged solve makes is at its solution, so the sheet is left there.
using StaticPowerAt = std::function<bool(double junction, double& power)>;

// Solves from `start` when given (falling back to the ambient when that search goes astray), else from
// the ambient. theta_ja must be positive: with none the junction is the ambient, nothing to solve.
ThermalSolution solveJunction(ThermalProblem const& problem, ThermalStart const* start,
                              StaticPowerAt const& staticAt);

}  // namespace prsm::design
