#include <prsm/host/Calculation.h>
#include <prsm/host/CellListing.h>
#include <prsm/host/Commands.h>
#include <prsm/host/Estimate.h>
#include <prsm/host/HostError.h>
#include <prsm/host/Inputs.h>
#include <prsm/host/Render.h>
#include <prsm/host/Suggest.h>

#include <ostream>
#include <sstream>

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
    CellListing const listing = listCells(findSheet(request.model), request.category);
    if (!listing.note.empty()) printLines(err, "note: ", listing.note);
    out << renderCells(listing.rows);
    return kExitOk;
}

int runCalc(Request const& request, std::ostream& out, std::ostream& err) {
    Sheet const& sheet = findSheet(request.model);
    std::vector<Assignment> fromFile;
    if (!request.inputFile.empty()) fromFile = readInputFile(request.inputFile);
    std::vector<Assignment> fromCommandLine;
    for (std::string const& argument : request.assignments)
        fromCommandLine.push_back(parseAssignment(argument));
    std::vector<ResolvedInput> const inputs =
        resolveInputs(sheet, mergeAssignments(fromFile, fromCommandLine));

    CalcResult const result = runCalculation(sheet, inputs);
    switch (request.format) {
        case OutputFormat::Table:
        case OutputFormat::Csv:  // `calc` offers no CSV
            out << renderCalcTable(result);
            break;
        case OutputFormat::Json:
            for (std::string const& line : invalidInputWarnings(result)) printLines(err, "warning: ", line);
            out << calcJson(result).dump(2) << "\n";
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
    try {
        switch (request.command) {
            case Command::Models:
                return runModels(out);
            case Command::Cells:
                return runCells(request, out, err);
            case Command::Calc:
                return runCalc(request, out, err);
            case Command::Estimate:
                return runEstimate(request, describeDataDir(dataDir), out, err);
        }
    } catch (HostError const& e) {
        printLines(err, "error: ", e.what());
        if (e.code() == kExitDataFailure) printLines(err, "hint: ", describeDataDir(dataDir));
        return e.code();
    }
    return kExitBadInput;
}

}  // namespace prsm::host
