#pragma once
// The whole-design estimate: every block of a design calculated on its rails, the dynamic power summed
// per rail and per region and fed into the static-power sheet, the junction temperature solved from
// the ambient when it is not given, and one report of it all.

#include <prsm/design/Design.h>
#include <prsm/design/ThermalSolve.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace prsm::design {

// Where a rail's voltage came from, first found first: the design, the static sheet's figure at the
// design's voltage corner, the device catalogue's nominal voltage, the first block's default.
enum class VoltageSource { Design, Corner, CatalogueNominal, BlockDefault };
// "design", "corner", "catalogue_nominal", "block_default".
char const* toString(VoltageSource source);

struct RailResult {
    std::string rail;
    double voltage = 0;  // V
    VoltageSource voltageSource = VoltageSource::Design;
    double dynamicCurrent = 0;  // A
    double staticCurrent = 0;   // A
    double totalCurrent = 0;    // A
    double power = 0;           // W: voltage times the total current
    double maxCurrent = 0;      // A: the device's limit where the static sheet's data has one, else 0
    bool overLimit = false;     // the total current exceeds maxCurrent
    // The current the rail draws while the device powers up (A; NaN where the static sheet has none),
    // and the rail whose static current already holds this rail's ("" when none): a supply adds it once.
    double powerupCurrent = std::numeric_limits<double>::quiet_NaN();
    std::string countedIn;
};

struct BlockResult {
    std::string name;
    std::string model;
    std::string region;
    int count = 1;
    double power = 0;                                   // W, all instances
    std::vector<std::pair<std::string, double>> rails;  // rail -> W, all instances
    std::string error;                                  // why its calculation failed; empty when it did not
};

struct RegionResult {
    std::string region;
    double dynamicPower = 0;  // W
    double staticPower = 0;   // W, as the static sheet reports the region
};

struct Warning {
    std::string block;
    std::string cell;
    std::string message;
};

struct ThermalResult {
    bool solved = false;  // true: Tj = Ta + thetaJA * P(Tj) was solved; false: the junction was given
    double ambient = 0;   // degC
    double thetaJa = 0;   // degC/W
    double junction = 0;  // degC, the temperature the leakage is evaluated at
    int iterations = 0;   // static calculations the solve made
    bool runaway = false;  // the solve found no steady state
};

// One regulator output of the module board; a figure that neither its sheet nor its declaration gives
// is NaN.
struct RegulatorResult {
    std::string name;       // as the board's table names it: "DA9062_LDO2"
    double load = 0;        // A: its own loads and what the regulators it feeds draw
    double efficiency = 0;  // fraction, the sheet's; NaN for an LDO
    double loss = 0;        // W dissipated: a buck's conversion loss, an LDO's (V_in - V_out) * load
    double overLimit = 0;   // mW beyond the output's rating, as the sheet works it out; 0 within it
    std::string label;      // what it is: "DA9062 LDO2 (VCC_PS_1V80)"
    std::string rail;       // the rail it makes; "" when not declared
    std::string kind;       // "buck" or "ldo"; "" when not declared
    double voltage = std::numeric_limits<double>::quiet_NaN();       // V out
    std::string input;      // what feeds it: another regulator's name or the board's input cell
    double inputVoltage = std::numeric_limits<double>::quiet_NaN();  // V in
    double rating = std::numeric_limits<double>::quiet_NaN();        // A
    double margin = std::numeric_limits<double>::quiet_NaN();        // A: rating - load, negative over it
};

// A device rail with current that no input of the board takes: no regulator of the module feeds it. The
// device's total counts it; the module's total, which sums what the board supplies, does not.
struct UnsuppliedRail {
    std::string rail;
    double current = 0;         // A: the rail's total, dynamic plus leakage
    double dynamicCurrent = 0;  // A: what the design's blocks and loads draw on it
    double power = 0;           // W: the rail's voltage times its current
};

struct BoardResult {
    std::string model;
    double totalPower = 0;                                 // W: the module's total, device included
    std::vector<std::pair<std::string, double>> currents;  // fed input cell -> A
    std::vector<RegulatorResult> regulators;
    std::vector<UnsuppliedRail> unsupplied;  // in the engine's rail order
    double unsuppliedPower = 0;              // W: the unsupplied rails' power summed
};

// A regulator the design declares, loaded with the rails it feeds. A rail whose static current another
// rail's already holds is counted once: on the holding rail when both are fed here, else on its own rail
// and taken out of the holding rail's.
struct RegulatorLoad {
    std::string name;
    std::vector<std::string> rails;
    double rating = 0;       // A
    double load = 0;         // A: the rails' currents
    double outputPower = 0;  // W: each rail's voltage times its current
    double efficiency = 0;   // fraction, at this load
    double inputPower = 0;   // W: outputPower / efficiency
    double loss = 0;         // W: inputPower - outputPower
    double margin = 0;       // A: rating - load; negative when over the rating
    // A: its rails' power-up currents (each rail's own); NaN when none of its rails has one.
    double powerupCurrent = std::numeric_limits<double>::quiet_NaN();
};

// A rail as a regulator group carries it: its share of the group's current (a held rail's static current
// counted once, inside its holder's), and the rails whose static current it holds, shown under it.
struct GroupRail {
    std::string rail;
    double voltage = 0;                                                // V
    double current = 0;                                                // A
    double power = 0;                                                  // W
    double powerupCurrent = std::numeric_limits<double>::quiet_NaN();  // A; NaN where the sheet has none
    std::vector<GroupRail> held;
};

// One regulator group of the rail-grouping sheet, with the design's rails it feeds.
struct SupplyGroup {
    std::string name;   // the sheet's group ("PL_2")
    std::string label;  // the regulator it names, as its rails' group cells do
    std::string sequence;
    std::string dcTolerance;
    std::string acRipple;
    std::vector<GroupRail> rails;
    double voltage = std::numeric_limits<double>::quiet_NaN();         // V; NaN when its rails differ
    double current = 0;                                                // A
    double power = 0;                                                  // W
    double powerupCurrent = std::numeric_limits<double>::quiet_NaN();  // A; NaN when no rail has one
};

// The decoupling sheet's count of one capacitor value on a rail, as the sheet leaves it (a real number).
struct CapacitorCount {
    std::string value;  // the capacitance as the sheet names it: "22uF", "0p47uF"
    double count = 0;
};

struct RailDecoupling {
    std::string rail;
    double stepCurrent = 0;  // A: the load step the sheet was given
    // A rail the sheet steps in parts (VCCINT: the AI engines and the rest): each part's step in A.
    std::vector<std::pair<std::string, double>> stepParts;
    std::vector<CapacitorCount> capacitors;
};

// A device resource the design's blocks take up, against the device's count of it.
struct ResourceUse {
    std::string resource;  // the catalogue's name: "LUTS", "FLIP_FLOPS", "BRAMS", "URAMS", "DSPS"
    double used = 0;       // summed over the blocks, each block's instances included
    double available = 0;  // the device's count (0: the device has none)
    bool known = false;    // whether the catalogue gives the count; an unknown count is never checked
};

struct Report {
    std::string source;
    std::string staticModel;  // empty when the design names no static sheet
    std::string voltageCorner;  // the corner of the voltages the design leaves out: nominal, max or min
    // False when a block failed or the thermal loop ran away: the totals below are then not a result.
    bool complete = true;
    std::vector<std::string> failures;  // one line per failed block, static sheet or board, and a runaway
    std::vector<RailResult> rails;
    std::vector<BlockResult> blocks;
    std::vector<RegionResult> regions;
    std::vector<std::pair<std::string, double>> staticInputs;  // fed input cell -> W
    std::vector<std::pair<std::string, double>> staticCounts;  // count-fed input cell -> what it holds
    std::vector<ResourceUse> resources;                        // the device resources the blocks use
    std::vector<Warning> warnings;
    ThermalResult thermal;
    std::optional<BoardResult> board;  // when the design names a module board
    double dynamicPower = 0;           // W
    double staticPower = 0;            // W
    double totalPower = 0;             // W

    // Supplies: the design's declared regulators, what they draw from the board's input (W), and the
    // power of the rails none of them feeds (W).
    std::vector<RegulatorLoad> regulators;
    double supplyInputPower = 0;
    double unregulatedPower = 0;
    // The rail-grouping sheet's regulator groups that feed the design's rails, when the design names
    // its scheme ("supplies"); empty otherwise.
    std::string supplyModel;
    std::vector<SupplyGroup> supplyGroups;
    // The decoupling capacitors per rail, when the design asks for them ("decoupling").
    std::string decouplingModel;
    std::vector<RailDecoupling> decoupling;
};

class Estimator {
public:
    // Creates one parameter set per block and writes the design's inputs, rail voltages and device into
    // them. Throws DesignError when an input is refused or a rail in use has no voltage.
    explicit Estimator(Design design);
    ~Estimator();
    Estimator(Estimator const&) = delete;
    Estimator& operator=(Estimator const&) = delete;

    // Calculates every block, then the static sheet and the module board.
    Report const& estimate();
    // Calculates the blocks whose inputs changed since the last estimate, then the static sheet and
    // the module board.
    Report const& update();
    // Changes one input of a block ("static" for the static sheet, "board" for the
    // module board); the next update() recalculates it.
    // Throws DesignError for an unknown block, a cell it may not set or a value that does not parse.
    void setInput(std::string const& block, std::string const& cell, std::string const& text);
    // Back to the file's inputs: every setInput since is undone, on the blocks, the static sheet and the
    // board (the blocks concerned recalculate).
    void clearInputs();
    // New thermal conditions (a given junction temperature, or ambient and theta_ja to solve from).
    void setThermal(Thermal const& thermal);
    // Where a junction-temperature solve starts: from the last solution (the default: after a small
    // change it takes two static calculations) or from the ambient, as a fresh estimate does. The
    // junction and every figure are the same either way; only the count of static calculations differs,
    // and from the ambient it depends on the design alone, not on the changes made before.
    enum class ThermalStartFrom { LastSolution, Ambient };
    void setThermalStart(ThermalStartFrom from);
    // A rail's voltage, as if the file gave it under /rails: the blocks that take it or draw a current
    // from it recalculate, and loads given as a current follow. Throws DesignError for a rail not in use.
    void setRailVoltage(std::string const& rail, double volts);
    // Back to the file's rail voltages: every setRailVoltage since is undone.
    void clearRailVoltages();
    // An extra load's figure, as if the file gave it: its power (W) for a load the file gives as a power,
    // its current (A, converted with its rail's voltage) for one given as a current. Only the sums of the
    // next update() change; no block recalculates. Throws DesignError for an unknown load, the figure the
    // load is not given as, or a value that is not finite.
    enum class LoadFigure { Power, Current };
    void setLoad(std::string const& load, LoadFigure figure, double value);
    // Back to the file's loads: every setLoad since is undone.
    void clearLoads();
    // Every rail in use, in the engine's order, with its voltage.
    std::vector<std::pair<std::string, double>> railVoltages() const;

    Design const& design() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

// Reads, checks and estimates a design file in one step.
Report estimateFile(std::string const& path);

}  // namespace prsm::design
