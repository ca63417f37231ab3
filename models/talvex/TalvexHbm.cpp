// Formulas of the memory-stack sheet (models/talvex/MemoryFormulas.h holds what it shares with the DDR
// controllers). A stack's figures are energies at the nominal voltages: mW of background, pJ per bit
// moved (pJ x Mb/s x 0.001 is mW) and pJ per clock of each pseudo-channel in use, scaled by
// (V / Vnom)^VPOW; the PLL and delay lines on VCCAUXHBM are bias currents (V x mA).
#include <prsm/models/talvex/PRSMTalvexHbmModel.h>
#include <prsm/models/talvex/PRSMTalvexHbmCells.h>

#include "MemoryFormulas.h"

#include <algorithm>

using PRSMHelperUtils::IFERROR;
using Model = PRSMTalvexHbmModel;
using Data = Model::Data;
using Energy = Data::StackEnergyKey;

namespace {

float energy(Data const& data, Energy key) {
    return IFERROR(data.getStackEnergyOrError(key), 0.0f);
}

int stack(Data const& data, Data::StackKey key) {
    return IFERROR(data.getStackOrError(key), 0);
}

int stacksOf(Model const& model, Model::Params& params, Data const& data, std::string_view height) {
    return IFERROR(data.getStacksOrError(model.refDevice(params, data), height), 0);
}

float pseudoChannels(Model const& model, Model::Params& params, Data const& data) {
    return static_cast<float>(model.getPseudoChannels(params, data));
}

// Mb/s a stack's used pseudo-channels move at a share of their peak.
float bitsAt(Model const& model, Model::Params& params, Data const& data, float share) {
    return pseudoChannels(model, params, data) * static_cast<float>(stack(data, Data::StackKey::PC_WIDTH)) *
           model.getDataRate(params, data) * share;
}

// mW at the rail's voltage: the figure at the nominal voltage x (V / Vnom)^VPOW x the device scale.
template <typename Key>
float scaled(float milliwatts, Data const& data, float volts, Key nominal, float scale) {
    return milliwatts * prsm::ram::energyVoltageFactor(data, volts, nominal) * scale;
}

}  // namespace

// ---- Inputs and their rules -----------------------------------------------------------------------------

int Model::defaultPseudoChannels(Params&, Data const& data) const {
    return stack(data, Data::StackKey::PSEUDO_CHANNELS);
}

float Model::computeGetMinPseudoChannels(Params&, Data const&) const {
    return 1.0f;
}
float Model::computeGetMaxPseudoChannels(Params&, Data const& data) const {
    return static_cast<float>(stack(data, Data::StackKey::PSEUDO_CHANNELS));
}
bool Model::isValidPseudoChannels(Params& params, Data const& data) const {
    float const channels = pseudoChannels(*this, params, data);
    return channels >= 1.0f && channels <= calculateGetMaxPseudoChannels(params, data);
}

float Model::computeGetMinInstanceCount(Params&, Data const&) const {
    return 0.0f;
}
float Model::computeGetMaxInstanceCount(Params& params, Data const& data) const {
    return static_cast<float>(stacksOf(*this, params, data, "STACKS_4H")) +
           static_cast<float>(stacksOf(*this, params, data, "STACKS_8H"));
}
bool Model::isValidInstanceCount(Params& params, Data const& data) const {
    return prsm::memory::instanceCountInRange(*this, params, data);
}

float Model::computeGetMinDataRate(Params&, Data const& data) const {
    return IFERROR(data.getRateLimitOrError(Data::RateLimitKey::MIN_RATE), 0.0f);
}

// The stacks' fastest, lowered to the part's own limit (its row, else the DEFAULT row).
float Model::computeGetMaxDataRate(Params& params, Data const& data) const {
    float const stackMax = IFERROR(data.getRateLimitOrError(Data::RateLimitKey::MAX_RATE), 0.0f);
    float const partMax =
        IFERROR(data.getMaxDataRateOrError(refDevice(params, data)),
                IFERROR(data.getMaxDataRateOrError(Data::MaxDataRateKey::DEFAULT), stackMax));
    return std::min(stackMax, partMax);
}

bool Model::isValidDataRate(Params& params, Data const& data) const {
    return prsm::memory::dataRateInRange(*this, params, data);
}

// ---- Stacks, bits and bandwidth -----------------------------------------------------------------------

// A part's stacks are of one height; 0 for a part without stacks.
int Model::computeStackHeight(Params& params, Data const& data) const {
    if (stacksOf(*this, params, data, "STACKS_8H") > 0) return 8;
    return stacksOf(*this, params, data, "STACKS_4H") > 0 ? 4 : 0;
}

float Model::computeReadBits(Params& params, Data const& data) const {
    return bitsAt(*this, params, data, getReadRate(params, data));
}
float Model::computeWriteBits(Params& params, Data const& data) const {
    return bitsAt(*this, params, data, getWriteRate(params, data));
}

// Mb/s / 8 / 1000 gives GB/s.
float Model::computePeakBandwidth(Params& params, Data const& data) const {
    return bitsAt(*this, params, data, 1.0f) * 0.000125f;
}

int Model::computeUsedHbmStacks(Params& params, Data const& data) const {
    return getInstanceCount(params, data);
}

int Model::computeUsedHbmPseudoChannels(Params& params, Data const& data) const {
    return PRSMHelperUtils::toIntSaturated(static_cast<double>(getInstanceCount(params, data)) *
                                           getPseudoChannels(params, data));
}

// ---- One stack's power per rail (mW) ----------------------------------------------------------------------

// Refresh and standby of every die, the open banks of each pseudo-channel in use, and the core's
// energy per bit read or written.
float Model::computeVcchbmInstancePower(Params& params, Data const& data) const {
    float const background =
        static_cast<float>(calculateStackHeight(params, data)) * energy(data, Energy::DIE_BACKGROUND_MW) +
        pseudoChannels(*this, params, data) * energy(data, Energy::PC_ACTIVE_MW);
    float const access = 0.001f * (calculateReadBits(params, data) * energy(data, Energy::CORE_READ_PJ) +
                                   calculateWriteBits(params, data) * energy(data, Energy::CORE_WRITE_PJ));
    return scaled(background + access, data, getVcchbm(params, data), Data::VoltageScalingKey::VCCHBM_NOMINAL,
                  calculateVcchbmScale(params, data));
}

// Each bit crosses the interposer once, driven by the memory (reads) or the part (writes); each
// pseudo-channel in use clocks its clock and strobes at the memory clock (half the data rate).
float Model::computeVcciohbmInstancePower(Params& params, Data const& data) const {
    float const bits = calculateReadBits(params, data) + calculateWriteBits(params, data);
    float const clocks = pseudoChannels(*this, params, data) * getDataRate(params, data) * 0.5f;
    float const milliwatts =
        0.001f * (bits * energy(data, Energy::IO_BIT_PJ) + clocks * energy(data, Energy::IO_CLOCK_PJ));
    return scaled(milliwatts, data, getVcciohbm(params, data), Data::VoltageScalingKey::VCCIOHBM_NOMINAL,
                  calculateVcciohbmScale(params, data));
}

// The PHY's serialisers per bit moved, and each pseudo-channel's controller at a quarter of the data rate.
float Model::computeVccintiohbmInstancePower(Params& params, Data const& data) const {
    float const bits = calculateReadBits(params, data) + calculateWriteBits(params, data);
    float const clocks = pseudoChannels(*this, params, data) * getDataRate(params, data) * 0.25f;
    float const milliwatts =
        0.001f * (bits * energy(data, Energy::LOGIC_BIT_PJ) + clocks * energy(data, Energy::LOGIC_CLOCK_PJ));
    return scaled(milliwatts, data, getVccintiohbm(params, data),
                  Data::VoltageScalingKey::VCCINTIOHBM_NOMINAL, calculateVccintiohbmScale(params, data));
}

// V x mA: the stack's PLL, and each pseudo-channel's delay lines, their bias growing with the clock.
float Model::computeVccauxhbmInstancePower(Params& params, Data const& data) const {
    float const clockGhz = getDataRate(params, data) * 0.0005f;
    float const milliamps = energy(data, Energy::PLL_MA) + pseudoChannels(*this, params, data) *
                                                               energy(data, Energy::PC_DLL_MA_PER_GHZ) *
                                                               clockGhz;
    return getVccauxhbm(params, data) * milliamps * calculateVccauxhbmScale(params, data);
}

// ---- Totals -------------------------------------------------------------------------------------------

float Model::computeInstancePower(Params& params, Data const& data) const {
    return calculateVcchbmInstancePower(params, data) + calculateVcciohbmInstancePower(params, data) +
           calculateVccintiohbmInstancePower(params, data) + calculateVccauxhbmInstancePower(params, data);
}

float Model::computeTotalPower(Params& params, Data const& data) const {
    return calculateVcchbmPower(params, data) + calculateVcciohbmPower(params, data) +
           calculateVccintiohbmPower(params, data) + calculateVccauxhbmPower(params, data);
}
