#include <prsm/host/HostError.h>
#include <prsm/host/Request.h>
#include <prsm/host/SweepCommand.h>

#include <CLI/CLI.hpp>

#include <ostream>

namespace prsm::host {

ParsedCommandLine parseCommandLine(int argc, char const* const* argv, std::ostream& out, std::ostream& err) {
    Request request;
    CLI::App app{"Power models of programmable-logic blocks, from the command line.", "prsm"};
    app.set_version_flag("--version", PRSM_HOST_VERSION);
    app.add_flag("-v,--verbose", request.verbose, "Say which data directory is used");
    app.require_subcommand(1);
    app.fallthrough();  // --verbose is accepted after the subcommand too
    app.footer(
        "Exit status: 0 success, 2 usage error or rejected input, 3 data or calculation failure.\n"
        "Data: QDI_DATADIR (':'-separated directories holding powercfg/); the shipped data when unset.");

    CLI::App* models = app.add_subcommand("models", "List every model with its description");

    CLI::App* cells = app.add_subcommand(
        "cells", "List a model's cells: type, category, unit, default, valid values, description");
    cells->add_option("model", request.model, "Model name (see `prsm models`)")->required();
    cells->add_option("--category", request.category, "Only the cells of one category")
        ->check(CLI::IsMember({"input", "output", "intermediate"}));
    CLI::Option* cellsJson = cells->add_flag("--json", "Print the listing as JSON");

    CLI::App* calc = app.add_subcommand("calc", "Set a model's inputs, calculate it and print its outputs");
    calc->add_option("model", request.model, "Model name (see `prsm models`)")->required();
    calc->add_option("assignments", request.assignments, "Inputs as NAME=VALUE (override the input file)");
    calc->add_option("-i,--input", request.inputFile,
                     "JSON file holding an object of NAME: value (- for standard input)");
    calc->add_option(
        "--preset", request.preset,
        "Start from a ready-made input set (the file and NAME=VALUE override it); `list` lists them");
    calc->add_option("--outputs", request.outputs,
                     "Show only these outputs: comma-separated names or globs, e.g. "
                     "'*_STATIC_CURRENT,TOTAL_STATIC_POWER'");
    CLI::Option* json = calc->add_flag("--json", "Print model, inputs, outputs, validity and units as JSON");
    CLI::Option* reflect = calc->add_flag("--reflect", "Print the parameter set's full text dump");
    json->excludes(reflect);

    CLI::App* presets = app.add_subcommand("presets", "List a model's ready-made input sets");
    presets->add_option("model", request.model, "Model name (see `prsm models`)")->required();

    CLI::App* sweep = addSweepSubcommand(app, request);

    CLI::App* estimate = app.add_subcommand(
        "estimate", "Estimate a whole design: every block on its rails, leakage at the junction temperature");
    estimate->add_option("design", request.designFile, "Design file (JSON, see docs/design-files.md)")
        ->required();
    CLI::Option* estimateJson = estimate->add_flag("--json", "Print the report as JSON");
    CLI::Option* estimateCsv = estimate->add_flag("--csv", "Print the report as CSV, one quantity per line");
    estimateJson->excludes(estimateCsv);
    estimate->add_option("--html", request.htmlFile,
                         "Also write the report as one self-contained HTML page (charts inline, printable)");

    CLI::App* serve = app.add_subcommand("serve", "Edit and estimate a design in a browser, on this machine");
    serve->add_option("design", request.designFile, "Design file to start from (JSON, under this folder)");
    serve->add_option("--port", request.serve.port, "Port to listen on; 0 picks a free one")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    serve->add_option("--host", request.serve.host,
                      "Address to listen on; other than the loopback, other machines can reach it")
        ->capture_default_str();
    serve->add_option("--part", request.serve.part, "Device of a design started from nothing")
        ->capture_default_str();

    estimate->add_flag("--corners", request.corners,
                       "Estimate at typical and at worst case (process max, voltages at the top of their "
                       "range, the junction hot) and compare them");
    estimate->add_option("--max-junction", request.maxJunction,
                         "Also report the largest theta_ja and the highest ambient that keep the junction at or "
                         "below this temperature (degC)");

    CLI::App* diff = app.add_subcommand("diff", "Estimate two designs and compare them per rail, region and block");
    diff->add_option("a", request.designFile, "The first design file")->required();
    diff->add_option("b", request.secondDesignFile, "The second design file")->required();
    CLI::Option* diffJson = diff->add_flag("--json", "Print the comparison as JSON");
    CLI::Option* diffCsv = diff->add_flag("--csv", "Print the comparison as CSV, one figure per line");
    diffJson->excludes(diffCsv);

    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& e) {
        int const code = app.exit(e, out, err);
        return {std::nullopt, code == 0 ? kExitOk : kExitBadInput};
    }

    if (models->parsed()) request.command = Command::Models;
    if (cells->parsed()) {
        request.command = Command::Cells;
        if (*cellsJson) request.format = OutputFormat::Json;
    }
    if (presets->parsed()) request.command = Command::Presets;
    if (sweep->parsed()) request.command = Command::Sweep;
    if (calc->parsed()) {
        request.command = Command::Calc;
        if (*json) request.format = OutputFormat::Json;
        if (*reflect) request.format = OutputFormat::Reflect;
    }
    if (estimate->parsed()) {
        request.command = Command::Estimate;
        if (*estimateJson) request.format = OutputFormat::Json;
        if (*estimateCsv) request.format = OutputFormat::Csv;
    }
    if (serve->parsed()) request.command = Command::Serve;
    if (diff->parsed()) {
        request.command = Command::Diff;
        if (*diffJson) request.format = OutputFormat::Json;
        if (*diffCsv) request.format = OutputFormat::Csv;
    }
    return {request, kExitOk};
}

}  // namespace prsm::host
