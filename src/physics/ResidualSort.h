#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "physics/RadixSort.h"
#include "util/VectorPOD.h"

namespace physics {

// Orders indices by residual, greatest first; equal residuals keep their order, so that runs repeat. A
// residual that is not a number counts as 0.
class ResidualSort {
  public:
    void Clear(size_t count) { m_sort.Clear(count); }  // expects `count` calls of Add
    void Add(math::real residual);
    // Writes the sorted indices, counted from 0 in the order of Add.
    void Sort(util::VectorPOD<uint32_t>& order);

  private:
    RadixSort<uint32_t> m_sort;
};

}  // namespace physics
