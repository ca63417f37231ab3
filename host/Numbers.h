#pragma once
// Values written as text, under one rule for the command line and for JSON alike (see docs/host.md):
// a number is an optional '-', decimal digits with at most one '.', and an optional exponent; nothing
// else (no blanks, no '+' in front, no hexadecimal, no inf or nan). The value must fit the cell's type,
// be finite, and not be one of the library's reserved "no value" values. Strings must be UTF-8 text
// without NUL characters.

#include <prsm/framework/PRSMSheetRegistry.h>

#include <string>

namespace prsm::host {

// Checks `text` as a value of `cell`. Returns an empty string and sets `canonical` to the text to hand
// to the sheet, or returns the problem, naming the cell.
std::string checkCellText(CellInfo const& cell, std::string const& text, std::string& canonical);

// Whether `text` follows the number rule above (the value may still be out of range).
bool isNumberText(std::string const& text);

bool isUtf8(std::string const& text);

// The text as it can be shown inside double quotes: control and non-UTF-8 bytes as \xHH, NUL as \0.
std::string printable(std::string const& text);

}  // namespace prsm::host
