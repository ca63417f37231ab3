// The junction-temperature solve on leakage laws whose roots follow by hand or by bisection here: the
// grid point it lands on, its count of static calculations, and the same answer from any start.
#include <prsm/design/ThermalSolve.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace {

using namespace prsm::design;

// A leakage law with a count of its calculations and the temperature of the last one.
struct Leakage {
    std::function<double(double)> power;  // W at a junction temperature
    double failAbove = 1e9;               // degC: the sheet cannot calculate above it
    int calls = 0;
    double last = 0;

    StaticPowerAt at() {
        return [this](double t, double& p) {
            if (t > failAbove) return false;
            ++calls;
            last = t;
            p = power(t);
            return true;
        };
    }
};

double excess(ThermalProblem const& problem, Leakage const& leakage, double t) {
    return problem.ambient + problem.thetaJa * (problem.dynamicPower + leakage.power(t)) - t;
}

// The grid point just above the root of the excess in [low, high] (positive at low, negative at high),
// by plain bisection to far below a grid step.
double gridRootByBisection(ThermalProblem const& problem, Leakage const& leakage, double low, double high) {
    while (high - low > 1e-9) {
        double const mid = (low + high) / 2;
        (excess(problem, leakage, mid) > 0 ? low : high) = mid;
    }
    return std::ceil(high / kThermalGrid) * kThermalGrid;
}

TEST(ThermalSolve, LinearLeakageLandsOnTheGridPointAboveTheRootInFourCalculations) {
    // P = 0.5 + 0.01 (t - 25) W at Ta 25 degC, 2 degC/W, 0.5 W dynamic: u = t - 25 solves
    // u = 2 (1 + 0.01 u), u = 2 / 0.98 = 2.0408163..., so t = 27.0408163..., 443036.73 grid steps:
    // the answer is step 443037.
    ThermalProblem const problem{25, 2, 0.5};
    Leakage leakage{[](double t) { return 0.5 + 0.01 * (t - 25); }};
    ThermalSolution const solution = solveJunction(problem, nullptr, leakage.at());
    ASSERT_EQ(solution.outcome, ThermalSolution::Converged);
    EXPECT_EQ(solution.junction, 443037.0 / 16384);
    EXPECT_DOUBLE_EQ(solution.staticPower, 0.5 + 0.01 * (443037.0 / 16384 - 25));
    EXPECT_EQ(leakage.last, solution.junction);  // the sheet is left at the solution
    // 25 degC; the plain step to 25 + 2 (0.5 + 0.5) = 27; the secant, exact on a line, to 27.0408 (a
    // step under 0.05 degC), bracketed by its two grid points, the lower first: four calculations.
    EXPECT_EQ(solution.calculations, 4);
    EXPECT_EQ(leakage.calls, 4);
    ASSERT_TRUE(solution.next);
    EXPECT_NEAR(solution.next->slope, 0.01, 1e-12);

    // Again from that solution, unchanged: the same two grid points, nothing else.
    Leakage again{leakage.power};
    ThermalSolution const warm = solveJunction(problem, &*solution.next, again.at());
    EXPECT_EQ(warm.junction, solution.junction);
    EXPECT_EQ(warm.calculations, 2);

    // 0.1 W more dynamic power moves the root by 2 * 0.1 / 0.98 = 0.204 degC; the start predicts it,
    // so two calculations again, on the grid point a fresh solve finds.
    ThermalProblem const more{25, 2, 0.6};
    Leakage moved{leakage.power}, fresh{leakage.power};
    ThermalSolution const warmer = solveJunction(more, &*solution.next, moved.at());
    EXPECT_EQ(warmer.junction, solveJunction(more, nullptr, fresh.at()).junction);
    EXPECT_EQ(warmer.junction, std::ceil((25 + 2 * 1.1 / 0.98) / kThermalGrid) * kThermalGrid);
    EXPECT_EQ(warmer.calculations, 2);
}

TEST(ThermalSolve, ExponentialLeakageGivesTheSameGridPointFromAnyStart) {
    // P = 2 exp((t - 25) / 20) W at Ta 40 degC, 1 degC/W, 5 W dynamic: the root lies between 53 and 54.
    ThermalProblem const problem{40, 1, 5};
    Leakage law{[](double t) { return 2 * std::exp((t - 25) / 20); }};
    double const expected = gridRootByBisection(problem, law, 53, 54);

    Leakage fresh{law.power};
    ThermalSolution const solution = solveJunction(problem, nullptr, fresh.at());
    ASSERT_EQ(solution.outcome, ThermalSolution::Converged);
    EXPECT_EQ(solution.junction, expected);
    EXPECT_GT(excess(problem, law, expected - kThermalGrid), 0.0);
    EXPECT_LE(excess(problem, law, expected), 0.0);
    EXPECT_LE(solution.calculations, 6);  // the plain fixed-point loop takes 17 to settle within 1e-4

    // Starts near and far, below and above, with slopes right, wrong and negative, and dynamic
    // slopes that mislead: every one lands on the same grid point, the sheet left there.
    double const trueSlope = 0.1 * std::exp((expected - 25) / 20);
    for (double t0 : {25.0, 40.0, 53.0, expected, expected + 0.3, 60.0, 120.0, 249.0})
        for (double slope : {0.0, trueSlope, 3 * trueSlope, -trueSlope})
            for (double dynamicSlope : {0.0, 0.5}) {
                ThermalStart const start{t0,  law.power(t0), law.power(t0 - kThermalGrid),
                                         4.5, slope,         dynamicSlope};
                Leakage warm{law.power};
                ThermalSolution const s = solveJunction(problem, &start, warm.at());
                ASSERT_EQ(s.outcome, ThermalSolution::Converged) << t0 << " " << slope;
                EXPECT_EQ(s.junction, expected) << "from " << t0 << " at slope " << slope;
                EXPECT_EQ(warm.last, expected);
                EXPECT_LE(s.calculations, 6 + kMaxThermalCalculations);
            }
}

TEST(ThermalSolve, TheStableRootNotTheUnstableOneAndRunawayWhenNone) {
    // P = 0.05 exp((t - 25) / 10) W at Ta 50 degC, 4 degC/W, 0.9 W dynamic: the package's line crosses
    // the leakage twice, at about 61 degC (stable) and 67 degC (beyond it, the leakage outruns the
    // package). The junction is the lower one from every start, one above the upper root included.
    ThermalProblem const problem{50, 4, 0.9};
    Leakage law{[](double t) { return 0.05 * std::exp((t - 25) / 10); }};
    double const expected = gridRootByBisection(problem, law, 55, 64);
    EXPECT_LT(excess(problem, law, 66), 0.0);  // between the roots
    EXPECT_GT(excess(problem, law, 70), 0.0);  // above both
    Leakage fresh{law.power};
    EXPECT_EQ(solveJunction(problem, nullptr, fresh.at()).junction, expected);
    for (double t0 : {62.0, 66.0, 68.0, 70.0, 90.0}) {
        ThermalStart const start{t0, law.power(t0), law.power(t0 - kThermalGrid), 0.9, 0.0, 0.0};
        Leakage warm{law.power};
        ThermalSolution const s = solveJunction(problem, &start, warm.at());
        EXPECT_EQ(s.outcome, ThermalSolution::Converged) << t0;
        EXPECT_EQ(s.junction, expected) << "from " << t0;
    }

    // At 1.2 W the line misses the curve: no steady state, from the ambient or from a start.
    ThermalProblem const hot{50, 4, 1.2};
    Leakage runaway{law.power};
    ThermalSolution const none = solveJunction(hot, nullptr, runaway.at());
    EXPECT_EQ(none.outcome, ThermalSolution::Runaway);
    EXPECT_GT(none.junction, kRunawayTemperature);
    EXPECT_LT(none.calculations, kMaxThermalCalculations);
    EXPECT_FALSE(none.next);
    ThermalStart const start{61, law.power(61), law.power(61 - kThermalGrid), 0.9, 0.2, 0.0};
    Leakage warmRunaway{law.power};
    EXPECT_EQ(solveJunction(hot, &start, warmRunaway.at()).outcome, ThermalSolution::Runaway);
}

TEST(ThermalSolve, ASheetThatCannotCalculateEndsTheSolveUnlessOnlyTheStartWasWrong) {
    // Linear leakage that the sheet refuses above 100 degC. A start predicting 150 degC fails there,
    // then the solve from the ambient finds 27.04 degC as before.
    ThermalProblem const problem{25, 2, 0.5};
    Leakage leakage{[](double t) { return 0.5 + 0.01 * (t - 25); }, 100};
    ThermalStart const start{150, 0.1, 0.1, 0.5, 0.0, 0.0};
    ThermalSolution const s = solveJunction(problem, &start, leakage.at());
    ASSERT_EQ(s.outcome, ThermalSolution::Converged);
    EXPECT_EQ(s.junction, 443037.0 / 16384);

    Leakage broken{leakage.power, 20};  // below the ambient: nothing can be calculated
    EXPECT_EQ(solveJunction(problem, nullptr, broken.at()).outcome, ThermalSolution::Failed);
}

}  // namespace
