#include <prsm/sheetfunc/PRSMTextFunctions.h>

#include <prsm/framework/PRSMReservedValues.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iomanip>
#include <numeric>
#include <sstream>

namespace PRSMHelperUtils {

namespace {

// Large enough for any float printed in fixed notation with up to six decimals ("-3.4e38" has 39
// digits before the point).
constexpr std::size_t kFixedBufferSize = 64;

bool isSpace(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Replaces occurrences of old from left to right, resuming behind each one, at most `limit` of them
// (0: no limit). old must not be empty.
std::string replaceOccurrences(std::string const& text, std::string const& old,
                               std::string const& replacement, int limit) {
    std::string result;
    std::string::size_type from = 0;
    int replaced = 0;
    while (limit == 0 || replaced < limit) {
        std::string::size_type const at = text.find(old, from);
        if (at == std::string::npos) {
            break;
        }
        result.append(text, from, at - from);
        result += replacement;
        from = at + old.size();
        ++replaced;
    }
    if (replaced == 0) {
        return text;
    }
    result.append(text, from, std::string::npos);
    return result;
}

std::string joinWords(std::vector<std::string> const& words, std::size_t first, std::size_t last) {
    std::string line;
    for (std::size_t i = first; i < last; ++i) {
        if (i > first) {
            line += ' ';
        }
        line += words[i];
    }
    return line;
}

// Lays words[first, last) out over exactly width characters by widening the gaps.
std::string padToWidth(std::vector<std::string> const& words, std::size_t first, std::size_t last,
                       int width) {
    std::size_t const gaps = last - first - 1;
    std::size_t letters = 0;
    for (std::size_t i = first; i < last; ++i) {
        letters += words[i].size();
    }
    if (gaps == 0 || static_cast<long long>(letters + gaps) >= width) {
        return joinWords(words, first, last);
    }
    std::size_t const blanks = static_cast<std::size_t>(width) - letters;
    std::vector<std::size_t> gapWidths(gaps, blanks / gaps);
    std::size_t const remainder = blanks % gaps;

    // Gap i follows word first + i; the longest words get the remainder blanks, leftmost first on ties.
    std::vector<std::size_t> order(gaps);
    std::iota(order.begin(), order.end(), std::size_t{0});
    auto const longerWord = [&](std::size_t a, std::size_t b) {
        std::size_t const lengthA = words[first + a].size();
        std::size_t const lengthB = words[first + b].size();
        return lengthA != lengthB ? lengthA > lengthB : a < b;
    };
    std::partial_sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(remainder), order.end(),
                      longerWord);
    for (std::size_t k = 0; k < remainder; ++k) {
        ++gapWidths[order[k]];
    }

    std::string line;
    line.reserve(static_cast<std::size_t>(width));
    for (std::size_t i = first; i < last; ++i) {
        line += words[i];
        if (i + 1 < last) {
            line.append(gapWidths[i - first], ' ');
        }
    }
    return line;
}

}  // namespace

std::string TEXT(float value, std::string const& format) {
    char buffer[kFixedBufferSize];
    int const printed = std::snprintf(buffer, sizeof buffer, "%f", static_cast<double>(value));
    std::size_t const length = std::min(static_cast<std::size_t>(std::max(printed, 0)), sizeof buffer - 1);
    if (format.empty()) {
        return std::string(buffer, length);
    }
    // "inf" and "nan" have no point: everything is "before the point".
    char const* const point = static_cast<char const*>(std::memchr(buffer, '.', length));
    std::size_t const beforePoint = point != nullptr ? static_cast<std::size_t>(point - buffer) : length;
    std::string::size_type const formatPoint = format.find('.');
    if (formatPoint == std::string::npos) {
        return std::string(buffer, beforePoint);
    }
    // The point and every character after it in the format count as one character each of the text.
    std::size_t const kept = format.size() - formatPoint;
    return std::string(buffer, std::min(length, beforePoint + kept));
}

std::string LEFT(std::string text, int count) {
    // A negative count, read as an unsigned size, is larger than any text.
    auto const wanted = static_cast<std::string::size_type>(count);
    if (text.empty() || wanted > text.size()) {
        return std::string();
    }
    text.resize(wanted);
    return text;
}

std::string RIGHT(std::string text, int count) {
    auto const wanted = static_cast<std::string::size_type>(count);
    if (text.empty() || wanted > text.size()) {
        return std::string();
    }
    text.erase(0, text.size() - wanted);
    return text;
}

std::string::size_type LEN(std::string text) {
    return text.size();
}

std::string::size_type FIND(std::string wanted, std::string within, int start) {
    return within.find(wanted, static_cast<std::string::size_type>(start));
}

std::string::size_type SEARCH(std::string wanted, std::string within, int start) {
    for (char& c : wanted) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    for (char& c : within) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return within.find(wanted, static_cast<std::string::size_type>(start));
}

std::string SUBSTITUTE(std::string const& text, std::string old, std::string replacement) {
    if (text.empty() || old.empty()) {
        return text;
    }
    return replaceOccurrences(text, old, replacement, 0);
}

// Occurrences are counted from the left; a skipped one would let the search go on one character
// behind it, so overlapping occurrences count, but only occurrences past the n-th are ever skipped, so
// the result is the first n occurrences replaced, each search resuming behind the inserted text.
// An empty old text would match everywhere: the text is returned unchanged.
std::string SUBSTITUTE_N(std::string const& text, std::string const& old, std::string const& replacement,
                         int n) {
    if (n < 0 || old.empty()) {
        return text;
    }
    return replaceOccurrences(text, old, replacement, n);
}

std::string ToUpper(std::string const& text) {
    std::string result(text);
    for (char& c : result) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return result;
}

std::string ToLower(std::string const& text) {
    std::string result(text);
    for (char& c : result) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return result;
}

void ltrim(std::string& text) {
    text.erase(text.begin(), std::find_if_not(text.begin(), text.end(), isSpace));
}

void rtrim(std::string& text) {
    text.erase(std::find_if_not(text.rbegin(), text.rend(), isSpace).base(), text.end());
}

void trim(std::string& text) {
    ltrim(text);
    rtrim(text);
}

void removeWhiteSpaces(std::string& text) {
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
}

void convertToCamelString(std::string& text) {
    if (text.size() < 2) {
        return;
    }
    // The first character stays; an underscore turns into a blank and protects the next character.
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == '_') {
            text[i] = ' ';
            ++i;
        } else {
            text[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[i])));
        }
    }
}

std::string ToString(std::string text) {
    return text;
}

std::string ToString(float value) {
    std::string result;
    if (value != prsm::kFloatNotSet) {
        numToTightStr(value, result, 0.001f);
    }
    return result;
}

std::string ToString(int value) {
    return value == prsm::kIntUnset ? std::string() : std::to_string(value);
}

std::string i2s(int value, int width, char fill) {
    std::ostringstream stream;
    stream << std::setw(width) << std::setfill(fill) << value;
    return stream.str();
}

void numToTightStr(float value, std::string& out, float tolerance) {
    if (tolerance >= 1000.0f) {
        return;
    }
    constexpr int kMaxDecimals = 5;
    char buffer[kFixedBufferSize];
    std::string text;
    for (int decimals = 0;; ++decimals) {
        int const printed =
            std::snprintf(buffer, sizeof buffer, "%.*f", decimals, static_cast<double>(value));
        text.assign(buffer, std::min(static_cast<std::size_t>(std::max(printed, 0)), sizeof buffer - 1));
        float const readBack = std::stof(text);
        // Relative error in thousandths of the value.
        float const error = value == 0.0f ? 0.0f : std::fabs((readBack - value) / value) * 1000.0f;
        out = text;
        if (error <= tolerance || decimals == kMaxDecimals) {
            return;
        }
    }
}

// The anchored match of ^([-+]?[0-9]+(\.[0-9]+)?)(.*) in the ECMAScript grammar, written out by hand
// (the library's regex engine recurses once per character on the trailing group). Its "." matches
// anything but a line feed or carriage return, so such a character anywhere in the text means no match.
std::string getFirstNumericSubStr(std::string const& text) {
    if (text.find_first_of("\n\r") != std::string::npos) {
        return std::string();
    }
    std::size_t end = 0;
    if (end < text.size() && (text[end] == '+' || text[end] == '-')) {
        ++end;
    }
    std::size_t const digitsStart = end;
    while (end < text.size() && isDigit(text[end])) {
        ++end;
    }
    if (end == digitsStart) {
        return std::string();
    }
    if (end + 1 < text.size() && text[end] == '.' && isDigit(text[end + 1])) {
        end += 2;
        while (end < text.size() && isDigit(text[end])) {
            ++end;
        }
    }
    return text.substr(0, end);
}

std::vector<std::string> lineToWords(std::string const& text) {
    std::vector<std::string> words;
    std::istringstream stream(text);
    std::string word;
    while (stream >> word) {
        words.push_back(word);
    }
    return words;
}

std::string mergeStrVect(std::vector<std::string> const& parts, unsigned int start, std::string separator) {
    std::string result;
    std::size_t const count = parts.size();
    for (std::size_t i = start; i < count; ++i) {
        if (parts[i].empty()) {
            continue;
        }
        result += parts[i];
        // Only the next neighbour is looked at: a, "", b gives "ab".
        if (i + 1 < count && !parts[i + 1].empty() && !separator.empty()) {
            result += separator;
        }
    }
    return result;
}

// The first line aims at width, every later one at the mean length of the lines made so far. A line
// takes words until its length (blanks included) exceeds the target; the word that crossed it moves to
// the next line if it overshoots by more than half its own length. A word that would move although it
// is the only one of its line stays: it stands on a line of its own, so no word is lost and every
// line consumes at least one word.
std::vector<std::string> leftJustify(std::vector<std::string> const& words, int width) {
    std::vector<std::string> lines;
    float target = static_cast<float>(width);
    std::size_t next = 0;
    while (next < words.size()) {
        long long running = -1;
        std::size_t end = next;
        while (end < words.size()) {
            running += 1 + static_cast<long long>(words[end].size());
            ++end;
            if (static_cast<float>(running) > target) {
                break;
            }
        }
        double const overshoot = static_cast<double>(running) - static_cast<double>(target);
        double const halfLastWord = static_cast<double>(words[end - 1].size()) / 2.0;
        if (overshoot > 0.0 && overshoot > halfLastWord && end - 1 > next) {
            --end;
        }
        lines.push_back(joinWords(words, next, end));
        next = end;
        target += (static_cast<float>(lines.back().size()) - target) / static_cast<float>(lines.size());
    }
    return lines;
}

std::vector<std::string> fullJustify(std::vector<std::string> const& words, int width) {
    std::vector<std::string> lines;
    std::size_t next = 0;
    while (next < words.size()) {
        long long running = static_cast<long long>(words[next].size());
        std::size_t end = next + 1;
        while (end < words.size()) {
            long long const grown = running + 1 + static_cast<long long>(words[end].size());
            if (grown > width) {
                break;
            }
            running = grown;
            ++end;
        }
        lines.push_back(padToWidth(words, next, end, width));
        next = end;
    }
    return lines;
}

std::string wrapToHtml(std::string const& text, int width) {
    std::string html = "<html>";
    for (std::string const& line : leftJustify(lineToWords(text), width)) {
        html += line;
        html += "<br>";
    }
    html += "</html>";
    return html;
}

}  // namespace PRSMHelperUtils
