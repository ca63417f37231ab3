#pragma once
// A whole design as read from a design file: the device, the thermal conditions, the rail voltages,
// the blocks (each a registered sheet with its inputs) and the extra loads of rails that no sheet
// models. docs/design-files.md describes the file.

#include <prsm/framework/PRSMSheetDesign.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace prsm::design {

// The file's layout version this build reads.
constexpr int kSchemaVersion = 1;

// A design that cannot be estimated. The message holds one line per problem, each naming the file,
// the JSON pointer of the offending value and, where there is one, the block and the cell.
class DesignError : public std::runtime_error {
public:
    explicit DesignError(std::string const& message) : std::runtime_error(message) {}
};

struct Device {
    // Field name ("part", "package", "speed_grade", ...) -> value; see docs/design-files.md.
    std::vector<std::pair<std::string, std::string>> fields;
    std::string const* find(std::string const& field) const;
};

struct Thermal {
    std::optional<double> junction;  // given: used as it is
    double ambient = 25.0;           // otherwise solved from the ambient and theta_ja
    double thetaJa = 0.0;
    // The hottest ambient the design must work in (degC): the worst corner solves the junction there.
    std::optional<double> maxAmbient;
};

struct Input {
    std::string cell;
    std::string text;     // the value as the sheet's text (numbers in full precision)
    std::string pointer;  // JSON pointer of the value in the file (of the preset that set it), for messages
    // A value taken from another block's cell ({"from": block, "cell": cell}); `text` is then empty.
    std::string from{};
    std::string fromCell{};
    bool isReference() const { return !from.empty(); }
};

struct Block {
    std::string name;
    std::string model;
    int count = 1;
    std::vector<Input> inputs;  // the preset's first, when the block names one, then the block's own
    std::string pointer;
    // The reference that gives `cell` its value, or null when the cell is not set from another block.
    Input const* reference(std::string const& cell) const;
};

struct Load {
    std::string name;
    std::string rail;
    double power = 0.0;  // W; a load given as a current is converted with the rail's voltage
    std::optional<double> current;
    std::string region;
    std::string tag;
    std::string pointer;
};

// A regulator the design declares: the rails it feeds, the current it is rated for, and its efficiency,
// one (load, efficiency) point for a constant or a curve over the load (increasing loads, linear between
// the points, flat beyond the first and the last).
struct Regulator {
    std::string name;
    std::vector<std::string> rails;
    double rating = 0;                                  // A
    std::vector<std::pair<double, double>> efficiency;  // load in A -> fraction in (0, 1]
    std::string pointer;
};

// Limits a design states for its own figures; an estimate above one of them exceeds the budget.
struct Budget {
    std::optional<double> totalPower;                          // W
    std::vector<std::pair<std::string, double>> railCurrents;  // rail -> A
    // A declared regulator or a regulator group of the design's scheme -> A.
    std::vector<std::pair<std::string, double>> supplyCurrents;
    bool empty() const { return !totalPower && railCurrents.empty() && supplyCurrents.empty(); }
};

// The decoupling capacitors a design wants counted: the decoupling sheet with its own inputs (the
// channels in use) and each rail's load step as a fraction of the rail's dynamic current.
struct Decoupling {
    Block sheet;
    double stepFraction = 1.0;
    std::vector<std::pair<std::string, double>> railFractions;  // rail -> its own fraction
    double fractionOf(std::string const& rail) const;
};

struct Design {
    std::string source;       // the file name, for messages
    std::string description;  // the file's free text about the design; empty when it has none
    Device device;
    Thermal thermal;
    std::vector<std::pair<std::string, double>> rails;  // rail -> voltage in V
    std::optional<Block> staticSheet;                   // the static-power sheet, when named
    std::optional<Block> board;                         // the module board the device sits on, when named
    std::vector<Block> blocks;
    std::vector<Load> loads;
    std::vector<Regulator> regulators;  // the power-delivery scheme, when the design declares one
    std::optional<Block> supplies;      // the rail-grouping sheet and its inputs, when named
    std::optional<Decoupling> decoupling;
    Budget budget;
};

// An input of a sheet that the design sets, not the block: what it is to the design.
struct DesignOwned {
    enum Kind { None, RailVoltage, DeviceField, JunctionTemperature, FedPower, BoardCurrent };
    Kind kind = None;
    std::string subject{};  // the rail, the device field or the feed's selector; empty otherwise
    explicit operator bool() const { return kind != None; }
};

// Whether the design owns `cell` of a sheet with these declarations (a rail voltage, a device field,
// the junction temperature, a fed input or a board's current input), and as what.
DesignOwned designOwned(SheetDesign const& declared, std::string const& cell);

// The reason in the design's words, to follow "cell X is ": "the voltage of rail VCCINT: set it once
// under /rails"; "" for DesignOwned::None.
std::string describe(DesignOwned const& owned);

// Reads and checks a design file against the registered sheets. Throws DesignError listing every
// problem found; nothing is estimated from a design that fails.
Design readDesignFile(std::string const& path);
// The same from text; `source` names it in messages.
Design parseDesign(std::string const& text, std::string const& source);

}  // namespace prsm::design
