#pragma once
// The design engine between estimates: the sheets it runs, the rails, the sums that feed the static
// sheet and what the last estimate worked out. Estimate.cpp sets it up and calculates it;
// EstimateReport.cpp describes it. Private to libprsm-design.

#include <prsm/design/Counts.h>
#include <prsm/design/Decoupling.h>
#include <prsm/design/Estimate.h>
#include <prsm/design/RailGroups.h>
#include <prsm/design/Resources.h>
#include <prsm/design/SheetRunner.h>
#include <prsm/design/Supplies.h>
#include <prsm/design/ThermalSolve.h>

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace prsm::design {

constexpr std::size_t kNoIndex = static_cast<std::size_t>(-1);

struct EstimateState {
    // A block's power output: a cell in W, or in A on a rail, summed into one aggregate.
    struct Output {
        std::size_t cell;
        std::size_t rail;
        bool current;
        std::size_t aggregate = kNoIndex;  // its rail, region and tag in `aggregates`
    };
    // What a block runner adds to the design: its power per output and its used-block counts.
    struct BlockWiring {
        std::size_t region = kNoIndex;
        std::vector<Output> outputs;
        std::vector<double> power;  // W per output, one instance
        BlockCounts counts;
    };
    // The dynamic power of one rail, region and tag, the unit that feeds select from.
    struct Aggregate {
        std::size_t rail, region, tag;
        double power;
    };
    // A static-sheet input fed the dynamic power of the aggregates its selector picks.
    struct Feed {
        std::size_t cell;
        std::string name;
        std::vector<std::size_t> picked;
    };
    // The static sheet's cells the engine writes and reads, per rail and region as it numbers them.
    struct StaticWiring {
        std::size_t temperatureCell = kNoIndex;
        std::size_t totalCell = kNoIndex;
        std::vector<std::size_t> currentCell;                         // per rail
        std::vector<std::size_t> maxCurrentCell;                      // per rail
        std::vector<std::pair<std::size_t, std::size_t>> regionCell;  // region, cell
        std::vector<Feed> feeds;
        std::optional<CountFeeder> countFeeder;
        std::optional<StaticSupplyCells> supplyCells;  // power-up currents, rails counted in others
    };
    // The board's current inputs with the rail each takes (by name: the design may lack it), its total
    // and its regulators' cells.
    struct BoardRegulatorCells {
        std::size_t load, efficiency, loss, overLimit;
        std::size_t inputVoltage;  // the input cell it is fed from, when not another regulator
    };
    struct BoardWiring {
        std::vector<std::pair<std::size_t, std::string>> inputs;
        std::size_t totalCell = kNoIndex;
        std::vector<BoardRegulatorCells> regulators;
    };
    // A rail's decoupling counts and the cells the sheet could not evaluate for it.
    struct DecouplingLine {
        RailDecoupling counts;
        std::vector<std::string> problems;
    };
    // What the last estimate worked out, for the report.
    struct Figures {
        std::vector<double> railDynamic;    // W per rail
        std::vector<double> regionDynamic;  // W per region
        std::vector<double> staticCurrent;  // A per rail
        std::vector<double> feedPower;      // W per feed
        double dynamicPower = 0;            // W
        double staticPower = 0;             // W
        bool staticOk = true;               // the static sheet calculated (or there is none)
        bool blocksOk = true;               // every block calculated
        ThermalResult thermal;
        std::optional<BoardResult> board;  // when the board was calculated and read
        // Per rail of the decoupling sheet, its counts when evaluated for the current load step.
        std::vector<std::optional<DecouplingLine>> decoupling;
        std::vector<double> steps;  // A per step input, as the decoupling sheet last took them
    };

    Design design;

    // The rails in use, in the order first met, with their voltages.
    std::vector<std::string> rails;
    std::map<std::string, std::size_t> railIndex;
    std::vector<double> voltage;
    std::vector<VoltageSource> voltageSource;
    std::vector<std::pair<std::string, double>> givenRails;  // design.rails as the file gives them
    std::vector<double> givenVoltage;                        // the voltages set-up settled on
    std::vector<VoltageSource> givenSource;
    std::vector<Load> givenLoads;  // design.loads as the file gives them
    std::vector<std::string> tags{""};

    // Every sheet of the design: the blocks in file order, then the static sheet, the board, the
    // rail-grouping sheet and the decoupling sheet.
    std::vector<SheetRunner> runners;
    std::vector<BlockWiring> blocks;  // per block, the first blocks.size() runners
    std::size_t staticRunner = kNoIndex;
    std::size_t boardRunner = kNoIndex;
    std::size_t suppliesRunner = kNoIndex;
    std::size_t decouplingRunner = kNoIndex;
    // a block's name, "static", "board", "supplies", "decoupling"
    std::map<std::string, std::size_t> runnerIndex;
    StaticWiring statics;
    BoardWiring board;
    std::optional<RailGrouping> grouping;
    SupplyScheme scheme;  // the grouping sheet's answer, read whenever its inputs change
    std::optional<DecouplingCells> decouplingCells;
    // Per step input of the decoupling sheet, in rail and part order: the aggregates its region draws
    // on its rail (none for the rest of a rail), picked once as the aggregates are fixed at setup.
    std::vector<std::vector<std::size_t>> stepAggregates;
    std::vector<std::string> schemeProblems;  // cells the grouping sheet could not evaluate
    std::vector<std::size_t> loadRail, loadRegion, loadTag, loadAggregate;
    std::vector<Aggregate> aggregates;

    // Blocks that read from other blocks, and the used-block counts the design adds up.
    std::vector<std::size_t> order;                 // sources before their readers
    std::vector<std::vector<std::size_t>> readers;  // per block, the blocks that read from it
    CountTally tally;
    std::optional<DeviceResources> deviceResources;
    std::vector<double> railMaxCurrent;  // A per rail, from the device catalogue; 0 where it has none

    std::vector<Warning> deviceWarnings;  // found once, at set-up
    double maxJunction = 0;               // degC, the device's limit; 0 when unknown
    // The last thermal solution, where the next solve starts when warmStart.
    std::optional<ThermalStart> thermalStart;
    bool warmStart = true;

    Figures figures;

    SheetRunner* staticSheet() { return staticRunner == kNoIndex ? nullptr : &runners[staticRunner]; }
    SheetRunner const* staticSheet() const {
        return staticRunner == kNoIndex ? nullptr : &runners[staticRunner];
    }
};

// Describes the last estimate into `report`, which ends as a report made from nothing would: the lines
// of blocks not calculated since `report` last described them are kept, as they could only be written
// the same again.
void describeEstimate(EstimateState const& state, Report& report);

}  // namespace prsm::design
