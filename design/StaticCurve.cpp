#include <prsm/design/Estimate.h>
#include <prsm/design/StaticCurve.h>

namespace prsm::design {

std::vector<std::pair<double, double>> staticAgainstJunction(Design const& design,
                                                             std::vector<double> const& junctions) {
    std::vector<std::pair<double, double>> points;
    if (!design.staticSheet) return points;
    Estimator estimator(design);
    estimator.estimate();
    for (double junction : junctions) {
        Thermal given;
        given.junction = junction;
        estimator.setThermal(given);
        Report const& report = estimator.update();
        if (report.complete) points.emplace_back(junction, report.staticPower);
    }
    return points;
}

}  // namespace prsm::design
