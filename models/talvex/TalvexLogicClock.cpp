// Formulas of the logic-clock sheet. A clock net charges and discharges its capacitance once per
// period (activity 1), so every part is C (pF) x f (MHz) x V^VPOW x 0.001, in mW per clock; the rail
// totals, a further 0.001 on the instance total, are in W. Below its buffer the network runs only in
// the cycles the clock is not gated off (RUNNING_FREQ); the buffer runs at the full clock.
#include <prsm/models/talvex/PRSMTalvexLogicClockModel.h>
#include <prsm/models/talvex/PRSMTalvexLogicClockCells.h>

#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include "LogicClockFormulas.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

using PRSMHelperUtils::IFERROR;
using Model = PRSMTalvexLogicClockModel;
using Data = Model::Data;
using prsm::logicclock::kFlipFlopsPerSlice;
using prsm::logicclock::kMemoryLutsPerSlice;
using prsm::logicclock::sliceClockCap;
using Segment = Model::Segment;

namespace {

// The members of the Segment family in order, SEGMENT_CAP's constant keys in the same order.
float segmentsCap(Model const& model, Model::Params& params, Data const& data, Segment first, Segment last) {
    float sum = 0.0f;
    for (int m = static_cast<int>(first); m <= static_cast<int>(last); ++m) {
        float const cap = IFERROR(data.getSegmentCapOrError(static_cast<Data::SegmentCapKey>(m)), 0.0f);
        sum += static_cast<float>(model.getCount(params, data, static_cast<Segment>(m))) * cap;
    }
    return sum;
}

int ceilDiv(int count, int per) {
    return count <= 0 ? 0 : static_cast<int>((static_cast<std::int64_t>(count) + per - 1) / per);
}

float voltageFactor(Data const& data, float volts) {
    return std::pow(volts, IFERROR(data.getConstantsOrError(Data::ConstantsKey::VPOW), 2.0f));
}

}  // namespace

// ---- Defaults of the distribution counts: what the loads fill and reach ------------------------------

namespace {

// Sixteen flip-flops or eight memory look-up tables make a slice.
float loadSlices(Model const& model, Model::Params& params, Data const& data) {
    return static_cast<float>(model.getFfsUsingClk(params, data)) / kFlipFlopsPerSlice +
           (static_cast<float>(model.getLutramsUsingClk(params, data)) +
            static_cast<float>(model.getSrlsUsingClk(params, data))) /
               kMemoryLutsPerSlice;
}

}  // namespace

// The loads' slices; every block RAM, UltraRAM and DSP is a site of its own.
float Model::computeLoadSites(Params& params, Data const& data) const {
    return loadSlices(*this, params, data) + static_cast<float>(getBramsUsingClk(params, data)) +
           static_cast<float>(getUramsUsingClk(params, data)) + static_cast<float>(getDspsUsingClk(params, data));
}

// The clock sheet's saturating curve: a clock on a share u of the device's sites reaches
// 1 - BASE^(STEEPNESS * u) of its segments and leaves; 1 when that is not a number. A share of the
// network stays within 0 and 1 whatever the file's constants.
float Model::computeNetworkReach(Params& params, Data const& data) const {
    int const deviceSites = IFERROR(data.getDeviceNetworkOrError(refDevice(params, data), "SITES"),
                                    IFERROR(data.getDeviceNetworkOrError("DEFAULT", "SITES"), 0));
    if (deviceSites <= 0) return 1.0f;
    float const share = calculateLoadSites(params, data) / static_cast<float>(deviceSites);
    float const base = IFERROR(data.getConstantsOrError(Data::ConstantsKey::REACH_BASE), 0.0f);
    float const steepness = IFERROR(data.getConstantsOrError(Data::ConstantsKey::REACH_STEEPNESS), 0.0f);
    float const reach = 1.0f - std::pow(base, steepness * share);
    return std::isfinite(reach) ? std::clamp(reach, 0.0f, 1.0f) : 1.0f;
}

namespace {

int deviceNetwork(Model const& model, Model::Params& params, Data const& data, std::string_view key) {
    return IFERROR(data.getDeviceNetworkOrError(model.refDevice(params, data), key),
                   IFERROR(data.getDeviceNetworkOrError("DEFAULT", key), 0));
}

}  // namespace

// The horizontal distribution and its local taps, and the strength-1 leaves, follow the reach; the
// other kinds are not estimated from the loads (the clock sheet leaves them at 0 too).
int Model::defaultCount(Params& params, Data const& data, Segment member) const {
    char const* total = nullptr;
    if (member == Segment::HD || member == Segment::HD_LOC)
        total = "HD_SEGMENTS";
    else if (member == Segment::LEAF_1)
        total = "LEAVES";
    if (total == nullptr) return 0;
    return static_cast<int>(static_cast<double>(deviceNetwork(*this, params, data, total)) *
                            static_cast<double>(calculateNetworkReach(params, data)));
}

int Model::defaultNumFfSlices(Params& params, Data const& data) const {
    return ceilDiv(getFfsUsingClk(params, data), kFlipFlopsPerSlice);
}
int Model::defaultNumLutramSlices(Params& params, Data const& data) const {
    return ceilDiv(getLutramsUsingClk(params, data), kMemoryLutsPerSlice);
}
int Model::defaultNumSrlSlices(Params& params, Data const& data) const {
    return ceilDiv(getSrlsUsingClk(params, data), kMemoryLutsPerSlice);
}
int Model::defaultNumClockedSlices(Params& params, Data const& data) const {
    float const slices = loadSlices(*this, params, data);
    return slices <= 0.0f ? 0 : static_cast<int>(std::ceil(slices));
}
int Model::defaultNonCleSiteFanout(Params& params, Data const& data) const {
    return static_cast<int>(static_cast<std::int64_t>(getBramsUsingClk(params, data)) +
                            getUramsUsingClk(params, data) + getDspsUsingClk(params, data));
}

// ---- Capacitances of one clock --------------------------------------------------------------------------

float Model::computeDistributionCap(Params& params, Data const& data) const {
    return segmentsCap(*this, params, data, Segment::HR, Segment::VD_SSIT);
}

float Model::computeLeafCap(Params& params, Data const& data) const {
    return segmentsCap(*this, params, data, Segment::LEAF_1, Segment::LEAF_8);
}

// A slice's clock input and spine, its enable groups' gating cells, the write-clock generators of
// memory slices, interconnect-register slices, hard-block site taps and programmable delays.
float Model::computeSliceCap(Params& params, Data const& data) const {
    using Key = Data::SliceClockCapKey;
    float const group = sliceClockCap(data, Key::CE_GROUP);
    auto const count = [](int n) { return static_cast<float>(n); };
    return count(getNumClockedSlices(params, data)) * sliceClockCap(data, Key::CLOCKED_SLICE) +
           count(getNumFfSlices(params, data)) * getAvgCeFfGroupsPerSlice(params, data) * group +
           count(getNumLutramSlices(params, data)) * sliceClockCap(data, Key::LUTRAM_SLICE) +
           count(getNumSrlSlices(params, data)) * sliceClockCap(data, Key::SRL_SLICE) +
           count(getNumImuxSlices(params, data)) *
               (sliceClockCap(data, Key::IMUX_SLICE) + getAvgCeImuxGroupsPerSlice(params, data) * group) +
           count(getNonCleSiteFanout(params, data)) * sliceClockCap(data, Key::NON_CLE_SITE) +
           count(getNumLatchedQuadsPdelayOn(params, data)) * sliceClockCap(data, Key::LATCHED_QUAD) +
           count(getNumBypassQuadsPdelayOn(params, data)) * sliceClockCap(data, Key::BYPASS_QUAD);
}

// A flip-flop's clock pin cycles when its slice's enable lets the clock through, twice as often when
// it is clocked on both edges; the other loads' pins cycle every period.
float Model::computeLoadPinCap(Params& params, Data const& data) const {
    float const flipFlopActivity =
        getProbSliceCe(params, data) * (1.0f + getProbDualEdgeClocking(params, data));
    return prsm::logicclock::loadPinCap(*this, params, data, flipFlopActivity);
}

// ---- Components: C x f x V^VPOW x 0.001 x device scale ------------------------------------------------

float Model::computeVccintFactor(Params& params, Data const& data) const {
    return voltageFactor(data, getVccint(params, data));
}
float Model::computeVccauxFactor(Params& params, Data const& data) const {
    return voltageFactor(data, getVccaux(params, data));
}

// The buffer at the full clock, on VCCAUX (the network's parts: LogicClockFormulas.h).
float Model::computeBufferComponent(Params& params, Data const& data) const {
    return calculateBufferCap(params, data) * getClockFreq(params, data) * derivedVccauxFactor(params, data) *
           0.001f * calculateVccauxScale(params, data);
}

// ---- One clock and the group ----------------------------------------------------------------------------

float Model::computeVccintClockPower(Params& params, Data const& data) const {
    float const perClock = calculateDistributionComponent(params, data) + calculateLeafComponent(params, data) +
                           calculateSliceComponent(params, data) + calculateLoadPinComponent(params, data);
    return static_cast<float>(getInstanceCount(params, data)) * perClock * 0.001f;
}

float Model::computeVccauxClockPower(Params& params, Data const& data) const {
    return static_cast<float>(getInstanceCount(params, data)) * calculateBufferComponent(params, data) * 0.001f;
}

// Formed in unsigned 64 bits, so that any inputs give a defined figure; a count beyond the int range
// wraps as the cell stores it.
int Model::computeClockLoadCount(Params& params, Data const& data) const {
    auto const u = [](int n) { return static_cast<std::uint64_t>(static_cast<std::int64_t>(n)); };
    std::uint64_t const loads = u(getFfsUsingClk(params, data)) + u(getLutramsUsingClk(params, data)) +
                                u(getSrlsUsingClk(params, data)) + u(getBramsUsingClk(params, data)) +
                                u(getUramsUsingClk(params, data)) + u(getDspsUsingClk(params, data));
    return static_cast<int>(u(getInstanceCount(params, data)) * loads);
}
