#include <prsm/design/Estimate.h>
#include <prsm/design/JunctionLimit.h>

#include <cmath>

namespace prsm::design {

JunctionLimit solveJunctionLimit(Design design, double maxJunction) {
    JunctionLimit out;
    out.junction = maxJunction;
    double const nan = std::nan("");
    out.maxThetaJa = out.maxAmbient = nan;
    if (design.thermal.junction) {
        out.power = nan;
        out.missing = "the design gives its junction temperature: give ambient_temperature and theta_ja instead";
        return out;
    }
    double const ambient = design.thermal.ambient, thetaJa = design.thermal.thetaJa;
    design.thermal.junction = maxJunction;
    Estimator engine(std::move(design));
    Report const& report = engine.estimate();
    if (!report.complete) {
        out.power = nan;
        out.missing = "the estimate at " + std::to_string(maxJunction) + " degC is incomplete";
        return out;
    }
    out.power = report.totalPower;
    out.maxAmbient = maxJunction - thetaJa * out.power;
    if (maxJunction <= ambient)
        out.missing = "the ambient is not below the junction limit: no thermal resistance keeps it there";
    else if (out.power <= 0)
        out.missing = "the design draws no power: any thermal resistance keeps the junction at the ambient";
    else
        out.maxThetaJa = (maxJunction - ambient) / out.power;
    return out;
}

}  // namespace prsm::design
