#pragma once
// The figures a design sweep reads from a point: the report's totals, rails, regions, supplies,
// decoupling counts and budget, the same figures of the design's two corners (`corner.typical.` and
// `corner.worst.` before the name), and the point's own blocks, loads, board and thermal solve.
// docs/sweeps.md lists them.

#include <prsm/design/Design.h>
#include <prsm/design/Estimate.h>
#include <prsm/host/SweepTarget.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace prsm::host {

// Which report of a point an output reads.
enum class ReportOf {
    Point,          // the point's own estimate
    TypicalCorner,  // the design at its typical corner with the point's settings
    WorstCorner,    // ... at its worst corner; the two corners are estimated together, on demand
};

struct DesignOutput {
    Quantity quantity;
    ReportOf from = ReportOf::Point;
    std::function<double(design::Report const&)> read;  // NaN where the report has no such figure
};

class DesignOutputs {
public:
    // `rails`: every rail the design uses, in the engine's order; `groups`: the regulator groups of the
    // design's scheme that feed them, and `decoupling`: the rails the decoupling sheet counts for, with
    // their step parts and capacitor values, both as an estimate of the file reports them.
    DesignOutputs(design::Design const& design, std::vector<std::string> const& rails,
                  std::vector<std::string> const& groups,
                  std::vector<design::RailDecoupling> const& decoupling);

    std::vector<Quantity> const& quantities() const { return m_quantities; }
    // What a sweep keeps when no output is asked for: the point's totals.
    std::vector<Quantity> const& totals() const { return m_totals; }
    DesignOutput const& at(std::string const& name) const { return m_outputs.at(name); }

private:
    void add(std::string const& name, CellType type, std::string const& unit, ReportOf from,
             std::function<double(design::Report const&)> read);
    // The figures every report of the design has, each name after `prefix`.
    void addReportFigures(design::Design const& design, std::vector<std::string> const& rails,
                          std::vector<std::string> const& groups,
                          std::vector<design::RailDecoupling> const& decoupling, std::string const& prefix,
                          ReportOf from);
    // `prefix` + decoupling.RAIL.step_current, .PART.step_current, .VALUE.count and .VALUE.whole_count.
    void addDecoupling(std::string const& prefix, ReportOf from,
                       std::vector<design::RailDecoupling> const& decoupling);
    // `prefix` + budget.*: each limited figure, its headroom and the verdict.
    void addBudget(design::Budget const& budget, std::string const& prefix, ReportOf from);
    // One output per named row and figure: `prefix` + KIND.NAME.FIGURE.
    template <typename Row>
    struct RowFigure {
        char const* figure;
        char const* unit;
        double (*value)(Row const&);
    };
    template <typename Row>
    void addRows(std::string const& prefix, ReportOf from, std::string const& kind,
                 std::vector<std::string> const& names, std::string Row::*key,
                 std::vector<Row> const& (*rows)(design::Report const&),
                 std::vector<RowFigure<Row>> const& figures);

    std::vector<Quantity> m_quantities;
    std::vector<Quantity> m_totals;
    std::map<std::string, DesignOutput> m_outputs;
};

}  // namespace prsm::host
