#include <prsm/framework/PRSMDataText.h>

#include <prsm/framework/PRSMException.h>

#include <algorithm>
#include <boost/filesystem.hpp>
#include <boost/iostreams/device/array.hpp>
#include <boost/iostreams/filter/gzip.hpp>
#include <boost/iostreams/filtering_stream.hpp>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <libconfig.h++>

namespace fs = boost::filesystem;

namespace prsm::data {

void SourceMap::start(int textLine, std::string const& file, int fileLine) {
    auto const known = std::find(m_files.begin(), m_files.end(), file);
    std::size_t const index = static_cast<std::size_t>(known - m_files.begin());
    if (known == m_files.end()) m_files.push_back(file);
    if (!m_segments.empty() && m_segments.back().textLine == textLine)
        m_segments.back() = {textLine, index, fileLine};
    else
        m_segments.push_back({textLine, index, fileLine});
}

SourceMap::Place SourceMap::locate(int textLine) const {
    auto it = std::upper_bound(m_segments.begin(), m_segments.end(), textLine,
                               [](int line, Segment const& s) { return line < s.textLine; });
    if (it == m_segments.begin()) return {nullptr, textLine};
    --it;
    return {&m_files[it->file], it->fileLine + (textLine - it->textLine)};
}

std::string SourceMap::describe(int textLine) const {
    Place const place = locate(textLine);
    if (place.file == nullptr) return "line " + std::to_string(textLine);
    return *place.file + ":" + std::to_string(place.line);
}

namespace {

[[noreturn]] void fail(std::string const& message) {
    throw PRSMException(message.c_str(), "PRSMData::readFile");
}

constexpr int kMaxIncludeDepth = 10;  // the parser's own nesting limit

bool isGzip(std::string const& content) {
    return content.size() >= 2 && static_cast<unsigned char>(content[0]) == 0x1f &&
           static_cast<unsigned char>(content[1]) == 0x8b;
}

// Character classes of the scan, looked up by table: the scan runs over every byte of every file.
enum CharClass : unsigned char { kOther, kNameStart = 1, kNameChar = 2, kNumberStart = 4 };

struct CharClasses {
    unsigned char of[256] = {};
    constexpr CharClasses() {
        for (int c = 'a'; c <= 'z'; ++c) of[c] = kNameStart | kNameChar;
        for (int c = 'A'; c <= 'Z'; ++c) of[c] = kNameStart | kNameChar;
        for (int c = '0'; c <= '9'; ++c) of[c] = kNameChar | kNumberStart;
        of[static_cast<unsigned char>('*')] = kNameStart | kNameChar;
        of[static_cast<unsigned char>('_')] = kNameChar;
        of[static_cast<unsigned char>('-')] = kNameChar | kNumberStart;
        of[static_cast<unsigned char>('+')] = kNumberStart;
        of[static_cast<unsigned char>('.')] = kNumberStart;
    }
};
constexpr CharClasses kClasses;

bool is(char c, CharClass cls) {
    return (kClasses.of[static_cast<unsigned char>(c)] & cls) != 0;
}

bool isNameChar(char c) {
    return is(c, kNameChar);
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

int hexValue(char c) {
    if (isDigit(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// A decimal float literal the parser reads back as `value` (beyond the double range: 1e999, infinity).
std::string floatLiteral(double value) {
    if (!std::isfinite(value)) return "1e999";
    char text[40];
    std::snprintf(text, sizeof text, "%.17e", value);
    return text;
}

std::string decompress(std::string const& file, std::string const& raw, std::size_t cap) {
    std::string out;
    try {
        boost::iostreams::filtering_istream in;
        in.push(boost::iostreams::gzip_decompressor());
        in.push(boost::iostreams::array_source(raw.data(), raw.size()));
        in.exceptions(std::ios::badbit);  // a decoding error is rethrown, not turned into an early end
        char buffer[1 << 16];
        while (in) {
            in.read(buffer, sizeof buffer);
            std::size_t const got = static_cast<std::size_t>(in.gcount());
            if (got > cap - out.size())
                fail("data file " + file + " expands to more than " + std::to_string(cap) +
                     " bytes, the loader's limit for a data file (PRSMData::setMaxDataBytes)");
            out.append(buffer, got);
        }
    } catch (PRSMException const&) {
        throw;
    } catch (std::exception const&) {  // the decoder says only "gzip error"
        fail("data file " + file + " is a damaged compressed file: it does not decompress as gzip");
    }
    return out;
}

class Assembler {
public:
    Assembler(std::vector<std::string> const& dataDirs, Limits const& limits, std::size_t expectedSize)
        : m_dataDirs(dataDirs), m_limits(limits), m_sources(std::make_shared<SourceMap>()) {
        m_text.reserve(std::min(expectedSize, limits.maxBytes) + 64);
    }

    void append(fs::path const& file, std::string const& raw, int depth) {
        std::string const name = file.string();
        if (isGzip(raw)) {
            scan(decompress(name, raw, remaining()), name, file, depth);
        } else {
            if (raw.size() > remaining()) tooLarge(name);
            scan(raw, name, file, depth);
        }
    }

    AssembledText result() { return {std::move(m_text), std::move(m_sources)}; }

private:
    std::size_t remaining() const {
        return m_text.size() < m_limits.maxBytes ? m_limits.maxBytes - m_text.size() : 0;
    }

    [[noreturn]] void tooLarge(std::string const& file) const {
        fail("data file " + file + " is larger than " + std::to_string(m_limits.maxBytes) +
             " bytes with what it includes, the loader's limit for a data file (PRSMData::setMaxDataBytes)");
    }

    struct Cursor {
        std::string const& text;
        std::string const& name;
        std::size_t at;      // next character to scan
        std::size_t copied;  // text before this is in m_text already
        int line;
    };

    void scan(std::string const& content, std::string const& name, fs::path const& file, int depth) {
        std::size_t const nul = content.find('\0');
        if (nul != std::string::npos)
            fail("data file " + name + " is not text: it holds a NUL byte at offset " + std::to_string(nul));
        m_sources->start(m_line, name, 1);
        Cursor c{content, name, 0, 0, 1};
        std::size_t const n = content.size();
        bool lineStart = true;
        while (c.at < n) {
            char const ch = content[c.at];
            switch (ch) {
                case '\n':
                    ++c.line;
                    ++c.at;
                    lineStart = true;
                    continue;
                case ' ':
                case '\t':
                    ++c.at;
                    continue;
                case '"':
                    skipString(c);
                    break;
                case '#':
                    skipLine(c);
                    break;
                case '/':
                    if (c.at + 1 < n && content[c.at + 1] == '/')
                        skipLine(c);
                    else if (c.at + 1 < n && content[c.at + 1] == '*')
                        skipBlockComment(c);
                    else
                        ++c.at;
                    break;
                case '@':
                    if (!(lineStart && include(c, file, depth))) ++c.at;
                    break;
                case '{':
                case '(':
                case '[':
                    m_open.push_back({ch, 0});
                    ++c.at;
                    break;
                case '}':
                case ')':
                case ']':
                    if (!m_open.empty()) m_open.pop_back();
                    ++c.at;
                    break;
                case '=':
                case ':':
                    countSetting(c);
                    ++c.at;
                    break;
                default:
                    if (is(ch, kNameStart)) {
                        while (++c.at < n && isNameChar(content[c.at])) {
                        }
                    } else if (is(ch, kNumberStart)) {
                        number(c);
                    } else {
                        ++c.at;
                    }
            }
            lineStart = false;
        }
        flush(c, n);
    }

    // Copies the text up to `upto` into the assembled text.
    void flush(Cursor& c, std::size_t upto) {
        if (upto <= c.copied) return;
        m_line += static_cast<int>(std::count(c.text.begin() + static_cast<std::ptrdiff_t>(c.copied),
                                              c.text.begin() + static_cast<std::ptrdiff_t>(upto), '\n'));
        m_text.append(c.text, c.copied, upto - c.copied);
        c.copied = upto;
    }

    void replace(Cursor& c, std::size_t from, std::size_t to, std::string const& with) {
        flush(c, from);
        m_text += with;
        c.copied = to;
    }

    void countLines(Cursor& c, std::size_t from, std::size_t to) {
        c.line += static_cast<int>(std::count(c.text.begin() + static_cast<std::ptrdiff_t>(from),
                                              c.text.begin() + static_cast<std::ptrdiff_t>(to), '\n'));
    }

    void skipString(Cursor& c) {
        std::size_t i = c.at + 1;
        std::size_t const n = c.text.size();
        while (i < n && c.text[i] != '"') i += c.text[i] == '\\' ? 2 : 1;
        i = std::min(i + 1, n);
        countLines(c, c.at, i);
        c.at = i;
    }

    void skipLine(Cursor& c) {
        std::size_t const end = c.text.find('\n', c.at);
        c.at = end == std::string::npos ? c.text.size() : end;
    }

    void skipBlockComment(Cursor& c) {
        std::size_t const end = c.text.find("*/", c.at + 2);
        std::size_t const stop = end == std::string::npos ? c.text.size() : end + 2;
        countLines(c, c.at, stop);
        c.at = stop;
    }

    // The parser compares each new setting's name with every earlier one of its group, so a file's
    // parse time grows with the pairs of settings that share a group: these are counted and capped.
    void countSetting(Cursor const& c) {
        std::uint64_t* count = &m_rootSettings;
        if (!m_open.empty()) {
            if (m_open.back().kind != '{') return;
            count = &m_open.back().settings;
        }
        m_pairs += *count;
        ++*count;
        if (m_pairs > m_limits.maxGroupPairs)
            fail("data file " + c.name + " has too many settings in one group (line " +
                 std::to_string(c.line) +
                 "): the pairs of settings that share a group, summed over the groups, pass " +
                 std::to_string(m_limits.maxGroupPairs) +
                 ", the loader's limit (PRSMData::setMaxGroupPairs)");
    }

    // A number token as the parser reads it. An integer literal that the parser would wrap (it reads
    // one without the L suffix into 32 bits and one with it into 64) is widened: to 64 bits when it
    // fits them, else to a float literal of its value, so the loader sees the real value.
    void number(Cursor& c) {
        std::string const& s = c.text;
        std::size_t const n = s.size();
        std::size_t const start = c.at;
        std::size_t j = start;
        bool const sign = s[j] == '+' || s[j] == '-';
        bool const negative = s[j] == '-';
        if (sign) ++j;
        if (!sign && s[j] == '0' && j + 2 < n && (s[j + 1] == 'x' || s[j + 1] == 'X') &&
            hexValue(s[j + 2]) >= 0) {
            std::size_t k = j + 2;
            std::uint64_t magnitude = 0;
            double approximate = 0.0;
            bool overflow = false;
            for (; k < n && hexValue(s[k]) >= 0; ++k) {
                int const digit = hexValue(s[k]);
                if (magnitude > (UINT64_MAX >> 4)) overflow = true;
                magnitude = magnitude * 16 + static_cast<std::uint64_t>(digit);
                approximate = approximate * 16.0 + digit;
            }
            std::size_t const digitsEnd = k;
            bool const isLong = k < n && s[k] == 'L';
            if (isLong) k += (k + 1 < n && s[k + 1] == 'L') ? 2 : 1;
            std::uint64_t const limit = isLong ? INT64_MAX : INT32_MAX;
            if (overflow || magnitude > limit) {
                if (!overflow && magnitude <= static_cast<std::uint64_t>(INT64_MAX))
                    replace(c, start, k, s.substr(start, digitsEnd - start) + "L");
                else
                    replace(c, start, k, floatLiteral(approximate));
            }
            c.at = k;
            return;
        }
        std::size_t k = j;
        while (k < n && isDigit(s[k])) ++k;
        bool const hasDigits = k > j;
        bool isFloat = false;
        if (k < n && s[k] == '.') {
            isFloat = true;
            ++k;
            while (k < n && isDigit(s[k])) ++k;
        }
        if (k < n && (s[k] == 'e' || s[k] == 'E')) {
            std::size_t e = k + 1;
            if (e < n && (s[e] == '+' || s[e] == '-')) ++e;
            if (e < n && isDigit(s[e])) {
                isFloat = true;
                for (k = e; k < n && isDigit(s[k]);) ++k;
            }
        }
        if (isFloat || !hasDigits) {
            c.at = std::max(k, start + 1);
            return;
        }
        std::uint64_t magnitude = 0;
        bool overflow = false;
        for (std::size_t d = j; d < k; ++d) {
            std::uint64_t const digit = static_cast<std::uint64_t>(s[d] - '0');
            if (magnitude > (UINT64_MAX - digit) / 10)
                overflow = true;
            else
                magnitude = magnitude * 10 + digit;
        }
        std::size_t const digitsEnd = k;
        bool const isLong = k < n && s[k] == 'L';
        if (isLong) k += (k + 1 < n && s[k + 1] == 'L') ? 2 : 1;
        auto const fits = [&](std::uint64_t positiveLimit) {
            return !overflow && magnitude <= (negative ? positiveLimit + 1 : positiveLimit);
        };
        if (!fits(isLong ? INT64_MAX : INT32_MAX)) {
            std::string const digits = s.substr(start, digitsEnd - start);
            replace(c, start, k, !isLong && fits(INT64_MAX) ? digits + "L" : digits + ".0");
        }
        c.at = k;
    }

    // An @include directive at the start of a line: its file's text takes the directive's place.
    bool include(Cursor& c, fs::path const& file, int depth) {
        std::string const& s = c.text;
        std::size_t const n = s.size();
        static char const kDirective[] = "@include";
        std::size_t const length = sizeof kDirective - 1;
        if (s.compare(c.at, length, kDirective) != 0) return false;
        std::size_t j = c.at + length;
        while (j < n && (s[j] == ' ' || s[j] == '\t')) ++j;
        if (j == c.at + length || j >= n || s[j] != '"') return false;
        std::string name;
        std::size_t k = j + 1;
        for (; k < n && s[k] != '"'; ++k) {
            if (s[k] == '\\' && k + 1 < n) ++k;
            name += s[k];
        }
        std::string const where =
            "data file " + c.name + ", line " + std::to_string(c.line) + ": @include \"" + name + "\"";
        if (k >= n) fail(where + " is not closed");
        if (depth >= kMaxIncludeDepth)
            fail(where + " nests includes deeper than " + std::to_string(kMaxIncludeDepth) +
                 " files (a loop?)");
        fs::path const included = resolve(file, name, where);

        flush(c, c.at);
        boost::system::error_code error;
        std::uintmax_t const size = fs::file_size(included, error);
        if (error) fail(where + ": " + included.string() + " cannot be read (" + error.message() + ")");
        if (size > remaining()) tooLarge(included.string());
        std::ifstream in(included.string(), std::ios::binary);
        std::string raw(std::istreambuf_iterator<char>(in), {});
        if (!in && !in.eof()) fail(where + ": " + included.string() + " cannot be read");
        append(included, raw, depth + 1);
        if (!m_text.empty() && m_text.back() != '\n') {
            m_text += '\n';
            ++m_line;
        }
        // The rest of the directive's line continues the including file.
        m_sources->start(m_line, c.name, c.line);
        c.at = k + 1;
        c.copied = c.at;
        return true;
    }

    // An include names a file relative to the including file's folder; the file must lie (links
    // resolved) inside one of the data directories.
    fs::path resolve(fs::path const& file, std::string const& name, std::string const& where) {
        if (name.empty()) fail(where + " names no file");
        fs::path const target = fs::path(name).is_absolute() ? fs::path(name) : file.parent_path() / name;
        boost::system::error_code error;
        fs::path const resolved = fs::weakly_canonical(target, error);
        if (error || !insideDataDirs(resolved))
            fail(where + " leaves the data directories; an included file must lie inside one of them");
        if (!fs::is_regular_file(resolved, error))
            fail(where + ": " + resolved.string() + " is not a file that can be read");
        return resolved;
    }

    bool insideDataDirs(fs::path const& resolved) {
        if (m_canonicalDirs.empty()) {
            for (std::string const& dir : m_dataDirs) {
                boost::system::error_code error;
                fs::path const canonical = fs::canonical(dir, error);
                if (!error) m_canonicalDirs.push_back(canonical);
            }
        }
        for (fs::path const& dir : m_canonicalDirs) {
            auto r = resolved.begin();
            bool inside = true;
            for (auto d = dir.begin(); d != dir.end() && inside; ++d, ++r)
                inside = r != resolved.end() && *r == *d;
            if (inside) return true;
        }
        return false;
    }

    struct Open {
        char kind;
        std::uint64_t settings;
    };

    std::vector<std::string> const& m_dataDirs;
    std::vector<fs::path> m_canonicalDirs;
    Limits m_limits;
    std::shared_ptr<SourceMap> m_sources;
    std::string m_text;
    int m_line = 1;
    std::vector<Open> m_open;
    std::uint64_t m_rootSettings = 0;
    std::uint64_t m_pairs = 0;
};

struct Remembered {
    libconfig::Config const* cfg;
    libconfig::Setting const* root;
    std::shared_ptr<SourceMap> sources;
};

// The last few configurations read on this thread (a data class loads one file at a time; a load
// that triggers another one nests at most a few deep).
thread_local std::vector<Remembered> t_remembered;
constexpr std::size_t kRemembered = 4;

}  // namespace

AssembledText assembleDataText(std::string const& file, std::string const& content,
                               std::vector<std::string> const& dataDirs, Limits const& limits) {
    Assembler assembler(dataDirs, limits, content.size());
    assembler.append(fs::path(file), content, 0);
    return assembler.result();
}

void rememberSources(libconfig::Config const* cfg, std::shared_ptr<SourceMap> sources) {
    auto const same = [cfg](Remembered const& r) { return r.cfg == cfg; };
    t_remembered.erase(std::remove_if(t_remembered.begin(), t_remembered.end(), same), t_remembered.end());
    if (t_remembered.size() >= kRemembered) t_remembered.erase(t_remembered.begin());
    t_remembered.push_back({cfg, &cfg->getRoot(), std::move(sources)});
}

std::string describeSource(libconfig::Config const* cfg, libconfig::Setting const& setting) {
    int const line = static_cast<int>(setting.getSourceLine());
    for (Remembered const& r : t_remembered)
        if (r.cfg == cfg && r.root == &cfg->getRoot()) return r.sources->describe(line);
    return line > 0 ? "line " + std::to_string(line) : std::string();
}

}  // namespace prsm::data
