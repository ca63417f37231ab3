#include <prsm/design/CsvText.h>
#include <prsm/design/Diff.h>
#include <prsm/host/Diff.h>
#include <prsm/host/Failures.h>
#include <prsm/host/HostError.h>
#include <prsm/host/TextTable.h>

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdio>
#include <ostream>

namespace prsm::host {

namespace {

design::Report estimate(std::string const& path) {
    try {
        return design::estimateFile(path);
    } catch (...) {
        rethrowAsHostError();
    }
}

std::string format(char const* pattern, double value) {
    if (!std::isfinite(value)) return "-";
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, pattern, value);
    return buffer;
}

nlohmann::ordered_json figure(double value) {
    return std::isfinite(value) ? nlohmann::ordered_json(value) : nlohmann::ordered_json(nullptr);
}

std::string table(Request const& request, std::vector<design::DiffRow> const& rows) {
    std::vector<TextRow> lines;
    for (design::DiffRow const& r : rows)
        lines.push_back({r.section, r.name, r.quantity + " (" + r.unit + ")", format("%.4f", r.a),
                         format("%.4f", r.b), format("%+.4f", r.difference()), format("%.3f", r.ratio())});
    return "A: " + request.designFile + "\nB: " + request.secondDesignFile + "\n\n" +
           formatTable({"section", "name", "figure", "A", "B", "B - A", "B / A"}, lines);
}

std::string json(Request const& request, std::vector<design::DiffRow> const& rows, design::Report const& a,
                 design::Report const& b) {
    nlohmann::ordered_json out;
    out["a"] = {{"design", request.designFile}, {"complete", a.complete}};
    out["b"] = {{"design", request.secondDesignFile}, {"complete", b.complete}};
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (design::DiffRow const& r : rows)
        list.push_back({{"section", r.section},
                        {"name", r.name},
                        {"quantity", r.quantity},
                        {"unit", r.unit},
                        {"a", figure(r.a)},
                        {"b", figure(r.b)},
                        {"difference", figure(r.difference())},
                        {"ratio", figure(r.ratio())}});
    out["rows"] = list;
    return out.dump(2) + "\n";
}

std::string csv(std::vector<design::DiffRow> const& rows) {
    std::string out = "section,name,quantity,a,b,difference,ratio,unit\n";
    for (design::DiffRow const& r : rows)
        out += r.section + "," + design::csvField(r.name) + "," + r.quantity + "," + design::csvFigure(r.a) + "," +
               design::csvFigure(r.b) + "," + design::csvFigure(r.difference()) + "," + design::csvFigure(r.ratio()) +
               "," + r.unit + "\n";
    return out;
}

}  // namespace

int runDiff(Request const& request, std::ostream& out, std::ostream& err) {
    design::Report const a = estimate(request.designFile);
    design::Report const b = estimate(request.secondDesignFile);
    std::vector<design::DiffRow> const rows = design::compareReports(a, b);
    switch (request.format) {
        case OutputFormat::Json:
            out << json(request, rows, a, b);
            break;
        case OutputFormat::Csv:
            out << csv(rows);
            break;
        case OutputFormat::Table:
        case OutputFormat::Reflect:
            out << table(request, rows);
            break;
    }
    for (std::string const& failure : a.failures) err << "prsm: error: A: " << failure << "\n";
    for (std::string const& failure : b.failures) err << "prsm: error: B: " << failure << "\n";
    return a.complete && b.complete ? kExitOk : kExitDataFailure;
}

}  // namespace prsm::host
