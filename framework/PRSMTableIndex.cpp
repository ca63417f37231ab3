#include <prsm/framework/PRSMTableIndex.h>

namespace prsm::data {

template <typename T>
void TableIndex<T>::build(Map const& map, std::size_t parts) {
    std::size_t capacity = 2;
    while (capacity < 2 * map.size()) capacity *= 2;
    m_slots.assign(capacity, Slot{});
    m_mask = capacity - 1;
    m_shift = 64;
    for (std::size_t c = capacity; c > 1; c /= 2) --m_shift;
    for (auto const& entry : map) {
        std::string const& key = entry.first;
        std::size_t found = 0;
        std::uint64_t const hash = hashJoined(key, found);
        if (found != parts) continue;  // reachable only through a part that holds a '.'
        std::size_t slot = static_cast<std::size_t>(hash >> m_shift);
        while (m_slots[slot].value != nullptr) slot = (slot + 1) & m_mask;
        m_slots[slot] = Slot{hash, key, &entry.second};
    }
    m_size = map.size();
}

template class TableIndex<float>;
template class TableIndex<int>;
template class TableIndex<std::string>;
template class TableIndex<std::size_t>;

}  // namespace prsm::data
