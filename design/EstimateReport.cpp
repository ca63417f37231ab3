#include <prsm/design/EstimateState.h>
#include <prsm/design/Rails.h>
#include <prsm/design/Regulators.h>
#include <prsm/design/SupplyViews.h>
#include <prsm/framework/PRSMReservedValues.h>

#include <algorithm>
#include <cstdio>

namespace prsm::design {

namespace {

using State = EstimateState;

// A block's line of the report.
void describeBlock(State const& s, std::size_t b, BlockResult& result) {
    SheetRunner const& runner = s.runners[b];
    State::BlockWiring const& wiring = s.blocks[b];
    result.name = runner.given().name;
    result.model = runner.given().model;
    result.region = runner.sheet().design().region;
    result.count = runner.given().count;
    result.error = runner.error();
    result.power = 0;
    result.rails.clear();
    if (!runner.error().empty()) return;
    for (std::size_t i = 0; i < wiring.outputs.size(); ++i) {
        double const power = wiring.power[i] * runner.given().count;
        result.power += power;
        std::string const& railName = s.rails[wiring.outputs[i].rail];
        bool merged = false;
        for (auto& entry : result.rails)
            if (entry.first == railName) entry.second += power, merged = true;
        if (!merged) result.rails.emplace_back(railName, power);
    }
}

// The blocks' lines (refreshed only for a block calculated since the last report), their failures and
// warnings, then a line per load.
void describeBlocks(State const& s, Report& out) {
    std::size_t const blockCount = s.blocks.size();
    bool const fresh = out.blocks.size() != blockCount + s.design.loads.size();
    if (fresh) out.blocks.assign(blockCount + s.design.loads.size(), BlockResult{});
    for (std::size_t b = 0; b < blockCount; ++b) {
        SheetRunner const& runner = s.runners[b];
        if (fresh || runner.changed()) describeBlock(s, b, out.blocks[b]);
        if (!runner.error().empty()) {
            out.complete = false;
            out.failures.push_back("block \"" + runner.given().name + "\" (" + runner.given().model +
                                   "): " + runner.error());
        }
        out.warnings.insert(out.warnings.end(), runner.warnings().begin(), runner.warnings().end());
    }
    for (std::size_t i = 0; i < s.design.loads.size(); ++i) {
        Load const& load = s.design.loads[i];
        BlockResult& result = out.blocks[blockCount + i];  // a current load follows its rail's voltage
        result.name = load.name;
        result.model = "load";
        result.region = load.region;
        result.power = load.power;
        result.rails.assign(1, {load.rail, load.power});
    }
}

// The device resources the blocks take up, and a warning for each used beyond the device's count.
void describeResources(State const& s, Report& out) {
    out.resources = resourceUse(s.tally, *s.deviceResources);
    std::string const* part = s.design.device.find("part");
    for (Warning& warning : overUse(out.resources, part ? *part : std::string()))
        out.warnings.push_back(std::move(warning));
}

void describeThermal(State const& s, Report& out) {
    out.thermal = s.figures.thermal;
    ThermalResult const& thermal = out.thermal;
    if (thermal.runaway) {
        out.complete = false;
        char text[200];
        std::snprintf(
            text, sizeof text,
            "thermal runaway: no steady junction temperature at ambient %.1f degC and theta_ja %.3g "
            "degC/W (%.1f degC after %d iteration%s)",
            thermal.ambient, thermal.thetaJa, thermal.junction, thermal.iterations,
            thermal.iterations == 1 ? "" : "s");
        out.failures.push_back(text);
    }
    if (!thermal.runaway && thermal.solved && s.maxJunction > 0 && thermal.junction > s.maxJunction) {
        char text[160];
        std::snprintf(text, sizeof text,
                      "junction temperature %.1f degC exceeds the device's maximum %.0f degC",
                      thermal.junction, s.maxJunction);
        out.warnings.push_back({"", "/thermal", text});
    }
}

// What the static sheet was fed, its failure or its warnings, and what its count inputs held.
void describeStatic(State const& s, Report& out) {
    out.staticInputs.clear();
    SheetRunner const* sheet = s.staticSheet();
    if (sheet == nullptr) return;
    out.staticModel = sheet->given().model;
    for (std::size_t f = 0; f < s.statics.feeds.size(); ++f)
        out.staticInputs.emplace_back(s.statics.feeds[f].name, s.figures.feedPower[f]);
    if (!s.figures.staticOk) {
        out.complete = false;
        out.failures.push_back(
            "static sheet (" + sheet->given().model + "): " +
            (sheet->error().empty() ? std::string("the static power is not a number") : sheet->error()));
    }
    out.warnings.insert(out.warnings.end(), sheet->warnings().begin(), sheet->warnings().end());
    out.staticCounts.clear();
    if (s.figures.staticOk)
        s.statics.countFeeder->describe(sheet->instance(), out.staticCounts, out.warnings);
}

// Every rail that draws or that the design names, with a warning for each beyond the device's limit.
void describeRails(State const& s, Report& out) {
    State::Figures const& f = s.figures;
    SheetRunner const* sheet = f.staticOk ? s.staticSheet() : nullptr;
    out.rails.clear();
    for (std::size_t r = 0; r < s.rails.size(); ++r) {
        RailResult rail;
        rail.rail = s.rails[r];
        rail.voltage = s.voltage[r];
        rail.voltageSource = s.voltageSource[r];
        rail.dynamicCurrent = s.voltage[r] > 0 ? f.railDynamic[r] / s.voltage[r] : 0.0;
        rail.staticCurrent = f.staticCurrent[r];
        rail.totalCurrent = rail.dynamicCurrent + rail.staticCurrent;
        rail.power = s.voltage[r] * rail.totalCurrent;
        // The device's maximum: the catalogue's figure for the rail, else the static sheet's limit cell.
        double limit = r < s.railMaxCurrent.size() ? s.railMaxCurrent[r] : 0.0;
        if (!(limit > 0) && sheet && s.statics.maxCurrentCell[r] != kNoIndex)
            limit = sheet->instance().storedNumber(s.statics.maxCurrentCell[r]);
        if (limit > 0 && limit < kFloatNotSet) {
            rail.maxCurrent = limit;
            rail.overLimit = rail.totalCurrent > limit;
        }
        if (rail.overLimit) {
            char text[160];
            std::snprintf(text, sizeof text, "total current %.4g A exceeds the device's maximum %.4g A",
                          rail.totalCurrent, limit);
            out.warnings.push_back({"", "/rails/" + s.rails[r], text});
        }
        bool const declaredByDesign = std::any_of(s.design.rails.begin(), s.design.rails.end(),
                                                  [&](auto const& e) { return e.first == s.rails[r]; });
        if (f.railDynamic[r] != 0 || rail.staticCurrent != 0 || declaredByDesign) out.rails.push_back(rail);
    }
}

void describeRegions(State const& s, Report& out) {
    SheetRunner const* sheet = s.figures.staticOk ? s.staticSheet() : nullptr;
    out.regions.clear();
    for (std::size_t g = 0; g < regionNames().size(); ++g) {
        RegionResult region;
        region.region = regionNames()[g];
        region.dynamicPower = s.figures.regionDynamic[g];
        if (sheet)
            for (auto const& [index, cell] : s.statics.regionCell)
                if (index == g) region.staticPower = sheet->instance().storedNumber(cell);
        out.regions.push_back(region);
    }
}

// The module board when it was calculated: its figures, a warning for each regulator beyond its rating
// (unless the sheet declares its own message for the cell), for each rail the blocks draw on that it does
// not supply, and its own warnings; else why it failed.
void describeBoard(State const& s, Report& out) {
    if (s.boardRunner == kNoIndex || !out.complete) {
        out.board.reset();
        return;
    }
    SheetRunner const& sheet = s.runners[s.boardRunner];
    if (!s.figures.board) {
        out.board.reset();
        out.complete = false;
        out.failures.push_back("board (" + sheet.given().model + "): " + sheet.error());
        return;
    }
    BoardResult const& board = *s.figures.board;
    for (std::size_t i = 0; i < board.regulators.size(); ++i) {
        RegulatorResult const& regulator = board.regulators[i];
        std::size_t const cell = s.board.regulators[i].overLimit;
        if (regulator.overLimit > 0 && sheet.sheet().cells()[cell].aboveZeroWarning.empty()) {
            char text[200];
            std::snprintf(text, sizeof text, "regulator %s is loaded %.1f mW beyond its rating",
                          regulator.name.c_str(), regulator.overLimit);
            out.warnings.push_back({board.model, sheet.sheet().cells()[cell].name, text});
        }
        // The view's load can exceed the rating where the sheet's over-limit figure does not (a buck that
        // also carries its LDOs): said here, once per regulator.
        if (regulator.margin < 0 && !(regulator.overLimit > 0)) {
            char text[240];
            std::snprintf(text, sizeof text, "regulator %s: load %.4g A exceeds its rating %.4g A",
                          regulator.label.c_str(), regulator.load, regulator.rating);
            out.warnings.push_back({board.model, "", text});
        }
    }
    // A rail the design's blocks draw on that the board does not supply is a design the module cannot
    // power as it stands. Leakage alone comes with the device whatever the design: it is listed in the
    // view, not warned about in every design on the board.
    for (UnsuppliedRail const& rail : board.unsupplied) {
        if (!(rail.dynamicCurrent > 0)) continue;
        char figures[64];
        std::snprintf(figures, sizeof figures, "%.4g A (%.4g W)", rail.current, rail.power);
        out.warnings.push_back({board.model, "",
                                "rail " + rail.rail + " draws " + figures + " that board " + board.model +
                                    " does not supply: no regulator of the module feeds it, so the "
                                    "module's total leaves it out; the device's total counts it"});
    }
    out.warnings.insert(out.warnings.end(), sheet.warnings().begin(), sheet.warnings().end());
    out.board = board;  // into the last report's board, whose storage it reuses
}

}  // namespace

void describeEstimate(State const& s, Report& out) {
    out.source = s.design.source;
    out.voltageCorner = *s.design.device.find("voltage_corner");
    out.complete = true;
    out.failures.clear();
    out.warnings = s.deviceWarnings;
    describeBlocks(s, out);
    out.dynamicPower = s.figures.dynamicPower;
    describeResources(s, out);
    describeThermal(s, out);
    describeStatic(s, out);
    describeRails(s, out);
    describeRegions(s, out);
    out.staticPower = s.figures.staticPower;
    out.totalPower = out.dynamicPower + out.staticPower;
    describeBoard(s, out);
    if (SheetRunner const* sheet = s.figures.staticOk ? s.staticSheet() : nullptr; sheet && s.statics.supplyCells)
        s.statics.supplyCells->describe(sheet->instance(), out.rails);
    loadRegulators(s.design.regulators, out);
    describeSupplyViews(s, out);
}

}  // namespace prsm::design
