// Formulas of the logic-element sheet. Capacitances are in pF and frequencies in MHz, so that
// frequency x capacitance x V^VPOW x 0.001 gives a per-instance figure in mW and LOGIC_POWER, a
// further 0.001 on the instance total, is in W. A pin toggles at half its signal rate.
#include <prsm/models/talvex/PRSMTalvexCleLogicModel.h>
#include <prsm/models/talvex/PRSMTalvexCleLogicCells.h>

#include <prsm/framework/PRSMCellSupport.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cmath>

using PRSMHelperUtils::IFERROR;
using Model = PRSMTalvexCleLogicModel;
using Data = Model::Data;

namespace {

// LEFT(text, length) == prefix, without the copy.
bool startsWith(std::string_view text, char const* prefix, std::size_t length) {
    return text.size() >= length && text.compare(0, length, prefix) == 0;
}

bool isMemoryLut(std::string_view type) {
    return type == "LUT_DRAM" || type == "LUT_SRL";
}

char const* a5ListName(std::string const& type) {
    return isMemoryLut(type) ? "A5_PIN_TYPE_LUTMEM" : "A5_PIN_TYPE_LUT";
}

constexpr Model::Pin kAddressPins[] = {Model::Pin::A1, Model::Pin::A2, Model::Pin::A3,
                                       Model::Pin::A4, Model::Pin::A5, Model::Pin::A6};

// LUT_CAP's entries for the address pins and for the internal nodes of inputs 1 to 5.
constexpr Data::LutCapKey kAddressPinCaps[] = {Data::LutCapKey::A1, Data::LutCapKey::A2, Data::LutCapKey::A3,
                                               Data::LutCapKey::A4, Data::LutCapKey::A5, Data::LutCapKey::A6};
constexpr Data::LutCapKey kInternalCaps[] = {Data::LutCapKey::A1INT, Data::LutCapKey::A2INT,
                                             Data::LutCapKey::A3INT, Data::LutCapKey::A4INT,
                                             Data::LutCapKey::A5INT};

// The capacitance of a pin: the look-up table's for address and output pins, the miscellaneous
// table's for bypass and output-mux pins, the look-ahead chain's for the carry outputs.
float pinCapacitance(Data const& data, Model::Pin pin) {
    switch (pin) {
        case Model::Pin::BYP:
            return data.getMiscCap(Data::MiscCapKey::BYP);
        case Model::Pin::OFMUX:
            return data.getMiscCap(Data::MiscCapKey::OFMUX);
        case Model::Pin::COUTB:
            return data.getLookaheadCap(Data::LookaheadCapKey::COUTB);
        case Model::Pin::COUTD:
            return data.getLookaheadCap(Data::LookaheadCapKey::COUTD);
        case Model::Pin::COUTF:
            return data.getLookaheadCap(Data::LookaheadCapKey::COUTF);
        case Model::Pin::COUTH:
            return data.getLookaheadCap(Data::LookaheadCapKey::COUTH);
        case Model::Pin::OP:
            return data.getLutCap(Data::LutCapKey::OP);
        default:
            return data.getLutCap(kAddressPinCaps[static_cast<int>(pin) - static_cast<int>(Model::Pin::A1)]);
    }
}

}  // namespace

// ---- Defaults -------------------------------------------------------------------------------------

float Model::defaultSigRate(Params& params, Data const& data, Pin) const {
    return getClockFreq(params, data) * getToggleRate(params, data);
}

float Model::defaultQSigRate(Params& params, Data const& data) const {
    return getClockFreq(params, data) * getToggleRate(params, data);
}

// The first choice that the instance type allows; "UNUSED" when the file offers none.
std::string Model::defaultA5PinType(Params& params, Data const& data) const {
    auto const list = data.m_DropdownLists.find(a5ListName(getInstanceType(params, data)));
    if (list == data.m_DropdownLists.end() || list->second.empty()) return "UNUSED";
    return list->second.front();
}

std::vector<std::string> Model::validListA5PinType(Params& params, Data const& data) const {
    return data.getDropdownLists(a5ListName(getInstanceType(params, data)));
}

// ---- Pins and capacitance-frequency products ---------------------------------------------------------

float Model::computeVccintScale(Params& params, Data const& data) const {
    return IFERROR(
        data.getBlockPowerScaleOrError(refDevice(params, data), "CLE_LOGIC_VCCINT"),
        IFERROR(data.getBlockPowerScaleOrError(Data::BlockPowerScaleKey::DEFAULT_CLE_LOGIC_VCCINT), 1));
}

float Model::computeFreq(Params& params, Data const& data, Pin pin) const {
    return getSigRate(params, data, pin) * 0.5f;
}

float Model::computePinComponent(Params& params, Data const& data, Pin pin) const {
    float const capacitance = pinCapacitance(data, pin);
    return calculateFreq(params, data, pin) * capacitance;
}

// Input k drives the internal nodes of inputs k to 5; the sixth input drives no internal node of its own.
float Model::computeIntComponent(Params& params, Data const& data, LutInput input) const {
    int const k = static_cast<int>(input);
    if (input == LutInput::A6) return 0.0f;
    float capacitance = 0.0f;
    for (int j = k; j <= static_cast<int>(LutInput::A5); ++j) capacitance += data.getLutCap(kInternalCaps[j]);
    return calculateFreq(params, data, kAddressPins[k]) * capacitance;
}

float Model::computeMaxIntComponent(Params& params, Data const& data) const {
    return PRSMHelperUtils::MAX(calculateA1IntComponent(params, data), calculateA2IntComponent(params, data),
                                calculateA3IntComponent(params, data), calculateA4IntComponent(params, data),
                                calculateA5IntComponent(params, data), calculateA6IntComponent(params, data));
}

// Only the largest internal component counts: one internal path switches per toggle.
float Model::computeLutCapFreq(Params& params, Data const& data) const {
    if (!startsWith(refInstanceType(params, data), "LUT", 3)) return 0.0f;
    float sum = 0.0f;
    for (Pin pin : kAddressPins) sum += calculatePinComponent(params, data, pin);
    return sum + calculateOpPinComponent(params, data) + calculateMaxIntComponent(params, data);
}

float Model::computeBypCapFreq(Params& params, Data const& data) const {
    return startsWith(refInstanceType(params, data), "BYP", 3) ? calculateBypPinComponent(params, data)
                                                               : 0.0f;
}

float Model::computeLookaheadCapFreq(Params& params, Data const& data) const {
    if (!startsWith(refInstanceType(params, data), "LOOKAHEAD", 9)) return 0.0f;
    return calculateCoutbPinComponent(params, data) + calculateCoutdPinComponent(params, data) +
           calculateCoutfPinComponent(params, data) + calculateCouthPinComponent(params, data);
}

// The output multiplexers are counted by their own instance counts, whatever the group's type.
float Model::computeOfmuxCapFreq(Params& params, Data const& data) const {
    return calculateOfmuxPinComponent(params, data);
}

float Model::computeRegCapFreq(Params& params, Data const& data) const {
    std::string const& type = refInstanceType(params, data);
    if (!startsWith(type, "REG", 3)) return 0.0f;
    return getQSigRate(params, data) * data.getRegCap(type);
}

float Model::computeMemoryWriteCapFreq(Params& params, Data const& data) const {
    std::string_view const type = refInstanceType(params, data);
    if (type == "LUT_DRAM")
        return data.getLutCap(Data::LutCapKey::C_LRAM) * getClockFreq(params, data) *
               getLutWeProb(params, data);
    if (type == "LUT_SRL")
        return getOpSigRate(params, data) * data.getLutCap(Data::LutCapKey::CLSRL) *
               getLutWeProb(params, data);
    return 0.0f;
}

// ---- Components: capacitance-frequency product x V^VPOW x 0.001 x device scale ---------------------------

// V^VPOW, which every component uses.
float Model::computeVccintPower(Params& params, Data const& data) const {
    return std::pow(getVccint(params, data), data.getMiscCap(Data::MiscCapKey::VPOW));
}

namespace {

// X * P in single precision, then 0.001 and the device scale in double, stored as single precision.
float component(Model const& model, Model::Params& params, Model::Data const& data, float capFreq) {
    float const vpowFactor = model.derivedVccintPower(params, data);
    float const switched = capFreq * vpowFactor;
    return static_cast<float>(static_cast<double>(switched) * 0.001 *
                              static_cast<double>(model.calculateVccintScale(params, data)));
}

}  // namespace

float Model::computeLutComponent(Params& params, Data const& data) const {
    return component(*this, params, data, calculateLutCapFreq(params, data));
}
float Model::computeMemoryWriteComponent(Params& params, Data const& data) const {
    return component(*this, params, data, calculateMemoryWriteCapFreq(params, data));
}
float Model::computeRegInstancePower(Params& params, Data const& data) const {
    return component(*this, params, data, calculateRegCapFreq(params, data));
}
float Model::computeBypInstancePower(Params& params, Data const& data) const {
    return component(*this, params, data, calculateBypCapFreq(params, data));
}
float Model::computeBypComponent(Params& params, Data const& data) const {
    return component(*this, params, data, calculateBypCapFreq(params, data));
}
float Model::computeLookaheadInstancePower(Params& params, Data const& data) const {
    return component(*this, params, data, calculateLookaheadCapFreq(params, data));
}
float Model::computeLookaheadComponent(Params& params, Data const& data) const {
    return component(*this, params, data, calculateLookaheadCapFreq(params, data));
}
float Model::computeOfmuxComponent(Params& params, Data const& data) const {
    return component(*this, params, data,
                     getLutOfmuxInstanceCount(params, data) * calculateOfmuxCapFreq(params, data));
}
float Model::computeBypOfmuxComponent(Params& params, Data const& data) const {
    return component(*this, params, data,
                     getBypOfmuxInstanceCount(params, data) * calculateOfmuxCapFreq(params, data));
}
float Model::computeLookaheadOfmuxComponent(Params& params, Data const& data) const {
    return component(*this, params, data,
                     getLookaheadOfmuxInstanceCount(params, data) * calculateOfmuxCapFreq(params, data));
}
float Model::computeOfmuxInstancePower(Params& params, Data const& data) const {
    int const muxes = getBypOfmuxInstanceCount(params, data) + getLookaheadOfmuxInstanceCount(params, data) +
                      getLutOfmuxInstanceCount(params, data);
    return component(*this, params, data, muxes * calculateOfmuxCapFreq(params, data));
}

// ---- Per-type totals and the group's power ---------------------------------------------------------------

float Model::computeLutInstancePower(Params& params, Data const& data) const {
    return calculateLutComponent(params, data) + calculateMemoryWriteComponent(params, data) +
           calculateOfmuxComponent(params, data);
}

// A bypass or carry group's total is its own component plus that of the output multiplexers it uses.
float Model::computeBypPower(Params& params, Data const& data) const {
    return calculateBypComponent(params, data) + calculateBypOfmuxComponent(params, data);
}
float Model::computeLookaheadPower(Params& params, Data const& data) const {
    return calculateLookaheadComponent(params, data) + calculateLookaheadOfmuxComponent(params, data);
}

// Every candidate is evaluated (and cached) before the instance type picks one.
float Model::computeLogicPower(Params& params, Data const& data) const {
    float const reg = calculateRegInstancePower(params, data);
    float const lut = calculateLutInstancePower(params, data);
    float const ofmux = calculateOfmuxInstancePower(params, data);
    float const byp = calculateBypInstancePower(params, data);
    float const lookahead = calculateLookaheadInstancePower(params, data);
    std::string_view const type = refInstanceType(params, data);
    float perInstance = 0.0f;
    if (startsWith(type, "REG", 3))
        perInstance = reg;
    else if (startsWith(type, "LUT", 3))
        perInstance = lut;
    else if (startsWith(type, "OFMUX", 5))
        perInstance = ofmux;
    else if (startsWith(type, "BYP", 3))
        perInstance = byp;
    else if (startsWith(type, "LOOKAHEAD", 9))
        perInstance = lookahead;
    return static_cast<float>(getInstanceCount(params, data) * perInstance * 0.001);
}

// ---- The legacy estimator's figure
// -------------------------------------------------------------------------

// The legacy estimator charges every pin of the table and every internal node at once.
float Model::computeKpeLutPinCap(Params&, Data const& data) const {
    float sum = 0.0f;
    for (Data::LutCapKey key : kAddressPinCaps) sum += data.getLutCap(key);
    return sum + data.getLutCap(Data::LutCapKey::OP);
}

float Model::computeKpeLutIntCap(Params&, Data const& data) const {
    float sum = 0.0f;
    for (Data::LutCapKey key : kInternalCaps) sum += data.getLutCap(key);
    return sum;
}

float Model::computeKpeLutCap(Params& params, Data const& data) const {
    return (calculateKpeLutPinCap(params, data) + calculateKpeLutIntCap(params, data)) * 1.01f;
}

float Model::computeLutKpePower(Params& params, Data const& data) const {
    float const v = getVccint(params, data);
    float const switched = v * v * calculateKpeLutCap(params, data) * getToggleRate(params, data);
    return static_cast<float>(getClockFreq(params, data) * switched * 0.5 * 0.001 *
                              calculateVccintScale(params, data));
}

// A shift register is costed like distributed RAM: the table's figure plus the write component.
float Model::computeKpeLogicPower(Params& params, Data const& data) const {
    float const reg = calculateRegInstancePower(params, data);
    float const lut = calculateLutKpePower(params, data);
    float const write = calculateMemoryWriteComponent(params, data);
    std::string_view const type = refInstanceType(params, data);
    float perInstance = 0.0f;
    if (type == "REG_FF")
        perInstance = reg;
    else if (type == "LUT_LOGIC")
        perInstance = lut;
    else if (type == "LUT_DRAM" || type == "LUT_SRL")
        perInstance = lut + write;
    return static_cast<float>(getInstanceCount(params, data) * perInstance * 0.001);
}
