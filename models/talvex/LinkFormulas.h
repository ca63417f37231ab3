#pragma once
// What the transceiver and hard link-IP sheets share: a figure given at a rail's nominal voltage follows
// (V / nominal)^VPOW at the rail's voltage. Both sheets' data hold NOMINAL_VOLTAGE.<rail> and
// VOLTAGE_SCALING.VPOW. The transceiver sheets of both architectures also share a lane's power law.

#include <prsm/framework/PRSMModelTypes.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace prsm::link {

// 1 when the file gives the rail no nominal voltage; a file without VPOW keeps the square law.
template <typename Data>
float railVoltageFactor(Data const& data, std::string_view rail, float volts) {
    float const nominal = PRSMHelperUtils::IFERROR(data.getNominalVoltageOrError(rail), 0.0f);
    if (nominal <= 0.0f) return 1.0f;
    float const vpow =
        PRSMHelperUtils::IFERROR(data.getVoltageScalingOrError(Data::VoltageScalingKey::VPOW), 2.0f);
    return std::pow(volts / nominal, vpow);
}


// ---- A transceiver sheet's lanes and quads ---------------------------------------------------------
// Both architectures' transceiver sheets: LANES lanes per link, INSTANCE_COUNT links, LANE_USE naming the
// halves that run; each link powers its own whole quads of four lanes.

inline constexpr int kLanesPerQuad = 4;

inline std::int64_t wideProduct(int a, int b) {
    return static_cast<std::int64_t>(a) * static_cast<std::int64_t>(b);
}

// Formed in 64 bits; a figure beyond the int range wraps as the cell stores it.
inline int truncatedProduct(int a, int b) {
    return static_cast<int>(wideProduct(a, b));
}

template <typename Model>
int quadsPerInstance(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    int const lanes = model.getLanes(params, data);
    return lanes <= 0 ? 0 : (lanes + kLanesPerQuad - 1) / kLanesPerQuad;
}

template <typename Model>
int txLanes(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    std::string_view const use = model.refLaneUse(params, data);
    return use == "TX_RX" || use == "TX_ONLY" ? model.getLanes(params, data) : 0;
}

template <typename Model>
int rxLanes(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    std::string_view const use = model.refLaneUse(params, data);
    return use == "TX_RX" || use == "RX_ONLY" ? model.getLanes(params, data) : 0;
}

template <typename Model>
int laneCount(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return truncatedProduct(model.getInstanceCount(params, data), model.getLanes(params, data));
}

// The quads the links power, counted under their own family only.
template <typename Model, typename Family>
int usedQuads(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, Family family) {
    if (Model::memberName(family) != model.refGtType(params, data)) return 0;
    return truncatedProduct(model.getInstanceCount(params, data), model.calculateQuadsPerInstance(params, data));
}

template <typename Model>
float minLanes(Model const&, ParamsOf<Model>&, DataOf<Model> const&) {
    return 1.0f;
}

template <typename Model>
float maxLanes(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return static_cast<float>(kLanesPerQuad * model.calculateAvailableQuads(params, data));
}

// At least one lane, and the links' quads within the part's.
template <typename Model>
bool lanesFit(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.getLanes(params, data) >= 1 &&
           wideProduct(model.getInstanceCount(params, data), model.calculateQuadsPerInstance(params, data)) <=
               model.calculateAvailableQuads(params, data);
}

// One lane's share of a link's power, in the link's unit.
template <typename Model>
float powerPerLane(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    int const lanes = model.getLanes(params, data);
    return lanes > 0 ? model.calculateInstancePower(params, data) / static_cast<float>(lanes) : 0.0f;
}

// A RATE_LIMIT figure of the link's family; 0 when the file lacks it.
template <typename Model>
float rateLimit(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, std::string_view key) {
    return PRSMHelperUtils::IFERROR(data.getRateLimitOrError(model.refGtType(params, data), key), 0.0f);
}

// A line rate within the family's limits (GET_MIN_LINE_RATE, GET_MAX_LINE_RATE).
template <typename Model>
bool lineRateInRange(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const rate = model.getLineRate(params, data);
    return rate > 0.0f && rate >= model.calculateGetMinLineRate(params, data) &&
           rate <= model.calculateGetMaxLineRate(params, data);
}

// ---- A transceiver sheet's rails ---------------------------------------------------------------------
// Each family's row ([rows.GtFamily] of the table) names the rail each role draws from: the quads' three
// analog rails, then the coding sublayer's digital rail. Figures are per link in mW at nominal
// voltages; a rail's and the sheet's totals are in W for all the links.

// The row of the link's family (GT_TYPE); none for a family the sheet does not know.
template <typename Model>
typename Model::GtFamilyRow const* familyRow(Model const& model, ParamsOf<Model>& params,
                                             DataOf<Model> const& data) {
    std::string_view const type = model.refGtType(params, data);
    for (std::size_t i = 0; i < Model::kGtFamilyMembers; ++i) {
        auto const family = static_cast<typename Model::GtFamily>(i);
        if (Model::memberName(family) == type) return &Model::row(family);
    }
    return nullptr;
}

template <typename Row, typename Role>
auto railOf(Row const& row, Role role) {
    switch (role) {
        case Role::AVCC:
            return row.avcc;
        case Role::AVTT:
            return row.avtt;
        case Role::VCCAUX:
            return row.vccaux;
        case Role::PCS:
            break;
    }
    return row.pcs;
}

// The part's own scale of the family's figures, else the DEFAULT row's, else 1.
template <typename Model>
float familyDeviceScale(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    std::string_view const family = model.refGtType(params, data);
    return PRSMHelperUtils::IFERROR(
        data.getBlockPowerScaleOrError(model.refDevice(params, data), family),
        PRSMHelperUtils::IFERROR(data.getBlockPowerScaleOrError("DEFAULT", family), 1.0f));
}

// The role's figure on the rail its family draws it from, at the rail's voltage.
template <typename Model>
float roleInstancePower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                        typename Model::Role role) {
    auto const* row = familyRow(model, params, data);
    if (row == nullptr) return 0.0f;
    auto const rail = railOf(*row, role);
    float const factor = railVoltageFactor(data, Model::memberName(rail), model.getRail(params, data, rail));
    return model.calculateNominalPower(params, data, role) * factor * model.calculateDeviceScale(params, data);
}

template <typename Model>
float linkInstancePower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.calculateAvccInstancePower(params, data) + model.calculateAvttInstancePower(params, data) +
           model.calculateVccauxInstancePower(params, data) + model.calculatePcsInstancePower(params, data);
}

// The roles the link's family draws from this rail, for all the links.
template <typename Model>
float railPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, typename Model::Rail rail) {
    using Role = typename Model::Role;
    auto const* row = familyRow(model, params, data);
    if (row == nullptr) return 0.0f;
    float milliwatts = 0.0f;
    for (Role role : {Role::AVCC, Role::AVTT, Role::VCCAUX, Role::PCS})
        if (railOf(*row, role) == rail) milliwatts += model.calculateInstancePower(params, data, role);
    return static_cast<float>(model.getInstanceCount(params, data)) * milliwatts * 0.001f;
}

template <typename Model>
float linksPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return static_cast<float>(model.getInstanceCount(params, data)) * model.calculateInstancePower(params, data) *
           0.001f;
}

// ---- A transceiver lane's analog and coding power at nominal voltages --------------------------------
// Both architectures' transceiver sheets read LANE_POWER.<family>.<key> (mW, or mW per GBd for the
// *_PER_GBD keys, mW per Gb/s for PCS_PER_GBPS): a bias per half lane and per PLL, an energy per symbol,
// and the coding sublayer's energy per bit. An LC PLL serves a quad of four lanes, a ring PLL one lane.

template <typename Model>
float lanePower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, std::string_view key) {
    return PRSMHelperUtils::IFERROR(data.getLanePowerOrError(model.refGtType(params, data), key), 0.0f);
}

// The PLLs of one link on a rail: one per quad (LC) or one per lane (ring).
template <typename Model>
float pllPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, std::string_view lcKey,
               std::string_view ringKey) {
    std::string_view const pll = model.refPllType(params, data);
    if (pll == "LC")
        return static_cast<float>(model.calculateQuadsPerInstance(params, data)) *
               lanePower(model, params, data, lcKey);
    if (pll == "RING")
        return static_cast<float>(model.getLanes(params, data)) * lanePower(model, params, data, ringKey);
    return 0.0f;
}

// A figure per transmitting half lane and one per receiving half lane, for the link's lanes.
template <typename Model>
float halves(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, float tx, float rx) {
    return static_cast<float>(model.calculateTxLanes(params, data)) * tx +
           static_cast<float>(model.calculateRxLanes(params, data)) * rx;
}

// `symbols` is the symbol rate in GBd that the rate terms see (a PAM4 symbol may cost more than one).
template <typename Model>
float avccPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, float symbols) {
    float const dfe = model.refEqualization(params, data) == "DFE"
                          ? lanePower(model, params, data, "DFE_AVCC_PER_GBD")
                          : 0.0f;
    float const tx = lanePower(model, params, data, "TX_AVCC") +
                     lanePower(model, params, data, "TX_AVCC_PER_GBD") * symbols;
    float const rx = lanePower(model, params, data, "RX_AVCC") +
                     (lanePower(model, params, data, "RX_AVCC_PER_GBD") + dfe) * symbols;
    return halves(model, params, data, tx, rx) +
           pllPower(model, params, data, "LC_PLL_AVCC", "RING_PLL_AVCC");
}

template <typename Model>
float avttPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return halves(model, params, data, lanePower(model, params, data, "TX_AVTT"),
                  lanePower(model, params, data, "RX_AVTT"));
}

template <typename Model>
float vccauxPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return halves(model, params, data, lanePower(model, params, data, "TX_VCCAUX"),
                  lanePower(model, params, data, "RX_VCCAUX")) +
           pllPower(model, params, data, "LC_PLL_VCCAUX", "RING_PLL_VCCAUX");
}

// Each running direction codes the line rate's bits; a missing encoding codes like 64b/66b (factor 1).
template <typename Model>
float pcsPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    float const coding =
        PRSMHelperUtils::IFERROR(data.getEncodingFactorOrError(model.refEncoding(params, data)), 1.0f);
    float const perDirection =
        lanePower(model, params, data, "PCS_PER_GBPS") * model.getLineRate(params, data) * coding;
    return halves(model, params, data, perDirection, perDirection);
}

}  // namespace prsm::link
