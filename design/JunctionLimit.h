#pragma once
// The thermal margin of a design: how much thermal resistance, or how hot an ambient, keeps the junction
// at or below a given temperature. At the limit the junction sits exactly at it, Tj = Ta + theta_ja * P(Tj),
// so both follow from the design's power at that one temperature:
//   theta_ja_max = (Tj - Ta) / P(Tj),   Ta_max = Tj - theta_ja * P(Tj).
// Below either the steady junction is cooler: the package sheds P(Tj) with room to spare, and leakage
// only falls with temperature.

#include <prsm/design/Design.h>

#include <string>

namespace prsm::design {

struct JunctionLimit {
    double junction = 0;    // degC, the limit asked for
    double power = 0;       // W, the design's total with the junction at the limit; NaN when incomplete
    double maxThetaJa = 0;  // degC/W at the design's ambient; NaN with the reason in `missing`
    double maxAmbient = 0;  // degC at the design's theta_ja; NaN with the reason in `missing`
    std::string missing;    // why a figure is NaN; empty when both are there
};

// One estimate, with the junction at `maxJunction`. Throws DesignError as the Estimator does.
JunctionLimit solveJunctionLimit(Design design, double maxJunction);

}  // namespace prsm::design
