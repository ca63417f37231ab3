// Formulas of the static-power sheet.
//
// Leakage of one rail or block: a fifth-order polynomial in the junction temperature (coefficients per
// device, process and component), times an exponential voltage scaling, a voltage-binning factor of the
// SKU, the count of leaking instances and, for blocks, a per-device scale. The leakage is first taken
// at the user's junction temperature (pass 1); that static power plus the design's dynamic power, as a
// share of the device's maximum power, sets a temperature rise, and the final leakage is taken at the
// junction temperature less the rise. The rise is subtracted on purpose and the step is never iterated.
//
// Rail outputs are the rail's own leakage plus the currents the table's rail terms name (the blocks on
// it, and the rails VCCINT holds); a rail at 0 V carries nothing. Under the worst process ("MAX") the
// currents are also given scaled by the rail's total-power factor, and every rail has a power-up
// current: its leakage at 25 degrees, scaled, plus a constant.
#include <prsm/models/talvex/LeakageFormulas.h>
#include <prsm/models/talvex/PRSMTalvexStaticModel.h>
#include <prsm/models/talvex/PRSMTalvexStaticCells.h>

#include <prsm/framework/PRSMCellSupport.h>
#include <prsm/framework/PRSMConfigHelpers.h>
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>

using Model = PRSMTalvexStaticModel;
using Rail = Model::Rail;
using Block = Model::Block;
using X5ioRail = Model::X5ioRail;
using PRSMHelperUtils::IFERROR;

namespace {

using Params = Model::Params;
using Data = Model::Data;

constexpr char kYes[] = "YES";
// The component key of VCCAUX's coefficients while the logic (VCCINT) is powered down.
constexpr char kVccauxPoweredDown[] = "VCCAUX_PL_POWERED_DOWN";
// VOLTAGE_RANGE rows that hold a rail's valid range instead of a corner's voltage.
constexpr char kValidMin[] = "VALID_MIN";
constexpr char kValidMax[] = "VALID_MAX";
// Keys of the voltage coefficients in VT_COEFFICIENT, after the letters A to E and CONST.
constexpr std::string_view kVoltageCoefficient[] = {"V_C1", "V_C2", "V_C3", "V_C4", "V_C5", "V_C6"};

using prsm::leakage::deviceName;
using prsm::leakage::inPlace;
using prsm::leakage::isWorstProcess;
using prsm::leakage::kWorstProcess;
using prsm::leakage::leakagePolynomial;
using prsm::leakage::singleSupplyScaling;
using prsm::leakage::skuName;
using prsm::leakage::sumOfStaticPowers;
using prsm::leakage::vtCoefficient;

// The package; a package name may be longer than a string's inline buffer, where a copy allocates.
std::string const& gtPackage(Model const& model, Params& params, Data const& data) {
    return inPlace(params, Params::GT_PACKAGE, [&] { model.getGtPackage(params, data); });
}

// IFERROR(BINNING_FACTORS(device, process, component, SKU), 1).
float voltBinning(Model const& model, Params& params, Data const& data, std::string_view component) {
    return prsm::leakage::voltBinning(model, params, data, component, skuName(model, params, data));
}

// VCCAUX: 1 when C1 is 0, else C1·exp(C2·VCCAUX)·exp(C3·VCCINT)·(C4·VCCINT² + C5·VCCINT + C6).
float twoSupplyScaling(float const (&c)[6], float vccaux, float vccint) {
    if (c[0] == 0.0f) return 1.0f;
    double const vint = vccint;
    return static_cast<float>(c[0] * std::exp(static_cast<double>(c[1]) * vccaux) * std::exp(c[2] * vint) *
                              (c[3] * vint * vint + c[4] * vint + c[5]));
}

// A block's component key. The memory cores of a later revision (RAM_CORE_INFO) have coefficients of
// their own, under the key followed by "_REV<n>".
std::string_view component(Model const& model, Params& params, Data const& data, Block block) {
    Model::BlockRow const& row = Model::row(block);
    int const revision = row.revision ? (model.*row.revision)(params, data) : 1;
    if (revision <= 1 || revision > 9) return row.component;
    char const digit[2] = {static_cast<char>('0' + revision), '\0'};
    return prsm::concatKey(row.component, "_REV", std::string_view(digit, 1));
}

// The RailTerm rows ordered by rail, each rail's own in row order (an insertion sort keeps it): built
// once, so that a rail's sum finds its terms by a binary search instead of reading every row.
class TermsByRail {
public:
    using Rows = std::array<Model::RailTermRow const*, Model::kRailTermMembers>;

    static Rows const& rows() {
        static TermsByRail const sorted;
        return sorted.m_rows;
    }

private:
    TermsByRail() {
        for (std::size_t term = 0; term < m_rows.size(); ++term) {
            Model::RailTermRow const* row = &Model::row(static_cast<Model::RailTerm>(term));
            std::size_t place = term;
            for (; place > 0 && row->rail < m_rows[place - 1]->rail; --place)
                m_rows[place] = m_rows[place - 1];
            m_rows[place] = row;
        }
    }

    Rows m_rows{};
};

}  // namespace

// ---- Device, grades and SKU ----

std::vector<std::string> Model::validListDeviceName(Params&, Data const& data) const {
    return PRSMHelperUtils::getCfgKeyVectorFromList(data.m_IntToExtDevMap);
}

// The packages of the device: the second level of GT_INFO below it.
std::vector<std::string> Model::validListGtPackage(Params& params, Data const& data) const {
    std::string const prefix = deviceName(*this, params, data) + ".";
    std::vector<std::string> packages;
    for (auto const& entry : data.m_GtInfo) {
        std::string const& key = entry.first;
        if (key.compare(0, prefix.size(), prefix) != 0) continue;
        std::string const package = key.substr(prefix.size(), key.find('.', prefix.size()) - prefix.size());
        if (std::find(packages.begin(), packages.end(), package) == packages.end())
            packages.push_back(package);
    }
    std::sort(packages.begin(), packages.end());
    return packages;
}

// SKU_LIST keys cannot begin with a digit: speed grade "2" is keyed "S2".
std::string Model::computeSpeedGradeStr(Params& params, Data const& data) const {
    return "S" + getSpeedGrade(params, data);
}

std::string Model::computeSkuName(Params& params, Data const& data) const {
    return IFERROR(data.getSkuListOrError(calculateSpeedGradeStr(params, data), getVoltageGrade(params, data),
                                          getPowerScreen(params, data), getTempGrade(params, data),
                                          getOverDrive(params, data)),
                   "");
}

std::string Model::computeVrString(Params&, Data const&, Rail rail) const {
    return std::string(memberName(rail));
}

float Model::defaultRail(Params& params, Data const& data, Rail rail) const {
    return IFERROR(
        data.getVoltageRangeOrError(getVoltageCorner(params, data), calculateVrString(params, data, rail),
                                    skuName(*this, params, data)),
        0.0f);
}

float Model::computeValidMin(Params& params, Data const& data, Rail rail) const {
    return IFERROR(data.getVoltageRangeOrError(kValidMin, calculateVrString(params, data, rail),
                                               skuName(*this, params, data)),
                   0.0f);
}

float Model::computeValidMax(Params& params, Data const& data, Rail rail) const {
    return IFERROR(data.getVoltageRangeOrError(kValidMax, calculateVrString(params, data, rail),
                                               skuName(*this, params, data)),
                   0.0f);
}

// ---- Counts ----

int Model::computeCommonBramCoreRev(Params& params, Data const& data) const {
    return static_cast<int>(
        IFERROR(data.getRamCoreInfoOrError(deviceName(*this, params, data), "BRAM_CORE_REV"), 1.0f));
}

int Model::computeCommonUramCoreRev(Params& params, Data const& data) const {
    return static_cast<int>(
        IFERROR(data.getRamCoreInfoOrError(deviceName(*this, params, data), "URAM_CORE_REV"), 1.0f));
}

int Model::computeHbm4hMultiplier(Params& params, Data const& data) const {
    return IFERROR(data.getHbm2EStackInfoOrError(deviceName(*this, params, data), "STACKS_4H"), 0);
}

int Model::computeHbm8hMultiplier(Params& params, Data const& data) const {
    return IFERROR(data.getHbm2EStackInfoOrError(deviceName(*this, params, data), "STACKS_8H"), 0);
}

// Bonded quads of one kind: GT_INFO.<device>.<package>.<kind>.
int Model::computeAvailableGty(Params& params, Data const& data) const {
    return IFERROR(data.getGtInfoOrError(deviceName(*this, params, data),
                                         prsm::concatKey(gtPackage(*this, params, data), ".GTY")),
                   0);
}

int Model::computeAvailableGtyp(Params& params, Data const& data) const {
    return IFERROR(data.getGtInfoOrError(deviceName(*this, params, data),
                                         prsm::concatKey(gtPackage(*this, params, data), ".GTYP")),
                   0);
}

int Model::computeAvailableGtm(Params& params, Data const& data) const {
    return IFERROR(data.getGtInfoOrError(deviceName(*this, params, data),
                                         prsm::concatKey(gtPackage(*this, params, data), ".GTM")),
                   0);
}

// A package that bonds out no GTM quad cannot power one.
int Model::computeIsGtmBonded(Params& params, Data const& data) const {
    return calculateAvailableGtm(params, data) > 0 ? 1 : 0;
}

// The count that multiplies a block's leakage: the used instances of the block in that state, none
// while its gate is shut.
int Model::computeMultiplier(Params& params, Data const& data, Block block) const {
    BlockRow const& blockRow = row(block);
    if (blockRow.gate && (this->*blockRow.gate)(params, data) != 1) return 0;
    return blockRow.count ? (this->*blockRow.count)(params, data) : 0;
}

// ---- Thermal step ----

float Model::computePlTriseSlope(Params& params, Data const& data) const {
    return IFERROR(data.getTemperatureGradientOrError(deviceName(*this, params, data), "PL_TRISE_SLOPE"),
                   0.0f);
}

float Model::computePlTriseOffset(Params& params, Data const& data) const {
    return IFERROR(data.getTemperatureGradientOrError(deviceName(*this, params, data), "PL_TRISE_OFFSET"),
                   0.0f);
}

float Model::computeAieTriseSlope(Params& params, Data const& data) const {
    return IFERROR(data.getTemperatureGradientOrError(deviceName(*this, params, data), "AIE_TRISE_SLOPE"),
                   0.0f);
}

float Model::computeAieTriseOffset(Params& params, Data const& data) const {
    return IFERROR(data.getTemperatureGradientOrError(deviceName(*this, params, data), "AIE_TRISE_OFFSET"),
                   0.0f);
}

float Model::computeEnableTjModel(Params& params, Data const& data) const {
    return IFERROR(data.getTemperatureGradientOrError(deviceName(*this, params, data), "ENABLE_TJ_MODEL"),
                   0.0f);
}

float Model::computeMaxDevicePower(Params& params, Data const& data) const {
    return IFERROR(data.getTemperatureGradientOrError(deviceName(*this, params, data), "MAX_DEVICE_POWER"),
                   0.0f);
}

float Model::computePass1StaticPowerScale(Params& params, Data const& data) const {
    return IFERROR(
        data.getTemperatureGradientOrError(deviceName(*this, params, data), "PASS1_STATIC_SCALE_FACTOR"),
        0.0f);
}

float Model::computeTotalGtDynPower(Params& params, Data const& data) const {
    return getGtDynPower(params, data) + getGtIpDynPower(params, data);
}

float Model::computeTotalIoDynPower(Params& params, Data const& data) const {
    return getIoDynPower(params, data) + getIoIpDynPower(params, data);
}

float Model::computeTotalPspmcDynPower(Params& params, Data const& data) const {
    return getPmcDynPower(params, data) + getPsfpdDynPower(params, data) + getPslpdDynPower(params, data);
}

// Everything on the die but the AI engines: the logic's VCCINT, I/O, transceivers, network, PS and PMC.
float Model::computeTotalPlDynPower(Params& params, Data const& data) const {
    return getAllVccintDynPowerMinusAie(params, data) + calculateTotalIoDynPower(params, data) +
           calculateTotalGtDynPower(params, data) + getNocDynPower(params, data) +
           calculateTotalPspmcDynPower(params, data);
}

float Model::computeDynamicPowerExist(Params& params, Data const& data) const {
    if (getEnableTjGradient(params, data) != kYes) return 0.0f;
    return calculateTotalPlDynPower(params, data) + getAieDynPower(params, data) > 0.0f ? 1.0f : 0.0f;
}

float Model::computeTotalPass1PlStaticPower(Params& params, Data const& data) const {
    float const sum = calculatePass1StaticPower(params, data, Rail::VCCINT) +
                      calculatePass1StaticPower(params, data, Rail::VCCAUX) +
                      calculatePass1StaticPower(params, data, Rail::VCCRAM) +
                      calculatePass1StaticPower(params, data, Block::BRAM_ACTIVE_VCCINT) +
                      calculatePass1StaticPower(params, data, Block::URAM_ACTIVE_VCCINT);
    return sum * calculatePass1StaticPowerScale(params, data);
}

float Model::computeTotalPass1AieStaticPower(Params& params, Data const& data) const {
    return calculatePass1StaticPower(params, data, Rail::VCCME) *
           calculatePass1StaticPowerScale(params, data);
}

float Model::computePlGlobalPowerUsageRaw(Params& params, Data const& data) const {
    float const maximum = calculateMaxDevicePower(params, data);
    if (maximum <= 0.0f) return 0.0f;
    return (calculateTotalPass1PlStaticPower(params, data) + calculateTotalPlDynPower(params, data)) /
           maximum * 100.0f;
}

float Model::computeAieGlobalPowerUsageRaw(Params& params, Data const& data) const {
    float const maximum = calculateMaxDevicePower(params, data);
    if (maximum <= 0.0f) return 0.0f;
    return (calculateTotalPass1AieStaticPower(params, data) + getAieDynPower(params, data)) / maximum *
           100.0f;
}

// Capped at 100, never clamped below.
float Model::computePlGlobalPowerUsage(Params& params, Data const& data) const {
    return std::min(calculatePlGlobalPowerUsageRaw(params, data), 100.0f);
}

float Model::computeAieGlobalPowerUsage(Params& params, Data const& data) const {
    return std::min(calculateAieGlobalPowerUsageRaw(params, data), 100.0f);
}

float Model::computeTjDeltaPl(Params& params, Data const& data) const {
    return (calculatePlTriseOffset(params, data) +
            calculatePlTriseSlope(params, data) * calculatePlGlobalPowerUsage(params, data)) *
           calculateEnableTjModel(params, data) * calculateDynamicPowerExist(params, data);
}

float Model::computeTjDeltaAie(Params& params, Data const& data) const {
    return (calculateAieTriseOffset(params, data) +
            calculateAieTriseSlope(params, data) * calculateAieGlobalPowerUsage(params, data)) *
           calculateEnableTjModel(params, data) * calculateDynamicPowerExist(params, data);
}

// ---- A rail's own leakage (COMMON_<RAIL>_...) ----

// At the junction temperature less the rise of the logic (of the AI engines for VCCME).
float Model::computeCommonVtLeakage(Params& params, Data const& data, Rail rail) const {
    float const rise =
        rail == Rail::VCCME ? calculateTjDeltaAie(params, data) : calculateTjDeltaPl(params, data);
    return prsm::leakage::leakageAt(*this, params, data, rail,
                                    static_cast<double>(getJunctionTemperature(params, data)) - rise);
}

float Model::computeCommonPass1VtLeakage(Params& params, Data const& data, Rail rail) const {
    return prsm::leakage::leakageAt(*this, params, data, rail, getJunctionTemperature(params, data));
}

float Model::computeCommonVccauxVC3(Params& params, Data const& data) const {
    return vtCoefficient(*this, params, data, "VCCAUX", kVoltageCoefficient[2]);
}

float Model::computeCommonVccauxVC4(Params& params, Data const& data) const {
    return vtCoefficient(*this, params, data, "VCCAUX", kVoltageCoefficient[3]);
}

float Model::computeCommonVccauxVC5(Params& params, Data const& data) const {
    return vtCoefficient(*this, params, data, "VCCAUX", kVoltageCoefficient[4]);
}

float Model::computeCommonVccauxVC6(Params& params, Data const& data) const {
    return vtCoefficient(*this, params, data, "VCCAUX", kVoltageCoefficient[5]);
}

// VCCAUX is scaled by its own voltage and by VCCINT's; every other rail by its own.
float Model::computeCommonVScaling(Params& params, Data const& data, Rail rail) const {
    float const c1 = calculateCommonVC1(params, data, rail);
    if (c1 == 0.0f) return 1.0f;  // 1 when V_C1 is 0, for VCCAUX too
    if (rail != Rail::VCCAUX)
        return singleSupplyScaling(c1, calculateCommonVC2(params, data, rail), getRail(params, data, rail));
    float const c[6] = {c1,
                        calculateCommonVC2(params, data, rail),
                        calculateCommonVccauxVC3(params, data),
                        calculateCommonVccauxVC4(params, data),
                        calculateCommonVccauxVC5(params, data),
                        calculateCommonVccauxVC6(params, data)};
    return twoSupplyScaling(c, getVccaux(params, data), getVccint(params, data));
}

float Model::computeCommonLutToCram1Ratio(Params& params, Data const& data) const {
    return IFERROR(data.getLutCramInfoOrError(deviceName(*this, params, data), "LUT_TO_CRAM_1_RATIO"), 0.0f);
}

float Model::computeCommonCramToIstdbyVccauxRatio(Params& params, Data const& data) const {
    return IFERROR(data.getLutCramInfoOrError(deviceName(*this, params, data), "CRAM_TO_ISTDBY_VCCAUX_RATIO"),
                   0.0f);
}

float Model::computeCommonCram1Pct(Params& params, Data const& data) const {
    return getLutUsedPct(params, data) * calculateCommonLutToCram1Ratio(params, data);
}

// 1 for every rail but VCCAUX, whose standby current grows with the configuration memory in use:
// (K·(P / L) + 1) / (K + 1). P / L undoes P = LUT_USED_PCT·L on purpose: P is a cell of its own.
float Model::computeCommonMultiplier(Params& params, Data const& data, Rail rail) const {
    if (rail != Rail::VCCAUX) return 1.0f;
    float const k = calculateCommonCramToIstdbyVccauxRatio(params, data);
    if (k + 1.0f == 0.0f) return 0.0f;
    float const l = calculateCommonLutToCram1Ratio(params, data);
    float const share = l == 0.0f ? 0.0f : calculateCommonCram1Pct(params, data) / l;
    return (k * share + 1.0f) / (k + 1.0f);
}

// With the logic powered down (VCCINT at 0 V) VCCAUX leaks as its powered-down coefficients say.
float Model::computeCommonStaticCurrent(Params& params, Data const& data, Rail rail) const {
    if (rail == Rail::VCCAUX && getVccint(params, data) == 0.0f)
        return calculateCommonVccauxPlPoweredDownVtLeakage(params, data) *
               calculateCommonVccauxPlPoweredDownVScaling(params, data) *
               calculateCommonVccauxPlPoweredDownVoltBinning(params, data) *
               calculateCommonMultiplier(params, data, rail);
    return prsm::leakage::commonStaticCurrent(*this, params, data, rail);
}

float Model::computeCommonPass1StaticCurrent(Params& params, Data const& data, Rail rail) const {
    return calculateCommonPass1VtLeakage(params, data, rail) * calculateCommonVScaling(params, data, rail) *
           calculateCommonVoltBinning(params, data, rail) * calculateCommonMultiplier(params, data, rail);
}

float Model::computePass1StaticPower(Params& params, Data const& data, Rail rail) const {
    float const volts = getRail(params, data, rail);
    if (volts == 0.0f) return 0.0f;
    return volts * calculateCommonPass1StaticCurrent(params, data, rail);
}

// The one lookup of the sheet without a default: a missing row throws, and only under the worst
// process, the one case that reads the factor.
float Model::computeCommonTotalPowerFactor(Params& params, Data const& data, Rail rail) const {
    return data.getTotalPowerFactors(deviceName(*this, params, data), memberName(rail));
}

// ---- VCCAUX with the logic powered down ----

float Model::computeCommonVccauxPlPoweredDownVtA(Params& params, Data const& data) const {
    return vtCoefficient(*this, params, data, kVccauxPoweredDown, "A");
}

float Model::computeCommonVccauxPlPoweredDownVtB(Params& params, Data const& data) const {
    return vtCoefficient(*this, params, data, kVccauxPoweredDown, "B");
}

float Model::computeCommonVccauxPlPoweredDownVtC(Params& params, Data const& data) const {
    return vtCoefficient(*this, params, data, kVccauxPoweredDown, "C");
}

float Model::computeCommonVccauxPlPoweredDownVtD(Params& params, Data const& data) const {
    return vtCoefficient(*this, params, data, kVccauxPoweredDown, "D");
}

float Model::computeCommonVccauxPlPoweredDownVtE(Params& params, Data const& data) const {
    return vtCoefficient(*this, params, data, kVccauxPoweredDown, "E");
}

float Model::computeCommonVccauxPlPoweredDownVtConst(Params& params, Data const& data) const {
    return vtCoefficient(*this, params, data, kVccauxPoweredDown, "CONST");
}

float Model::computeCommonVccauxPlPoweredDownVtLeakage(Params& params, Data const& data) const {
    double const t =
        static_cast<double>(getJunctionTemperature(params, data)) - calculateTjDeltaPl(params, data);
    return leakagePolynomial({calculateCommonVccauxPlPoweredDownVtA(params, data),
                              calculateCommonVccauxPlPoweredDownVtB(params, data),
                              calculateCommonVccauxPlPoweredDownVtC(params, data),
                              calculateCommonVccauxPlPoweredDownVtD(params, data),
                              calculateCommonVccauxPlPoweredDownVtE(params, data),
                              calculateCommonVccauxPlPoweredDownVtConst(params, data)},
                             t);
}

float Model::computeCommonVccauxPlPoweredDownVC1(Params& params, Data const& data) const {
    return vtCoefficient(*this, params, data, kVccauxPoweredDown, kVoltageCoefficient[0]);
}

float Model::computeCommonVccauxPlPoweredDownVC2(Params& params, Data const& data) const {
    return vtCoefficient(*this, params, data, kVccauxPoweredDown, kVoltageCoefficient[1]);
}

float Model::computeCommonVccauxPlPoweredDownVC3(Params& params, Data const& data) const {
    return vtCoefficient(*this, params, data, kVccauxPoweredDown, kVoltageCoefficient[2]);
}

float Model::computeCommonVccauxPlPoweredDownVC4(Params& params, Data const& data) const {
    return vtCoefficient(*this, params, data, kVccauxPoweredDown, kVoltageCoefficient[3]);
}

float Model::computeCommonVccauxPlPoweredDownVC5(Params& params, Data const& data) const {
    return vtCoefficient(*this, params, data, kVccauxPoweredDown, kVoltageCoefficient[4]);
}

float Model::computeCommonVccauxPlPoweredDownVC6(Params& params, Data const& data) const {
    return vtCoefficient(*this, params, data, kVccauxPoweredDown, kVoltageCoefficient[5]);
}

float Model::computeCommonVccauxPlPoweredDownVScaling(Params& params, Data const& data) const {
    if (calculateCommonVccauxPlPoweredDownVC1(params, data) == 0.0f) return 1.0f;
    float const c[6] = {calculateCommonVccauxPlPoweredDownVC1(params, data),
                        calculateCommonVccauxPlPoweredDownVC2(params, data),
                        calculateCommonVccauxPlPoweredDownVC3(params, data),
                        calculateCommonVccauxPlPoweredDownVC4(params, data),
                        calculateCommonVccauxPlPoweredDownVC5(params, data),
                        calculateCommonVccauxPlPoweredDownVC6(params, data)};
    return twoSupplyScaling(c, getVccaux(params, data), getVccint(params, data));
}

float Model::computeCommonVccauxPlPoweredDownVoltBinning(Params& params, Data const& data) const {
    return voltBinning(*this, params, data, kVccauxPoweredDown);
}

// ---- A block's leakage (<BLOCK>_<STATE>_<RAIL>_...) ----

float Model::computeVtA(Params& params, Data const& data, Block block) const {
    return vtCoefficient(*this, params, data, component(*this, params, data, block), "A");
}

float Model::computeVtB(Params& params, Data const& data, Block block) const {
    return vtCoefficient(*this, params, data, component(*this, params, data, block), "B");
}

float Model::computeVtC(Params& params, Data const& data, Block block) const {
    return vtCoefficient(*this, params, data, component(*this, params, data, block), "C");
}

float Model::computeVtD(Params& params, Data const& data, Block block) const {
    return vtCoefficient(*this, params, data, component(*this, params, data, block), "D");
}

float Model::computeVtE(Params& params, Data const& data, Block block) const {
    return vtCoefficient(*this, params, data, component(*this, params, data, block), "E");
}

float Model::computeVtConst(Params& params, Data const& data, Block block) const {
    return vtCoefficient(*this, params, data, component(*this, params, data, block), "CONST");
}

// A block with a temperature of its own (the memory stacks) leaks at it, without a rise; every other
// block at the logic's.
float Model::computeVtLeakage(Params& params, Data const& data, Block block) const {
    BlockRow const& blockRow = row(block);
    double const t = blockRow.temperature ? static_cast<double>((this->*blockRow.temperature)(params, data))
                                          : static_cast<double>(getJunctionTemperature(params, data)) -
                                                calculateTjDeltaPl(params, data);
    return prsm::leakage::leakageAt(*this, params, data, block, t);
}

float Model::computePass1VtLeakage(Params& params, Data const& data, Block block) const {
    return prsm::leakage::leakageAt(*this, params, data, block, getJunctionTemperature(params, data));
}

float Model::computeVC1(Params& params, Data const& data, Block block) const {
    return vtCoefficient(*this, params, data, component(*this, params, data, block), kVoltageCoefficient[0]);
}

float Model::computeVC2(Params& params, Data const& data, Block block) const {
    return vtCoefficient(*this, params, data, component(*this, params, data, block), kVoltageCoefficient[1]);
}

float Model::computeVScaling(Params& params, Data const& data, Block block) const {
    float const c1 = calculateVC1(params, data, block);
    if (c1 == 0.0f) return 1.0f;
    return singleSupplyScaling(c1, calculateVC2(params, data, block),
                               getRail(params, data, row(block).rail));
}

float Model::computeVoltBinning(Params& params, Data const& data, Block block) const {
    return voltBinning(*this, params, data, component(*this, params, data, block));
}

float Model::computeDeviceScale(Params& params, Data const& data, Block block) const {
    BlockRow const& where = row(block);
    return IFERROR(data.getDeviceDependentScaleOrError(deviceName(*this, params, data), where.core,
                                                       memberName(where.rail)),
                   1.0f);
}

// A block not in use carries nothing: its coefficients are not even read (the product is 0).
float Model::computeStaticCurrent(Params& params, Data const& data, Block block) const {
    int const count = calculateMultiplier(params, data, block);
    if (count == 0) return 0.0f;
    return calculateVtLeakage(params, data, block) * calculateVScaling(params, data, block) *
           calculateVoltBinning(params, data, block) * static_cast<float>(count) *
           calculateDeviceScale(params, data, block);
}

float Model::computePass1StaticCurrent(Params& params, Data const& data, Block block) const {
    int const count = calculateMultiplier(params, data, block);
    if (count == 0) return 0.0f;
    return calculatePass1VtLeakage(params, data, block) * calculateVScaling(params, data, block) *
           calculateVoltBinning(params, data, block) * static_cast<float>(count) *
           calculateDeviceScale(params, data, block);
}

float Model::computePass1StaticPower(Params& params, Data const& data, Block block) const {
    float const volts = getRail(params, data, row(block).rail);
    if (volts == 0.0f) return 0.0f;
    return volts * calculatePass1StaticCurrent(params, data, block);
}

// ---- Rail outputs ----

// The rail's own leakage plus the currents its RailTerm rows name, added in row order (a float sum
// depends on its order); nothing at 0 V (a NaN voltage computes as usual).
float Model::computeStaticCurrent(Params& params, Data const& data, Rail rail) const {
    if (getRail(params, data, rail) == 0.0f) return 0.0f;
    float total = calculateCommonStaticCurrent(params, data, rail);
    TermsByRail::Rows const& terms = TermsByRail::rows();
    auto term = std::lower_bound(terms.begin(), terms.end(), rail,
                                 [](RailTermRow const* row, Rail r) { return row->rail < r; });
    for (; term != terms.end() && (*term)->rail == rail; ++term)
        total += (this->*(*term)->current)(params, data);
    return total;
}

float Model::computeVcciohbmFpgaStaticCurrent(Params& params, Data const& data) const {
    return calculateCommonStaticCurrent(params, data, Rail::VCCIOHBM);
}

float Model::computeVcciohbmDramStaticCurrent(Params& params, Data const& data) const {
    return calculateStaticCurrent(params, data, Block::HBM_4H_VCCIOHBM) +
           calculateStaticCurrent(params, data, Block::HBM_8H_VCCIOHBM);
}

// ---- The X5IO banks of VCCO10, VCCO11 and VCCO12 ----

float Model::computeX5ioStaticCurrent(Params& params, Data const& data, X5ioRail rail) const {
    if (getRail(params, data, row(rail).rail) == 0.0f) return 0.0f;
    return calculateStaticCurrent(params, data, row(rail).bank);
}

float Model::computeX5ioStaticPower(Params& params, Data const& data, X5ioRail rail) const {
    return getRail(params, data, row(rail).rail) * calculateX5ioStaticCurrent(params, data, rail);
}

float Model::computeX5ioStaticCurrentTpfScaled(Params& params, Data const& data, X5ioRail rail) const {
    float const current = calculateX5ioStaticCurrent(params, data, rail);
    if (!isWorstProcess(*this, params, data)) return current;
    return current * calculateCommonTotalPowerFactor(params, data, row(rail).rail);
}

// The banks' scaled 25-degree leakage under the worst process; the banks add no constant.
float Model::computeX5ioPowerupCurrent(Params& params, Data const& data, X5ioRail rail) const {
    Block const bank = row(rail).bank;
    int const banks = calculateMultiplier(params, data, bank);
    if (banks <= 0 || !isWorstProcess(*this, params, data)) return 0.0f;
    float const factor = calculateCommonTotalPowerFactor(params, data, row(rail).rail);
    return calculateVtLeakage25(params, data, bank) * calculateVScaling(params, data, bank) *
           calculateVoltBinning(params, data, bank) * static_cast<float>(banks) *
           calculateDeviceScale(params, data, bank) * factor;
}

// ---- Block currents shown to the user ----

float Model::computeAdcCoreAdcavccStaticCurrent(Params& params, Data const& data) const {
    return calculateStaticCurrent(params, data, Block::ADC_CORE_ACTIVE_ADCAVCC);
}

float Model::computeAdcCoreAdcavccauxStaticCurrent(Params& params, Data const& data) const {
    return calculateStaticCurrent(params, data, Block::ADC_CORE_ACTIVE_ADCAVCCAUX);
}

float Model::computeAdcCoreVcchsamsStaticCurrent(Params& params, Data const& data) const {
    return calculateStaticCurrent(params, data, Block::ADC_CORE_ACTIVE_VCCHSAMS);
}

float Model::computeDacCoreDacavccStaticCurrent(Params& params, Data const& data) const {
    return calculateStaticCurrent(params, data, Block::DAC_CORE_ACTIVE_DACAVCC);
}

float Model::computeDacCoreDacavccauxStaticCurrent(Params& params, Data const& data) const {
    return calculateStaticCurrent(params, data, Block::DAC_CORE_ACTIVE_DACAVCCAUX);
}

float Model::computeDacCoreDacavttStaticCurrent(Params& params, Data const& data) const {
    return calculateStaticCurrent(params, data, Block::DAC_CORE_ACTIVE_DACAVTT);
}

float Model::computeDacCoreVcchsamsStaticCurrent(Params& params, Data const& data) const {
    return calculateStaticCurrent(params, data, Block::DAC_CORE_ACTIVE_VCCHSAMS);
}

float Model::computeOcm2VccpslpStaticCurrent(Params& params, Data const& data) const {
    return calculateStaticCurrent(params, data, Block::OCM2_ACTIVE_VCCPSLP);
}

float Model::computeOcm2VccpslpStaticPower(Params& params, Data const& data) const {
    return getVccpslp(params, data) * calculateOcm2VccpslpStaticCurrent(params, data);
}

// A transceiver kind's current on its own rails, and the power of that current at each rail's voltage.
float Model::computeGtyStaticCurrent(Params& params, Data const& data) const {
    return calculateStaticCurrent(params, data, Block::GTY_QUAD_MGTYAVCC) +
           calculateStaticCurrent(params, data, Block::GTY_QUAD_MGTYAVTT) +
           calculateStaticCurrent(params, data, Block::GTY_QUAD_MGTYVCCAUX);
}

float Model::computeGtyStaticPower(Params& params, Data const& data) const {
    return getMgtyavcc(params, data) * calculateStaticCurrent(params, data, Block::GTY_QUAD_MGTYAVCC) +
           getMgtyavtt(params, data) * calculateStaticCurrent(params, data, Block::GTY_QUAD_MGTYAVTT) +
           getMgtyvccaux(params, data) * calculateStaticCurrent(params, data, Block::GTY_QUAD_MGTYVCCAUX);
}

float Model::computeGtypStaticCurrent(Params& params, Data const& data) const {
    return calculateStaticCurrent(params, data, Block::GTYP_QUAD_MGTYPAVCC) +
           calculateStaticCurrent(params, data, Block::GTYP_QUAD_MGTYPAVTT) +
           calculateStaticCurrent(params, data, Block::GTYP_QUAD_MGTYPVCCAUX);
}

float Model::computeGtmStaticCurrent(Params& params, Data const& data) const {
    return calculateStaticCurrent(params, data, Block::GTM_QUAD_MGTMAVCC) +
           calculateStaticCurrent(params, data, Block::GTM_QUAD_MGTMAVTT) +
           calculateStaticCurrent(params, data, Block::GTM_QUAD_MGTMVCCAUX) +
           calculateStaticCurrent(params, data, Block::GTM_QUAD_VCCINTGT);
}

// The quads' logic on VCCINT.
float Model::computeGtyVccintStaticCurrent(Params& params, Data const& data) const {
    return calculateStaticCurrent(params, data, Block::GTY_QUAD_TOP_CORE_VCCINT);
}

float Model::computeGtyVccintStaticPower(Params& params, Data const& data) const {
    return getVccint(params, data) * calculateGtyVccintStaticCurrent(params, data);
}

float Model::computeGtypVccintStaticCurrent(Params& params, Data const& data) const {
    return calculateStaticCurrent(params, data, Block::GTYP_QUAD_TOP_CORE_VCCINT);
}

float Model::computeGtypVccintStaticPower(Params& params, Data const& data) const {
    return getVccint(params, data) * calculateGtypVccintStaticCurrent(params, data);
}

float Model::computeGtmVccintStaticCurrent(Params& params, Data const& data) const {
    return calculateStaticCurrent(params, data, Block::GTM_QUAD_TOP_CORE_VCCINT);
}

float Model::computeGtmVccintStaticPower(Params& params, Data const& data) const {
    return getVccint(params, data) * calculateGtmVccintStaticCurrent(params, data);
}

// ---- Region totals ----

float Model::computeStaticPowerAccuracyFactor(Params& params, Data const& data) const {
    if (getEnableAccuracyFactor(params, data) != kYes) return 1.0f;
    return IFERROR(data.getAccuracyFactorOrError(deviceName(*this, params, data), kWorstProcess), 1.0f);
}

float Model::computeStaticPowerManagementFactor(Params& params, Data const& data) const {
    return IFERROR(data.getPowerManagementFactorOrError(deviceName(*this, params, data),
                                                        getPowerManagementMode(params, data)),
                   1.0f);
}

// The AI-engine leakage sits inside VCCINT: it is taken out here and reported on its own.
float Model::computePlStaticPower(Params& params, Data const& data) const {
    static constexpr Rail rails[] = {
        Rail::VCCINT,     Rail::VCCRAM,   Rail::VCCAUX,     Rail::VCCBATT,   Rail::VCCFUSE,
        Rail::VCCO33,     Rail::VCCO25,   Rail::VCCO18,     Rail::VCCO15,    Rail::VCCO135,
        Rail::VCCO12,     Rail::VCCO11,   Rail::VCCO10,     Rail::VCCHSAMS,  Rail::ADCAVCC,
        Rail::ADCAVCCAUX, Rail::DACAVCC,  Rail::DACAVCCAUX, Rail::DACAVTT,   Rail::VCCVCUINT,
        Rail::VCCINTIO,   Rail::VCCHNICX, Rail::VCCCPM5N,   Rail::VCCAUXPLL, Rail::VCCCPM5};
    return sumOfStaticPowers(*this, params, data, rails) * calculateStaticPowerAccuracyFactor(params, data) *
               calculateStaticPowerManagementFactor(params, data) -
           calculateAieStaticPower(params, data);
}

float Model::computeAieStaticPower(Params& params, Data const& data) const {
    return calculateStaticPower(params, data, Rail::VCCME) *
           calculateStaticPowerAccuracyFactor(params, data) *
           calculateStaticPowerManagementFactor(params, data);
}

float Model::computePsPmcStaticPower(Params& params, Data const& data) const {
    static constexpr Rail psRails[] = {Rail::VCCPSLP, Rail::VCCPSFP, Rail::VCCFPD, Rail::VCCLPD,
                                       Rail::VCCOPMIO2};
    static constexpr Rail pmcRails[] = {Rail::VCCPMC,     Rail::VCCAUXPMC, Rail::VCCAUXLPD, Rail::VCCOFIO,
                                        Rail::VCCAUXSMON, Rail::VCCOPMIO0, Rail::VCCOPMIO1};
    float const ps =
        sumOfStaticPowers(*this, params, data, psRails) + calculateOcm2VccpslpStaticPower(params, data);
    float const pmc = sumOfStaticPowers(*this, params, data, pmcRails);
    return (ps + pmc) * calculateStaticPowerAccuracyFactor(params, data) *
           calculateStaticPowerManagementFactor(params, data);
}

float Model::computeNocStaticPower(Params& params, Data const& data) const {
    return calculateStaticPower(params, data, Rail::VCCSOC) *
           calculateStaticPowerAccuracyFactor(params, data) *
           calculateStaticPowerManagementFactor(params, data);
}

float Model::computeGtStaticPower(Params& params, Data const& data) const {
    static constexpr Rail rails[] = {Rail::MGTYAVCC,   Rail::MGTYAVTT,    Rail::MGTYVCCAUX, Rail::MGTYPAVCC,
                                     Rail::MGTYPAVTT,  Rail::MGTYPVCCAUX, Rail::MGTMAVCC,   Rail::MGTMAVTT,
                                     Rail::MGTMVCCAUX, Rail::VCCINTGT};
    return sumOfStaticPowers(*this, params, data, rails) * calculateStaticPowerAccuracyFactor(params, data) *
           calculateStaticPowerManagementFactor(params, data);
}

float Model::computeHbmStaticPower(Params& params, Data const& data) const {
    static constexpr Rail rails[] = {Rail::VCCIOHBM, Rail::VCCHBM, Rail::VCCAUXHBM, Rail::VCCINTIOHBM};
    return sumOfStaticPowers(*this, params, data, rails) * calculateStaticPowerAccuracyFactor(params, data) *
           calculateStaticPowerManagementFactor(params, data);
}

float Model::computeTotalStaticPower(Params& params, Data const& data) const {
    float total = 0.0f;
    total += calculatePlStaticPower(params, data);
    total += calculatePsPmcStaticPower(params, data);
    total += calculateNocStaticPower(params, data);
    total += calculateAieStaticPower(params, data);
    total += calculateGtStaticPower(params, data);
    total += calculateHbmStaticPower(params, data);
    return total;
}
