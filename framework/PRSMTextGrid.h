#pragma once
// A two-part text table (`<row>.<column>` -> text, such as a preset sheet's `<preset>.<input>`) read
// once, when the file loads, into numbers: the formulas then read an entry by its row's name and its
// column's position, with no key composed, no text copied and no number parsed.
//
// The map stays the data, and a read answers exactly what the map's own lookup and parse would:
// - an entry that is missing, or whose text s2i/s2f would refuse, is not held: the reader falls back
//   to the table's getter and the parse, which throw as they always did;
// - a row the file lacks, or a row holding a '.', falls back the same way;
// - a map whose size changed since the grid was built (an entry added or erased by hand) falls back
//   for every read, until the next load or resolve() rebuilds the grid. A value changed in place by
//   hand is seen after resolve().

#include <prsm/framework/PRSMTableIndex.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace prsm::data {

class TextGrid {
public:
    using Map = std::unordered_map<std::string, std::string>;

    TextGrid() = default;
    // The grid points into its own row table and its owner's map: the owner rebuilds it instead.
    TextGrid(TextGrid const&) = delete;
    TextGrid& operator=(TextGrid const&) = delete;

    // Reads every `<row>.<column>` entry of `map` whose column is named in one of the lists, as that
    // list's type. A column's position in its list is its position in the reads below.
    template <std::size_t I, std::size_t F, std::size_t S>
    void build(Map const& map, std::array<std::string_view, I> const& ints,
               std::array<std::string_view, F> const& floats, std::array<std::string_view, S> const& texts) {
        build(map, {ints.data(), I}, {floats.data(), F}, {texts.data(), S});
    }

    void invalidate() { m_size = kStale; }

    // The entry at (row, column) of each type, or nullptr when the reader must fall back (see above).
    int const* intAt(Map const& map, std::string_view row, std::size_t column) const {
        std::size_t const i = cell(map, row, column, m_intColumns);
        return i != kMissing && m_ints[i].has_value() ? &*m_ints[i] : nullptr;
    }
    float const* floatAt(Map const& map, std::string_view row, std::size_t column) const {
        std::size_t const i = cell(map, row, column, m_floatColumns);
        return i != kMissing && m_floats[i].has_value() ? &*m_floats[i] : nullptr;
    }
    std::string const* textAt(Map const& map, std::string_view row, std::size_t column) const {
        std::size_t const i = cell(map, row, column, m_textColumns);
        return i != kMissing ? m_texts[i] : nullptr;
    }

    // The fallbacks' parse, kept out of line: the table's own reader of a number held as text.
    [[gnu::cold]] static int parseInt(std::string const& text);
    [[gnu::cold]] static float parseFloat(std::string const& text);

private:
    static constexpr std::size_t kStale = static_cast<std::size_t>(-1);
    static constexpr std::size_t kMissing = static_cast<std::size_t>(-1);

    struct Names {
        std::string_view const* names;
        std::size_t size;
    };

    void build(Map const& map, Names ints, Names floats, Names texts);

    // The position of (row, column) in a row-major grid of `columns` columns, or kMissing.
    std::size_t cell(Map const& map, std::string_view row, std::size_t column, std::size_t columns) const {
        if (map.size() != m_size) return kMissing;
        std::size_t const* const index = m_rowIndex.find(m_rows, row);
        return index == nullptr ? kMissing : *index * columns + column;
    }

    std::unordered_map<std::string, std::size_t> m_rows;  // row name -> its position
    TableIndex<std::size_t> m_rowIndex;                    // m_rows without composing a key
    // Row-major, one cell per row and column; empty (null) where the reader falls back.
    std::vector<std::optional<int>> m_ints;
    std::vector<std::optional<float>> m_floats;
    std::vector<std::string const*> m_texts;  // the text in the map's node
    std::size_t m_intColumns = 0, m_floatColumns = 0, m_textColumns = 0;
    std::size_t m_size = kStale;  // the map's size when built
};

}  // namespace prsm::data
