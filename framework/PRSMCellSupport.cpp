#include <prsm/framework/PRSMCellSupport.h>

#include <algorithm>
#include <sstream>

namespace prsm::cells {
namespace {

// Calls `emit` for each token of an enumerator list except the closing marker.
template <typename Emit>
void splitList(std::string list, Emit emit) {
    list.erase(std::remove(list.begin(), list.end(), ' '), list.end());
    std::string::size_type begin = 0;
    for (std::string::size_type comma; (comma = list.find(',', begin)) != std::string::npos;) {
        emit(list.substr(begin, comma - begin));
        begin = comma + 1;
        if (begin == list.size()) break;
    }
}

template <typename Value>
void appendValue(std::string& out, std::string const& name, Value const& value) {
    std::ostringstream line;
    line << std::boolalpha << name << " = " << value << "\n";
    out += line.str();
}

}  // namespace

void populateNameTable(std::vector<std::string>& table, std::string list, std::mutex& mutex) {
    std::lock_guard<std::mutex> const lock(mutex);
    if (!table.empty()) return;
    splitList(std::move(list), [&](std::string token) { table.push_back(std::move(token)); });
    table.shrink_to_fit();
}

void populateNameMap(std::unordered_map<std::string, unsigned int>& map, std::string list,
                     std::mutex& mutex) {
    std::lock_guard<std::mutex> const lock(mutex);
    if (!map.empty()) return;
    unsigned int index = 0;
    splitList(std::move(list), [&](std::string token) { map.emplace(std::move(token), index++); });
}

std::string nameAt(std::vector<std::string> const& table, std::size_t index) {
    return index < table.size() ? table[index] : std::string("StringError");
}

unsigned int indexOf(std::unordered_map<std::string, unsigned int> const& map, std::string const& name,
                     unsigned int notFound) {
    auto const it = map.find(name);
    return it == map.end() ? notFound : it->second;
}

void appendNames(std::vector<std::string> const& table, std::size_t firstMarker, std::size_t lastMarker,
                 std::vector<std::string>& out) {
    for (std::size_t i = firstMarker + 1; i < lastMarker; ++i) out.push_back(nameAt(table, i));
}

void appendLine(std::string& out, std::string const& name, int value) {
    appendValue(out, name, value);
}
void appendLine(std::string& out, std::string const& name, float value) {
    appendValue(out, name, static_cast<double>(value));
}
void appendLine(std::string& out, std::string const& name, std::string const& value) {
    appendValue(out, name, value);
}

}  // namespace prsm::cells
