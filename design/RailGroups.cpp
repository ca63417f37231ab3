#include <prsm/design/RailGroups.h>
#include <prsm/design/SheetRunner.h>
#include <prsm/design/Supplies.h>
#include <prsm/framework/PRSMReservedValues.h>

#include <algorithm>
#include <cmath>

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
    for (std::string const& rail : rails)
        if (std::string label = text(rail + kLabel); !label.empty())
            scheme.railLabel.emplace(rail, std::move(label));
    return scheme;
}

void groupSupplies(SupplyScheme const& scheme, Report& report) {
    report.supplyGroups.clear();
    if (!report.complete) return;  // no rail totals to load the groups with
    std::map<std::string, std::size_t> groupOfLabel;
    for (std::size_t g = 0; g < scheme.groups.size(); ++g) groupOfLabel.emplace(scheme.groups[g].label, g);
    std::map<std::string, std::string> holderOf;
    for (RailResult const& rail : report.rails)
        if (!rail.countedIn.empty()) holderOf.emplace(rail.rail, rail.countedIn);
    // A rail the sheet does not group, whose leakage another rail holds, goes with its holder.
    auto groupOf = [&](std::string const& rail) {
        auto label = scheme.railLabel.find(rail);
        if (auto holder = holderOf.find(rail); label == scheme.railLabel.end() && holder != holderOf.end())
            label = scheme.railLabel.find(holder->second);
        if (label == scheme.railLabel.end()) return kNoSupply;
        auto const group = groupOfLabel.find(label->second);
        return group == groupOfLabel.end() ? kNoSupply : group->second;
    };
    std::map<std::string, double> share = supplyShares(report.rails, groupOf);

    std::vector<SupplyGroup> groups(scheme.groups.size());
    for (std::size_t g = 0; g < groups.size(); ++g) {
        SupplyScheme::Group const& from = scheme.groups[g];
        groups[g].name = from.name;
        groups[g].label = from.label;
        groups[g].sequence = from.sequence;
        groups[g].dcTolerance = from.dcTolerance;
        groups[g].acRipple = from.acRipple;
    }
    auto heldWithHolder = [&](RailResult const& rail, std::size_t g) {
        return !rail.countedIn.empty() && share.count(rail.countedIn) != 0 && groupOf(rail.countedIn) == g;
    };
    auto entry = [&](RailResult const& rail) {
        double const current = share[rail.rail];
        return GroupRail{rail.rail, rail.voltage, current, rail.voltage * current, rail.powerupCurrent, {}};
    };
    for (RailResult const& rail : report.rails)
        if (std::size_t const g = groupOf(rail.rail); g != kNoSupply && !heldWithHolder(rail, g))
            groups[g].rails.push_back(entry(rail));
    for (RailResult const& rail : report.rails) {
        std::size_t const g = groupOf(rail.rail);
        if (g == kNoSupply || !heldWithHolder(rail, g)) continue;
        std::vector<GroupRail>& rails = groups[g].rails;
        auto holder = std::find_if(rails.begin(), rails.end(),
                                   [&](GroupRail const& r) { return r.rail == rail.countedIn; });
        (holder == rails.end() ? rails : holder->held).push_back(entry(rail));
    }

    for (SupplyGroup& group : groups) {
        if (group.rails.empty()) continue;  // feeds none of the design's rails
        bool sameVoltage = true;
        auto add = [&](GroupRail const& r) {
            group.current += r.current;
            group.power += r.power;
            addPowerup(group.powerupCurrent, r.powerupCurrent);
            sameVoltage = sameVoltage && r.voltage == group.rails.front().voltage;
        };
        for (GroupRail const& rail : group.rails) {
            add(rail);
            for (GroupRail const& held : rail.held) add(held);
        }
        if (sameVoltage) group.voltage = group.rails.front().voltage;
        report.supplyGroups.push_back(std::move(group));
    }
}

}  // namespace prsm::design
