#pragma once
// Formulas shared by the processing-system sheets (TalvexPss, TalvexPsxl, TalvexPmc): the voltage law of a
// core supply, the clocked-block pattern every processor, memory, interconnect and peripheral block follows,
// and the multiplexed-I/O terms of an interface's pins. Plain functions of numbers: each sheet reads
// its own inputs and coefficients and passes them in.

#include <prsm/framework/PRSMCellSupport.h>

#include <cmath>
#include <string_view>

namespace prsm::ps {

// Exponent of a block's dynamic power against its core supply.
inline constexpr double kVoltageExponent = 2.3;

// (supply / characterisation voltage)^2.3; 0 when the characterisation voltage is not positive.
inline float voltageScaling(double supply, double characterisation) {
    if (!(characterisation > 0.0)) return 0.0f;
    double const ratio = supply / characterisation;
    if (!(ratio > 0.0)) return 0.0f;
    return static_cast<float>(std::pow(ratio, kVoltageExponent));
}

// How a block's load coefficient relates to its clock coefficient.
enum class BlockKind {
    // A processor core: the clock term stays while it works and the load term adds to it; a
    // clock-gated core that is given work runs.
    Core,
    // Every other block: the clock term is its idle power and the load coefficient its whole running
    // power; a clock-gated block draws nothing.
    Peripheral,
};

// One clocked block, before its count and voltage scaling. `clock` and `dynamic` are W per MHz, the
// load is in percent (100 = fully loaded) and enters as a fraction.
//   power-gated                      -> 0
//   load 0, not clock-gated          -> clock * f
//   load 0, clock-gated              -> 0
//   load L, Core                     -> (clock + dynamic * L/100) * f
//   load L, Peripheral, not gated    -> dynamic * L/100 * f
//   load L, Peripheral, gated        -> 0
inline double clockedPower(BlockKind kind, double clock, double dynamic, double frequency, double loadPercent,
                           bool clockGated, bool powerGated) {
    if (powerGated) return 0.0;
    double const load = loadPercent / 100.0;
    if (loadPercent == 0.0) return clockGated ? 0.0 : clock * frequency;
    if (kind == BlockKind::Core) return (clock + dynamic * load) * frequency;
    return clockGated ? 0.0 : dynamic * load * frequency;
}

// ---- Multiplexed I/O ----

// The bank voltages an interface's pins may run at, with the drive strength the sheets assume at each
// (the bank's default drive).
enum class BankVoltage { V18, V25, V33, None };

struct BankVoltageInfo {
    std::string_view tag;    // in coefficient keys: "1V8"
    std::string_view drive;  // in coefficient keys: "4MA"
};

inline BankVoltageInfo bankVoltageInfo(BankVoltage voltage) {
    switch (voltage) {
        case BankVoltage::V18:
            return {"1V8", "4MA"};
        case BankVoltage::V25:
            return {"2V5", "8MA"};
        case BankVoltage::V33:
            return {"3V3", "12MA"};
        case BankVoltage::None:
            break;
    }
    return {"", ""};
}

// "1.8", "LVCMOS18", "1V8" and the like: the voltage the text names, None for anything else.
inline BankVoltage parseBankVoltage(std::string_view text) {
    auto const has = [text](std::string_view part) { return text.find(part) != std::string_view::npos; };
    if (has("1.8") || has("18") || has("1V8")) return BankVoltage::V18;
    if (has("2.5") || has("25") || has("2V5")) return BankVoltage::V25;
    if (has("3.3") || has("33") || has("3V3")) return BankVoltage::V33;
    return BankVoltage::None;
}

inline double nominalVolts(BankVoltage voltage) {
    switch (voltage) {
        case BankVoltage::V18:
            return 1.8;
        case BankVoltage::V25:
            return 2.5;
        case BankVoltage::V33:
            return 3.3;
        case BankVoltage::None:
            break;
    }
    return 0.0;
}

// The bank voltage nearest a supply of `volts` (None when it is not positive): a bank's pins are
// characterised at its three standard voltages and a supply between them scales from the nearest.
inline BankVoltage nearestBankVoltage(double volts) {
    if (!(volts > 0.0)) return BankVoltage::None;
    if (volts < (1.8 + 2.5) / 2) return BankVoltage::V18;
    return volts < (2.5 + 3.3) / 2 ? BankVoltage::V25 : BankVoltage::V33;
}

// The pins one interface places on a bank. A bidirectional pin has both a receiver and a driver.
struct Pins {
    int inputs = 0;
    int outputs = 0;
    int bidis = 0;
    double receivers() const { return static_cast<double>(inputs) + bidis; }
    double drivers() const { return static_cast<double>(outputs) + bidis; }
    double total() const { return static_cast<double>(inputs) + outputs + bidis; }
};

// The coefficients of the pins' core side (the VCCINT keys), W per MHz per pin at full activity and W
// per pin.
struct CoreSideCoefficients {
    double rxDynamic;
    double txDynamic;
    double staticPerPin;
};

// The core-side power of the pins at `frequency` MHz and `loadPercent` activity, before voltage scaling.
inline double coreSidePower(Pins const& pins, CoreSideCoefficients const& k, double frequency,
                            double loadPercent) {
    double const activity = frequency * loadPercent / 100.0;
    return activity * (k.rxDynamic * pins.receivers() + k.txDynamic * pins.drivers()) +
           k.staticPerPin * pins.total();
}

// The coefficients of the pins on the bank's supply at one voltage.
struct BankSideCoefficients {
    double rxDynamic;     // MIO_IOB_VCCO_PMIO_<V>_RX_DYNAMIC, W per MHz per receiver
    double txDynamic;     // MIO_IOB_VCCO_PMIO_<V>_TX_<drive>_F_DYNAMIC, W per MHz per driver
    double loadScale;     // MIO_IOB_<V>_TX_<drive>_CLOAD_SCALE_FACTOR, on the driver terms
    double staticPerPin;  // MIO_IOB_VCCO_PMIO_<V>_STATIC, W per pin
    double biasPerPin;    // MIO_BIAS_VCCO_PMIO_<V>_STATIC, W per pin
};

// Dynamic and static power of the pins on the bank's supply, bias excluded.
inline double bankSidePower(Pins const& pins, BankSideCoefficients const& k, double frequency,
                            double loadPercent) {
    double const activity = frequency * loadPercent / 100.0;
    return activity * (k.rxDynamic * pins.receivers() + k.txDynamic * k.loadScale * pins.drivers()) +
           k.staticPerPin * pins.total();
}

inline double biasPower(Pins const& pins, BankSideCoefficients const& k) {
    return k.biasPerPin * pins.total();
}

// The bank-side coefficients at one voltage, read through `coefficient(key)` (which throws for a key the
// table lacks). Keys are composed in a per-thread buffer: no allocation.
template <typename Lookup>
BankSideCoefficients bankSideCoefficients(BankVoltage voltage, Lookup const& coefficient) {
    BankVoltageInfo const v = bankVoltageInfo(voltage);
    BankSideCoefficients k{};
    k.rxDynamic = coefficient(prsm::concatKey("MIO_IOB_VCCO_PMIO_", v.tag, "_RX_DYNAMIC"));
    k.txDynamic = coefficient(prsm::concatKey("MIO_IOB_VCCO_PMIO_", v.tag, "_TX_", v.drive, "_F_DYNAMIC"));
    k.loadScale = coefficient(prsm::concatKey("MIO_IOB_", v.tag, "_TX_", v.drive, "_CLOAD_SCALE_FACTOR"));
    k.staticPerPin = coefficient(prsm::concatKey("MIO_IOB_VCCO_PMIO_", v.tag, "_STATIC"));
    k.biasPerPin = coefficient(prsm::concatKey("MIO_BIAS_VCCO_PMIO_", v.tag, "_STATIC"));
    return k;
}

template <typename Lookup>
CoreSideCoefficients coreSideCoefficients(Lookup const& coefficient) {
    return {coefficient("MIO_IOB_VCCINT_RX_DYNAMIC"), coefficient("MIO_IOB_VCCINT_TX_DYNAMIC"),
            coefficient("MIO_IOB_VCCINT_STATIC")};
}

}  // namespace prsm::ps
