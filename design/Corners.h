#pragma once
// A design at its two corners in one run: typical (typical process, nominal voltages, the thermal
// conditions of the file) and worst case (the process at its maximum-leakage corner, rail voltages
// at the top of their range, the junction hot), each one estimate, compared figure by figure.

#include <prsm/design/Design.h>
#include <prsm/design/Estimate.h>

#include <string>
#include <vector>

namespace prsm::design {

// How the worst corner's junction temperature was chosen.
enum class HotJunction {
    MaxAmbient,      // solved from the design's max_ambient_temperature and theta_ja
    GradeMaximum,    // the device's maximum junction temperature
    TypicalHotter,   // the typical corner's junction already exceeds the device's maximum
    FileThermal,     // the catalogue gives no maximum: the file's thermal conditions are kept
};
// "max_ambient", "grade_maximum", "typical_junction", "file".
char const* toString(HotJunction source);

// One figure at both corners; `worstIsHigher` marks which corner is the worst for it.
struct CornerFigure {
    std::string name;  // a rail, a region, a regulator, a regulator group or "total"
    double typical = 0;
    double worst = 0;
    bool worstIsHigher() const { return worst >= typical; }
};

struct CornerReports {
    Report typical;
    Report worst;
    HotJunction hotJunction = HotJunction::GradeMaximum;
    std::vector<CornerFigure> railCurrents;  // A, per rail of the typical report
    std::vector<CornerFigure> railPowers;    // W, per rail
    std::vector<CornerFigure> regionPowers;  // W, dynamic plus static, per region
    std::vector<CornerFigure> regulatorLoads;  // A, per declared regulator
    std::vector<CornerFigure> groupCurrents;   // A, per regulator group of the typical report
    std::vector<CornerFigure> groupPowers;     // W, per regulator group
    CornerFigure totalPower;                 // W
};

// The design at typical: process typical, the voltages of the rails it leaves out at the nominal corner.
Design typicalCornerOf(Design design);

// Estimates the design at both corners: two estimates, typical first (its junction bounds the worst).
// Throws DesignError as the Estimator does.
CornerReports estimateCorners(Design const& design);

}  // namespace prsm::design
