#include <prsm/design/ThermalSolve.h>

#include <algorithm>
#include <cmath>

namespace prsm::design {

namespace {

// Two calculations closer than this do not measure the leakage's slope: the sheet's float rounding
// would swamp the difference.
constexpr double kSlopeSpan = 0.01;  // degC
// A warm start that has not bracketed the root in this many calculations gives way to the ambient.
constexpr int kWarmCalculations = 6;
// A change of the dynamic power smaller than this does not measure the leakage's response to it.
constexpr double kDynamicSpan = 1e-4;  // W
// The least 1 - theta_ja * slope a Newton step divides by: closer to runaway, steps of at most 50 times
// the plain fixed-point step.
constexpr double kLeastContraction = 0.02;

// What a Newton step divides the excess by: 1 - theta_ja * slope, at least kLeastContraction; 1, a plain
// fixed-point step, when the slope says the leakage outgrows the package.
double contraction(double thetaJa, double slope) {
    double const d = 1 - thetaJa * slope;
    return d > 0 ? std::max(d, kLeastContraction) : 1.0;
}

struct Point {
    long long k;    // grid index: t = k * kThermalGrid
    double t;       // degC
    double power;   // W, static
    double excess;  // degC: Ta + theta_ja * (P_dynamic + P_static(t)) - t; positive below the root
};

// One search for the grid point `hi` whose excess is not positive while its lower neighbour's, `lo`,
// is. The bracket only narrows: every calculation lies between the two points known so far, and only
// the last, the solution again when the lower one came last, may repeat one.
class Search {
public:
    enum class End { Converged, Runaway, Failed, Astray };

    Search(ThermalProblem const& problem, StaticPowerAt const& staticAt, int budget, bool warm,
           std::optional<double> slope)
        : m_problem(problem), m_staticAt(staticAt), m_budget(budget), m_warm(warm), m_slope(slope) {}

    // Searches from a first estimate of the root. Each estimate falls between two grid points, and the
    // lower one is calculated first (the upper one is the next estimate's when it stays in the cell), so
    // that a good estimate costs two calculations, the last at the solution. `atEstimate`: the first
    // calculation at the estimate's own grid point (the ambient, where a fresh solve starts).
    End run(double x, bool atEstimate) {
        for (;;) {
            if (m_lo && m_hi && m_hi->k == m_lo->k + 1) {
                if (m_last->k != m_hi->k && !calculate(m_hi->k)) return End::Failed;
                return End::Converged;
            }
            if (!std::isfinite(x)) return m_warm ? End::Astray : End::Failed;
            if (!m_hi && x > kRunawayTemperature) {
                m_passed = x;
                return m_warm ? End::Astray : End::Runaway;
            }
            if (m_calculations >= m_budget) {
                m_passed = x;
                return m_warm ? End::Astray : End::Runaway;
            }
            long long k = gridAbove(x);
            if (m_lo) k = std::max(k, m_lo->k + 1);
            if (m_hi) k = std::min(k, m_hi->k);
            if (!(atEstimate && !m_last) && !(m_lo && m_lo->k == k - 1)) --k;
            if (!calculate(k)) return End::Failed;
            if (m_turned) {
                if (m_warm) return End::Astray;
                m_fixedPoint = true;  // overshot past the leakage's upturn: plain steps from below
                m_turned = false;
                x = m_lo->t + m_lo->excess;
                continue;
            }
            x = estimate();
        }
    }

    int calculations() const { return m_calculations; }
    double passed() const { return m_passed; }
    Point const& solution() const { return *m_hi; }
    Point const& below() const { return *m_lo; }
    Point const& first() const { return *m_first; }
    std::optional<double> slope() const { return m_slope; }

private:
    static long long gridAbove(double t) {
        double const k = std::ceil(t / kThermalGrid);
        double const limit = 1e15;  // far beyond any temperature asked; keeps the cast defined
        return static_cast<long long>(std::clamp(k, -limit, limit));
    }

    bool calculate(long long k) {
        Point p{k, static_cast<double>(k) * kThermalGrid, 0, 0};
        if (!m_staticAt(p.t, p.power)) return false;
        ++m_calculations;
        p.excess = m_problem.ambient + m_problem.thetaJa * (m_problem.dynamicPower + p.power) - p.t;
        measureSlope(p);
        m_last = p;
        if (!m_first) m_first = p;
        if (p.excess > 0) {
            // Above the last point below the root, with more excess: the leakage's upturn is passed.
            if (!m_fixedPoint && !m_hi && m_lo && p.t - m_lo->t >= kSlopeSpan && p.excess >= m_lo->excess) {
                m_turned = true;
                return true;
            }
            m_lo = p;
        } else {
            m_hi = p;
        }
        return true;
    }

    // The leakage's slope at the newest of the points far enough apart: the parabola through the last
    // three (it follows the leakage's curvature, so the Newton step nearly lands on the root), else the
    // chord through the last two.
    void measureSlope(Point const& p) {
        if (m_spaced[0] && std::fabs(p.t - m_spaced[0]->t) < kSlopeSpan) return;
        m_spaced[2] = m_spaced[1];
        m_spaced[1] = m_spaced[0];
        m_spaced[0] = p;
        if (!m_spaced[1]) return;
        Point const &a = *m_spaced[0], &b = *m_spaced[1];
        double const chord = (a.power - b.power) / (a.t - b.t);
        m_slope = chord;
        if (!m_spaced[2]) return;
        Point const& c = *m_spaced[2];
        double const curvature = (chord - (b.power - c.power) / (b.t - c.t)) / (a.t - c.t);
        m_slope = chord + curvature * (a.t - b.t);
    }

    // A Newton step from the last point with the measured slope, bisection when it leaves the bracket
    // or the bracket stops halving.
    double estimate() {
        double const d = m_slope && !m_fixedPoint ? contraction(m_problem.thetaJa, *m_slope) : 1.0;
        double x = m_last->t + m_last->excess / d;
        if (m_lo && m_hi) {
            long long const width = m_hi->k - m_lo->k;
            bool const slow = m_width != 0 && 2 * width > m_width;
            m_width = width;
            if (slow || x <= m_lo->t || x > m_hi->t) x = (m_lo->t + m_hi->t) / 2;
        }
        return x;
    }

    ThermalProblem const& m_problem;
    StaticPowerAt const& m_staticAt;
    int const m_budget;
    bool const m_warm;
    std::optional<double> m_slope;
    std::optional<Point> m_lo, m_hi, m_last, m_first;
    std::optional<Point> m_spaced[3];  // the last points at least kSlopeSpan apart, newest first
    int m_calculations = 0;
    long long m_width = 0;
    bool m_fixedPoint = false, m_turned = false;
    double m_passed = 0;
};

ThermalSolution finish(Search const& search, Search::End end, int calculations, double dynamicPower,
                       double dynamicSlope) {
    ThermalSolution solution;
    solution.calculations = calculations;
    switch (end) {
        case Search::End::Converged: {
            Point const& p = search.solution();
            solution.outcome = ThermalSolution::Converged;
            solution.junction = p.t;
            solution.staticPower = p.power;
            solution.next = ThermalStart{
                p.t, p.power, search.below().power, dynamicPower, search.slope().value_or(0.0), dynamicSlope};
            break;
        }
        case Search::End::Runaway:
        case Search::End::Astray:
            solution.outcome = ThermalSolution::Runaway;
            solution.junction = search.passed();
            break;
        case Search::End::Failed:
            solution.outcome = ThermalSolution::Failed;
            break;
    }
    return solution;
}

}  // namespace

ThermalSolution solveJunction(ThermalProblem const& problem, ThermalStart const* start,
                              StaticPowerAt const& staticAt) {
    int spent = 0;
    double dynamicSlope = start ? start->dynamicSlope : 0.0;
    if (start) {
        // The earlier solution's two grid points with the leakage they had, moved by the dynamic change:
        // when they still bracket the root, the solution is where it was; else a Newton step away.
        double const dynamicChange = problem.dynamicPower - start->dynamicPower;
        auto excessAt = [&](double t, double power) {
            double const predicted = power + start->dynamicSlope * dynamicChange;
            return problem.ambient + problem.thetaJa * (problem.dynamicPower + predicted) - t;
        };
        double const excess = excessAt(start->junction, start->staticPower);
        double x = start->junction;
        if (excess > 0 || excessAt(start->junction - kThermalGrid, start->belowPower) <= 0)
            x += excess / contraction(problem.thetaJa, start->slope);
        Search warm(problem, staticAt, kWarmCalculations, true, start->slope);
        Search::End const end = warm.run(x, false);
        if (end == Search::End::Converged) {
            // What the first calculation missed by, beyond the temperature slope, the dynamic change caused.
            Point const& p = warm.first();
            if (std::fabs(dynamicChange) >= kDynamicSpan)
                dynamicSlope =
                    (p.power - start->staticPower - start->slope * (p.t - start->junction)) / dynamicChange;
            return finish(warm, end, warm.calculations(), problem.dynamicPower, dynamicSlope);
        }
        spent = warm.calculations();
    }
    Search fresh(problem, staticAt, kMaxThermalCalculations, false, std::nullopt);
    Search::End const end = fresh.run(problem.ambient, true);
    return finish(fresh, end, spent + fresh.calculations(), problem.dynamicPower, dynamicSlope);
}

}  // namespace prsm::design
