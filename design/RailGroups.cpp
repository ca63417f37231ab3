#include <prsm/design/RailGroups.h>
#include <prsm/design/SheetRunner.h>
#include <prsm/design/Supplies.h>
#include <prsm/framework/PRSMReservedValues.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace prsm::design {

namespace {

// The grouping sheet's cells of a rail or a group X; a group is a name that has a power-up step.
constexpr char kLabel[] = "_POWER_RAIL_GROUP";
constexpr char kSequence[] = "_SEQUENCE";
constexpr char kDc[] = "_DC";
constexpr char kRipple[] = "_AC_RIPPLE";

bool endsWith(std::string const& text, std::string const& end) {
    return text.size() > end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// A string cell's text, or "" for a cell the sheet does not have, leaves blank or cannot evaluate.
std::string textOf(SheetInstance& instance, Sheet const& sheet, std::string const& cell,
                   std::vector<std::string>& problems) {
    if (sheet.findCell(cell) == nullptr) return {};
    std::string text;
    if (std::string const failure = failureOf([&] { text = instance.evaluate(cell); }); !failure.empty()) {
        problems.push_back(cell + ": " + failure);
        return {};
    }
    return text == kBlankLiteral || text == kStringNotSet ? std::string() : text;
}

void addPowerup(double& sum, double current) {
    if (!std::isnan(current)) sum = (std::isnan(sum) ? 0.0 : sum) + current;
}

// The next element of `list` to write over: the last report's where it has one, else a new one. `used`
// counts the elements written so far.
template <typename T>
T& nextOf(std::vector<T>& list, std::size_t& used) {
    if (used == list.size()) list.emplace_back();
    return list[used++];
}

}  // namespace

std::vector<std::string> RailGrouping::groupNames(Sheet const& sheet) {
    std::vector<std::string> names;
    for (CellInfo const& cell : sheet.cells()) {
        if (!endsWith(cell.name, kLabel) || cell.category == CellCategory::UserInput) continue;
        std::string const group = cell.name.substr(0, cell.name.size() - (sizeof kLabel - 1));
        if (sheet.findCell(group + kSequence) != nullptr) names.push_back(group);
    }
    return names;
}

bool RailGrouping::fits(Sheet const& sheet) {
    return !groupNames(sheet).empty();
}

RailGrouping::RailGrouping(Sheet const& sheet) : m_sheet(&sheet), m_groups(groupNames(sheet)) {}

SupplyScheme RailGrouping::read(SheetInstance& instance, std::vector<std::string> const& rails,
                                std::vector<std::string>& problems) const {
    Sheet const& sheet = *m_sheet;
    SupplyScheme scheme;
    auto text = [&](std::string const& cell) { return textOf(instance, sheet, cell, problems); };
    for (std::string const& group : m_groups) {
        std::string label = text(group + kLabel);
        bool const shown = std::any_of(scheme.groups.begin(), scheme.groups.end(),
                                       [&](SupplyScheme::Group const& g) { return g.label == label; });
        if (label.empty() || shown) continue;
        scheme.groups.push_back(
            {group, std::move(label), text(group + kSequence), text(group + kDc), text(group + kRipple)});
    }
    for (std::string const& rail : rails) {
        std::string const label = text(rail + kLabel);
        auto const group = std::find_if(scheme.groups.begin(), scheme.groups.end(),
                                        [&](SupplyScheme::Group const& g) { return g.label == label; });
        if (!label.empty() && group != scheme.groups.end())
            scheme.railGroup.emplace(rail, static_cast<std::size_t>(group - scheme.groups.begin()));
    }
    return scheme;
}

void groupSupplies(SupplyScheme const& scheme, Report& report) {
    if (!report.complete) {  // no rail totals to load the groups with
        report.supplyGroups.clear();
        return;
    }
    std::vector<RailResult> const& rails = report.rails;
    auto indexOf = [&](std::string const& name) {
        auto const found =
            std::find_if(rails.begin(), rails.end(), [&](RailResult const& r) { return r.rail == name; });
        return static_cast<std::size_t>(found - rails.begin());
    };
    // Each rail's group; a rail the sheet does not group, whose leakage another rail holds, goes with
    // its holder.
    std::vector<std::size_t> group(rails.size(), kNoSupply);
    std::vector<std::size_t> holder(rails.size(), rails.size());
    for (std::size_t i = 0; i < rails.size(); ++i) {
        if (!rails[i].countedIn.empty()) holder[i] = indexOf(rails[i].countedIn);
        auto found = scheme.railGroup.find(rails[i].rail);
        if (found == scheme.railGroup.end() && !rails[i].countedIn.empty())
            found = scheme.railGroup.find(rails[i].countedIn);
        if (found != scheme.railGroup.end()) group[i] = found->second;
    }
    std::vector<double> const share = supplyShares(rails, group);
    auto heldHere = [&](std::size_t i) { return holder[i] < rails.size() && group[holder[i]] == group[i]; };
    auto fill = [&](GroupRail& to, std::size_t i) {
        RailResult const& r = rails[i];
        to.rail = r.rail;
        to.voltage = r.voltage;
        to.current = share[i];
        to.power = r.voltage * share[i];
        to.powerupCurrent = r.powerupCurrent;
        to.held.clear();
    };

    // The groups that feed a rail, in the scheme's order, written over the last report's groups (an
    // update after one block's change names the same groups and rails): no text is allocated again.
    std::vector<std::size_t> slot(scheme.groups.size(), kNoSupply);
    std::vector<std::size_t> members;  // rails written into each slot's group
    for (std::size_t g : group)
        if (g != kNoSupply) slot[g] = 0;
    std::size_t used = 0;
    for (std::size_t g = 0; g < scheme.groups.size(); ++g) {
        if (slot[g] == kNoSupply) continue;
        slot[g] = used;
        SupplyScheme::Group const& from = scheme.groups[g];
        SupplyGroup& to = nextOf(report.supplyGroups, used);
        to.name = from.name;
        to.label = from.label;
        to.sequence = from.sequence;
        to.dcTolerance = from.dcTolerance;
        to.acRipple = from.acRipple;
        to.voltage = std::numeric_limits<double>::quiet_NaN();
        to.current = to.power = 0;
        to.powerupCurrent = std::numeric_limits<double>::quiet_NaN();
        members.push_back(0);
    }
    report.supplyGroups.resize(used);
    for (std::size_t i = 0; i < rails.size(); ++i) {
        if (group[i] == kNoSupply || heldHere(i)) continue;
        std::size_t const at = slot[group[i]];
        fill(nextOf(report.supplyGroups[at].rails, members[at]), i);
    }
    for (std::size_t at = 0; at < used; ++at) report.supplyGroups[at].rails.resize(members[at]);
    for (std::size_t i = 0; i < rails.size(); ++i) {
        if (group[i] == kNoSupply || !heldHere(i)) continue;
        std::vector<GroupRail>& list = report.supplyGroups[slot[group[i]]].rails;
        auto const found = std::find_if(list.begin(), list.end(),
                                        [&](GroupRail const& r) { return r.rail == rails[i].countedIn; });
        fill((found == list.end() ? list : found->held).emplace_back(), i);
    }

    for (SupplyGroup& g : report.supplyGroups) {
        bool sameVoltage = true;
        auto add = [&](GroupRail const& r) {
            g.current += r.current;
            g.power += r.power;
            addPowerup(g.powerupCurrent, r.powerupCurrent);
            sameVoltage = sameVoltage && r.voltage == g.rails.front().voltage;
        };
        for (GroupRail const& rail : g.rails) {
            add(rail);
            for (GroupRail const& held : rail.held) add(held);
        }
        if (sameVoltage) g.voltage = g.rails.front().voltage;
    }
}

}  // namespace prsm::design
