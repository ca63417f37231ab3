#pragma once
// What a sheet declares about its place in a whole design: the rails its outputs draw from, the inputs
// that take a rail's voltage or a field of the design's device, the region its power belongs to, and,
// for the static sheet, which inputs receive the design's summed dynamic power, and for a module board,
// which inputs take the device's rail currents and which outputs are its regulators' figures. Declared once
// in the sheet's table ([rails] and [design], see docs/sheet-tables.md) and read by the design engine; the
// library itself never acts on it.

#include <string>
#include <utility>
#include <vector>

namespace prsm {

// One regulator output of a module board as its report shows it: the computed cells of its load (A),
// efficiency (fraction), conversion loss (W) and power beyond its rating (mW), an empty name: none; and
// what it is: the rail it makes, its kind ("buck" or "ldo"), output voltage (V) and rating (A), 0 when
// not declared, and what feeds it: another regulator of the board, or the input cell holding the board's
// input voltage. The load cell holds the output's own loads, and with `loadIncludesFed` also what the
// regulators fed from it draw.
struct BoardRegulator {
    std::string name;
    std::string load;
    std::string efficiency;
    std::string loss;
    std::string overLimit;
    std::string rail;
    std::string kind;
    double voltage = 0;
    double rating = 0;
    std::string fedFrom;
    bool loadIncludesFed = false;
};

// A feature the device catalogue must give a part for the sheet to apply to it: FEATURE.<part>.<feature>
// is one of `values` (the first-generation AI-engine sheet needs AIE = "AIE").
struct PartFeature {
    std::string feature;
    std::vector<std::string> values;
};

// A count of used blocks that a block makes up (LUTs, flip-flops, block RAMs): `cell` holds one instance's
// share, which the design multiplies by the block's instance count. With `whenInput` set, the share counts
// only while that string input holds one of `whenValues` (a trailing '*' matches any rest: "LUT*").
// `resource` is the device resource it takes up (the catalogue's "LUTS", "BRAMS"), empty when none.
struct SheetCount {
    std::string count;  // "luts", "bram_active", ...: one vocabulary, checked by the generator
    std::string cell;
    std::string resource;
    std::string whenInput;
    std::vector<std::string> whenValues;
};

// A static-sheet input that receives the design's used-block counts: their sum, or with `share` that
// sum as a percentage of the device's `resource` (LUTs used over the device's LUTs).
struct CountFeed {
    std::string input;
    std::vector<std::string> counts;
    std::string resource;
    bool share = false;
};

// One term of a feed's selector: the aggregate's rail, region or tag is one of `names`, or with
// `negate` none of them. Parsed from "rail:VCCINT,VCCAUX", "!region:aie" or "tag:ip" by the generator.
struct SelectorTerm {
    enum class Key { Rail, Region, Tag };
    Key key;
    bool negate;
    std::vector<std::string> names;
};
// A selector: terms that must all hold.
using Selector = std::vector<SelectorTerm>;

struct SheetDesign {
    using Pairs = std::vector<std::pair<std::string, std::string>>;

    std::string region;    // "logic", "io", "gt", "ps_pmc", "noc", "aie" or "hbm"; empty: none
    Pairs voltageInputs;   // input cell -> rail whose voltage it takes
    Pairs powerOutputs;    // computed cell in W -> rail it draws from
    Pairs currentOutputs;  // computed cell in A -> rail it draws from
    Pairs deviceInputs;    // input cell -> field of the design's device ("part", "process", ...)

    // The static sheet: the junction-temperature input, the pattern of the per-rail leakage currents
    // ("{}_STATIC_CURRENT") and of the device's maximum currents, the total static power, the static power
    // per region and the inputs that receive summed dynamic power (input cell -> selector such as
    // "rail:VCCINT !region:aie").
    std::string temperatureInput;
    std::string staticCurrent;
    std::string maxCurrent;  // "{}_MAX_CURRENT": the device's limit per rail in A, where the data has one
    std::string staticTotal;
    Pairs staticRegions;  // region -> computed cell in W
    Pairs feeds;
    std::vector<Selector> feedSelectors;  // each feed's selector, parsed, in the order of `feeds`

    // A module board: the catalogue architecture of the device it carries ("DRAVIK"), the inputs that take
    // the device's total current on a rail (input cell in A -> rail), its total power and its regulators.
    std::string boardArchitecture;
    Pairs boardCurrents;
    std::string boardTotal;
    std::vector<BoardRegulator> boardRegulators;

    // The catalogue features a part needs for the sheet to apply; the design engine warns when the
    // design's part has another value.
    std::vector<PartFeature> requiredFeatures;

    // The used-block counts a block makes up, and the static sheet's inputs that receive them.
    std::vector<SheetCount> counts;
    std::vector<CountFeed> countFeeds;

    // What sets a block's power apart within its region, as a load's "tag" does: "ip" for hard IP, which
    // the static sheet's feeds may select ("region:gt tag:ip"). Empty: none.
    std::string tag;

    // The catalogue architecture of the parts the sheet models ("TALVEX", "DRAVIK"): declared, or the
    // folder of its table. A design refuses a block of another architecture than its part's. Empty: any.
    std::string architecture;

    // The static sheet again: the pattern of the per-rail power-up currents ("{}_POWERUP_CURRENT"), and
    // the rails whose leakage its current of another rail already holds (rail -> the rail holding it), so
    // that a supply adds it once.
    std::string powerupCurrent;
    Pairs countedIn;

    bool isStatic() const { return !temperatureInput.empty(); }
    bool isBoard() const { return !boardCurrents.empty(); }
    bool empty() const {
        return region.empty() && voltageInputs.empty() && powerOutputs.empty() && currentOutputs.empty() &&
               deviceInputs.empty() && !isStatic() && !isBoard() && requiredFeatures.empty() && counts.empty() &&
               tag.empty();
    }
};

}  // namespace prsm
