// Formulas of the older architecture's logic-clock sheet. A clock net charges and discharges its
// capacitance once per period (activity 1), so every part is C (pF) x f (MHz) x V^VPOW x 0.001, in mW per
// clock; the rail total, a further 0.001 and the instance count, is in W. Below its buffer the network
// runs only in the cycles the clock is not gated off (RUNNING_FREQ); the buffer runs at the full clock.
#include <prsm/models/dravik/PRSMDravikLogicClockModel.h>
#include <prsm/models/dravik/PRSMDravikLogicClockCells.h>

#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include "DravikLogicClockFormulas.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

using PRSMHelperUtils::IFERROR;
using Model = PRSMDravikLogicClockModel;
using Data = Model::Data;
using prsm::logicclock::kFlipFlopsPerSlice;
using prsm::logicclock::kMemoryLutsPerSlice;
using prsm::logicclock::sliceClockCap;

namespace {

// Coefficients fall back to 0 when the file lacks them.
float segmentCap(Data const& data, Data::SegmentCapKey key) {
    return IFERROR(data.getSegmentCapOrError(key), 0.0f);
}

// The part's network figure: its row, else the DEFAULT row, else 0.
int deviceNetwork(Model const& model, Model::Params& params, Data const& data, std::string_view key) {
    return IFERROR(data.getDeviceNetworkOrError(model.refDevice(params, data), key),
                   IFERROR(data.getDeviceNetworkOrError("DEFAULT", key), 0));
}

float count(int n) {
    return static_cast<float>(n);
}

// Sixteen flip-flops or eight memory look-up tables make a slice.
float loadSlices(Model const& model, Model::Params& params, Data const& data) {
    return count(model.getFfsUsingClk(params, data)) / kFlipFlopsPerSlice +
           (count(model.getLutramsUsingClk(params, data)) + count(model.getSrlsUsingClk(params, data))) /
               kMemoryLutsPerSlice;
}

int roundedUp(double value) {
    return value <= 0.0 ? 0 : PRSMHelperUtils::toIntSaturated(std::ceil(value));
}

// The share of the part's regions or leaves the clock reaches, rounded up: a clock with loads is in
// at least one region and one leaf.
int reached(Model const& model, Model::Params& params, Data const& data, std::string_view total) {
    return roundedUp(static_cast<double>(deviceNetwork(model, params, data, total)) *
                     static_cast<double>(model.calculateNetworkReach(params, data)));
}

}  // namespace

// ---- Defaults of the network counts: what the loads fill and reach ---------------------------------------

float Model::computeLoadSites(Params& params, Data const& data) const {
    return loadSlices(*this, params, data) + count(getBramsUsingClk(params, data)) +
           count(getUramsUsingClk(params, data)) + count(getDspsUsingClk(params, data));
}

// A clock on a share u of the part's sites reaches 1 - BASE^(STEEPNESS * u) of its regions and leaves
// (placement spreads a clock wider than its sites would pack); 1 when that is not a number, and kept
// within 0 and 1 whatever the file's constants.
float Model::computeNetworkReach(Params& params, Data const& data) const {
    int const sites = deviceNetwork(*this, params, data, "SITES");
    if (sites <= 0) return 1.0f;
    float const share = calculateLoadSites(params, data) / count(sites);
    float const base = IFERROR(data.getConstantsOrError(Data::ConstantsKey::REACH_BASE), 0.0f);
    float const steepness = IFERROR(data.getConstantsOrError(Data::ConstantsKey::REACH_STEEPNESS), 0.0f);
    float const reach = 1.0f - std::pow(base, steepness * share);
    return std::isfinite(reach) ? std::clamp(reach, 0.0f, 1.0f) : 1.0f;
}

int Model::defaultRegionCount(Params& params, Data const& data) const {
    return reached(*this, params, data, "REGIONS");
}
int Model::defaultLeafCount(Params& params, Data const& data) const {
    return reached(*this, params, data, "LEAVES");
}
int Model::defaultRoutingCount(Params& params, Data const& data) const {
    return deviceNetwork(*this, params, data, "ROUTING");
}
int Model::defaultNumClockedSlices(Params& params, Data const& data) const {
    return roundedUp(loadSlices(*this, params, data));
}
int Model::defaultNonCleSiteFanout(Params& params, Data const& data) const {
    return PRSMHelperUtils::toIntSaturated(static_cast<double>(getBramsUsingClk(params, data)) +
                                           getUramsUsingClk(params, data) + getDspsUsingClk(params, data));
}

// A clock cannot reach more regions or leaves than the part has.
float Model::computeGetMaxRegionCount(Params& params, Data const& data) const {
    return count(deviceNetwork(*this, params, data, "REGIONS"));
}
float Model::computeGetMaxLeafCount(Params& params, Data const& data) const {
    return count(deviceNetwork(*this, params, data, "LEAVES"));
}
bool Model::isValidRegionCount(Params& params, Data const& data) const {
    int const regions = getRegionCount(params, data);
    return regions >= 0 && count(regions) <= calculateGetMaxRegionCount(params, data);
}
bool Model::isValidLeafCount(Params& params, Data const& data) const {
    int const leaves = getLeafCount(params, data);
    return leaves >= 0 && count(leaves) <= calculateGetMaxLeafCount(params, data);
}

// ---- Capacitances of one clock ---------------------------------------------------------------------------

// The routing track to the root, and in every region reached the spine's piece and the horizontal track.
float Model::computeDistributionCap(Params& params, Data const& data) const {
    return count(getRoutingCount(params, data)) * segmentCap(data, Data::SegmentCapKey::ROUTING) +
           count(getRegionCount(params, data)) * segmentCap(data, Data::SegmentCapKey::REGION);
}

float Model::computeLeafCap(Params& params, Data const& data) const {
    return count(getLeafCount(params, data)) * segmentCap(data, Data::SegmentCapKey::LEAF);
}

float Model::computeSliceCap(Params& params, Data const& data) const {
    return count(getNumClockedSlices(params, data)) *
               sliceClockCap(data, Data::SliceClockCapKey::CLOCKED_SLICE) +
           count(getNonCleSiteFanout(params, data)) *
               sliceClockCap(data, Data::SliceClockCapKey::NON_CLE_SITE);
}

// Every load's clock pin cycles every period: a slice's clock enable holds the data, not the clock.
float Model::computeLoadPinCap(Params& params, Data const& data) const {
    return prsm::logicclock::loadPinCap(*this, params, data, 1.0f);
}

// ---- Components: C x f x V^VPOW x 0.001 x device scale ------------------------------------------------

float Model::computeVccintFactor(Params& params, Data const& data) const {
    return std::pow(getVccint(params, data),
                    IFERROR(data.getConstantsOrError(Data::ConstantsKey::VPOW), 2.0f));
}

namespace {

// The buffer's part, at the full clock (the network's parts: LogicClockFormulas.h).
float milliwatts(Model const& model, Model::Params& params, Data const& data, float cap, float mhz) {
    return cap * mhz * model.derivedVccintFactor(params, data) * 0.001f *
           model.calculateVccintScale(params, data);
}

}  // namespace

float Model::computeBufferComponent(Params& params, Data const& data) const {
    return milliwatts(*this, params, data, calculateBufferCap(params, data), getClockFreq(params, data));
}

// ---- One clock and the group ----------------------------------------------------------------------------

float Model::computeVccintClockPower(Params& params, Data const& data) const {
    return count(getInstanceCount(params, data)) * calculateClockInstancePower(params, data) * 0.001f;
}

// Formed in 64 bits and stored saturated, so that any inputs give a defined figure.
int Model::computeClockLoadCount(Params& params, Data const& data) const {
    double const loads = static_cast<double>(getFfsUsingClk(params, data)) +
                         getLutramsUsingClk(params, data) + getSrlsUsingClk(params, data) +
                         getBramsUsingClk(params, data) + getUramsUsingClk(params, data) +
                         getDspsUsingClk(params, data);
    return PRSMHelperUtils::toIntSaturated(static_cast<double>(getInstanceCount(params, data)) * loads);
}
