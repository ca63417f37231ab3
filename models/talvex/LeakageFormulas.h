#pragma once
// The leakage rules shared by the static-power sheets of both architectures, written once. Each is a
// function template over the sheet's model class: the sheets name their cells alike (DEVICE_NAME,
// PROCESS, the rail family's COMMON_<RAIL>_... cells, a block family's <BLOCK>_... cells), so the
// generated getters and calculate... functions have the same names in both. A sheet binds its cells to
// these in its table's [formulas]; what only one sheet has (a thermal step, a rail scaled by two
// supplies) stays in that sheet's own file.
//
// Leakage of one rail or block: a fifth-order polynomial in the junction temperature (coefficients per
// device, process and component), times an exponential voltage scaling, a voltage-binning factor,
// and the count or share of leaking instances. Under the worst process ("MAX") the currents are also
// given scaled by the rail's total-power factor, and every rail has a power-up current: its leakage at
// 25 degrees, scaled, plus a constant.

#include <prsm/framework/PRSMModelTypes.h>
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>

namespace prsm::leakage {

inline constexpr char kWorstProcess[] = "MAX";

// A string cell read in place, after its getter or cell function has filled it: the operands of every
// table lookup, read a thousand times a calculate, are not copied each time.
template <typename Params, typename Fill>
std::string const& inPlace(Params& params, typename Params::StringEnum cell, Fill fill) {
    if (params[cell] == prsm::kStringNotSet) fill();
    return params[cell];
}

template <typename Model>
std::string const& deviceName(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return inPlace(params, ParamsOf<Model>::DEVICE_NAME, [&] { model.getDeviceName(params, data); });
}

template <typename Model>
std::string const& skuName(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return inPlace(params, ParamsOf<Model>::SKU_NAME, [&] { model.calculateSkuName(params, data); });
}

template <typename Model>
std::string const& process(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return inPlace(params, ParamsOf<Model>::PROCESS, [&] { model.getProcess(params, data); });
}

template <typename Model>
bool isWorstProcess(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return process(model, params, data) == kWorstProcess;
}

// IFERROR(VT_COEFFICIENT(device, process, component, key), 0).
template <typename Model>
float vtCoefficient(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                    std::string_view component, std::string_view key) {
    return PRSMHelperUtils::IFERROR(
        data.getVtCoefficientOrError(deviceName(model, params, data), process(model, params, data), component,
                                     key),
        0.0f);
}

// IFERROR(BINNING_FACTORS(device, process, component, grade), 1); the grade is the sheet's SKU or bin.
template <typename Model>
float voltBinning(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                  std::string_view component, std::string_view grade) {
    return PRSMHelperUtils::IFERROR(
        data.getBinningFactorsOrError(deviceName(model, params, data), process(model, params, data),
                                      component, grade),
        1.0f);
}

// The coefficients of a leakage polynomial in the temperature t: A·t⁵ + B·t⁴ + C·t³ + D·t² + E·t + CONST.
struct Quintic {
    float a, b, c, d, e, constant;
};

// The polynomial at t, the powers of t in double, the result stored as float.
inline float leakagePolynomial(Quintic const& q, double t) {
    double const t2 = t * t;
    double const t3 = t2 * t;
    double const t4 = t3 * t;
    double const t5 = t4 * t;
    return static_cast<float>(q.a * t5 + q.b * t4 + q.c * t3 + q.d * t2 + q.e * t + q.constant);
}

// The same polynomial at exactly 25 degrees, its powers written out.
inline float leakageAt25(Quintic const& q) {
    return static_cast<float>(q.a * 9765625.0 + q.b * 390625.0 + q.c * 15625.0 + q.d * 625.0 + q.e * 25.0 +
                              q.constant);
}

// 1 when C1 is 0, else C1·exp(C2·V).
inline float singleSupplyScaling(float c1, float c2, float volts) {
    if (c1 == 0.0f) return 1.0f;
    return static_cast<float>(c1 * std::exp(static_cast<double>(c2) * volts));
}

// ---- A rail's own leakage: the COMMON_<RAIL>_... cells of the rail family ----

// COMMON_<RAIL>_VT_A .. _VT_CONST, _V_C1, _V_C2: the rail's row of VT_COEFFICIENT under that key.
template <typename Model>
float commonCoefficient(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                        typename Model::Rail rail, char const* key) {
    return vtCoefficient(model, params, data, Model::memberName(rail), key);
}

// The coefficients of the rail's polynomial: COMMON_<RAIL>_VT_A .. _VT_CONST.
template <typename Model>
Quintic quintic(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                typename Model::Rail rail) {
    return {model.calculateCommonVtA(params, data, rail), model.calculateCommonVtB(params, data, rail),
            model.calculateCommonVtC(params, data, rail), model.calculateCommonVtD(params, data, rail),
            model.calculateCommonVtE(params, data, rail), model.calculateCommonVtConst(params, data, rail)};
}

// V_C1·exp(V_C2·V) on the rail's own voltage, 1 when V_C1 is 0 (V_C2 is then not read).
template <typename Model>
float commonVoltageScaling(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                           typename Model::Rail rail) {
    float const c1 = model.calculateCommonVC1(params, data, rail);
    if (c1 == 0.0f) return 1.0f;
    return singleSupplyScaling(c1, model.calculateCommonVC2(params, data, rail),
                               model.getRail(params, data, rail));
}

template <typename Model>
float commonVoltBinning(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                        typename Model::Rail rail) {
    return voltBinning(model, params, data, Model::memberName(rail), skuName(model, params, data));
}

// VT_LEAKAGE · V_SCALING · VOLT_BINNING · MULTIPLIER.
template <typename Model>
float commonStaticCurrent(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                          typename Model::Rail rail) {
    return model.calculateCommonVtLeakage(params, data, rail) *
           model.calculateCommonVScaling(params, data, rail) *
           model.calculateCommonVoltBinning(params, data, rail) *
           model.calculateCommonMultiplier(params, data, rail);
}

// IFERROR(POWERUP_CURRENT(device, rail), 0), milliamperes to amperes.
template <typename Model>
float powerupConst(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                   typename Model::Rail rail) {
    return PRSMHelperUtils::IFERROR(
               data.getPowerupCurrentOrError(deviceName(model, params, data), Model::memberName(rail)),
               0.0f) /
           1000.0f;
}

// A worst-process figure at 25 degrees: the scaled 25-degree leakage times the total-power factor,
// plus a constant; 0 under any other process or with a multiplier not above 0. A total-power factor
// without a row throws (the factor has no default).
template <typename Model>
float powerupCurrent(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                     typename Model::Rail rail) {
    float const multiplier = model.calculateCommonMultiplier(params, data, rail);
    if (!(multiplier > 0.0f) || !isWorstProcess(model, params, data)) return 0.0f;
    float const factor = model.calculateCommonTotalPowerFactor(params, data, rail);
    return model.calculateCommonVtLeakage25(params, data, rail) *
               model.calculateCommonVScaling(params, data, rail) *
               model.calculateCommonVoltBinning(params, data, rail) * multiplier * factor +
           model.calculateCommonPowerupConst(params, data, rail);
}

// <RAIL>_POWERUP_CURRENT takes the rail's own power-up current over.
template <typename Model>
float railPowerupCurrent(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                         typename Model::Rail rail) {
    return model.calculateCommonPowerupCurrent(params, data, rail);
}

// <RAIL>_STATIC_CURRENT_TPF_SCALED: times the rail's total-power factor under the worst process only.
template <typename Model>
float tpfScaled(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                typename Model::Rail rail) {
    float const current = model.calculateStaticCurrent(params, data, rail);
    if (!isWorstProcess(model, params, data)) return current;
    return current * model.calculateCommonTotalPowerFactor(params, data, rail);
}

// <RAIL>_STATIC_POWER: the rail's voltage times its current.
template <typename Model>
float railStaticPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                      typename Model::Rail rail) {
    return model.getRail(params, data, rail) * model.calculateStaticCurrent(params, data, rail);
}

// A region's static power: its rails' static powers added left to right from 0.
template <typename Model, std::size_t N>
float sumOfStaticPowers(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                        typename Model::Rail const (&rails)[N]) {
    float sum = 0.0f;
    for (typename Model::Rail const rail : rails) sum += model.calculateStaticPower(params, data, rail);
    return sum;
}

// ---- A block's leakage: the <BLOCK>_... cells of the block family ----

// <BLOCK>_VT_A .. _VT_CONST, _V_C1, _V_C2 of a sheet whose block member names are their component keys.
template <typename Model>
float blockCoefficient(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                       typename Model::Block block, char const* key) {
    return vtCoefficient(model, params, data, Model::memberName(block), key);
}

// The coefficients of the block's polynomial: <BLOCK>_VT_A .. _VT_CONST.
template <typename Model>
Quintic quintic(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                typename Model::Block block) {
    return {model.calculateVtA(params, data, block), model.calculateVtB(params, data, block),
            model.calculateVtC(params, data, block), model.calculateVtD(params, data, block),
            model.calculateVtE(params, data, block), model.calculateVtConst(params, data, block)};
}

// ---- Either family ----

// A rail's or a block's leakage polynomial at temperature t (each sheet says which t).
template <typename Model, typename Member>
float leakageAt(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, Member member,
                double t) {
    return leakagePolynomial(quintic(model, params, data, member), t);
}

template <typename Model, typename Member>
float leakage25(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, Member member) {
    return leakageAt25(quintic(model, params, data, member));
}

}  // namespace prsm::leakage
