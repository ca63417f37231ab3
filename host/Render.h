#pragma once
// The text each command prints on standard output.

#include <prsm/framework/PRSMSheetRegistry.h>
#include <prsm/host/Calculation.h>
#include <prsm/host/CellListing.h>

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace prsm::host {

std::string renderModels(std::vector<Sheet const*> const& sheets);
std::string renderCells(std::vector<CellRow> const& rows);
// {"model": ..., "cells": [{"name", "type", "category", "unit", "default", "valid_values", "description"}]}:
// the table's columns, as the table shows them ("" where it shows nothing).
nlohmann::ordered_json cellsJson(std::string const& model, std::vector<CellRow> const& rows);

// The outputs as a table, then, when any input is invalid, a table of those inputs and their rules.
std::string renderCalcTable(CalcResult const& result);

// In the sheet's order: {"model": ..., "inputs": {...}, "outputs": {...}, "valid": {NAME: true/false},
// "unit": {NAME: unit}, "description": {NAME: line}} with a unit ("" when none) and the sheet's line
// for every input and output.
nlohmann::ordered_json calcJson(CalcResult const& result);

// One line per invalid input, for standard error when the output is JSON or the dump.
std::vector<std::string> invalidInputWarnings(CalcResult const& result);

}  // namespace prsm::host
