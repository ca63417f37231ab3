#pragma once
// Spreadsheet text functions used inside cell formulas, and the string utilities behind dumps,
// valid-value lists and messages. Positions and lengths are byte counts and zero-based.

#include <string>
#include <vector>

namespace PRSMHelperUtils {

// The value printed with "%f", cut (never rounded) to as many characters from its point on as the
// format has from its first "." on; without "." in the format, the part before the point; with an
// empty format, all six decimals. Nothing else in the format matters and nothing is padded.
std::string TEXT(float value, std::string const& format);

// The first / last count characters; the empty string when the text is empty or count is negative
// or larger than the text.
std::string LEFT(std::string text, int count);
std::string RIGHT(std::string text, int count);

std::string::size_type LEN(std::string text);

// Zero-based position of wanted in within at or after start, or std::string::npos (-1 as an int).
std::string::size_type FIND(std::string wanted, std::string within, int start);
// As FIND after upper-casing both texts with the global C locale; no wildcards.
std::string::size_type SEARCH(std::string wanted, std::string within, int start);

// Every occurrence of old, left to right without overlap, replaced; the replacement is never searched
// again. An empty text or old gives a copy of text.
std::string SUBSTITUTE(std::string const& text, std::string old, std::string replacement);

// n = 0 replaces every occurrence, n > 0 the first n occurrences (not only the n-th), n < 0 none.
// An empty old text gives text unchanged.
std::string SUBSTITUTE_N(std::string const& text, std::string const& old, std::string const& replacement,
                         int n);

std::string ToUpper(std::string const& text);
std::string ToLower(std::string const& text);

// Remove leading / trailing / both white space (isspace) in place.
void ltrim(std::string& text);
void rtrim(std::string& text);
void trim(std::string& text);

// Removes every blank (code 32); tabs and line ends stay.
void removeWhiteSpaces(std::string& text);

// Turns an upper-case identifier into words in place: BRAM_TYPE becomes "Bram Type".
void convertToCamelString(std::string& text);

std::string ToString(std::string text);
// "" for kFloatNotSet, else numToTightStr with tolerance 0.001.
std::string ToString(float value);
// "" for kIntUnset, else the decimal form.
std::string ToString(int value);

// value right-aligned in a field of width filled with fill; never cut. -7, 4, '0' gives "00-7".
std::string i2s(int value, int width, char fill);

// Writes into out the shortest fixed-point text (at most five decimals) whose relative error, in
// thousandths of the value, is within tolerance. A tolerance of 1000 or more leaves out unchanged.
// Throws like s2f ("stof") if the text cannot be read back.
void numToTightStr(float value, std::string& out, float tolerance);

// The leading number (optional sign, digits, optional fraction) of text, or "" if it starts otherwise.
std::string getFirstNumericSubStr(std::string const& text);

// The words of text, split at runs of white space.
std::vector<std::string> lineToWords(std::string const& text);

// parts[start..] joined; the separator stands only between two adjacent non-empty parts.
std::string mergeStrVect(std::vector<std::string> const& parts, unsigned int start, std::string separator);

// Breaks words into lines aimed at width first and at the running mean line length afterwards; a
// line may run over its target by up to half of its last word. A word too long for any line stands
// on a line of its own.
std::vector<std::string> leftJustify(std::vector<std::string> const& words, int width);

// Greedy filling to width, each line (the last one too) padded to width by widening its gaps evenly.
// The remainder blanks go one each to the gaps behind the longest words, the leftmost first among
// words of equal length. A line of one word, or without room to spare, keeps single blanks; a word
// longer than width stands on a line of its own.
std::vector<std::string> fullJustify(std::vector<std::string> const& words, int width);

// "<html>", each line of leftJustify(lineToWords(text), width) followed by "<br>", then "</html>".
std::string wrapToHtml(std::string const& text, int width);

}  // namespace PRSMHelperUtils
