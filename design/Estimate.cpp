#include <prsm/design/BoardRegulators.h>
#include <prsm/design/Catalogue.h>
#include <prsm/design/DeviceChecks.h>
#include <prsm/design/EstimateState.h>
#include <prsm/design/Grades.h>
#include <prsm/design/RailLimits.h>
#include <prsm/design/Rails.h>
#include <prsm/design/References.h>
#include <prsm/design/SupplyViews.h>
#include <prsm/framework/PRSMReservedValues.h>
#include <prsm/framework/PRSMSheetRegistry.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <vector>

namespace prsm::design {

namespace {

constexpr std::size_t kNone = kNoIndex;

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

// The engine's state and the steps of setting it up and calculating it; describeEstimate() reports it.
struct Estimator::State : EstimateState {
    Report report;

    // The index of a block's or load's tag ("" for none, "ip" for hard IP), added on first use.
    std::size_t tag(std::string const& name) {
        std::size_t index = 0;
        while (index < tags.size() && tags[index] != name) ++index;
        if (index == tags.size()) tags.push_back(name);
        return index;
    }

    // Whether every term of a feed's selector holds for one aggregate of rail, region and tag.
    bool selects(Selector const& terms, Aggregate const& c) const {
        static std::string const none;
        for (SelectorTerm const& term : terms) {
            std::string const& value = term.key == SelectorTerm::Key::Rail ? rails[c.rail]
                                       : term.key == SelectorTerm::Key::Region
                                           ? (c.region == kNone ? none : regionNames()[c.region])
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
    Sheet const& sheetOf(Block const& given, std::string const& pointer) const;
    std::size_t addRunner(Block const& given, Sheet const& sheet, std::string const& name, bool isBlock);
    void setupStatic();
    void setupBoard();
    void settleVoltages();
    void setupAggregates();
    void setupLinks();
    void markRail(std::size_t r);

    void calculateBlock(std::size_t b);
    std::string failedSource(SheetRunner const& runner) const;
    void sumDynamic();
    void solveThermal();
    bool staticAt(double junction, double& staticPower);
    void calculateBoard();
    std::size_t aggregate(std::size_t r, std::size_t region, std::size_t tag);
};

Sheet const& Estimator::State::sheetOf(Block const& given, std::string const& pointer) const {
    Sheet const* sheet = SheetRegistry::instance().find(given.model);
    if (sheet == nullptr)
        throw DesignError(design.source + ": " + pointer + ": unknown model " + given.model);
    return *sheet;
}

// A runner of the sheet under `name`, its rails numbered in the order the sheet declares them; a block's
// power outputs wired to them.
std::size_t Estimator::State::addRunner(Block const& given, Sheet const& sheet, std::string const& name,
                                        bool isBlock) {
    std::size_t const index = runners.size();
    runners.emplace_back(given, sheet, design, deviceWarnings);
    runnerIndex[name] = index;
    SheetRunner& runner = runners.back();
    SheetDesign const& declared = sheet.design();
    std::vector<Output> outputs;
    for (auto const& [cell, railName] : declared.powerOutputs)
        outputs.push_back({cellIndex(sheet, cell), rail(railName), false});
    for (auto const& [cell, railName] : declared.currentOutputs)
        outputs.push_back({cellIndex(sheet, cell), rail(railName), true});
    for (auto const& [cell, railName] : declared.voltageInputs)
        runner.takeVoltage(cellIndex(sheet, cell), rail(railName));
    if (isBlock) {
        BlockWiring& wiring = blocks.emplace_back();
        wiring.region = regionIndex(declared.region);
        wiring.power.assign(outputs.size(), 0.0);
        wiring.outputs = std::move(outputs);
    }
    return index;
}

void Estimator::State::setup() {
    if (std::string const* part = design.device.find("part"); part && !design.device.find("internal_part")) {
        std::string const name = *part;
        if (std::string internal = catalogue::internalPart(name); !internal.empty())
            design.device.fields.emplace_back("internal_part", std::move(internal));
        else
            deviceWarnings.push_back(
                {"", "/device/part",
                 name + " is not in the device catalogue; sheets may fall back to defaults"});
    }
    if (std::string const* part = design.device.find("part"); part && !design.device.find("family"))
        if (std::string family = catalogue::familyOf(*part); !family.empty())
            design.device.fields.emplace_back("family", std::move(family));
    if (!design.device.find("voltage_corner"))
        design.device.fields.emplace_back("voltage_corner", voltageCorners()[0]);
    for (auto const& [name, value] : design.rails)
        voltage.resize(rail(name) + 1), voltage[rail(name)] = value;
    if (std::string const refused = architectureMismatches(design); !refused.empty()) throw DesignError(refused);
    runners.reserve(design.blocks.size() + 4);
    blocks.reserve(design.blocks.size());
    for (Block const& entry : design.blocks)
        addRunner(entry, sheetOf(entry, entry.pointer), entry.name, true);
    for (Load const& load : design.loads) {
        loadRail.push_back(rail(load.rail));
        loadRegion.push_back(regionIndex(load.region));
        loadTag.push_back(tag(load.tag));
    }
    if (design.staticSheet) setupStatic();
    if (design.board) setupBoard();
    if (design.supplies)
        suppliesRunner =
            addRunner(*design.supplies, sheetOf(*design.supplies, "/supplies/model"), "supplies", false);
    if (design.decoupling)
        decouplingRunner =
            addRunner(design.decoupling->sheet, sheetOf(design.decoupling->sheet, "/decoupling/model"),
                      "decoupling", false);

    settleVoltages();
    for (SheetRunner& runner : runners)
        for (auto const& [cell, r] : runner.voltageCells()) runner.instance().setNumber(cell, voltage[r]);
    for (std::size_t i = 0; i < design.loads.size(); ++i)
        if (design.loads[i].current) design.loads[i].power = *design.loads[i].current * voltage[loadRail[i]];
    givenRails = design.rails;
    givenVoltage = voltage;
    givenSource = voltageSource;
    givenLoads = design.loads;
    for (Warning& warning : checkDevice(design, rails, voltage)) deviceWarnings.push_back(std::move(warning));
    maxJunction = catalogue::maxJunctionTemperature();
    railMaxCurrent = railMaxCurrents(design.device, rails);

    setupAggregates();
    setupLinks();
    setupSupplyViews(*this);
}

void Estimator::State::setupStatic() {
    Block const& given = *design.staticSheet;
    staticRunner = addRunner(given, sheetOf(given, "/static/model"), "static", false);
    Sheet const& sheet = runners[staticRunner].sheet();
    SheetDesign const& declared = sheet.design();
    statics.temperatureCell = cellIndex(sheet, declared.temperatureInput);
    if (!declared.staticTotal.empty()) statics.totalCell = cellIndex(sheet, declared.staticTotal);
    for (auto const& [region, cell] : declared.staticRegions)
        statics.regionCell.emplace_back(regionIndex(region), cellIndex(sheet, cell));
    for (auto const& [cell, selector] : declared.feeds)
        statics.feeds.push_back({cellIndex(sheet, cell), cell, {}});
    statics.countFeeder.emplace(sheet);
}

void Estimator::State::setupBoard() {
    Block const& given = *design.board;
    Sheet const* sheet = SheetRegistry::instance().find(given.model);
    SheetDesign const& declared = sheet ? sheet->design() : SheetDesign{};
    if (sheet == nullptr || !declared.isBoard())
        throw DesignError(design.source + ": /board: " + given.model +
                          " is not a module board: its table declares no device currents ([design] "
                          "board_currents)");
    if (!declared.boardArchitecture.empty()) {
        std::string const* part = design.device.find("part");
        std::string const architecture = part ? catalogue::architectureOf(*part) : std::string();
        if (!architecture.empty() && architecture != declared.boardArchitecture)
            throw DesignError(design.source + ": /device/part: part " + *part + " is a " + architecture +
                              " device; board " + given.model + " carries a " + declared.boardArchitecture +
                              " device");
    }
    boardRunner = addRunner(given, *sheet, "board", false);
    for (auto const& [cell, railName] : declared.boardCurrents)
        board.inputs.emplace_back(cellIndex(*sheet, cell), railName);
    if (!declared.boardTotal.empty()) board.totalCell = cellIndex(*sheet, declared.boardTotal);
    auto index = [&](std::string const& name) { return name.empty() ? kNone : cellIndex(*sheet, name); };
    auto isRegulator = [&](std::string const& name) {
        return std::any_of(declared.boardRegulators.begin(), declared.boardRegulators.end(),
                           [&](BoardRegulator const& r) { return r.name == name; });
    };
    for (BoardRegulator const& r : declared.boardRegulators)
        board.regulators.push_back({index(r.load), index(r.efficiency), index(r.loss), index(r.overLimit),
                                    isRegulator(r.fedFrom) ? kNone : index(r.fedFrom)});
}

// Every block output, load and feed on the aggregates of rail, region and tag, the static sheet's
// current cells per rail.
void Estimator::State::setupAggregates() {
    for (std::size_t b = 0; b < blocks.size(); ++b)
        for (Output& out : blocks[b].outputs)
            out.aggregate = aggregate(out.rail, blocks[b].region, tag(runners[b].sheet().design().tag));
    for (std::size_t i = 0; i < design.loads.size(); ++i)
        loadAggregate.push_back(aggregate(loadRail[i], loadRegion[i], loadTag[i]));
    SheetRunner const* sheet = staticSheet();
    if (sheet == nullptr) return;
    SheetDesign const& declared = sheet->sheet().design();
    for (std::size_t f = 0; f < statics.feeds.size(); ++f) {  // the aggregates are all known now
        for (std::size_t c = 0; c < aggregates.size(); ++c)  // the selector as the generator parsed it
            if (selects(declared.feedSelectors[f], aggregates[c])) statics.feeds[f].picked.push_back(c);
    }
    auto perRail = [&](std::string const& pattern, std::vector<std::size_t>& cells) {
        cells.assign(rails.size(), kNone);
        for (std::size_t r = 0; r < rails.size() && !pattern.empty(); ++r) {
            std::string name = pattern;
            name.replace(name.find("{}"), 2, rails[r]);
            cells[r] = cellIndex(sheet->sheet(), name);
        }
    };
    perRail(declared.staticCurrent, statics.currentCell);
    perRail(declared.maxCurrent, statics.maxCurrentCell);
    statics.supplyCells.emplace(sheet->sheet(), rails);
}

// The references between blocks and the counts they make up, resolved once.
void Estimator::State::setupLinks() {
    std::vector<std::vector<Link>> links;
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        SheetRunner& runner = runners[b];
        runner.takeLinks(resolveLinks(runner.given(), runner.sheet(), design));
        blocks[b].counts = tally.declare(runner.sheet());
        links.push_back(runner.links());
    }
    order = calculationOrder(links);
    readers = readersOf(links);
    for (std::size_t r = blocks.size(); r < runners.size(); ++r)
        runners[r].takeLinks(resolveLinks(runners[r].given(), runners[r].sheet(), design));
    std::vector<std::string> resources;
    for (CountTally::Count const& count : tally.counts()) resources.push_back(count.resource);
    if (SheetRunner const* sheet = staticSheet())
        for (CountFeed const& feed : sheet->sheet().design().countFeeds) resources.push_back(feed.resource);
    deviceResources.emplace(design.device, resources);
}

// Every block whose figures depend on rail r's voltage is calculated again.
void Estimator::State::markRail(std::size_t r) {
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        bool uses = false;
        for (auto const& entry : runners[b].voltageCells()) uses = uses || entry.second == r;
        for (Output const& out : blocks[b].outputs) uses = uses || (out.current && out.rail == r);
        if (uses) runners[b].invalidate();
    }
}

// The voltage of every rail in use that the design leaves out: the static sheet's at the design's
// voltage corner, else the catalogue's nominal, else the first block's default. A static sheet without
// a row for the rail gives 0 V (its own fallback); that is taken only when nothing else knows the rail.
void Estimator::State::settleVoltages() {
    voltage.resize(rails.size(), std::nan(""));
    voltageSource.assign(rails.size(), VoltageSource::Design);
    std::vector<std::string> why(rails.size());  // a default that could not be evaluated
    std::vector<bool> offInStatic(rails.size(), false);
    auto sheetDefault = [&](SheetRunner& runner, std::string const& cell, std::size_t r) {
        std::string value;
        if (std::string const failure = failureOf([&] { value = runner.instance().evaluate(cell); });
            !failure.empty()) {
            why[r] = " (block \"" + runner.given().name + "\": " + failure + ")";
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
    if (SheetRunner* sheet = staticSheet())
        for (auto const& [cell, railName] : sheet->sheet().design().voltageInputs) {
            std::size_t const r = railIndex[railName];
            if (!std::isnan(voltage[r])) continue;
            double const volts = sheetDefault(*sheet, cell, r);
            if (volts > 0)
                adopt(r, volts, VoltageSource::Corner);
            else if (volts == 0)
                offInStatic[r] = true;
        }
    for (std::size_t r = 0; r < rails.size(); ++r)
        if (std::isnan(voltage[r]))
            adopt(r, catalogue::nominalVoltage(rails[r]), VoltageSource::CatalogueNominal);
    for (std::size_t b = 0; b < blocks.size(); ++b)
        for (auto const& [cell, railName] : runners[b].sheet().design().voltageInputs) {
            std::size_t const r = railIndex[railName];
            if (std::isnan(voltage[r]))
                adopt(r, sheetDefault(runners[b], cell, r), VoltageSource::BlockDefault);
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

// Why a runner cannot be calculated because a block it reads from failed; "" when none did.
std::string Estimator::State::failedSource(SheetRunner const& runner) const {
    for (Link const& link : runner.links())
        if (SheetRunner const& source = runners[link.source]; !source.error().empty())
            return "block \"" + source.given().name + "\", which it reads from, failed";
    return {};
}

// A block: nothing wired in beyond its inputs; its power per output and its counts read out.
void Estimator::State::calculateBlock(std::size_t b) {
    SheetRunner& runner = runners[b];
    if (std::string failed = failedSource(runner); !failed.empty()) return runner.fail(std::move(failed));
    BlockWiring& wiring = blocks[b];
    runner.calculate(
        voltage, runners, [](SheetInstance&) {},
        [&](SheetInstance& instance) {
            for (std::size_t i = 0; i < wiring.outputs.size(); ++i) {
                Output const& out = wiring.outputs[i];
                double const value = runner.number(out.cell);
                if (!std::isfinite(value) || std::fabs(value) >= kFloatNotSet)
                    throw std::runtime_error(runner.sheet().cells()[out.cell].name + " is not a number");
                wiring.power[i] = out.current ? value * voltage[out.rail] : value;
            }
            CountTally::measure(wiring.counts, runner.sheet(), instance);
        });
}

std::size_t Estimator::State::aggregate(std::size_t r, std::size_t region, std::size_t tag) {
    for (std::size_t i = 0; i < aggregates.size(); ++i)
        if (aggregates[i].rail == r && aggregates[i].region == region && aggregates[i].tag == tag) return i;
    aggregates.push_back({r, region, tag, 0.0});
    return aggregates.size() - 1;
}

// The dynamic power of the blocks that calculated and of the loads, per aggregate, rail and region, and
// the used-block counts of those blocks.
void Estimator::State::sumDynamic() {
    std::vector<double>& railDynamic = figures.railDynamic;
    std::vector<double>& regionDynamic = figures.regionDynamic;
    railDynamic.assign(rails.size(), 0.0);
    regionDynamic.assign(regionNames().size(), 0.0);
    for (Aggregate& c : aggregates) c.power = 0;
    auto add = [&](std::size_t index, double power) {
        Aggregate& c = aggregates[index];
        railDynamic[c.rail] += power;
        if (c.region != kNone) regionDynamic[c.region] += power;
        c.power += power;
    };
    figures.blocksOk = true;
    tally.clear();
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        if (!runners[b].error().empty()) {
            figures.blocksOk = false;
            continue;
        }
        BlockWiring const& wiring = blocks[b];
        int const count = runners[b].given().count;
        for (std::size_t i = 0; i < wiring.outputs.size(); ++i)
            add(wiring.outputs[i].aggregate, wiring.power[i] * count);
        tally.add(wiring.counts, count);
    }
    for (std::size_t i = 0; i < design.loads.size(); ++i) add(loadAggregate[i], design.loads[i].power);
    double dynamic = 0;
    for (double p : railDynamic) dynamic += p;
    figures.dynamicPower = dynamic;
}

// The static sheet, fed with the dynamic power and the counts, at the junction temperature: given, or
// solved from the ambient.
void Estimator::State::solveThermal() {
    ThermalResult& thermal = figures.thermal;
    thermal = ThermalResult{};
    thermal.ambient = design.thermal.ambient;
    thermal.thetaJa = design.thermal.thetaJa;
    figures.staticPower = 0;
    figures.staticOk = true;
    SheetRunner* sheet = staticSheet();
    if (sheet) {
        figures.feedPower.clear();
        for (Feed const& feed : statics.feeds) {
            double sum = 0;
            for (std::size_t c : feed.picked) sum += aggregates[c].power;
            figures.feedPower.push_back(sum);
        }
        statics.countFeeder->prepare(tally, *deviceResources,
                                     [sheet](std::string const& cell) { return sheet->isGiven(cell); });
    }
    double& staticPower = figures.staticPower;
    bool& staticOk = figures.staticOk;
    double const ta = design.thermal.ambient, theta = design.thermal.thetaJa, dynamic = figures.dynamicPower;
    if (design.thermal.junction) {
        thermal.junction = *design.thermal.junction;
        if (sheet) staticOk = staticAt(thermal.junction, staticPower);
    } else if (!sheet || theta == 0) {
        // Nothing to iterate: without leakage, or without a package resistance, the rise is known.
        thermal.solved = true;
        thermal.iterations = 1;
        thermal.junction = ta + theta * dynamic;
        if (sheet) staticOk = staticAt(thermal.junction, staticPower);
    } else {
        thermal.solved = true;
        ThermalSolution const solution =
            solveJunction({ta, theta, dynamic}, thermalStart ? &*thermalStart : nullptr,
                          [this](double junction, double& power) { return staticAt(junction, power); });
        thermal.iterations = solution.calculations;
        thermal.junction = solution.junction;
        staticPower = solution.staticPower;
        staticOk = solution.outcome != ThermalSolution::Failed;
        if (solution.next && warmStart) thermalStart = solution.next;
        thermal.runaway = solution.outcome == ThermalSolution::Runaway;
    }
    figures.staticCurrent.assign(rails.size(), 0.0);
    if (sheet == nullptr) return;
    if (staticOk)
        for (std::size_t r = 0; r < rails.size(); ++r)
            if (statics.currentCell[r] != kNone)
                figures.staticCurrent[r] = sheet->instance().storedNumber(statics.currentCell[r]);
    if (sheet->validityDue()) sheet->checkValidity({});
}

// The static sheet at one junction temperature, from a fresh parameter set each time, so that its
// figures at a temperature never depend on the temperatures calculated before.
bool Estimator::State::staticAt(double junction, double& staticPower) {
    SheetRunner& sheet = runners[staticRunner];
    if (std::string failed = failedSource(sheet); !failed.empty()) {
        sheet.fail(std::move(failed));
        return false;
    }
    bool const calculated = sheet.calculate(
        voltage, runners,
        [&](SheetInstance& instance) {
            for (std::size_t i = 0; i < statics.feeds.size(); ++i)
                instance.setNumber(statics.feeds[i].cell, figures.feedPower[i]);
            statics.countFeeder->feed(instance);
            instance.setNumber(statics.temperatureCell, junction);
        },
        [](SheetInstance&) {});
    if (!calculated) return false;
    staticPower = 0;
    if (statics.totalCell != kNone) {
        staticPower = sheet.instance().storedNumber(statics.totalCell);
    } else {
        for (std::size_t r = 0; r < rails.size(); ++r)
            if (statics.currentCell[r] != kNone)
                staticPower += voltage[r] * sheet.instance().storedNumber(statics.currentCell[r]);
    }
    return std::isfinite(staticPower) && std::fabs(staticPower) < kFloatNotSet;
}

// The board after the thermal solve: each current input takes its rail's dynamic plus static current;
// its total and its regulators' figures read out. A rail with current that no input takes is listed as
// not supplied: the module has no regulator for it, and leaving it out silently would hide that.
void Estimator::State::calculateBoard() {
    SheetRunner& sheet = runners[boardRunner];
    BoardResult result;
    result.model = sheet.given().model;
    auto read = [&](std::size_t cell) { return cell == kNone ? std::nan("") : sheet.number(cell); };
    auto dynamicCurrent = [&](std::size_t r) {
        return voltage[r] > 0 ? figures.railDynamic[r] / voltage[r] : 0.0;
    };
    sheet.calculate(
        voltage, runners,
        [&](SheetInstance& instance) {
            std::vector<bool> received(rails.size(), false);
            for (auto const& [cell, railName] : board.inputs) {
                double current = 0;
                if (auto it = railIndex.find(railName); it != railIndex.end()) {
                    std::size_t const r = it->second;
                    current = dynamicCurrent(r) + figures.staticCurrent[r];
                    received[r] = true;
                }
                instance.setNumber(cell, current);
                result.currents.emplace_back(sheet.sheet().cells()[cell].name, current);
            }
            for (std::size_t r = 0; r < rails.size(); ++r) {
                double const current = dynamicCurrent(r) + figures.staticCurrent[r];
                if (received[r] || !(current > 0)) continue;
                result.unsupplied.push_back({rails[r], current, dynamicCurrent(r), voltage[r] * current});
                result.unsuppliedPower += voltage[r] * current;
            }
        },
        [&](SheetInstance&) {
            result.totalPower = read(board.totalCell);
            std::vector<RegulatorReadings> readings;
            readings.reserve(board.regulators.size());
            for (BoardRegulatorCells const& r : board.regulators)
                readings.push_back({read(r.load), read(r.efficiency), read(r.loss), read(r.overLimit),
                                    read(r.inputVoltage)});
            result.regulators = regulatorView(sheet.sheet().design().boardRegulators, readings);
        });
    if (!sheet.error().empty()) return;
    if (sheet.validityDue()) sheet.checkValidity({});
    figures.board = std::move(result);
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
    for (std::size_t b = 0; b < m_state->blocks.size(); ++b) m_state->runners[b].markDirty();
    return update();
}

Report const& Estimator::update() {
    State& s = *m_state;
    for (std::size_t b : s.order) {  // a block after the blocks it reads from
        SheetRunner& block = s.runners[b];
        if (block.dirty()) {
            s.calculateBlock(b);
            for (std::size_t reader : s.readers[b]) s.runners[reader].invalidate();
        }
        if (block.validityDue()) block.checkValidity(s.blocks[b].power);
    }
    s.sumDynamic();
    s.solveThermal();
    // The board carries the device's currents: only a complete estimate has them.
    s.figures.board.reset();
    if (s.boardRunner != kNone && s.figures.blocksOk && s.figures.staticOk && !s.figures.thermal.runaway)
        s.calculateBoard();
    calculateSupplyViews(s);
    describeEstimate(s, s.report);
    for (SheetRunner& runner : s.runners) runner.markDescribed();
    return s.report;
}

void Estimator::setInput(std::string const& block, std::string const& cell, std::string const& text) {
    State& s = *m_state;
    auto const found = s.runnerIndex.find(block);
    if (found == s.runnerIndex.end()) throw DesignError("no block \"" + block + "\" in " + s.design.source);
    s.runners[found->second].setInput(block, cell, text);
}

void Estimator::clearInputs() {
    for (SheetRunner& runner : m_state->runners) runner.clearInputs();
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
    if (SheetRunner* sheet = s.staticSheet()) sheet->revalidate();
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
    if (SheetRunner* sheet = s.staticSheet()) sheet->revalidate();
}

void Estimator::setLoad(std::string const& load, LoadFigure figure, double value) {
    State& s = *m_state;
    auto const found = std::find_if(s.design.loads.begin(), s.design.loads.end(),
                                    [&](Load const& l) { return l.name == load; });
    if (found == s.design.loads.end()) throw DesignError("no load \"" + load + "\" in " + s.design.source);
    bool const asCurrent = found->current.has_value();
    if (asCurrent != (figure == LoadFigure::Current))
        throw DesignError("load \"" + load + "\" is given as a " + (asCurrent ? "current" : "power") +
                          ", not as a " + (asCurrent ? "power" : "current"));
    if (!std::isfinite(value)) throw DesignError("load \"" + load + "\": the value is not a number");
    std::size_t const i = static_cast<std::size_t>(found - s.design.loads.begin());
    if (asCurrent) {
        found->current = value;
        found->power = value * s.voltage[s.loadRail[i]];
    } else {
        found->power = value;
    }
}

void Estimator::clearLoads() {
    State& s = *m_state;
    for (std::size_t i = 0; i < s.design.loads.size(); ++i) {
        Load& load = s.design.loads[i];
        load.current = s.givenLoads[i].current;
        load.power = load.current ? *load.current * s.voltage[s.loadRail[i]] : s.givenLoads[i].power;
    }
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
