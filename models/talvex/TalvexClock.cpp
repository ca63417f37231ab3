// Formulas of the clock-network sheet: how many distribution segments, leaf drivers and clocked slices
// one user clock reaches, from its fanout and the device's resource totals.
#include <prsm/models/talvex/PRSMTalvexClockModel.h>
#include <prsm/models/talvex/PRSMTalvexClockCells.h>

#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cmath>

using Model = PRSMTalvexClockModel;
using PRSMHelperUtils::IFERROR;
using PRSMHelperUtils::MAX;
using PRSMHelperUtils::toIntSaturated;

namespace {

// The share of a resource that a clock reaches when it drives `util` of the device: 1 - VAR1^(VAR2 * util).
// A result that is not a finite number is reported as the float error value.
float reachedShare(Model::Data const& data, float util) {
    double const share =
        1.0 - std::pow(static_cast<double>(data.getVarData(Model::Data::VarDataKey::VAR1)),
                       static_cast<double>(data.getVarData(Model::Data::VarDataKey::VAR2)) * util);
    return std::isfinite(share) ? static_cast<float>(share) : prsm::kFloatNotSet;
}

// The larger of each resource count and its _BASE count (the spreadsheet MAX, in float).
struct Totals {
    float ffs, brams, urams, dsps;
};

Totals largerTotals(Model const& model, Model::Params& params, Model::Data const& data) {
    auto const larger = [](int a, int b) { return MAX(static_cast<float>(a), static_cast<float>(b)); };
    return {larger(model.getNumFfs(params, data), model.getNumFfsBase(params, data)),
            larger(model.getNumBrams(params, data), model.getNumBramsBase(params, data)),
            larger(model.getNumUrams(params, data), model.getNumUramsBase(params, data)),
            larger(model.getNumDsps(params, data), model.getNumDspsBase(params, data))};
}

}  // namespace

// Each _BASE count starts from the count of the current device.
int Model::defaultNumFfsBase(Params& params, Data const& data) const {
    return getNumFfs(params, data);
}
int Model::defaultNumBramsBase(Params& params, Data const& data) const {
    return getNumBrams(params, data);
}
int Model::defaultNumUramsBase(Params& params, Data const& data) const {
    return getNumUrams(params, data);
}
int Model::defaultNumDspsBase(Params& params, Data const& data) const {
    return getNumDsps(params, data);
}

float Model::computeMaxHdist(Params& params, Data const& data) const {
    return static_cast<float>(getNumFsr(params, data));
}

float Model::computeMaxLeafs(Params& params, Data const& data) const {
    Totals const t = largerTotals(*this, params, data);
    // The per-region leaves are counted in 32-bit integers, wrapping on overflow like the hardware
    // counters they mirror (the unsigned product keeps the wrap well defined).
    int const regionLeafBits = static_cast<int>(static_cast<unsigned>(getNumFsr(params, data)) * 1536u);
    int const regionLeaves = regionLeafBits / 48;
    return (t.ffs * 16 / 3072 + t.brams * 16 / 12 + t.urams * 16 / 12 + t.dsps * 16 / 24 +
            static_cast<float>(regionLeaves)) *
           0.0625f;
}

float Model::computeSites(Params& params, Data const& data) const {
    float const perSite = getFanoutPerSite(params, data);
    return perSite == 0.0f ? 0.0f : static_cast<float>(getFanout(params, data)) / perSite;
}

// Sixteen flip-flops make one site; every block RAM, UltraRAM and DSP is a site of its own.
float Model::computeTotalSites(Params& params, Data const& data) const {
    Totals const t = largerTotals(*this, params, data);
    return t.ffs * 0.0625f + t.brams + t.urams + t.dsps;
}

float Model::computeSiteUtil(Params& params, Data const& data) const {
    float const total = calculateTotalSites(params, data);
    return total == 0.0f ? 0.0f : calculateSites(params, data) / total;
}

// The sites that remain once the clocked block-RAM, UltraRAM and DSP sites are taken off; never negative.
float Model::computeSlices(Params& params, Data const& data) const {
    double const blocks = static_cast<double>(getBramsUsingClk(params, data)) +
                          getUramsUsingClk(params, data) + getDspsUsingClk(params, data);
    double const slices = static_cast<double>(calculateSites(params, data)) - blocks;
    return slices >= 0.0 ? static_cast<float>(slices) : 0.0f;
}

// The share of the network that the clock's sites reach, computed once for the two cells that use it.
float Model::computeSiteReach(Params& params, Data const& data) const {
    return reachedShare(data, calculateSiteUtil(params, data));
}

float Model::computeHdistUtil(Params& params, Data const& data) const {
    return IFERROR(derivedSiteReach(params, data), 1);
}

// Same expression and keys as the distribution share: the table makes the two equal, the cells stay apart.
float Model::computeLeafUtil(Params& params, Data const& data) const {
    return IFERROR(derivedSiteReach(params, data), 1);
}

int Model::computeHdCount(Params& params, Data const& data) const {
    return toIntSaturated(calculateMaxHdist(params, data) * calculateHdistUtil(params, data));
}

int Model::computeHdLocCount(Params& params, Data const& data) const {
    return toIntSaturated(calculateMaxHdist(params, data) * calculateHdistUtil(params, data));
}

int Model::computeLeaf1Count(Params& params, Data const& data) const {
    return toIntSaturated(calculateMaxLeafs(params, data) * calculateLeafUtil(params, data));
}

int Model::computeNumFfSlices(Params& params, Data const& data) const {
    return toIntSaturated(calculateSlices(params, data));
}

int Model::computeNumClockedSlices(Params& params, Data const& data) const {
    return toIntSaturated(calculateSlices(params, data));
}

namespace {

// The slices of one kind: the slice count shared in proportion to that kind's clocked elements.
int sharedSlices(float slices, int part, int lutrams, int ffs, int srls) {
    double const sum = static_cast<double>(lutrams) + ffs + srls;
    if (part <= 0 || sum == 0.0) return 0;
    return toIntSaturated(static_cast<double>(slices) * part / sum);
}

}  // namespace

int Model::computeNumLutramSlices(Params& params, Data const& data) const {
    int const lutrams = getLutramsUsingClk(params, data);
    return sharedSlices(calculateSlices(params, data), lutrams, lutrams, getFfsUsingClk(params, data),
                        getSrlsUsingClk(params, data));
}

int Model::computeNumSrlSlices(Params& params, Data const& data) const {
    int const srls = getSrlsUsingClk(params, data);
    return sharedSlices(calculateSlices(params, data), srls, getLutramsUsingClk(params, data),
                        getFfsUsingClk(params, data), srls);
}

int Model::computeNonCleSiteFanout(Params& params, Data const& data) const {
    return toIntSaturated(calculateSites(params, data) - calculateSlices(params, data));
}

// Before placement a quarter of the four clock-enable groups of a slice is assumed in use; afterwards the
// share follows the flip-flops per slice with the same saturating curve as the network utilisation.
float Model::computeAvgCeFfGroupsPerSlice(Params& params, Data const& data) const {
    if (std::string_view(refDesignState(params, data)) == "SYNTHESIZED") return 0.25f;
    float const slices = calculateSlices(params, data);
    if (!(slices > 0.0f)) return 0.0f;
    float const ffsPerSlot = static_cast<float>(getFfsUsingClk(params, data)) / (slices * 16);
    double const share =
        1.0 - std::pow(static_cast<double>(data.getVarData(Model::Data::VarDataKey::VAR1)),
                       static_cast<double>(ffsPerSlot) * data.getVarData(Model::Data::VarDataKey::VAR2));
    return static_cast<float>(share * 4);
}

std::string Model::computeBufType(Params&, Data const&) const {
    return "NO_BUFFER";
}
