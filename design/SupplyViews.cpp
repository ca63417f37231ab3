#include <prsm/design/SupplyViews.h>
#include <prsm/framework/PRSMReservedValues.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace prsm::design {

namespace {

void calculateGrouping(EstimateState& s) {
    SheetRunner& runner = s.runners[s.suppliesRunner];
    s.schemeProblems.clear();
    bool const calculated = runner.evaluate(
        s.voltage, s.runners, [](SheetInstance&) {},
        [&](SheetInstance& instance) { s.scheme = s.grouping->read(instance, s.rails, s.schemeProblems); });
    if (!calculated) s.scheme = SupplyScheme{};
    if (runner.validityDue()) runner.checkValidity({});
}

// What step input `input`'s region draws on its rail (A); nothing for the part of no region.
double regionCurrent(EstimateState const& s, std::size_t input, double volts) {
    double current = 0;
    for (std::size_t a : s.stepAggregates[input]) current += s.aggregates[a].power / volts;
    return current;
}

// Each step input's load step: the fraction of its rail's dynamic current, or of the part of it that the
// input's region draws (the rest for the part of no region).
std::vector<double> loadSteps(EstimateState const& s) {
    std::vector<double> steps;
    steps.reserve(s.stepAggregates.size());
    std::size_t input = 0;
    for (DecouplingCells::Rail const& rail : s.decouplingCells->rails()) {
        double const volts = s.voltage[rail.rail];
        double const fraction = s.design.decoupling->fractionOf(s.rails[rail.rail]);
        double const dynamic = volts > 0 ? s.figures.railDynamic[rail.rail] / volts : 0.0;
        double inRegions = 0;
        if (volts > 0)
            for (std::size_t p = 0; p < rail.parts.size(); ++p)
                inRegions += regionCurrent(s, input + p, volts);
        for (std::size_t p = 0; p < rail.parts.size(); ++p) {
            bool const rest = rail.parts[p].region == DecouplingCells::kNone;
            double const own = volts > 0 ? regionCurrent(s, input + p, volts) : 0.0;
            steps.push_back(fraction * (rest ? dynamic - inRegions : own));
        }
        input += rail.parts.size();
    }
    return steps;
}

// The aggregates each step input's region draws on its rail, in loadSteps' order.
std::vector<std::vector<std::size_t>> stepAggregatesOf(EstimateState const& s) {
    std::vector<std::vector<std::size_t>> picked;
    for (DecouplingCells::Rail const& rail : s.decouplingCells->rails())
        for (DecouplingCells::Part const& part : rail.parts) {
            std::vector<std::size_t>& own = picked.emplace_back();
            if (part.region == DecouplingCells::kNone) continue;
            for (std::size_t a = 0; a < s.aggregates.size(); ++a)
                if (s.aggregates[a].rail == rail.rail && s.aggregates[a].region == part.region) own.push_back(a);
        }
    return picked;
}

// One rail's load step and counts from an instance whose step inputs are set; a count the sheet cannot
// evaluate is NaN, with the reason.
EstimateState::DecouplingLine countsOf(SheetRunner const& runner, SheetInstance& instance,
                                       DecouplingCells::Rail const& rail, double const* steps,
                                       std::vector<std::string> const& railNames) {
    EstimateState::DecouplingLine line;
    line.counts.rail = railNames[rail.rail];
    line.counts.capacitors.reserve(rail.counts.size());
    for (std::size_t p = 0; p < rail.parts.size(); ++p) {
        line.counts.stepCurrent += steps[p];
        if (!rail.parts[p].name.empty()) line.counts.stepParts.emplace_back(rail.parts[p].name, steps[p]);
    }
    for (auto const& count : rail.counts) {  // a lambda below: no structured binding
        double value = std::nan("");
        instance.setNumber(count.second, prsm::kFloatNotSet);  // the counts are the sheet's only figures
        if (std::string failure = failureOf([&] { value = instance.evaluateNumber(count.second); });
            !failure.empty())
            line.problems.push_back(runner.sheet().cells()[count.second].name + ": " + failure);
        line.counts.capacitors.push_back({count.first, value});
    }
    return line;
}

// Whether rail r is one the report's rail view shows: it draws, or the design names it.
bool inRailView(EstimateState const& s, std::size_t r) {
    return s.figures.railDynamic[r] != 0 || s.figures.staticCurrent[r] != 0 ||
           std::any_of(s.design.rails.begin(), s.design.rails.end(),
                       [&](auto const& given) { return given.first == s.rails[r]; });
}

// A rail's counts are evaluated again only when its load step or the sheet's inputs changed: after one
// block's change that is the block's rails alone.
void calculateDecoupling(EstimateState& s) {
    SheetRunner& runner = s.runners[s.decouplingRunner];
    EstimateState::Figures& f = s.figures;
    std::vector<DecouplingCells::Rail> const& rails = s.decouplingCells->rails();
    if (!f.blocksOk) {  // no dynamic currents to step with
        f.decoupling.assign(rails.size(), std::nullopt);
        f.steps.clear();
        return;
    }
    std::vector<double> steps = loadSteps(s);
    bool const fresh =
        runner.dirty() || f.steps.size() != steps.size() || f.decoupling.size() != rails.size();
    if (fresh) f.decoupling.assign(rails.size(), std::nullopt);
    std::vector<bool> due(rails.size(), false);
    for (std::size_t r = 0, i = 0; r < rails.size(); i += rails[r].parts.size(), ++r) {
        bool const stepped =
            fresh ||
            !std::equal(steps.begin() + i, steps.begin() + i + rails[r].parts.size(), f.steps.begin() + i);
        if (stepped) f.decoupling[r].reset();
        due[r] = !f.decoupling[r] && inRailView(s, rails[r].rail);
    }
    f.steps = std::move(steps);
    if (std::none_of(due.begin(), due.end(), [](bool d) { return d; })) return;
    runner.evaluate(
        s.voltage, s.runners,
        [&](SheetInstance& instance) {
            std::size_t i = 0;
            for (DecouplingCells::Rail const& rail : rails)
                for (DecouplingCells::Part const& part : rail.parts)
                    instance.setNumber(part.cell, f.steps[i++]);
        },
        [&](SheetInstance& instance) {
            for (std::size_t r = 0, i = 0; r < rails.size(); i += rails[r].parts.size(), ++r)
                if (due[r])
                    f.decoupling[r] = countsOf(runner, instance, rails[r], f.steps.data() + i, s.rails);
        },
        fresh ? SheetRunner::Start::NewSet : SheetRunner::Start::SameSet);
    if (!runner.error().empty()) f.decoupling.assign(rails.size(), std::nullopt);
    if (runner.validityDue()) runner.checkValidity({});
}

// `to` = `from`; a rail's parts and capacitor values are the sheet's, so when `to` already holds the
// same rail (the last report's) only the figures are copied.
void assignCounts(RailDecoupling& to, RailDecoupling const& from) {
    if (to.rail != from.rail || to.stepParts.size() != from.stepParts.size() ||
        to.capacitors.size() != from.capacitors.size()) {
        to = from;
        return;
    }
    to.stepCurrent = from.stepCurrent;
    for (std::size_t p = 0; p < from.stepParts.size(); ++p) to.stepParts[p].second = from.stepParts[p].second;
    for (std::size_t c = 0; c < from.capacitors.size(); ++c) to.capacitors[c].count = from.capacitors[c].count;
}

std::string pointerToken(std::string const& name) {
    std::string out;
    for (char c : name) out += c == '~' ? "~0" : c == '/' ? "~1" : std::string(1, c);
    return out;
}

}  // namespace

void setupSupplyViews(EstimateState& s) {
    if (s.suppliesRunner != kNoIndex) {
        s.grouping.emplace(s.runners[s.suppliesRunner].sheet());
        calculateGrouping(s);
    }
    if (s.decouplingRunner != kNoIndex) {
        s.decouplingCells.emplace(s.runners[s.decouplingRunner].sheet(), s.rails);
        s.stepAggregates = stepAggregatesOf(s);
    }
    for (auto const& entry : s.design.budget.supplyCurrents) {
        std::string const& name = entry.first;
        bool const regulator = std::any_of(s.design.regulators.begin(), s.design.regulators.end(),
                                           [&](Regulator const& r) { return r.name == name; });
        bool const group = std::any_of(s.scheme.groups.begin(), s.scheme.groups.end(),
                                       [&](SupplyScheme::Group const& g) { return g.name == name; });
        if (regulator || group) continue;
        std::string known;
        for (Regulator const& r : s.design.regulators) known += (known.empty() ? "" : ", ") + r.name;
        for (SupplyScheme::Group const& g : s.scheme.groups) known += (known.empty() ? "" : ", ") + g.name;
        throw DesignError(s.design.source + ": /budget/supplies/" + pointerToken(name) + ": " + name +
                          " is neither a declared regulator nor a regulator group of the design's scheme" +
                          (known.empty() ? std::string(" (it has none)") : "; one of " + known));
    }
}

void calculateSupplyViews(EstimateState& s) {
    if (s.suppliesRunner != kNoIndex && s.runners[s.suppliesRunner].dirty()) calculateGrouping(s);
    if (s.decouplingRunner != kNoIndex) calculateDecoupling(s);
}

void describeSupplyViews(EstimateState const& s, Report& out) {
    auto warnings = [&](SheetRunner const& runner, std::vector<std::string> const& problems) {
        std::string const& role = runner.given().name;
        if (!runner.error().empty()) out.warnings.push_back({role, "", "not calculated: " + runner.error()});
        for (std::string const& problem : problems)
            out.warnings.push_back({role, "", "no figure: " + problem});
        out.warnings.insert(out.warnings.end(), runner.warnings().begin(), runner.warnings().end());
    };
    if (s.suppliesRunner != kNoIndex) {
        SheetRunner const& runner = s.runners[s.suppliesRunner];
        out.supplyModel = runner.given().model;
        warnings(runner, s.schemeProblems);
        groupSupplies(s.scheme, out);
    } else {
        out.supplyGroups.clear();
    }
    if (s.decouplingRunner == kNoIndex) {
        out.decoupling.clear();
    } else {
        SheetRunner const& runner = s.runners[s.decouplingRunner];
        out.decouplingModel = runner.given().model;
        std::vector<std::string> problems;
        std::vector<DecouplingCells::Rail> const& rails = s.decouplingCells->rails();
        std::size_t shown = 0;
        for (std::size_t r = 0; r < s.figures.decoupling.size(); ++r) {
            std::optional<EstimateState::DecouplingLine> const& line = s.figures.decoupling[r];
            if (!line || !inRailView(s, rails[r].rail)) continue;  // not evaluated, or no longer in the view
            if (shown < out.decoupling.size())  // into the last report's rail: its storage is reused
                assignCounts(out.decoupling[shown], line->counts);
            else
                out.decoupling.push_back(line->counts);
            ++shown;
            problems.insert(problems.end(), line->problems.begin(), line->problems.end());
        }
        out.decoupling.resize(shown);
        warnings(runner, problems);
    }
}

}  // namespace prsm::design
