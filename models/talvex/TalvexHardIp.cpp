// Formulas of the hard link-IP sheet. A controller's power at nominal voltages is its idle part (a base
// plus a part per lane: clocks and logic that run whatever the traffic), its data path (an energy per
// bit, in pJ, times the traffic in Gb/s gives mW) and, for the Ethernet MACs, the RS-FEC, which codes
// every bit on the line whether it carries traffic or idles. RAIL_SHARE splits that over the rails, each
// share following (V / nominal)^VPOW on its rail.
#include <prsm/models/talvex/PRSMTalvexHardIpModel.h>
#include <prsm/models/talvex/PRSMTalvexHardIpCells.h>

#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include "LinkFormulas.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

using PRSMHelperUtils::IFERROR;
using Model = PRSMTalvexHardIpModel;
using Data = Model::Data;
using Rail = Model::Rail;

namespace {

float link(Model const& model, Model::Params& params, Data const& data, std::string_view key) {
    return IFERROR(data.getLinkOrError(model.refIpType(params, data), model.refMode(params, data), key),
                   0.0f);
}

float controller(Model const& model, Model::Params& params, Data const& data, std::string_view key) {
    return IFERROR(data.getControllerOrError(model.refIpType(params, data), key), 0.0f);
}

int laneLimit(Model const& model, Model::Params& params, Data const& data, std::string_view key) {
    return IFERROR(data.getLaneLimitOrError(model.refIpType(params, data), key), 0);
}

bool isPowerOfTwo(int n) {
    return n > 0 && (n & (n - 1)) == 0;
}

}  // namespace

// ---- The controller's mode and width ------------------------------------------------------------------

// A controller without a default mode has none: its link figures are 0.
std::string Model::defaultMode(Params& params, Data const& data) const {
    return IFERROR(data.getDefaultModeOrError(refIpType(params, data)), std::string());
}

std::vector<std::string> Model::validListMode(Params& params, Data const& data) const {
    auto const found = data.m_ModeLists.find(refIpType(params, data));
    return found == data.m_ModeLists.end() ? std::vector<std::string>() : found->second;
}

int Model::defaultLanes(Params& params, Data const& data) const {
    return laneLimit(*this, params, data, "MAX");
}

float Model::computeGetMinLanes(Params& params, Data const& data) const {
    return static_cast<float>(laneLimit(*this, params, data, "MIN"));
}

float Model::computeGetMaxLanes(Params& params, Data const& data) const {
    return static_cast<float>(laneLimit(*this, params, data, "MAX"));
}

bool Model::isValidLanes(Params& params, Data const& data) const {
    int const lanes = getLanes(params, data);
    float const width = static_cast<float>(lanes);
    bool const inRange =
        width >= calculateGetMinLanes(params, data) && width <= calculateGetMaxLanes(params, data);
    return inRange && (laneLimit(*this, params, data, "POW2") != 1 || isPowerOfTwo(lanes));
}

// ---- Bandwidth and the transceivers it needs ----------------------------------------------------------

float Model::computeLineRate(Params& params, Data const& data) const {
    return link(*this, params, data, "LINE_RATE");
}

float Model::computeLinkBandwidth(Params& params, Data const& data) const {
    return static_cast<float>(getLanes(params, data)) * link(*this, params, data, "LANE_GBPS");
}

float Model::computeTraffic(Params& params, Data const& data) const {
    return calculateLinkBandwidth(params, data) * getUtilization(params, data);
}

// Formed in 64 bits; a count beyond the int range wraps as the cell stores it.
int Model::computeGtLaneCount(Params& params, Data const& data) const {
    return static_cast<int>(static_cast<std::int64_t>(getInstanceCount(params, data)) *
                            getLanes(params, data));
}

// ---- One controller at nominal voltages ---------------------------------------------------------------

float Model::computeDeviceScale(Params& params, Data const& data) const {
    std::string_view const ip = refIpType(params, data);
    return IFERROR(data.getBlockPowerScaleOrError(refDevice(params, data), ip),
                   IFERROR(data.getBlockPowerScaleOrError("DEFAULT", ip), 1.0f));
}

float Model::computeIdleComponent(Params& params, Data const& data) const {
    float const idle =
        controller(*this, params, data, "IDLE") +
        static_cast<float>(getLanes(params, data)) * link(*this, params, data, "IDLE_PER_LANE");
    return idle * calculateDeviceScale(params, data);
}

float Model::computeDatapathComponent(Params& params, Data const& data) const {
    return calculateTraffic(params, data) * link(*this, params, data, "PJ_PER_BIT") *
           calculateDeviceScale(params, data);
}

// The FEC codes the whole line, traffic or idles.
float Model::computeFecComponent(Params& params, Data const& data) const {
    if (refFec(params, data) != "YES") return 0.0f;
    return calculateLinkBandwidth(params, data) * controller(*this, params, data, "FEC_PJ_PER_BIT") *
           calculateDeviceScale(params, data);
}

float Model::computeNominalPower(Params& params, Data const& data) const {
    return calculateIdleComponent(params, data) + calculateDatapathComponent(params, data) +
           calculateFecComponent(params, data);
}

// ---- On the rails --------------------------------------------------------------------------------------

// The rail's share of the controller, at the rail's voltage.
float Model::computeInstancePower(Params& params, Data const& data, Rail rail) const {
    float const share = IFERROR(data.getRailShareOrError(refIpType(params, data), memberName(rail)), 0.0f);
    float const factor = prsm::link::railVoltageFactor(data, memberName(rail), getRail(params, data, rail));
    return calculateNominalPower(params, data) * share * factor;
}

float Model::computeInstancePower(Params& params, Data const& data) const {
    return calculateVcccpm5InstancePower(params, data) + calculateVccintcpmInstancePower(params, data) +
           calculateVccintInstancePower(params, data);
}

float Model::computePower(Params& params, Data const& data, Rail rail) const {
    return static_cast<float>(getInstanceCount(params, data)) * calculateInstancePower(params, data, rail) *
           0.001f;
}

float Model::computeTotalPower(Params& params, Data const& data) const {
    return static_cast<float>(getInstanceCount(params, data)) * calculateInstancePower(params, data) * 0.001f;
}
