#pragma once
// The shared machinery behind every generated parameter set and model: name tables built from the
// enumerator-list strings, reset ranges, the reflect text, and allocation-free lookup keys.

#include <prsm/framework/PRSMReservedValues.h>

#include <array>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace prsm::cells {

// Fills `table` from an enumerator list "FirstUIInt, A,B,LastUIInt, ... LastInt": every space is
// removed, tokens are split at ',', and the text after the last ',' (the closing marker) is dropped.
// Filling happens once; later calls find the table filled and return.
void populateNameTable(std::vector<std::string>& table, std::string list, std::mutex& mutex);
void populateNameMap(std::unordered_map<std::string, unsigned int>& map, std::string list, std::mutex& mutex);

// The name of enumerator `index`, or "StringError" past the table.
std::string nameAt(std::vector<std::string> const& table, std::size_t index);
// The enumerator called `name`, or `notFound`.
unsigned int indexOf(std::unordered_map<std::string, unsigned int> const& map, std::string const& name,
                     unsigned int notFound);
// Appends the names of the cells strictly between two markers.
void appendNames(std::vector<std::string> const& table, std::size_t firstMarker, std::size_t lastMarker,
                 std::vector<std::string>& out);

// Whether a string cell holds the "not set" sentinel: the length first, so that a set cell costs one
// comparison.
inline bool isNotSet(std::string const& cell) {
    constexpr std::size_t length = sizeof(kStringNotSet) - 1;
    return cell.size() == length && std::char_traits<char>::compare(cell.data(), kStringNotSet, length) == 0;
}

// Assigns `value` to the cells [from, to). A string cell keeps its buffer, so resetting a cell that has
// held the sentinel before does not allocate.
template <typename T, std::size_t N, typename V>
void fill(std::array<T, N>& cells, std::size_t from, std::size_t to, V const& value) {
    for (std::size_t i = from; i < to; ++i) cells[i] = value;
}

// One reflect line, "NAME = value" and a line end, with the stream's defaults (floats widened to
// double, six significant digits).
void appendLine(std::string& out, std::string const& name, int value);
void appendLine(std::string& out, std::string const& name, float value);
void appendLine(std::string& out, std::string const& name, std::string const& value);

template <typename T, std::size_t N>
void appendLines(std::string& out, std::vector<std::string> const& names, std::array<T, N> const& cells,
                 std::size_t firstMarker, std::size_t lastMarker) {
    for (std::size_t i = firstMarker + 1; i < lastMarker; ++i) appendLine(out, names[i], cells[i]);
}

}  // namespace prsm::cells

namespace prsm {

// Composes "a.b.c" into a buffer that each thread keeps, so that a steady-state table lookup does not
// allocate. The result is valid until the next call with the same number of parts on this thread.
template <typename... Parts>
std::string const& lookupKey(std::string_view first, Parts const&... rest) {
    thread_local std::string key;
    key.assign(first.data(), first.size());
    ((key += '.', key.append(std::string_view(rest))), ...);
    return key;
}

// Concatenates parts without a separator ("A1" + "INT"), in the same kind of per-thread buffer.
template <typename... Parts>
std::string const& concatKey(std::string_view first, Parts const&... rest) {
    thread_local std::string key;
    key.assign(first.data(), first.size());
    (key.append(std::string_view(rest)), ...);
    return key;
}

}  // namespace prsm
