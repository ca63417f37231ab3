#pragma once
// What the transceiver and hard link-IP sheets share: a figure given at a rail's nominal voltage follows
// (V / nominal)^VPOW at the rail's voltage. Both sheets' data hold NOMINAL_VOLTAGE.<rail> and
// VOLTAGE_SCALING.VPOW. The transceiver sheets of both architectures also share a lane's power law.

#include <prsm/framework/PRSMModelTypes.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cmath>
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
