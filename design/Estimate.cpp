#include <prsm/design/Counts.h>
#include <prsm/design/DeclaredWarnings.h>
#include <prsm/design/DeviceChecks.h>
#include <prsm/design/Estimate.h>
#include <prsm/design/Grades.h>
#include <prsm/design/Rails.h>
#include <prsm/design/References.h>
#include <prsm/design/Regulators.h>
#include <prsm/design/Resources.h>
#include <prsm/design/Supplies.h>
#include <prsm/design/ThermalSolve.h>
#include <prsm/framework/PRSMCommonParamControlData.h>
#include <prsm/framework/PRSMException.h>
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>

namespace prsm::design {

namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);
constexpr double kFloatNotSet = 3.4028234663852886e38;

std::size_t cellIndex(Sheet const& sheet, std::string const& name) {
    std::vector<CellInfo> const& cells = sheet.cells();
    for (std::size_t i = 0; i < cells.size(); ++i)
        if (cells[i].name == name) return i;
    return kNone;
}

std::size_t regionIndex(std::string const& region) {
    std::vector<std::string> const& names = regionNames();
    for (std::size_t i = 0; i < names.size(); ++i)
        if (names[i] == region) return i;
    return kNone;
}

// One term of a feed selector: rail:A,B / region:r / tag:t, possibly negated.
struct Term {
    enum Key { Rail, Region, Tag } key;
    bool negate = false;
    std::vector<std::string> names;
};

std::vector<Term> parseSelector(std::string const& text) {
    std::vector<Term> terms;
    std::size_t pos = 0;
    while (pos < text.size()) {
        std::size_t const start = text.find_first_not_of(' ', pos);
        if (start == std::string::npos) break;
        std::size_t end = text.find(' ', start);
        if (end == std::string::npos) end = text.size();
        std::string word = text.substr(start, end - start);
        pos = end;
        Term term{Term::Rail, false, {}};
        if (word[0] == '!') term.negate = true, word.erase(0, 1);
        std::size_t const colon = word.find(':');
        std::string const key = word.substr(0, colon);
        term.key = key == "region" ? Term::Region : key == "tag" ? Term::Tag : Term::Rail;
        for (std::size_t p = colon + 1; p <= word.size();) {
            std::size_t comma = word.find(',', p);
            if (comma == std::string::npos) comma = word.size();
            term.names.push_back(word.substr(p, comma - p));
            p = comma + 1;
        }
        terms.push_back(std::move(term));
    }
    return terms;
}

// The internal name of a part from the device catalogue (DEVICE.<family>.<part>), or "" when the
// catalogue does not list it or cannot be read.
std::string internalPart(std::string const& part) {
    try {
        PRSMCommonParamControlData const& catalogue = PRSMCommonParamControlData::getGlobal();
        std::string name = catalogue.getDeviceAliasOrError(part);
        if (name == prsm::kStringNotSet) name = part;
        std::string const suffix = "." + name;
        for (auto const& [key, value] : catalogue.m_Device)
            if (key.size() > suffix.size() &&
                key.compare(key.size() - suffix.size(), suffix.size(), suffix) == 0)
                return value;
        for (auto const& entry : catalogue.m_Device)  // a module's base device is its own internal name
            if (entry.second == name) return name;
    } catch (...) {  // no catalogue: the sheets keep their own default
    }
    return {};
}

// The catalogue's nominal voltage of a rail (PARAM_VARS_FLOAT.VOLTAGE.<RAIL>_NOMINAL), NaN if none.
double nominalVoltage(std::string const& rail) {
    try {
        float const v =
            PRSMCommonParamControlData::getGlobal().getParamVarsFloatOrError("VOLTAGE", rail + "_NOMINAL");
        if (v != prsm::kFloatNotSet) {
            char text[32];
            std::snprintf(text, sizeof text, "%.7g", static_cast<double>(v));
            return std::strtod(text, nullptr);
        }
    } catch (...) {  // no catalogue
    }
    return std::nan("");
}

// The highest junction temperature the device catalogue allows (THERMAL.MAX_JUNCTION_TEMP), 0 if none.
double maxJunctionTemperature() {
    try {
        int const limit =
            PRSMCommonParamControlData::getGlobal().getParamVarsIntOrError("THERMAL", "MAX_JUNCTION_TEMP");
        return limit == prsm::kIntNotSet ? 0.0 : limit;
    } catch (...) {
        return 0.0;
    }
}

// The catalogue architecture of a part: DEVICE.<family>.<part>, or a family one of whose parts has it as
// internal name (a module's base device), then DEVICE_FAMILY.<architecture>.<family>. "" when unknown.
std::string architectureOf(std::string const& part) {
    try {
        PRSMCommonParamControlData const& catalogue = PRSMCommonParamControlData::getGlobal();
        std::string name = catalogue.getDeviceAliasOrError(part);
        if (name == prsm::kStringNotSet) name = part;
        std::string family;
        for (auto const& [key, value] : catalogue.m_Device) {
            std::size_t const dot = key.find('.');
            if (dot == std::string::npos) continue;
            if (key.compare(dot + 1, std::string::npos, name) == 0) {
                family = key.substr(0, dot);
                break;
            }
            if (value == name) family = key.substr(0, dot);
        }
        if (family.empty()) return {};
        for (auto const& entry : catalogue.m_DeviceFamily) {
            std::size_t const dot = entry.first.find('.');
            if (dot != std::string::npos && entry.first.compare(dot + 1, std::string::npos, family) == 0)
                return entry.first.substr(0, dot);
        }
    } catch (...) {  // no catalogue
    }
    return {};
}

std::string what(std::exception const& e) {
    return e.what();
}

}  // namespace

char const* toString(VoltageSource source) {
    switch (source) {
        case VoltageSource::Design:
            return "design";
        case VoltageSource::Corner:
            return "corner";
        case VoltageSource::CatalogueNominal:
            return "catalogue_nominal";
        case VoltageSource::BlockDefault:
            return "block_default";
    }
    return "";
}

struct Estimator::State {
    struct Output {
        std::size_t cell;
        std::size_t rail;
        bool current;
        std::size_t aggregate = kNone;  // its rail, region and tag in `cells`
    };
    struct BlockState {
        Block const* given;  // the block as the design file gives it
        Sheet const* sheet;
        std::unique_ptr<SheetInstance> instance;
        std::size_t region = kNone;
        std::vector<Output> outputs;
        std::vector<double> power;  // W per output, one instance
        bool dirty = true;
        bool changed = true;  // calculated since the report last described it
        bool checkValidity = true;
        std::vector<std::pair<std::string, std::string>> changed_inputs;  // setInput's, cell -> text
        std::vector<std::pair<std::string, std::string>> device;  // device inputs in the sheet's spelling
        std::vector<std::pair<std::size_t, std::size_t>> voltageCells;  // input cell -> rail whose voltage it takes
        std::string error;
        std::vector<Warning> warnings;
        std::vector<Link> links;  // inputs taken from other blocks
        BlockCounts counts;
    };
    // The dynamic power of one rail, region and tag, the unit that feeds select from.
    struct Cell {
        std::size_t rail, region, tag;
        double power;
    };
    struct Feed {
        std::size_t cell;
        std::string name;
        std::vector<Term> terms;
        std::vector<std::size_t> picked{};  // the aggregates in `cells` its selector picks, once set up
    };

    Design design;
    std::vector<std::string> rails;
    std::map<std::string, std::size_t> railIndex;
    std::vector<double> voltage;
    std::vector<VoltageSource> voltageSource;
    std::vector<std::pair<std::string, double>> givenRails;  // design.rails as the file gives them
    std::vector<double> givenVoltage;                        // the voltages setup() settled on
    std::vector<VoltageSource> givenSource;
    std::vector<std::string> tags{""};
    std::vector<BlockState> blocks;
    std::map<std::string, std::size_t> blockIndex;
    std::vector<std::size_t> loadRail, loadRegion, loadTag, loadCell;
    std::vector<Cell> cells;  // the dynamic power per rail, region and tag, summed by build()
    std::vector<double> scratchRail, scratchRegion;
    std::vector<Warning> deviceWarnings;

    // The static sheet.
    std::unique_ptr<BlockState> statics;
    std::size_t temperatureCell = kNone, totalCell = kNone;
    std::vector<std::size_t> staticCurrentCell;                         // per rail
    std::vector<std::size_t> maxCurrentCell;                            // per rail
    std::optional<StaticSupplyCells> supplyCells;                       // supplies: power-up, held rails
    std::vector<std::pair<std::size_t, std::size_t>> staticRegionCell;  // region, cell
    std::vector<Feed> feeds;
    std::vector<double> feedPower;  // W into each feed, summed by build()
    // The last thermal solution, where the next solve starts when warmStart.
    std::optional<ThermalStart> thermalStart;
    bool warmStart = true;

    // The module board: its current inputs with the rail each takes (kNone: a rail the design lacks).
    struct BoardRegulatorCells {
        std::string name;
        std::size_t load, efficiency, loss, overLimit;
    };
    std::unique_ptr<BlockState> board;
    std::vector<std::pair<std::size_t, std::string>> boardInputs;  // input cell, rail name
    std::size_t boardTotalCell = kNone;
    std::vector<BoardRegulatorCells> boardRegulators;

    // Blocks that read from other blocks, and the used-block counts the design adds up.
    std::vector<std::size_t> order;                 // sources before their readers
    std::vector<std::vector<std::size_t>> readers;  // per block, the blocks that read from it
    CountTally tally;
    std::optional<CountFeeder> countFeeder;
    std::optional<DeviceResources> deviceResources;

    Report report;

    // The index of a block's or load's tag ("" for none, "ip" for hard IP), added on first use.
    std::size_t tag(std::string const& name) {
        std::size_t index = 0;
        while (index < tags.size() && tags[index] != name) ++index;
        if (index == tags.size()) tags.push_back(name);
        return index;
    }

    // Whether every term of a feed's selector holds for one aggregate of rail, region and tag.
    bool selects(Feed const& feed, Cell const& c) const {
        static std::string const none;
        for (Term const& term : feed.terms) {
            std::string const& value = term.key == Term::Rail     ? rails[c.rail]
                                       : term.key == Term::Region ? (c.region == kNone ? none : regionNames()[c.region])
                                                                  : tags[c.tag];
            bool const found = std::find(term.names.begin(), term.names.end(), value) != term.names.end();
            if (found == term.negate) return false;
        }
        return true;
    }

    std::size_t rail(std::string const& name) {
        auto const [it, added] = railIndex.emplace(name, rails.size());
        if (added) rails.push_back(name);
        return it->second;
    }

    void setup();
    void settleVoltages();
    void prepareBlock(BlockState& block);
    void restore(BlockState& block);
    void markRail(std::size_t r);
    void calculateBlock(BlockState& block);
    void checkValidity(BlockState& block);
    bool staticAt(double junction, double& staticPower);
    void setupBoard();
    double readNumber(BlockState& block, std::size_t cell);
    void buildBoard(std::vector<double> const& railDynamic, std::vector<double> const& staticCurrent);
    std::size_t cellOf(std::size_t r, std::size_t region, std::size_t tag);
    void describe(BlockState const& block, BlockResult& result) const;
    void build();
    void setupLinks();
    void applyLinks(BlockState& block);
    std::string failedSource(BlockState const& block) const;
    void addCounts();
};

void Estimator::State::prepareBlock(BlockState& block) {
    Sheet const& sheet = *block.sheet;
    SheetDesign const& declared = sheet.design();
    block.instance = sheet.create();
    block.region = regionIndex(declared.region);
    block.device = deviceInputs(design.device, sheet, *block.instance, block.given->name, deviceWarnings);
    for (auto const& [cell, text] : block.device) block.instance->set(cell, text);
    for (Input const& input : block.given->inputs) {
        if (input.isReference()) continue;  // copied in at each calculation
        try {
            block.instance->set(input.cell, input.text);
        } catch (std::invalid_argument const& e) {
            throw DesignError(design.source + ": " + input.pointer + ": block \"" + block.given->name +
                              "\": " + what(e));
        }
    }
    for (auto const& [cell, railName] : declared.powerOutputs)
        block.outputs.push_back({cellIndex(sheet, cell), rail(railName), false});
    for (auto const& [cell, railName] : declared.currentOutputs)
        block.outputs.push_back({cellIndex(sheet, cell), rail(railName), true});
    for (auto const& [cell, railName] : declared.voltageInputs)
        block.voltageCells.emplace_back(cellIndex(sheet, cell), rail(railName));
    block.power.assign(block.outputs.size(), 0.0);
}

// A block's parameter set as a fresh one would hold it: the sheet's defaults, the device, the file's
// inputs, the inputs changed since, the rail voltages. The generated getters store a computed default
// into its input cell, so a set that was calculated before would keep a default derived from an input
// that has changed since (a signal rate from an old clock).
void Estimator::State::restore(BlockState& block) {
    block.instance->resetUserInputs();
    for (auto const& [cell, text] : block.device) block.instance->set(cell, text);
    for (Input const& input : block.given->inputs)
        if (!input.isReference()) block.instance->set(input.cell, input.text);
    for (auto const& [cell, text] : block.changed_inputs) block.instance->set(cell, text);
    for (auto const& [cell, r] : block.voltageCells) block.instance->setNumber(cell, voltage[r]);
}

// Every block whose figures depend on rail r's voltage is calculated again.
void Estimator::State::markRail(std::size_t r) {
    for (BlockState& block : blocks) {
        bool uses = false;
        for (auto const& entry : block.voltageCells) uses = uses || entry.second == r;
        for (Output const& out : block.outputs) uses = uses || (out.current && out.rail == r);
        if (uses) block.dirty = true, block.checkValidity = true;
    }
}

void Estimator::State::setup() {
    if (std::string const* part = design.device.find("part"); part && !design.device.find("internal_part")) {
        std::string const name = *part;
        if (std::string internal = internalPart(name); !internal.empty())
            design.device.fields.emplace_back("internal_part", std::move(internal));
        else
            deviceWarnings.push_back(
                {"", "/device/part",
                 name + " is not in the device catalogue; sheets may fall back to defaults"});
    }
    if (!design.device.find("voltage_corner"))
        design.device.fields.emplace_back("voltage_corner", voltageCorners()[0]);
    for (auto const& [name, value] : design.rails)
        voltage.resize(rail(name) + 1), voltage[rail(name)] = value;
    blocks.reserve(design.blocks.size());
    for (Block const& entry : design.blocks) {
        BlockState block;
        block.given = &entry;
        block.sheet = SheetRegistry::instance().find(entry.model);
        if (block.sheet == nullptr)
            throw DesignError(design.source + ": " + entry.pointer + ": unknown model " + entry.model);
        prepareBlock(block);
        blockIndex[entry.name] = blocks.size();
        blocks.push_back(std::move(block));
    }
    for (Load const& load : design.loads) {
        loadRail.push_back(rail(load.rail));
        loadRegion.push_back(regionIndex(load.region));
        loadTag.push_back(tag(load.tag));
    }
    if (design.staticSheet) {
        statics = std::make_unique<BlockState>();
        statics->given = &*design.staticSheet;
        statics->sheet = SheetRegistry::instance().find(design.staticSheet->model);
        if (statics->sheet == nullptr)
            throw DesignError(design.source + ": /static/model: unknown model " + design.staticSheet->model);
        prepareBlock(*statics);
        SheetDesign const& declared = statics->sheet->design();
        temperatureCell = cellIndex(*statics->sheet, declared.temperatureInput);
        if (!declared.staticTotal.empty()) totalCell = cellIndex(*statics->sheet, declared.staticTotal);
        for (auto const& [region, cell] : declared.staticRegions)
            staticRegionCell.emplace_back(regionIndex(region), cellIndex(*statics->sheet, cell));
        for (auto const& [cell, selector] : declared.feeds)
            feeds.push_back({cellIndex(*statics->sheet, cell), cell, parseSelector(selector)});
    }

    if (design.board) setupBoard();

    settleVoltages();
    auto writeVoltages = [&](BlockState& block) {
        for (auto const& [cell, r] : block.voltageCells) block.instance->setNumber(cell, voltage[r]);
    };
    if (statics) writeVoltages(*statics);
    for (BlockState& block : blocks) writeVoltages(block);
    for (std::size_t i = 0; i < design.loads.size(); ++i)
        if (design.loads[i].current) design.loads[i].power = *design.loads[i].current * voltage[loadRail[i]];
    givenRails = design.rails;
    givenVoltage = voltage;
    givenSource = voltageSource;
    for (Warning& warning : checkDevice(design, rails, voltage)) deviceWarnings.push_back(std::move(warning));

    for (BlockState& block : blocks)
        for (Output& out : block.outputs)
            out.aggregate = cellOf(out.rail, block.region, tag(block.sheet->design().tag));
    for (std::size_t i = 0; i < design.loads.size(); ++i)
        loadCell.push_back(cellOf(loadRail[i], loadRegion[i], loadTag[i]));
    for (Feed& feed : feeds)  // the aggregates are all known now: each feed's selection is fixed
        for (std::size_t c = 0; c < cells.size(); ++c)
            if (selects(feed, cells[c])) feed.picked.push_back(c);

    if (statics) {
        auto perRail = [&](std::string const& pattern, std::vector<std::size_t>& cells) {
            cells.assign(rails.size(), kNone);
            for (std::size_t r = 0; r < rails.size() && !pattern.empty(); ++r) {
                std::string name = pattern;
                name.replace(name.find("{}"), 2, rails[r]);
                cells[r] = cellIndex(*statics->sheet, name);
            }
        };
        perRail(statics->sheet->design().staticCurrent, staticCurrentCell);
        perRail(statics->sheet->design().maxCurrent, maxCurrentCell);
        supplyCells.emplace(*statics->sheet, rails);  // supplies
    }
    setupLinks();
}

// The references between blocks and the counts they make up, resolved once.
void Estimator::State::setupLinks() {
    std::vector<std::vector<Link>> links;
    for (BlockState& block : blocks) {
        block.links = resolveLinks(*block.given, *block.sheet, design);
        block.counts = tally.declare(*block.sheet);
        links.push_back(block.links);
    }
    order = calculationOrder(links);
    readers = readersOf(links);
    if (statics) statics->links = resolveLinks(*statics->given, *statics->sheet, design);
    if (board) board->links = resolveLinks(*board->given, *board->sheet, design);
    std::vector<std::string> resources;
    for (CountTally::Count const& count : tally.counts()) resources.push_back(count.resource);
    if (statics) {
        countFeeder.emplace(*statics->sheet);
        for (CountFeed const& feed : statics->sheet->design().countFeeds) resources.push_back(feed.resource);
    }
    deviceResources.emplace(design.device, resources);
}

void Estimator::State::applyLinks(BlockState& block) {
    for (Link const& link : block.links) {
        BlockState& source = blocks[link.source];
        copyLinked(link, *source.sheet, *source.instance, *block.sheet, *block.instance);
    }
}

// Why a block cannot be calculated because a block it reads from failed; "" when none did.
std::string Estimator::State::failedSource(BlockState const& block) const {
    for (Link const& link : block.links)
        if (BlockState const& source = blocks[link.source]; !source.error.empty())
            return "block \"" + source.given->name + "\", which it reads from, failed";
    return {};
}

// The used-block counts summed over the blocks that calculated, the static sheet's count inputs worked
// out from them, and the device's resources checked against them.
void Estimator::State::addCounts() {
    tally.clear();
    for (BlockState const& block : blocks)
        if (block.error.empty()) tally.add(block.counts, block.given->count);
    report.resources = resourceUse(tally, *deviceResources);
    std::string const* part = design.device.find("part");
    for (Warning& warning : overUse(report.resources, part ? *part : std::string()))
        report.warnings.push_back(std::move(warning));
    if (!countFeeder) return;
    countFeeder->prepare(tally, *deviceResources, [this](std::string const& cell) {
        return std::any_of(statics->given->inputs.begin(), statics->given->inputs.end(),
                           [&](Input const& input) { return input.cell == cell; }) ||
               std::any_of(statics->changed_inputs.begin(), statics->changed_inputs.end(),
                           [&](auto const& changed) { return changed.first == cell; });
    });
}

// The voltage of every rail in use that the design leaves out: the static sheet's at the design's
// voltage corner, else the catalogue's nominal, else the first block's default. A static sheet without
// a row for the rail gives 0 V (its own fallback); that is taken only when nothing else knows the rail.
void Estimator::State::settleVoltages() {
    voltage.resize(rails.size(), std::nan(""));
    voltageSource.assign(rails.size(), VoltageSource::Design);
    std::vector<std::string> why(rails.size());  // a default that could not be evaluated
    std::vector<bool> offInStatic(rails.size(), false);
    auto sheetDefault = [&](BlockState& block, std::string const& cell, std::size_t r) {
        std::string value;
        try {
            value = block.instance->evaluate(cell);
        } catch (PRSMException const& e) {
            why[r] = " (block \"" + block.given->name + "\": " + e.what() + ")";
            return std::nan("");
        } catch (std::exception const& e) {
            why[r] = " (block \"" + block.given->name + "\": " + e.what() + ")";
            return std::nan("");
        }
        // The sheet's float default, to the 7 digits a float holds (0.8, not 0.800000012).
        char text[32];
        std::snprintf(text, sizeof text, "%.7g", std::strtod(value.c_str(), nullptr));
        return std::strtod(text, nullptr);
    };
    auto adopt = [&](std::size_t r, double volts, VoltageSource source) {
        voltage[r] = volts;
        voltageSource[r] = source;
    };
    if (statics)
        for (auto const& [cell, railName] : statics->sheet->design().voltageInputs) {
            std::size_t const r = railIndex[railName];
            if (!std::isnan(voltage[r])) continue;
            double const volts = sheetDefault(*statics, cell, r);
            if (volts > 0)
                adopt(r, volts, VoltageSource::Corner);
            else if (volts == 0)
                offInStatic[r] = true;
        }
    for (std::size_t r = 0; r < rails.size(); ++r)
        if (std::isnan(voltage[r])) adopt(r, nominalVoltage(rails[r]), VoltageSource::CatalogueNominal);
    for (BlockState& block : blocks)
        for (auto const& [cell, railName] : block.sheet->design().voltageInputs) {
            std::size_t const r = railIndex[railName];
            if (std::isnan(voltage[r])) adopt(r, sheetDefault(block, cell, r), VoltageSource::BlockDefault);
        }
    std::string const& corner = *design.device.find("voltage_corner");
    for (std::size_t r = 0; r < rails.size(); ++r) {
        if (std::isnan(voltage[r]) && offInStatic[r]) adopt(r, 0.0, VoltageSource::Corner);
        if (std::isnan(voltage[r]))
            throw DesignError(
                design.source + ": /rails: rail " + rails[r] +
                " is in use but has no voltage, no sheet gives a default and the catalogue no nominal" +
                why[r] + ": set it under /rails");
        if (corner != voltageCorners()[0] && (voltageSource[r] == VoltageSource::CatalogueNominal ||
                                              voltageSource[r] == VoltageSource::BlockDefault)) {
            char text[200];
            std::snprintf(text, sizeof text, "rail %s: no %s voltage is known; the %s of %.4g V is used",
                          rails[r].c_str(), corner.c_str(),
                          voltageSource[r] == VoltageSource::CatalogueNominal ? "catalogue's nominal voltage"
                                                                              : "first block's default",
                          voltage[r]);
            deviceWarnings.push_back({"", "/device/voltage_corner", text});
        }
    }
}

void Estimator::State::calculateBlock(BlockState& block) {
    block.error.clear();
    try {
        applyLinks(block);  // the values this block takes from others, calculated before it
        block.instance->calculate();
        for (std::size_t i = 0; i < block.outputs.size(); ++i) {
            Output const& out = block.outputs[i];
            double value = block.instance->storedNumber(out.cell);
            if (value >= kFloatNotSet)  // not computed by calculate(): evaluate it by name
                value = std::strtod(block.instance->evaluate(block.sheet->cells()[out.cell].name).c_str(),
                                    nullptr);
            if (!std::isfinite(value) || std::fabs(value) >= kFloatNotSet)
                throw std::runtime_error(block.sheet->cells()[out.cell].name + " is not a number");
            block.power[i] = out.current ? value * voltage[out.rail] : value;
        }
        CountTally::measure(block.counts, *block.sheet, *block.instance);
    } catch (PRSMException const& e) {
        block.error = e.what();
    } catch (std::exception const& e) {
        block.error = e.what();
    }
    block.dirty = false;
    block.changed = true;
}

void Estimator::State::checkValidity(BlockState& block) {
    block.warnings.clear();
    block.checkValidity = false;
    if (!block.error.empty()) return;
    try {
        // A block that draws nothing on any rail; with a list input out of its list that is usually why
        // (an unknown instance type has no capacitance row), and the design's totals lack it.
        bool const drawsNothing =
            !block.outputs.empty() &&
            std::all_of(block.power.begin(), block.power.end(), [](double p) { return p == 0; });
        for (CellInfo const& cell : block.sheet->cells()) {
            if (cell.category != CellCategory::UserInput || cell.validityKey.empty()) continue;
            if (block.instance->isValid(cell.name) != 0) continue;
            std::string message = "value " + block.instance->evaluate(cell.name) + " is not valid";
            std::string const rule =
                cell.hasValidValues ? describeChoices(block.instance->validValues(cell.name)) : cell.rule;
            if (!rule.empty()) message += " (" + rule + ")";
            if (cell.hasValidValues && drawsNothing)
                message += "; the block gives 0 W and contributes nothing";
            block.warnings.push_back({block.given->name, cell.name, message});
        }
        for (auto& [cell, message] : declaredWarnings(*block.sheet, *block.instance))
            block.warnings.push_back({block.given->name, cell, std::move(message)});
    } catch (PRSMException const& e) {
        block.warnings.push_back({block.given->name, "", std::string("validity not checked: ") + e.what()});
    } catch (std::exception const& e) {
        block.warnings.push_back({block.given->name, "", std::string("validity not checked: ") + e.what()});
    }
}

// The static sheet at one junction temperature, from a fresh parameter set each time, so that its
// figures at a temperature never depend on the temperatures calculated before.
bool Estimator::State::staticAt(double junction, double& staticPower) {
    if (std::string const failed = failedSource(*statics); !failed.empty()) {
        statics->error = failed;
        return false;
    }
    restore(*statics);
    for (std::size_t i = 0; i < feeds.size(); ++i) statics->instance->setNumber(feeds[i].cell, feedPower[i]);
    if (countFeeder) countFeeder->feed(*statics->instance);
    statics->instance->setNumber(temperatureCell, junction);
    calculateBlock(*statics);
    if (!statics->error.empty()) return false;
    staticPower = 0;
    if (totalCell != kNone) {
        staticPower = statics->instance->storedNumber(totalCell);
    } else {
        for (std::size_t r = 0; r < rails.size(); ++r)
            if (staticCurrentCell[r] != kNone)
                staticPower += voltage[r] * statics->instance->storedNumber(staticCurrentCell[r]);
    }
    return std::isfinite(staticPower) && std::fabs(staticPower) < kFloatNotSet;
}

void Estimator::State::setupBoard() {
    board = std::make_unique<BlockState>();
    board->given = &*design.board;
    board->sheet = SheetRegistry::instance().find(design.board->model);
    SheetDesign const& declared = board->sheet ? board->sheet->design() : SheetDesign{};
    if (board->sheet == nullptr || !declared.isBoard())
        throw DesignError(design.source + ": /board: " + design.board->model +
                          " is not a module board: its table declares no device currents ([design] "
                          "board_currents)");
    if (!declared.boardArchitecture.empty()) {
        std::string const* part = design.device.find("part");
        std::string const architecture = part ? architectureOf(*part) : std::string();
        if (!architecture.empty() && architecture != declared.boardArchitecture)
            throw DesignError(design.source + ": /device/part: part " + *part + " is a " + architecture +
                              " device; board " + design.board->model + " carries a " +
                              declared.boardArchitecture + " device");
    }
    prepareBlock(*board);
    Sheet const& sheet = *board->sheet;
    for (auto const& [cell, railName] : declared.boardCurrents)
        boardInputs.emplace_back(cellIndex(sheet, cell), railName);
    if (!declared.boardTotal.empty()) boardTotalCell = cellIndex(sheet, declared.boardTotal);
    auto index = [&](std::string const& name) { return name.empty() ? kNone : cellIndex(sheet, name); };
    for (BoardRegulator const& r : declared.boardRegulators)
        boardRegulators.push_back(
            {r.name, index(r.load), index(r.efficiency), index(r.loss), index(r.overLimit)});
}

double Estimator::State::readNumber(BlockState& block, std::size_t cell) {
    if (cell == kNone) return std::nan("");
    double value = block.instance->storedNumber(cell);
    if (value >= kFloatNotSet)  // not computed by calculate(): evaluate it by name
        value = std::strtod(block.instance->evaluate(block.sheet->cells()[cell].name).c_str(), nullptr);
    return value;
}

// The board after the thermal solve: each current input takes its rail's dynamic plus static current.
void Estimator::State::buildBoard(std::vector<double> const& railDynamic,
                                  std::vector<double> const& staticCurrent) {
    Report& out = report;
    BoardResult result;
    result.model = board->given->model;
    restore(*board);  // fresh, as the blocks are: no default kept from an input changed since
    for (auto const& [cell, railName] : boardInputs) {
        double current = 0;
        if (auto it = railIndex.find(railName); it != railIndex.end()) {
            std::size_t const r = it->second;
            current = (voltage[r] > 0 ? railDynamic[r] / voltage[r] : 0.0) + staticCurrent[r];
        }
        board->instance->setNumber(cell, current);
        result.currents.emplace_back(board->sheet->cells()[cell].name, current);
    }
    calculateBlock(*board);
    try {
        if (board->error.empty()) {
            result.totalPower = readNumber(*board, boardTotalCell);
            for (BoardRegulatorCells const& r : boardRegulators) {
                RegulatorResult reg{r.name, readNumber(*board, r.load), readNumber(*board, r.efficiency),
                                    readNumber(*board, r.loss), readNumber(*board, r.overLimit)};
                // A sheet that declares its own message for the cell has it given by checkValidity.
                if (reg.overLimit > 0 && board->sheet->cells()[r.overLimit].aboveZeroWarning.empty()) {
                    char text[200];
                    std::snprintf(text, sizeof text, "regulator %s is loaded %.1f mW beyond its rating",
                                  r.name.c_str(), reg.overLimit);
                    out.warnings.push_back({result.model, board->sheet->cells()[r.overLimit].name, text});
                }
                result.regulators.push_back(std::move(reg));
            }
        }
    } catch (PRSMException const& e) {
        board->error = e.what();
    } catch (std::exception const& e) {
        board->error = e.what();
    }
    if (!board->error.empty()) {
        out.complete = false;
        out.failures.push_back("board (" + result.model + "): " + board->error);
        return;
    }
    if (board->checkValidity) checkValidity(*board);
    out.warnings.insert(out.warnings.end(), board->warnings.begin(), board->warnings.end());
    out.board = std::move(result);
}

std::size_t Estimator::State::cellOf(std::size_t r, std::size_t region, std::size_t tag) {
    for (std::size_t i = 0; i < cells.size(); ++i)
        if (cells[i].rail == r && cells[i].region == region && cells[i].tag == tag) return i;
    cells.push_back({r, region, tag, 0.0});
    return cells.size() - 1;
}

// A block's line of the report; refreshed only when the block was calculated again.
void Estimator::State::describe(BlockState const& block, BlockResult& result) const {
    result.name = block.given->name;
    result.model = block.given->model;
    result.region = block.sheet->design().region;
    result.count = block.given->count;
    result.error = block.error;
    result.power = 0;
    result.rails.clear();
    if (!block.error.empty()) return;
    for (std::size_t i = 0; i < block.outputs.size(); ++i) {
        double const power = block.power[i] * block.given->count;
        result.power += power;
        std::string const& railName = rails[block.outputs[i].rail];
        bool merged = false;
        for (auto& entry : result.rails)
            if (entry.first == railName) entry.second += power, merged = true;
        if (!merged) result.rails.emplace_back(railName, power);
    }
}

void Estimator::State::build() {
    Report& out = report;
    out.source = design.source;
    out.voltageCorner = *design.device.find("voltage_corner");
    out.complete = true;
    out.failures.clear();
    out.warnings = deviceWarnings;
    out.staticInputs.clear();
    out.thermal = ThermalResult{};
    std::size_t const regionCount = regionNames().size();

    std::vector<double>& railDynamic = scratchRail;
    std::vector<double>& regionDynamic = scratchRegion;
    railDynamic.assign(rails.size(), 0.0);
    regionDynamic.assign(regionCount, 0.0);
    for (Cell& c : cells) c.power = 0;
    auto add = [&](std::size_t cell, double power) {
        Cell& c = cells[cell];
        railDynamic[c.rail] += power;
        if (c.region != kNone) regionDynamic[c.region] += power;
        c.power += power;
    };

    bool const fresh = out.blocks.size() != blocks.size() + design.loads.size();
    if (fresh) out.blocks.assign(blocks.size() + design.loads.size(), BlockResult{});
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        BlockState& block = blocks[b];
        if (fresh || block.changed) describe(block, out.blocks[b]);
        block.changed = false;
        if (!block.error.empty()) {
            out.complete = false;
            out.failures.push_back("block \"" + block.given->name + "\" (" + block.given->model +
                                   "): " + block.error);
        } else {
            for (std::size_t i = 0; i < block.outputs.size(); ++i)
                add(block.outputs[i].aggregate, block.power[i] * block.given->count);
        }
        if (!block.warnings.empty())
            out.warnings.insert(out.warnings.end(), block.warnings.begin(), block.warnings.end());
    }
    for (std::size_t i = 0; i < design.loads.size(); ++i) {
        Load const& load = design.loads[i];
        BlockResult& result = out.blocks[blocks.size() + i];  // a current load follows its rail's voltage
        result.name = load.name;
        result.model = "load";
        result.region = load.region;
        result.power = load.power;
        result.rails.assign(1, {load.rail, load.power});
        add(loadCell[i], load.power);
    }

    double dynamic = 0;
    for (double p : railDynamic) dynamic += p;
    out.dynamicPower = dynamic;
    addCounts();

    // The static sheet: fed with the dynamic power, evaluated at the junction temperature.
    std::vector<double> staticCurrent(rails.size(), 0.0);
    double staticPower = 0;
    out.thermal.ambient = design.thermal.ambient;
    out.thermal.thetaJa = design.thermal.thetaJa;
    if (statics) {
        out.staticModel = statics->given->model;
        feedPower.clear();
        for (Feed const& feed : feeds) {
            double sum = 0;
            for (std::size_t c : feed.picked) sum += cells[c].power;
            feedPower.push_back(sum);
            out.staticInputs.emplace_back(feed.name, sum);
        }
    }
    bool staticOk = true;
    double const ta = design.thermal.ambient, theta = design.thermal.thetaJa;
    if (design.thermal.junction) {
        out.thermal.junction = *design.thermal.junction;
        if (statics) staticOk = staticAt(out.thermal.junction, staticPower);
    } else if (!statics || theta == 0) {
        // Nothing to iterate: without leakage, or without a package resistance, the rise is known.
        out.thermal.solved = true;
        out.thermal.iterations = 1;
        out.thermal.junction = ta + theta * dynamic;
        if (statics) staticOk = staticAt(out.thermal.junction, staticPower);
    } else {
        out.thermal.solved = true;
        ThermalSolution const solution =
            solveJunction({ta, theta, dynamic}, thermalStart ? &*thermalStart : nullptr,
                          [this](double junction, double& power) { return staticAt(junction, power); });
        out.thermal.iterations = solution.calculations;
        out.thermal.junction = solution.junction;
        staticPower = solution.staticPower;
        staticOk = solution.outcome != ThermalSolution::Failed;
        if (solution.next && warmStart) thermalStart = solution.next;
        if (solution.outcome == ThermalSolution::Runaway) {
            out.thermal.runaway = true;
            out.complete = false;
            char text[200];
            std::snprintf(
                text, sizeof text,
                "thermal runaway: no steady junction temperature at ambient %.1f degC and theta_ja %.3g "
                "degC/W (%.1f degC after %d iteration%s)",
                ta, theta, out.thermal.junction, out.thermal.iterations,
                out.thermal.iterations == 1 ? "" : "s");
            out.failures.push_back(text);
        }
    }
    if (!out.thermal.runaway && out.thermal.solved) {
        double const limit = maxJunctionTemperature();
        if (limit > 0 && out.thermal.junction > limit) {
            char text[160];
            std::snprintf(text, sizeof text,
                          "junction temperature %.1f degC exceeds the device's maximum %.0f degC",
                          out.thermal.junction, limit);
            out.warnings.push_back({"", "/thermal", text});
        }
    }
    if (statics) {
        if (!staticOk) {
            out.complete = false;
            out.failures.push_back(
                "static sheet (" + statics->given->model + "): " +
                (statics->error.empty() ? std::string("the static power is not a number") : statics->error));
        } else {
            for (std::size_t r = 0; r < rails.size(); ++r)
                if (staticCurrentCell[r] != kNone)
                    staticCurrent[r] = statics->instance->storedNumber(staticCurrentCell[r]);
        }
        if (statics->checkValidity) checkValidity(*statics);
        out.warnings.insert(out.warnings.end(), statics->warnings.begin(), statics->warnings.end());
        out.staticCounts.clear();
        if (countFeeder && staticOk)
            countFeeder->describe(*statics->instance, out.staticCounts, out.warnings);
    }

    out.rails.clear();
    out.regions.clear();
    for (std::size_t r = 0; r < rails.size(); ++r) {
        RailResult rail;
        rail.rail = rails[r];
        rail.voltage = voltage[r];
        rail.voltageSource = voltageSource[r];
        rail.dynamicCurrent = voltage[r] > 0 ? railDynamic[r] / voltage[r] : 0.0;
        rail.staticCurrent = staticCurrent[r];
        rail.totalCurrent = rail.dynamicCurrent + rail.staticCurrent;
        rail.power = voltage[r] * rail.totalCurrent;
        if (statics && staticOk && maxCurrentCell[r] != kNone) {
            double const limit = statics->instance->storedNumber(maxCurrentCell[r]);
            if (limit > 0 && limit < kFloatNotSet) {
                rail.maxCurrent = limit;
                rail.overLimit = rail.totalCurrent > limit;
            }
            if (rail.overLimit) {
                char text[160];
                std::snprintf(text, sizeof text, "total current %.4g A exceeds the device's maximum %.4g A",
                              rail.totalCurrent, limit);
                out.warnings.push_back({"", "/rails/" + rails[r], text});
            }
        }
        bool const declaredByDesign = std::any_of(design.rails.begin(), design.rails.end(),
                                                  [&](auto const& e) { return e.first == rails[r]; });
        if (railDynamic[r] != 0 || rail.staticCurrent != 0 || declaredByDesign) out.rails.push_back(rail);
    }
    for (std::size_t g = 0; g < regionCount; ++g) {
        RegionResult region;
        region.region = regionNames()[g];
        region.dynamicPower = regionDynamic[g];
        if (statics && staticOk)
            for (auto const& [index, cell] : staticRegionCell)
                if (index == g) region.staticPower = statics->instance->storedNumber(cell);
        out.regions.push_back(region);
    }
    out.staticPower = staticPower;
    out.totalPower = out.dynamicPower + out.staticPower;
    out.board.reset();
    if (board && out.complete) buildBoard(railDynamic, staticCurrent);
    if (supplyCells && staticOk) supplyCells->describe(*statics->instance, out.rails);  // supplies
    loadRegulators(design.regulators, out);                                               // supplies
}

Estimator::Estimator(Design design) : m_state(std::make_unique<State>()) {
    m_state->design = std::move(design);
    m_state->setup();
}

Estimator::~Estimator() = default;

Design const& Estimator::design() const {
    return m_state->design;
}

Report const& Estimator::estimate() {
    for (State::BlockState& block : m_state->blocks) block.dirty = true;
    return update();
}

Report const& Estimator::update() {
    State& s = *m_state;
    for (std::size_t b : s.order) {  // a block after the blocks it reads from
        State::BlockState& block = s.blocks[b];
        if (block.dirty) {
            if (std::string const failed = s.failedSource(block); failed.empty()) {
                s.restore(block);
                s.calculateBlock(block);
            } else {
                block.error = failed;
                block.dirty = false;
                block.changed = true;
            }
            for (std::size_t reader : s.readers[b])
                s.blocks[reader].dirty = s.blocks[reader].checkValidity = true;
        }
        if (block.checkValidity) s.checkValidity(block);
    }
    m_state->build();
    return m_state->report;
}

void Estimator::setInput(std::string const& block, std::string const& cell, std::string const& text) {
    State& s = *m_state;
    State::BlockState* target = nullptr;
    if (block == "static" && s.statics)
        target = s.statics.get();
    else if (block == "board" && s.board)
        target = s.board.get();
    else if (auto it = s.blockIndex.find(block); it != s.blockIndex.end())
        target = &s.blocks[it->second];
    if (target == nullptr) throw DesignError("no block \"" + block + "\" in " + s.design.source);
    CellInfo const* info = target->sheet->findCell(cell);
    if (info == nullptr || info->category != CellCategory::UserInput)
        throw DesignError("block \"" + block + "\": " + cell + " is not an input of " + target->given->model);
    if (std::string const owner = designOwned(target->sheet->design(), cell); !owner.empty())
        throw DesignError("block \"" + block + "\": cell " + cell + " is " + owner);
    if (Input const* reference = target->given->reference(cell))
        throw DesignError("block \"" + block + "\": cell " + cell + " takes its value from block \"" +
                          reference->from + "\"");
    try {
        target->instance->set(cell, text);
    } catch (std::invalid_argument const& e) {
        throw DesignError("block \"" + block + "\": " + e.what());
    }
    auto& changed = target->changed_inputs;
    auto const it =
        std::find_if(changed.begin(), changed.end(), [&](auto const& e) { return e.first == cell; });
    if (it != changed.end())
        it->second = text;
    else
        changed.emplace_back(cell, text);
    target->dirty = true;
    target->checkValidity = true;
}

void Estimator::clearInputs() {
    State& s = *m_state;
    for (State::BlockState& block : s.blocks)
        if (!block.changed_inputs.empty()) {
            block.changed_inputs.clear();
            block.dirty = true;
            block.checkValidity = true;
        }
    for (State::BlockState* sheet : {s.statics.get(), s.board.get()})
        if (sheet && !sheet->changed_inputs.empty()) {  // both are restored at every calculation
            sheet->changed_inputs.clear();
            sheet->checkValidity = true;
        }
}

void Estimator::setThermal(Thermal const& thermal) {
    m_state->design.thermal = thermal;
}

void Estimator::setThermalStart(ThermalStartFrom from) {
    m_state->warmStart = from == ThermalStartFrom::LastSolution;
    if (!m_state->warmStart) m_state->thermalStart.reset();
}

void Estimator::setRailVoltage(std::string const& rail, double volts) {
    State& s = *m_state;
    auto const found = s.railIndex.find(rail);
    if (found == s.railIndex.end())
        throw DesignError("no block or load of " + s.design.source + " uses rail " + rail);
    if (!std::isfinite(volts)) throw DesignError("the voltage of rail " + rail + " is not a number");
    std::size_t const r = found->second;
    // As if the file gave it under /rails.
    auto given = std::find_if(s.design.rails.begin(), s.design.rails.end(),
                              [&](auto const& entry) { return entry.first == rail; });
    if (given != s.design.rails.end())
        given->second = volts;
    else
        s.design.rails.emplace_back(rail, volts);
    s.voltageSource[r] = VoltageSource::Design;
    if (s.voltage[r] == volts) return;
    s.voltage[r] = volts;
    for (std::size_t i = 0; i < s.design.loads.size(); ++i)
        if (s.loadRail[i] == r && s.design.loads[i].current)
            s.design.loads[i].power = *s.design.loads[i].current * volts;
    s.markRail(r);
    if (s.statics) s.statics->checkValidity = true;
}

void Estimator::clearRailVoltages() {
    State& s = *m_state;
    s.design.rails = s.givenRails;
    s.voltageSource = s.givenSource;
    for (std::size_t r = 0; r < s.rails.size(); ++r)
        if (s.voltage[r] != s.givenVoltage[r]) {
            s.voltage[r] = s.givenVoltage[r];
            s.markRail(r);
        }
    for (std::size_t i = 0; i < s.design.loads.size(); ++i)
        if (s.design.loads[i].current)
            s.design.loads[i].power = *s.design.loads[i].current * s.voltage[s.loadRail[i]];
    if (s.statics) s.statics->checkValidity = true;
}

std::vector<std::pair<std::string, double>> Estimator::railVoltages() const {
    std::vector<std::pair<std::string, double>> rails;
    for (std::size_t r = 0; r < m_state->rails.size(); ++r)
        rails.emplace_back(m_state->rails[r], m_state->voltage[r]);
    return rails;
}

Report estimateFile(std::string const& path) {
    Estimator estimator(readDesignFile(path));
    return estimator.estimate();
}

}  // namespace prsm::design
