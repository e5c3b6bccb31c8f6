#include "physics/ResidualSort.h"

#include <cstring>
#include <limits>

namespace physics {

void ResidualSort::Clear(size_t count) {
    m_items.clear();
    m_items.reserve(count);
}

void ResidualSort::Add(math::real residual) {
    const bool isFinite = residual < std::numeric_limits<math::real>::infinity();
    const math::real known = isFinite ? residual : 0;
    uint32_t bits;
    std::memcpy(&bits, &known, sizeof(bits));
    m_items.push_back({~bits, static_cast<uint32_t>(m_items.size())});
}

void ResidualSort::Sort(util::VectorPOD<uint32_t>& order) {
    CountDigits();
    m_spare.resize(m_items.size());
    for (int digit = 0; digit < DIGITS; ++digit) SortByDigit(digit);
    order.resize(m_items.size());
    for (size_t i = 0; i < m_items.size(); ++i) order[i] = m_items[i].index;
}

void ResidualSort::CountDigits() {
    std::memset(m_counts, 0, sizeof(m_counts));
    for (const Item& item : m_items) {
        for (int digit = 0; digit < DIGITS; ++digit) {
            ++m_counts[digit][(item.key >> (digit * DIGIT_BITS)) % VALUES];
        }
    }
}

void ResidualSort::SortByDigit(int digit) {
    if (m_items.empty()) return;
    uint32_t* const places = m_counts[digit];
    const int shift = digit * DIGIT_BITS;
    const bool isSame = places[(m_items[0].key >> shift) % VALUES] == m_items.size();
    if (isSame) return;
    uint32_t begin = 0;
    for (uint32_t value = 0; value < VALUES; ++value) {
        const uint32_t count = places[value];
        places[value] = begin;
        begin += count;
    }
    for (const Item& item : m_items) m_spare[places[(item.key >> shift) % VALUES]++] = item;
    m_items.swap(m_spare);
}

}  // namespace physics
