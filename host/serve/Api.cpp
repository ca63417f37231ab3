#include <prsm/design/Design.h>
#include <prsm/design/ReportFormat.h>
#include <prsm/design/ReportHtml.h>
#include <prsm/design/StaticCurve.h>
#include <prsm/host/CellListing.h>
#include <prsm/host/Commands.h>
#include <prsm/host/DesignTarget.h>
#include <prsm/host/Failures.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Render.h>
#include <prsm/host/Sweep.h>
#include <prsm/host/SweepCommand.h>
#include <prsm/host/serve/Api.h>
#include <prsm/host/serve/LeakageCurve.h>
#include <prsm/sheetfunc/PRSMTextFunctions.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>

namespace prsm::host::serve {

namespace {

using Json = nlohmann::ordered_json;

constexpr char kSheetsPath[] = "/api/sheets/";

// The report's downloads: the same JSON, CSV and review page that `prsm estimate` writes.
struct Download {
    char const* name;
    char const* contentType;
    std::string (*write)(DesignSession const&);
};

std::string jsonReport(DesignSession const& session) {
    return design::toJson(session.report());
}

std::string csvReport(DesignSession const& session) {
    return design::toCsv(session.report());
}

// The page with its leakage chart, as `prsm estimate --html` draws it.
std::string htmlReport(DesignSession const& session) {
    design::Report const& report = session.report();
    design::Design const current = session.design();
    std::vector<std::pair<double, double>> const curve =
        report.complete ? design::staticAgainstJunction(current, design::reportJunctions())
                        : std::vector<std::pair<double, double>>{};
    return design::toHtml(report, current, curve);
}

constexpr Download kDownloads[] = {{"report.json", "application/json", jsonReport},
                                   {"report.csv", "text/csv", csvReport},
                                   {"report.html", "text/html; charset=utf-8", htmlReport}};

ApiResponse failure(int status, std::string const& message) {
    return {status, "application/json",
            Json{{"error", message}}.dump(-1, ' ', false, Json::error_handler_t::replace), ""};
}

ApiResponse ok(std::string body) {
    return {200, "application/json", std::move(body), ""};
}

// A member of the request's object, as text: a number is taken as it is written.
std::string field(Json const& body, char const* name) {
    auto const it = body.find(name);
    if (it == body.end() || it->is_null())
        throw HostError(kExitBadInput, std::string("the request lacks \"") + name + "\"");
    if (it->is_string()) return it->get<std::string>();
    if (it->is_number()) return it->dump();
    throw HostError(kExitBadInput, std::string("\"") + name + "\" must be a text or a number");
}

std::string optionalField(Json const& body, char const* name) {
    return body.contains(name) && !body[name].is_null() ? field(body, name) : std::string();
}

// The sheets a block may be made of: those with a region of the device (not the static sheet or a board).
Json sheetList() {
    Json list = Json::array();
    for (Sheet const* sheet : SheetRegistry::instance().sheets())
        if (!sheet->design().region.empty())
            list.push_back({{"name", sheet->name()},
                            {"description", sheet->description()},
                            {"region", sheet->design().region}});
    return list;
}

// A sheet's inputs for a form: `prsm cells --json`, with each range's bounds and each list's choices.
Json sheetInputs(std::string const& name) {
    Sheet const& sheet = findSheet(name);
    CellListing const listing = listCells(sheet, "input");
    Json described = cellsJson(sheet.name(), listing.rows);
    for (Json& cell : described["cells"]) {
        CellInfo const& info = *sheet.findCell(cell["name"].get<std::string>());
        if (!info.outside.message.empty())
            cell["range"] = {{"low", info.outside.low}, {"high", info.outside.high}};
        // Without the data the listing shows the rule in words, which is no list to choose from.
        if (info.hasValidValues && listing.note.empty()) {
            Json choices = Json::array();
            std::istringstream list(cell["valid_values"].get<std::string>());
            for (std::string choice; std::getline(list, choice, ',');) {
                std::size_t const start = choice.find_first_not_of(' ');
                if (start != std::string::npos) choices.push_back(choice.substr(start));
            }
            cell["choices"] = choices;
        }
        // Inputs the design sets itself (rail voltages, device fields) are not the block's to edit.
        if (design::DesignOwned const owned = design::designOwned(sheet.design(), info.name))
            cell["design_owned"] = design::describe(owned);
    }
    if (!listing.note.empty()) described["note"] = listing.note;
    return described;
}

bool sameWarnings(std::vector<design::Warning> const& a, std::vector<design::Warning> const& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](design::Warning const& x, design::Warning const& y) {
                          return x.block == y.block && x.cell == y.cell && x.message == y.message;
                      });
}

}  // namespace

Api::Api(Workspace workspace, DesignSession session)
    : m_workspace(std::move(workspace)), m_session(std::move(session)) {}

ApiResponse Api::handle(ApiRequest const& request) {
    std::lock_guard<std::mutex> const hold(m_lock);
    try {
        Json body = Json::object();
        if (request.method == "POST") {
            body = Json::parse(request.body, nullptr, false);
            if (!body.is_object()) return failure(400, "the request is not a JSON object");
        }
        return route(request, body);
    } catch (HostError const& e) {
        return failure(e.code() == kExitBadInput ? 400 : 500, e.what());
    } catch (...) {
        return failure(500, describeCurrentException());
    }
}

ApiResponse Api::route(ApiRequest const& request, Json const& body) {
    std::string const& path = request.path;
    if (request.method == "GET") {
        if (path == "/api/design") return ok(designJson());
        if (path == "/api/report") return ok(design::toJson(m_session.report()));
        for (Download const& download : kDownloads)
            if (path == std::string("/api/") + download.name)
                return {200, download.contentType, download.write(m_session), download.name};
        if (path == "/api/downloads") {
            Json names = Json::array();
            for (Download const& download : kDownloads) names.push_back(download.name);
            return ok(names.dump());
        }
        if (path == "/api/design.json") return {200, "application/json", m_session.text(), "design.json"};
        if (path == "/api/sheets") return ok(sheetList().dump());
        if (path.rfind(kSheetsPath, 0) == 0)
            return ok(sheetInputs(path.substr(sizeof kSheetsPath - 1))
                          .dump(-1, ' ', false, Json::error_handler_t::replace));
        if (path == "/api/files") return ok(files().dump());
        if (path == "/api/static-curve") return ok(leakageCurveJson(m_session));
    } else if (request.method == "POST") {
        if (path == "/api/input") return setInput(body);
        if (path == "/api/blocks/add") {
            std::string const model = field(body, "model");
            std::string name = optionalField(body, "name");
            m_session.addBlock(
                model,
                name.empty() ? m_session.freeName(PRSMHelperUtils::ToLower(findSheet(model).name())) : name);
            return ok(editedJson());
        }
        if (path == "/api/blocks/duplicate") {
            std::string const block = field(body, "block");
            std::string name = optionalField(body, "name");
            m_session.duplicateBlock(block, name.empty() ? m_session.freeName(block + " copy") : name);
            return ok(editedJson());
        }
        if (path == "/api/blocks/rename") {
            m_session.renameBlock(field(body, "block"), field(body, "name"));
            return ok(editedJson());
        }
        if (path == "/api/blocks/remove") {
            m_session.removeBlock(field(body, "block"));
            return ok(editedJson());
        }
        if (path == "/api/sweep") return sweep(body);
        if (path == "/api/open") return open(body);
        if (path == "/api/save") return save(body);
    }
    return failure(404, "no " + request.method + " " + path + " here");
}

std::string Api::designJson() const {
    return Json{{"source", m_session.source()}, {"document", m_session.document()}}.dump(
        -1, ' ', false, Json::error_handler_t::replace);
}

// After a change of the block list: the design and its report in one answer.
std::string Api::editedJson() const {
    return "{\"design\":" + designJson() + ",\"report\":" + design::toJson(m_session.report()) + "}";
}

// The report after an input edit with only the blocks whose figures moved, and without the warnings
// when they are the same as before: on a design of 1,000 blocks the whole report is 300 kB, most of it
// unchanged.
ApiResponse Api::setInput(Json const& body) {
    std::vector<design::BlockResult> const before = m_session.report().blocks;
    std::vector<design::Warning> const warningsBefore = m_session.report().warnings;
    m_session.setInput(field(body, "block"), field(body, "cell"), field(body, "value"));
    design::Report const& after = m_session.report();
    design::Report changed = after;
    changed.blocks.clear();
    // An input edit keeps the block list, so the blocks are compared place by place.
    for (std::size_t i = 0; i < after.blocks.size(); ++i) {
        design::BlockResult const& b = after.blocks[i];
        bool const same = i < before.size() && before[i].name == b.name && before[i].power == b.power &&
                          before[i].error == b.error && before[i].rails == b.rails;
        if (!same) changed.blocks.push_back(b);
    }
    bool const warningsKept = sameWarnings(warningsBefore, after.warnings);
    if (warningsKept) changed.warnings.clear();
    return ok(std::string("{\"blocks_changed_only\":true,\"warnings_unchanged\":") +
              (warningsKept ? "true" : "false") + ",\"report\":" + design::toJson(changed) + "}");
}

ApiResponse Api::sweep(Json const& body) {
    DesignTarget const target(design::parseDesign(m_session.text(), m_session.source()));
    std::string const name = field(body, "variable");
    Quantity const* variable = target.findVariable(name);
    if (variable == nullptr) throw HostError(kExitBadInput, target.notAVariable(name));
    Column const values = parseValues(*variable, field(body, "values"));
    if (values.size() > kMaxSweepPoints)
        throw HostError(kExitBadInput, "a sweep here takes at most " + std::to_string(kMaxSweepPoints) +
                                           " points; `prsm sweep` takes more");
    SweepOptions options;
    options.threads = 1;  // the server answers one request at a time anyway
    SweepResult const result =
        runSweep(target, {}, {values}, selectOutputs(target, optionalField(body, "outputs")), options);
    return ok(sweepJson(result));
}

ApiResponse Api::open(Json const& body) {
    std::string const name = field(body, "file");
    m_session = DesignSession(readDesignText(m_workspace, name), name);
    return ok(editedJson());
}

ApiResponse Api::save(Json const& body) {
    std::string const name = field(body, "file");
    std::filesystem::path const path = m_workspace.resolve(name);
    std::string const text = m_session.text();
    // Written beside the file and renamed over it, so a failed write leaves the old file whole.
    std::filesystem::path const partial = path.string() + ".partial";
    {
        std::ofstream out(partial, std::ios::binary | std::ios::trunc);
        out << text;
        if (!out.flush()) throw HostError(kExitDataFailure, "cannot write design file " + name);
    }
    std::filesystem::rename(partial, path);
    return ok(Json{{"saved", name}, {"bytes", text.size()}}.dump());
}

// The design files the page may open: JSON files in the folder and its subfolders, two levels deep.
Api::Json Api::files() const {
    namespace fs = std::filesystem;
    Json list = Json::array();
    std::error_code error;
    for (fs::recursive_directory_iterator
             it(m_workspace.root(), fs::directory_options::skip_permission_denied, error),
         end;
         it != end; it.increment(error)) {
        if (error) break;
        if (it.depth() >= 2) it.disable_recursion_pending();
        if (it->is_regular_file(error) && it->path().extension() == ".json")
            list.push_back(fs::relative(it->path(), m_workspace.root()).generic_string());
    }
    std::sort(list.begin(), list.end());
    return list;
}

}  // namespace prsm::host::serve
