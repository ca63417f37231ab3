#include <prsm/framework/PRSMData.h>
#include <prsm/framework/PRSMDataSupport.h>
#include <prsm/framework/PRSMNumberText.h>
#include <prsm/framework/PRSMSheetAdapter.h>

#include <libconfig.h++>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <set>
#include <unordered_map>

namespace prsm {

int parseIntCell(std::string const& name, std::string const& text) {
    DecimalText number;
    int value = 0;
    if (!parseDecimalText(text, number) || !decimalToInt(number, value))
        throw std::invalid_argument(
            "cell " + name + " takes a whole number from -2147483648 to 2147483647, not \"" + text + "\"");
    return value;
}

float parseFloatCell(std::string const& name, std::string const& text) {
    DecimalText number;
    if (!parseDecimalText(text, number))
        throw std::invalid_argument("cell " + name + " takes a number, not \"" + text + "\"");
    errno = 0;
    float const value = std::strtof(text.c_str(), nullptr);
    if (std::isinf(value))
        throw std::invalid_argument("cell " + name + " = " + text + " is out of the float range");
    if (errno == ERANGE)
        throw std::invalid_argument("cell " + name + " = " + text +
                                    " is too close to 0 for a float; write 0 for zero");
    return value;
}

namespace {

constexpr int kFloatDigits = 9;  // significant digits enough for the text to read back as the same float

// Writes "%.9g" of the value into `text` (to_chars gives printf's text, far faster); returns its end.
char* writeFloatCell(float value, char (&text)[32]) {
    return std::to_chars(text, text + sizeof text, static_cast<double>(value), std::chars_format::general,
                         kFloatDigits)
        .ptr;
}

}  // namespace

std::string formatFloatCell(float value) {
    char text[32];
    return std::string(text, writeFloatCell(value, text));
}

double floatCellNumber(float value) {
    char text[32];
    double number = 0;
    std::from_chars(text, writeFloatCell(value, text), number);  // correctly rounded, as strtod
    return number;
}

std::string_view keyPart(std::string_view key, std::size_t position) {
    for (; position > 0; --position) {
        std::size_t const dot = key.find('.');
        if (dot == std::string_view::npos) return std::string_view();
        key.remove_prefix(dot + 1);
    }
    return key.substr(0, key.find('.'));
}

void throwUnknownCell(std::string const& sheet, std::string const& name) {
    throw std::invalid_argument("sheet " + sheet + " has no cell " + name);
}

void rethrowNamingTheDataFile() {
    try {
        throw;
    } catch (libconfig::FileIOException const&) {
        std::string const detail = PRSMData::lastLoadFailure();
        throw DataFileError(detail.empty() ? std::string("a data file cannot be read") : detail);
    } catch (libconfig::ParseException const& e) {
        std::string const detail = PRSMData::lastLoadFailure();
        throw DataFileError(detail.empty() ? std::string("a data file does not parse at line ") +
                                                 std::to_string(e.getLine()) + ": " + e.getError()
                                           : detail);
    }
}

template <typename Map>
void appendIfNoRow(Map const& table, char const* name, std::size_t position, std::string_view byDefault,
                   std::string const& value, std::vector<MissingRow>& missing) {
    std::set<std::string_view> seen;
    for (auto const& entry : table) {
        std::string_view const part = keyPart(entry.first, position);
        if (part == value) return;
        seen.insert(part);
    }
    if (seen.count(byDefault) != 0)
        missing.push_back({name, std::vector<std::string>(seen.begin(), seen.end())});
}

using data::Table;
template void appendIfNoRow(Table<float> const&, char const*, std::size_t, std::string_view,
                            std::string const&, std::vector<MissingRow>&);
template void appendIfNoRow(Table<int> const&, char const*, std::size_t, std::string_view, std::string const&,
                            std::vector<MissingRow>&);
template void appendIfNoRow(Table<std::string> const&, char const*, std::size_t, std::string_view,
                            std::string const&, std::vector<MissingRow>&);
template void appendIfNoRow(Table<std::vector<std::string>> const&, char const*, std::size_t,
                            std::string_view, std::string const&, std::vector<MissingRow>&);

std::vector<CellInfo> describeCells(CellRow const* rows, std::size_t count) {
    std::vector<CellInfo> cells;
    cells.reserve(count);
    for (CellRow const* row = rows; row != rows + count; ++row)
        cells.push_back({row->name,
                         row->type,
                         row->category,
                         row->declaredDefault,
                         row->rule,
                         row->validityKey,
                         row->hasValidValues,
                         row->unit,
                         row->belowZeroWarning,
                         row->aboveZeroWarning,
                         row->noValueWarning,
                         {row->outsideLow, row->outsideHigh, row->outsideWarning},
                         row->description});
    return cells;
}

}  // namespace prsm
