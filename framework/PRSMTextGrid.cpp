#include <prsm/framework/PRSMTextGrid.h>

#include <prsm/sheetfunc/PRSMNumericFunctions.h>

#include <exception>

namespace prsm::data {

namespace {

enum class Kind { Int, Float, Text };

struct Column {
    Kind kind;
    std::size_t position;
};

// The value s2i/s2f give the text, or nothing where they throw: that read falls back and throws then.
template <typename T, typename Parse>
std::optional<T> parsed(std::string const& text, Parse parse) {
    try {
        return parse(text);
    } catch (std::exception const&) {
        return std::nullopt;
    }
}

}  // namespace

int TextGrid::parseInt(std::string const& text) { return PRSMHelperUtils::s2i(text); }

float TextGrid::parseFloat(std::string const& text) { return PRSMHelperUtils::s2f(text); }

void TextGrid::build(Map const& map, Names ints, Names floats, Names texts) {
    std::unordered_map<std::string_view, Column> columns;
    auto const add = [&columns](Names names, Kind kind) {
        for (std::size_t i = 0; i < names.size; ++i) columns.emplace(names.names[i], Column{kind, i});
    };
    add(ints, Kind::Int);
    add(floats, Kind::Float);
    add(texts, Kind::Text);

    // Rows are the first parts of the two-part keys; a deeper key is reached only through the map.
    m_rows.clear();
    for (auto const& entry : map) {
        std::string_view const key = entry.first;
        std::size_t const dot = key.find('.');
        if (dot == std::string_view::npos || key.find('.', dot + 1) != std::string_view::npos) continue;
        m_rows.emplace(std::string(key.substr(0, dot)), m_rows.size());
    }
    m_intColumns = ints.size;
    m_floatColumns = floats.size;
    m_textColumns = texts.size;
    m_ints.assign(m_rows.size() * m_intColumns, std::nullopt);
    m_floats.assign(m_rows.size() * m_floatColumns, std::nullopt);
    m_texts.assign(m_rows.size() * m_textColumns, nullptr);

    for (auto const& entry : map) {
        std::string_view const key = entry.first;
        std::size_t const dot = key.find('.');
        if (dot == std::string_view::npos) continue;
        auto const row = m_rows.find(std::string(key.substr(0, dot)));
        auto const column = columns.find(key.substr(dot + 1));
        if (row == m_rows.end() || column == columns.end()) continue;
        std::size_t const at = row->second;
        std::size_t const position = column->second.position;
        switch (column->second.kind) {
            case Kind::Int:
                m_ints[at * m_intColumns + position] = parsed<int>(entry.second, parseInt);
                break;
            case Kind::Float:
                m_floats[at * m_floatColumns + position] = parsed<float>(entry.second, parseFloat);
                break;
            case Kind::Text:
                m_texts[at * m_textColumns + position] = &entry.second;
                break;
        }
    }
    m_rowIndex.build(m_rows, 1);
    m_size = map.size();
}

}  // namespace prsm::data
