#pragma once

#include <cstddef>
#include <cstdint>

#include "util/VectorPOD.h"

namespace physics {

// Orders the places 0, 1, ... at which keys were added by key, smallest first; equal keys keep their order,
// so that runs repeat. Goes over those digits only in which the keys differ at all. Keeps its memory.
template <class Key>
class RadixSort {
  public:
    struct Item {
        Key key;
        uint32_t index;  // how many were added before
    };

    void Clear(size_t count) {  // expects `count` calls of Add
        m_items.clear();
        m_items.reserve(count);
        m_varyingBits = 0;
    }

    void Add(Key key) {
        m_items.push_back({key, static_cast<uint32_t>(m_items.size())});
        m_varyingBits |= key ^ m_items.front().key;
    }

    // Good until the next Clear.
    const util::VectorPOD<Item>& Sort() {
        m_spare.resize(m_items.size());
        for (size_t shift = 0; shift < 8 * sizeof(Key); shift += DIGIT_BITS) {
            if ((m_varyingBits >> shift) % VALUES != 0) SortByDigit(shift);
        }
        return m_items;
    }

  private:
    static constexpr size_t DIGIT_BITS = 8;
    static constexpr uint32_t VALUES = 1u << DIGIT_BITS;

    void SortByDigit(size_t shift) {
        uint32_t places[VALUES] = {};
        for (const Item& item : m_items) ++places[(item.key >> shift) % VALUES];
        uint32_t begin = 0;
        for (uint32_t& place : places) {
            const uint32_t count = place;
            place = begin;
            begin += count;
        }
        for (const Item& item : m_items) m_spare[places[(item.key >> shift) % VALUES]++] = item;
        m_items.swap(m_spare);
    }

    util::VectorPOD<Item> m_items;
    util::VectorPOD<Item> m_spare;
    Key m_varyingBits = 0;
};

}  // namespace physics
