#include <prsm/design/Counts.h>
#include <prsm/design/References.h>
#include <prsm/design/Resources.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace prsm::design {

namespace {

std::size_t cellPosition(Sheet const& sheet, std::string const& name) {
    std::vector<CellInfo> const& cells = sheet.cells();
    std::size_t i = 0;
    while (i < cells.size() && cells[i].name != name) ++i;
    return i;
}

bool matches(std::string_view value, std::vector<std::string> const& patterns) {
    for (std::string_view pattern : patterns) {
        bool const prefix = !pattern.empty() && pattern.back() == '*';
        if (prefix ? value.substr(0, pattern.size() - 1) == pattern.substr(0, pattern.size() - 1)
                   : value == pattern)
            return true;
    }
    return false;
}

}  // namespace

BlockCounts CountTally::declare(Sheet const& sheet) {
    BlockCounts counts;
    for (SheetCount const& declared : sheet.design().counts) {
        std::size_t index = find(declared.count);
        if (index == m_counts.size()) m_counts.push_back({declared.count, declared.resource, 0.0});
        std::size_t const when =
            declared.whenInput.empty() ? sheet.cells().size() : cellPosition(sheet, declared.whenInput);
        counts.entries.push_back({index, cellPosition(sheet, declared.cell), when, &declared});
    }
    counts.perInstance.assign(counts.entries.size(), 0.0);
    return counts;
}

void CountTally::measure(BlockCounts& counts, Sheet const& sheet, SheetInstance& instance) {
    std::size_t const none = sheet.cells().size();
    std::size_t gate = none;  // the gating input read last: the shares of a sheet share one, read once
    std::string value;
    for (std::size_t i = 0; i < counts.entries.size(); ++i) {
        BlockCounts::Entry const& entry = counts.entries[i];
        if (entry.whenInput != none && entry.whenInput != gate)
            gate = entry.whenInput, value = instance.evaluate(sheet.cells()[gate].name);
        bool const open = entry.whenInput == none || matches(value, entry.declared->whenValues);
        counts.perInstance[i] = open ? calculatedNumber(sheet, instance, entry.cell) : 0.0;
    }
}

void CountTally::clear() {
    for (Count& count : m_counts) count.total = 0;
}

void CountTally::add(BlockCounts const& counts, double instances) {
    for (std::size_t i = 0; i < counts.entries.size(); ++i)
        m_counts[counts.entries[i].count].total += counts.perInstance[i] * instances;
}

std::size_t CountTally::find(std::string const& name) const {
    std::size_t i = 0;
    while (i < m_counts.size() && m_counts[i].name != name) ++i;
    return i;
}

CountFeeder::CountFeeder(Sheet const& staticSheet) : m_sheet(staticSheet) {
    for (CountFeed const& declared : staticSheet.design().countFeeds)
        m_fed.push_back({cellPosition(staticSheet, declared.input), &declared, std::nullopt, false});
}

void CountFeeder::prepare(CountTally const& tally, DeviceResources const& device,
                          std::function<bool(std::string const&)> const& givenByDesign) {
    for (Fed& fed : m_fed) {
        fed.given = givenByDesign(fed.declared->input);
        fed.value.reset();
        double sum = 0;
        bool declared = false;
        for (std::string const& name : fed.declared->counts) {
            std::size_t const index = tally.find(name);
            if (index == tally.counts().size()) continue;
            declared = true;
            sum += tally.counts()[index].total;
        }
        if (!declared) continue;
        if (!fed.declared->share) {
            fed.value = sum;
        } else if (double const available = device.available(fed.declared->resource); available > 0) {
            fed.value = sum / available * 100.0;
        }
    }
}

void CountFeeder::feed(SheetInstance& instance) const {
    for (Fed const& fed : m_fed) {
        if (fed.given || !fed.value) continue;
        bool const whole = m_sheet.cells()[fed.cell].type == CellType::Int;
        instance.setNumber(fed.cell, whole ? std::round(*fed.value) : *fed.value);
    }
}

void CountFeeder::describe(SheetInstance& instance, std::vector<std::pair<std::string, double>>& held,
                           std::vector<Warning>& warnings) const {
    for (Fed const& fed : m_fed) {
        if (!fed.given && !fed.value) continue;
        double const value = calculatedNumber(m_sheet, instance, fed.cell);
        held.emplace_back(fed.declared->input, value);
        if (!fed.given || !fed.value ||
            std::fabs(value - *fed.value) <= 1e-6 * std::max(1.0, std::fabs(value)))
            continue;
        char text[200];
        std::snprintf(text, sizeof text, "%.6g from the design's static inputs; the blocks add up to %.6g%s",
                      value, *fed.value, fed.declared->share ? " %" : "");
        warnings.push_back({"static", fed.declared->input, text});
    }
}

}  // namespace prsm::design
