#pragma once
// Table lookups of the generated data classes without composing a key string.
//
// Each scalar table of a data class gets a TableIndex, rebuilt whenever the file loads. It is an
// open-addressing hash table over the table's map: each slot points at one entry's key and value. A
// lookup hashes the key's parts where they are (no copy, no '.' joined in), then compares the one
// candidate entry part by part. Keys that a sheet's formulas write out ("A1INT") are also resolved at
// load time into slots that the formulas read by position.
//
// The maps stay the data. A lookup reproduces `map.find(parts joined with ".")` exactly:
// - a part holding a '.' could match an entry nested deeper than the table's key parts, so such a
//   lookup searches the map itself;
// - a map whose size changed since the index was built (an entry added or erased by hand) is searched
//   directly as well, until the next load rebuilds the index. Values changed in place are seen at once,
//   because the slots point into the map's nodes.

#include <prsm/framework/PRSMCellSupport.h>
#include <prsm/framework/PRSMConfigHelpers.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace prsm::data {

namespace detail {

inline constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15ull;
inline constexpr std::uint64_t kSeed = 0x243F6A8885A308D3ull;
inline constexpr std::uint64_t kOnes = 0x0101010101010101ull;
inline constexpr std::uint64_t kHighBits = 0x8080808080808080ull;
inline constexpr std::uint64_t kDots = 0x2E2E2E2E2E2E2E2Eull;

inline std::uint64_t load8(char const* p) {
    std::uint64_t value;
    std::memcpy(&value, p, sizeof value);
    return value;
}

inline std::uint64_t load4(char const* p) {
    std::uint32_t value;
    std::memcpy(&value, p, sizeof value);
    return value;
}

inline std::uint64_t mix(std::uint64_t hash, std::uint64_t word) {
    hash = (hash ^ word) * kMultiplier;
    return hash ^ (hash >> 29);
}

inline std::uint64_t rotate(std::uint64_t value, unsigned bits) {
    return (value << bits) | (value >> (64 - bits));
}

// Nonzero when one of the eight bytes of `word` is '.'.
inline std::uint64_t dotIn(std::uint64_t word) {
    std::uint64_t const x = word ^ kDots;
    return (x - kOnes) & ~x & kHighBits;
}

// The hash of one key part, eight bytes at a time (parts up to 16 bytes in one or two loads); notes in
// `dots` whether the part holds a '.'. Each part is hashed on its own, so that the parts of a key are
// hashed side by side, and only their combination (`combine`) is sequential.
inline std::uint64_t hashPart(std::string_view part, std::uint64_t& dots) {
    char const* p = part.data();
    std::size_t const n = part.size();
    std::uint64_t hash = kSeed ^ (n * kOnes);
    if (n <= 8) {
        std::uint64_t word = 0;
        if (n >= 4)
            word = load4(p) | (load4(p + n - 4) << 32);
        else if (n > 0)
            word = static_cast<unsigned char>(p[0]) |
                   (std::uint64_t{static_cast<unsigned char>(p[n / 2])} << 8) |
                   (std::uint64_t{static_cast<unsigned char>(p[n - 1])} << 16);
        dots |= dotIn(word);
        hash = mix(hash, word);
    } else if (n <= 16) {
        std::uint64_t const first = load8(p);
        std::uint64_t const last = load8(p + n - 8);
        dots |= dotIn(first) | dotIn(last);
        hash = mix(hash, first ^ rotate(last * kMultiplier, 31));
    } else {
        std::size_t i = 0;
        for (; n - i > 8; i += 8) {
            std::uint64_t const word = load8(p + i);
            dots |= dotIn(word);
            hash = mix(hash, word);
        }
        std::uint64_t const last = load8(p + n - 8);
        dots |= dotIn(last);
        hash = mix(hash, last);
    }
    return hash;
}

// Combines the hash of the parts so far with that of the next part; order matters.
inline std::uint64_t combine(std::uint64_t hash, std::uint64_t part) {
    return rotate(hash, 23) ^ part;
}

// The final hash of a key from its combined parts.
inline std::uint64_t finish(std::uint64_t hash) {
    return mix(hash, kSeed);
}

template <typename... Parts>
std::size_t joinedSize(Parts const&... parts) {
    return (std::string_view(parts).size() + ...) + sizeof...(Parts) - 1;
}

// Whether `key` is the parts joined with ".", given that `key` holds exactly one '.' fewer than there
// are parts and that no part holds a '.'.
template <typename... Parts>
bool sameKey(std::string_view key, Parts const&... parts) {
    if (key.size() != joinedSize(parts...)) return false;
    char const* at = key.data();
    bool same = true;
    ((same = same && std::memcmp(at, std::string_view(parts).data(), std::string_view(parts).size()) == 0,
      at += std::string_view(parts).size() + 1),
     ...);
    return same;
}

}  // namespace detail

// The index of one table (see above); `T` is the table's value type.
template <typename T>
class TableIndex {
public:
    using Map = std::unordered_map<std::string, T>;

    // Indexes the entries of `map` whose key has exactly `parts` - 1 dots. Defined in the library, for
    // the value types of the tables (float, int, text) and of a grid's row index.
    void build(Map const& map, std::size_t parts);

    // Marks the index stale, so that lookups search the map until the next build.
    void invalidate() { m_size = kStale; }

    // The value stored under the parts joined with ".", or nullptr.
    template <typename... Parts>
    T const* find(Map const& map, Parts const&... parts) const {
        if (map.size() != m_size) return findInMap(map, parts...);
        std::uint64_t dots = 0;
        std::uint64_t combined = 0;
        ((combined = detail::combine(combined, detail::hashPart(std::string_view(parts), dots))), ...);
        if (dots != 0) return findInMap(map, parts...);
        std::uint64_t const hash = detail::finish(combined);
        for (std::size_t slot = static_cast<std::size_t>(hash >> m_shift);; slot = (slot + 1) & m_mask) {
            Slot const& candidate = m_slots[slot];
            if (candidate.value == nullptr) return nullptr;
            if (candidate.hash == hash && detail::sameKey(candidate.key, parts...)) return candidate.value;
        }
    }

    // The value stored under `joined`, a key whose parts are already joined with "." (the table's
    // number of parts), looked up in the index as it was built; nullptr when absent.
    T const* findJoined(std::string_view joined) const {
        std::size_t found = 0;
        std::uint64_t const hash = hashJoined(joined, found);
        for (std::size_t slot = static_cast<std::size_t>(hash >> m_shift);; slot = (slot + 1) & m_mask) {
            Slot const& candidate = m_slots[slot];
            if (candidate.value == nullptr) return nullptr;
            if (candidate.hash == hash && candidate.key == joined) return candidate.value;
        }
    }

    // Whether lookups currently go through the index (the map has not changed size since the build).
    bool current(Map const& map) const { return map.size() == m_size; }

private:
    static constexpr std::size_t kStale = std::numeric_limits<std::size_t>::max();

    // The key's characters live in the map's node (or in the string the node holds), which does not
    // move while the entry exists.
    struct Slot {
        std::uint64_t hash = 0;
        std::string_view key;
        T const* value = nullptr;  // null: an empty slot
    };

    // The hash of a joined key's parts, as a lookup by those parts computes it; `parts` counts them.
    // Inline: findJoined resolves a sheet's constant keys with it when the file loads.
    static std::uint64_t hashJoined(std::string_view key, std::size_t& parts) {
        std::uint64_t combined = 0;
        std::uint64_t dots = 0;
        std::size_t begin = 0;
        for (std::size_t i = 0; i <= key.size(); ++i) {
            if (i < key.size() && key[i] != '.') continue;
            combined = detail::combine(combined, detail::hashPart(key.substr(begin, i - begin), dots));
            begin = i + 1;
            ++parts;
        }
        return detail::finish(combined);
    }

    // The searches of the map itself are rare (a key part holding a '.', a map edited by hand) and stay
    // out of line, so that a getter is small enough to inline into the formulas that call it.
    template <typename... Parts>
    [[gnu::noinline]] static T const* findInMap(Map const& map, Parts const&... parts) {
        auto const it = map.find(prsm::lookupKey(parts...));
        return it == map.end() ? nullptr : &it->second;
    }

    std::vector<Slot> m_slots;
    std::size_t m_mask = 0;
    unsigned m_shift = 63;
    std::size_t m_size = kStale;
};

// A table's index and the entries its formulas name by constant keys (`keys`, each the parts already
// joined with "."), resolved in order when the file loads: slot i holds the value of keys[i], or null
// when the file lacks it.
template <typename T, std::size_t N>
class ResolvedTable {
public:
    using Map = std::unordered_map<std::string, T>;

    ResolvedTable() = default;
    // Its slots point into one data object's maps: a copy of that object indexes its own.
    ResolvedTable(ResolvedTable const&) = delete;
    ResolvedTable& operator=(ResolvedTable const&) = delete;

    void resolve(Map const& map, std::size_t parts, std::array<std::string_view, N> const& keys) {
        m_index.build(map, parts);
        m_keys = &keys;
        for (std::size_t i = 0; i < N; ++i) m_fixed[i] = m_index.findJoined(keys[i]);
    }

    void invalidate() { m_index.invalidate(); }

    template <typename... Parts>
    T const* find(Map const& map, Parts const&... parts) const {
        return m_index.find(map, parts...);
    }

    // The value under the constant key `i`, or nullptr.
    T const* fixed(Map const& map, std::size_t i) const {
        if (!m_index.current(map)) return m_keys == nullptr ? nullptr : findFixedInMap(map, (*m_keys)[i]);
        return m_fixed[i];
    }

private:
    // Out of line, as findInMap above.
    [[gnu::noinline]] static T const* findFixedInMap(Map const& map, std::string_view key) {
        auto const it = map.find(std::string(key));
        return it == map.end() ? nullptr : &it->second;
    }

    TableIndex<T> m_index;
    std::array<T const*, N> m_fixed{};
    std::array<std::string_view, N> const* m_keys = nullptr;
};

// The base of a generated data class's indexes, which the class owns through a pointer to this base:
// one pointer type for every class, so that the installed headers instantiate no template per class.
struct DataIndexes {
    virtual ~DataIndexes() = default;
};

// Throws the PRSMException of a missing key, naming the parts joined with ".".
template <typename... Parts>
[[noreturn, gnu::cold, gnu::noinline]] void throwMissing(char const* table, char const* function,
                                                         Parts const&... parts) {
    PRSMHelperUtils::throwMissingKey(prsm::lookupKey(parts...), table, function);
}

}  // namespace prsm::data
