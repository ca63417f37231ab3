#include <prsm/host/Calculation.h>
#include <prsm/host/CellListing.h>
#include <prsm/host/Commands.h>
#include <prsm/host/Diff.h>
#include <prsm/host/Estimate.h>
#include <prsm/host/Failures.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Inputs.h>
#include <prsm/host/OutputPatterns.h>
#include <prsm/host/Presets.h>
#include <prsm/host/Render.h>
#include <prsm/host/Suggest.h>
#include <prsm/host/SweepCommand.h>
#include <prsm/host/serve/Server.h>

#include <cerrno>
#include <cstring>
#include <ostream>
#include <sstream>
#include <utility>

namespace prsm::host {

namespace {

void printLines(std::ostream& err, std::string const& prefix, std::string const& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) err << "prsm: " << prefix << line << "\n";
}

int runModels(std::ostream& out) {
    out << renderModels(SheetRegistry::instance().sheets());
    return kExitOk;
}

int runCells(Request const& request, std::ostream& out, std::ostream& err) {
    Sheet const& sheet = findSheet(request.model);
    CellListing const listing = listCells(sheet, request.category);
    if (!listing.note.empty()) printLines(err, "note: ", listing.note);
    if (request.format == OutputFormat::Json)
        out << cellsJson(sheet.name(), listing.rows)
                   .dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace)
            << "\n";
    else
        out << renderCells(listing.rows);
    return kExitOk;
}

int runPresets(Sheet const& sheet, std::ostream& out) {
    out << renderPresets(listPresets(sheet));
    return kExitOk;
}

// Keeps the outputs that the `--outputs` list picks; a pattern that matches none is a usage error.
void keepPickedOutputs(CalcResult& result, std::string const& list) {
    std::vector<std::string> const patterns = parseOutputPatterns(list);
    if (patterns.empty()) return;
    std::vector<std::string> names;
    for (CellValue const& output : result.outputs) names.push_back(output.name);
    std::vector<bool> const picked =
        pickOutputs(names, patterns, result.model,
                    "`prsm cells " + result.model + " --category output` lists the outputs");
    std::vector<CellValue> kept;
    for (std::size_t i = 0; i < names.size(); ++i)
        if (picked[i]) kept.push_back(std::move(result.outputs[i]));
    result.outputs = std::move(kept);
}

int runCalc(Request const& request, std::ostream& out, std::ostream& err) {
    Sheet const& sheet = findSheet(request.model);
    if (request.preset == "list") return runPresets(sheet, out);
    std::vector<Assignment> fromFile;
    if (!request.preset.empty()) fromFile = presetAssignments(sheet, request.preset);
    if (!request.inputFile.empty()) fromFile = mergeAssignments(fromFile, readInputFile(request.inputFile));
    std::vector<Assignment> fromCommandLine;
    for (std::string const& argument : request.assignments)
        fromCommandLine.push_back(parseAssignment(argument));
    std::vector<ResolvedInput> const inputs =
        resolveInputs(sheet, mergeAssignments(fromFile, fromCommandLine));

    CalcResult result = runCalculation(sheet, inputs);
    for (std::string const& line : result.warnings) printLines(err, "warning: ", line);
    keepPickedOutputs(result, request.outputs);
    switch (request.format) {
        case OutputFormat::Table:
        case OutputFormat::Csv:  // `calc` offers no CSV
            out << renderCalcTable(result);
            break;
        case OutputFormat::Json:
            for (std::string const& line : invalidInputWarnings(result)) printLines(err, "warning: ", line);
            // Text from a data file that is not UTF-8 is written with U+FFFD in its place.
            out << calcJson(result).dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace)
                << "\n";
            break;
        case OutputFormat::Reflect:
            for (std::string const& line : invalidInputWarnings(result)) printLines(err, "warning: ", line);
            out << result.dump;
            if (!result.dump.empty() && result.dump.back() != '\n') out << "\n";
            break;
    }
    return kExitOk;
}

}  // namespace

Sheet const& findSheet(std::string const& name) {
    if (Sheet const* sheet = SheetRegistry::instance().find(name)) return *sheet;
    std::vector<std::string> names;
    for (Sheet const* sheet : SheetRegistry::instance().sheets()) names.push_back(sheet->name());
    throw HostError(kExitBadInput, "unknown model " + name + didYouMean(suggestNames(name, names)) +
                                       "; `prsm models` lists them all");
}

int runRequest(Request const& request, DataDirChoice const& dataDir, std::ostream& out, std::ostream& err) {
    // Without any data every model fails to load; say why first.
    if (dataDir.source == DataDirSource::None && request.command != Command::Models)
        printLines(err, "warning: ", describeDataDir(dataDir));
    int code = kExitBadInput;
    try {
        switch (request.command) {
            case Command::Models:
                code = runModels(out);
                break;
            case Command::Cells:
                code = runCells(request, out, err);
                break;
            case Command::Calc:
                code = runCalc(request, out, err);
                break;
            case Command::Presets:
                code = runPresets(findSheet(request.model), out);
                break;
            case Command::Sweep:
                code = runSweepRequest(request, out, err);
                break;
            case Command::Estimate:
                code = runEstimate(request, describeDataDir(dataDir), out, err);
                break;
            case Command::Serve:
                code = serve::runServe(request, out, err);
                break;
            case Command::Diff:
                code = runDiff(request, out, err);
                break;
        }
    } catch (HostError const& e) {
        printLines(err, "error: ", e.what());
        if (e.code() == kExitDataFailure) printLines(err, "hint: ", describeDataDir(dataDir));
        return e.code();
    } catch (...) {
        printLines(err, "error: ", describeCurrentException());
        return kExitDataFailure;
    }
    return code == kExitOk ? checkWritten(out, err) : code;
}

int checkWritten(std::ostream& out, std::ostream& err) {
    errno = 0;
    out.flush();
    if (out) return kExitOk;
    int const cause = errno;
    err << "prsm: error: the result could not be written to standard output"
        << (cause != 0 ? std::string(": ") + std::strerror(cause) : std::string()) << "\n";
    return kExitDataFailure;
}

}  // namespace prsm::host
