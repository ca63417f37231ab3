#pragma once
// Formulas shared by the block-RAM and UltraRAM sheets. Both memories are an array of bit cells behind
// two ports A and B; each template works on the cells that both sheets name alike, and takes the
// memory's block key ("BRAM36", "BRAM18", "URAM288") where a table is read by block.
//
// A port's work is counted in events per second (MHz): array reads and writes, and output updates.
// VCCINT (the port logic, its clock, the routing into the block, the cascade buses) is switched
// capacitance: pF x MHz x VCCINT^VPOW x 0.001 gives mW, a data bit counting half its toggles (0.5 C V^2
// per transition). The array on VCCRAM (VCCBRAM on the older architecture), and the word-line boost on
// VCCAUX where a memory has one, is energy per access: pJ x MHz x 0.001 gives mW, scaled from the
// rail's nominal voltage by (V/Vnom)^VPOW.
// Only the blocks that are awake draw dynamic power.

#include <prsm/framework/PRSMModelTypes.h>
#include <prsm/models/talvex/DeviceScale.h>
#include <prsm/sheetfunc/PRSMHelperUtils.h>

#include <cmath>
#include <string>
#include <string_view>
#include <vector>

namespace prsm::ram {

// What a port does in a memory mode: read and write (the write share of its enabled clocks writes),
// only write (no output), or only read.
enum class Access { ReadWrite, WriteOnly, ReadOnly };

// The simple-dual-port memories (and the FIFO built on them) write through A and read through B; a
// ROM only reads; every other mode reads and writes through each port it uses.
template <typename Port>
Access portAccess(std::string_view mode, Port port) {
    bool const isA = port == Port::A;
    if (mode == "SIMPLE_DUAL_PORT" || mode == "FIFO") return isA ? Access::WriteOnly : Access::ReadOnly;
    if (mode == "ROM") return Access::ReadOnly;
    return Access::ReadWrite;
}

inline bool isYes(std::string_view text) {
    return text == "YES";
}

// A table figure, or 0 when the file has no such entry.
template <typename Data>
float portCap(Data const& data, std::string_view block, char const* key) {
    return PRSMHelperUtils::IFERROR(data.getPortCapOrError(block, key), 0.0f);
}
template <typename Data>
float arrayEnergy(Data const& data, std::string_view block, char const* key) {
    return PRSMHelperUtils::IFERROR(data.getArrayEnergyOrError(block, key), 0.0f);
}

// ---- Instances awake and asleep -----------------------------------------------------------------

// The instances asleep: the sleep share of the instance count, to the nearest whole block (a share far
// out of range saturates rather than overflowing the count).
template <typename Model>
int sleepingInstances(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    double const asleep = std::round(static_cast<double>(model.getInstanceCount(params, data)) *
                                     static_cast<double>(model.getSleepRate(params, data)));
    return PRSMHelperUtils::toIntSaturated(asleep);
}

template <typename Model>
int activeInstances(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return PRSMHelperUtils::toIntSaturated(static_cast<double>(model.getInstanceCount(params, data)) -
                                           sleepingInstances(model, params, data));
}

// ---- Block RAM: 18 Kb halves and the cascade mode -------------------------------------------------

// 36 Kb sites for a number of blocks: two 18 Kb halves share a site, so halves round up.
inline int bram36Sites(std::string_view blockType, int blocks) {
    return blockType == "BRAM18" ? blocks / 2 + blocks % 2 : blocks;
}

template <typename Model>
int bram36ActiveSites(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return bram36Sites(model.refBramType(params, data), model.calculateActiveInstanceCount(params, data));
}

template <typename Model>
int bram36SleepingSites(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return bram36Sites(model.refBramType(params, data), model.calculateSleepInstanceCount(params, data));
}

constexpr char kCascadeMode[] = "CASCADE";

template <typename Model>
int defaultCascadeModeDepth(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return model.refRamMode(params, data) == kCascadeMode ? 2 : 1;
}

// A cascade chains at least two blocks; no other mode chains any.
template <typename Model>
bool isValidCascadeModeDepth(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    int const depth = model.getCascadeDepth(params, data);
    if (model.refRamMode(params, data) != kCascadeMode) return depth == 1;
    int const longest =
        PRSMHelperUtils::IFERROR(data.getMaxCascadeDepthOrError(model.refBramType(params, data)), 0);
    return depth >= 2 && depth <= longest;
}

// ---- Widths -------------------------------------------------------------------------------------

// The widest port the block and mode allow (MAX_WIDTH), or 0 when the file has no such entry. It is
// also a port's default width: as wide as its mode allows, 0 for a port the mode does not use.
template <typename Model>
int maxPortWidth(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                 typename Model::Port port, std::string_view block) {
    return PRSMHelperUtils::IFERROR(
        data.getMaxWidthOrError(block, model.refRamMode(params, data), Model::memberName(port)), 0);
}

// 0 (the port is not used) up to the widest the mode allows.
template <typename Model>
bool isValidPortWidth(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                      typename Model::Port port, std::string_view block) {
    int const width = model.getPortWidth(params, data, port);
    return width >= 0 && width <= maxPortWidth(model, params, data, port, block);
}

// Error correction stores 64 data bits with 8 check bits: only where the mode allows a 72-bit port.
template <typename Model>
bool eccAllowed(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                std::string_view block) {
    constexpr int kEccWidth = 72;
    return maxPortWidth(model, params, data, Model::Port::A, block) >= kEccWidth &&
           maxPortWidth(model, params, data, Model::Port::B, block) >= kEccWidth;
}

// The ECC input's choices: YES only where error correction is allowed.
template <typename Model>
std::vector<std::string> eccChoices(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                                    std::string_view block) {
    if (eccAllowed(model, params, data, block)) return {"NO", "YES"};
    return {"NO"};
}

// A chain of one block up to the longest cascade the block allows (none when the file has no limit).
template <typename Model>
bool isValidChainDepth(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                       std::string_view block) {
    int const depth = model.getCascadeDepth(params, data);
    return depth >= 1 && depth <= PRSMHelperUtils::IFERROR(data.getMaxCascadeDepthOrError(block), 0);
}

// ---- Events per port, per awake block -----------------------------------------------------------

// Accesses per second through the port of one block, in MHz. In a cascade of D blocks one block's
// array serves each access, so a block sees 1/D of the chain's accesses.
template <typename Model>
float portAccesses(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                   typename Model::Port port) {
    if (model.getPortWidth(params, data, port) <= 0) return 0.0f;
    int const depth = model.getCascadeDepth(params, data);
    float const chainAccesses = model.getClockFreq(params, data) * model.getEnableRate(params, data);
    return depth > 1 ? chainAccesses / static_cast<float>(depth) : chainAccesses;
}

// The share of the port's accesses that write: fixed by the mode, else the sheet's write rate.
template <typename Model>
float writeShare(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                 typename Model::Port port) {
    switch (portAccess(std::string_view(model.refRamMode(params, data)), port)) {
        case Access::WriteOnly:
            return 1.0f;
        case Access::ReadOnly:
            return 0.0f;
        case Access::ReadWrite:
            break;
    }
    return model.getWriteRate(params, data);
}

template <typename Model>
float portWrites(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                 typename Model::Port port) {
    return model.calculatePortAccesses(params, data, port) *
           model.calculatePortWriteShare(params, data, port);
}

template <typename Model>
bool hasOutput(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
               typename Model::Port port) {
    return portAccess(std::string_view(model.refRamMode(params, data)), port) != Access::WriteOnly;
}

// Array reads: every read access, and in READ_FIRST every write too (the old word is read out first).
template <typename Model>
float arrayReads(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                 typename Model::Port port, std::string_view writeMode) {
    float const writes = model.calculatePortWrites(params, data, port);
    float const reads = model.calculatePortAccesses(params, data, port) - writes;
    bool const readFirst = writeMode == "READ_FIRST" && hasOutput(model, params, data, port);
    return readFirst ? reads + writes : reads;
}

// Output-latch updates: every read, and every write unless the port keeps its output (NO_CHANGE).
template <typename Model>
float outputUpdates(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                    typename Model::Port port, std::string_view writeMode) {
    if (!hasOutput(model, params, data, port)) return 0.0f;
    float const writes = model.calculatePortWrites(params, data, port);
    float const reads = model.calculatePortAccesses(params, data, port) - writes;
    return writeMode == "NO_CHANGE" ? reads : reads + writes;
}

// ---- VCCINT: switched capacitance of one port (pF x MHz) ----------------------------------------

// The port clock runs every cycle of a used port; control and address switch once per access; data
// bits switch at the toggle rate on writes (in) and output updates (out, and the output register);
// error correction encodes each write and checks each read; a FIFO moves its pointers and flags on
// every access; in a cascade the chain's data and control buses pass through every block.
template <typename Model>
float portCapFreq(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                  typename Model::Port port, std::string_view block) {
    int const width = model.getPortWidth(params, data, port);
    if (width <= 0) return 0.0f;
    float const clock = model.getClockFreq(params, data);
    float const accesses = model.calculatePortAccesses(params, data, port);
    float const writes = model.calculatePortWrites(params, data, port);
    float const reads = model.calculatePortReads(params, data, port);
    float const updates = model.calculatePortOutputUpdates(params, data, port);
    float const halfToggledBits = 0.5f * model.getToggleRate(params, data) * static_cast<float>(width);
    bool const outputRegister = isYes(model.refOutputRegister(params, data));

    float capFreq = clock * portCap(data, block, "CLOCK") + accesses * portCap(data, block, "CONTROL");
    float outputBit = portCap(data, block, "DATA_OUT");
    if (outputRegister) {
        capFreq += clock * portCap(data, block, "OREG_CLOCK");
        outputBit += portCap(data, block, "OREG_BIT");
    }
    capFreq += halfToggledBits * (writes * portCap(data, block, "DATA_IN") + updates * outputBit);
    if (isYes(model.refEcc(params, data)))
        capFreq += writes * portCap(data, block, "ECC_ENCODE") + reads * portCap(data, block, "ECC_DECODE");
    if (model.refRamMode(params, data) == "FIFO") capFreq += accesses * portCap(data, block, "FIFO");
    int const depth = model.getCascadeDepth(params, data);
    if (depth > 1) {
        float const chainAccesses = accesses * static_cast<float>(depth);
        capFreq += chainAccesses * (halfToggledBits * portCap(data, block, "CASCADE_BIT") +
                                    portCap(data, block, "CASCADE_CONTROL"));
    }
    return capFreq;
}

// ---- VCCRAM: the array's energy (pJ x MHz) ------------------------------------------------------

// An access costs a fixed part (decoder, word line, sense timing) and a part per bit of the word.
template <typename Model>
float arrayComponent(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                     typename Model::Port port, std::string_view block) {
    float const bits = static_cast<float>(model.getPortWidth(params, data, port));
    float const read = arrayEnergy(data, block, "READ") + bits * arrayEnergy(data, block, "READ_BIT");
    float const write = arrayEnergy(data, block, "WRITE") + bits * arrayEnergy(data, block, "WRITE_BIT");
    return model.calculatePortReads(params, data, port) * read +
           model.calculatePortWrites(params, data, port) * write;
}

// Array accesses of both ports (reads and writes), per second in MHz.
template <typename Model>
float arrayAccesses(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    using Port = typename Model::Port;
    return model.calculatePortReads(params, data, Port::A) +
           model.calculatePortWrites(params, data, Port::A) +
           model.calculatePortReads(params, data, Port::B) + model.calculatePortWrites(params, data, Port::B);
}

// ---- Voltage, device scale and the per-instance figures -----------------------------------------

// The exponent of the voltage law; 2 (dynamic power goes with V^2) when the file has none.
template <typename Data>
float voltageExponent(Data const& data) {
    return PRSMHelperUtils::IFERROR(data.getVoltageScalingOrError(Data::VoltageScalingKey::VPOW), 2.0f);
}

// (V / Vnom)^VPOW for an energy given at the nominal voltage (1 when the file has no nominal voltage).
template <typename Data, typename Key>
float energyVoltageFactor(Data const& data, float volts, Key nominalKey) {
    float const nominal = PRSMHelperUtils::IFERROR(data.getVoltageScalingOrError(nominalKey), volts);
    return nominal > 0.0f ? std::pow(volts / nominal, voltageExponent(data)) : 1.0f;
}

// V^VPOW for a capacitance.
template <typename Data>
float capacitanceVoltageFactor(Data const& data, float volts) {
    return std::pow(volts, voltageExponent(data));
}

// mW of one awake block: the figure x the voltage factor x 0.001 x the device scale.
inline float milliwatts(float figure, float voltageFactor, float scale) {
    return static_cast<float>(static_cast<double>(figure * voltageFactor) * 0.001 *
                              static_cast<double>(scale));
}

template <typename Model>
float vccintInstancePower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    using Port = typename Model::Port;
    float const capFreq =
        model.calculatePortCapFreq(params, data, Port::A) + model.calculatePortCapFreq(params, data, Port::B);
    float const factor = capacitanceVoltageFactor(data, model.getVccint(params, data));
    return milliwatts(capFreq, factor, model.calculateVccintScale(params, data));
}

// The array of one awake block on its own rail (VCCRAM, or the older architecture's VCCBRAM): both
// ports' energy rate at the rail's voltage `volts`, whose nominal voltage the file holds under nominalKey.
template <typename Model, typename Key>
float arrayInstancePower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data, float volts,
                         Key nominalKey, float scale) {
    using Port = typename Model::Port;
    float const energyRate = model.calculatePortArrayComponent(params, data, Port::A) +
                             model.calculatePortArrayComponent(params, data, Port::B);
    return milliwatts(energyRate, energyVoltageFactor(data, volts, nominalKey), scale);
}

template <typename Model>
float vccramInstancePower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data) {
    return arrayInstancePower(model, params, data, model.getVccram(params, data),
                              DataOf<Model>::VoltageScalingKey::VCCRAM_NOMINAL,
                              model.calculateVccramScale(params, data));
}

// A rail's power in W: the awake blocks times one block's figure in mW.
template <typename Model>
float railPower(Model const& model, ParamsOf<Model>& params, DataOf<Model> const& data,
                float (Model::*instancePower)(ParamsOf<Model>&, DataOf<Model> const&) const) {
    double const blocks = activeInstances(model, params, data);
    return static_cast<float>(blocks * static_cast<double>((model.*instancePower)(params, data)) * 0.001);
}

}  // namespace prsm::ram
