#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "util/VectorPOD.h"

namespace physics {

// Orders indices by residual, greatest first; equal residuals keep their order, so that runs repeat. A
// residual that is not a number counts as 0.
//
// A radix sort over the bits of the floats, which order like the numbers themselves since no residual is
// negative. Keeps its memory.
class ResidualSort {
  public:
    void Clear(size_t count);  // expects `count` calls of Add
    void Add(math::real residual);
    // Writes the sorted indices, counted from 0 in the order of Add.
    void Sort(util::VectorPOD<uint32_t>& order);

  private:
    static constexpr int DIGIT_BITS = 8;
    static constexpr int DIGITS = 4;
    static constexpr uint32_t VALUES = 1u << DIGIT_BITS;

    struct Item {
        uint32_t key;  // smallest first
        uint32_t index;
    };

    void CountDigits();
    void SortByDigit(int digit);

    util::VectorPOD<Item> m_items;
    util::VectorPOD<Item> m_spare;
    uint32_t m_counts[DIGITS][VALUES];
};

}  // namespace physics
