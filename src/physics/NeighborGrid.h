#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "physics/RadixSort.h"
#include "util/VectorPOD.h"

namespace physics {

// The grid cell of a coordinate, cut towards zero: cells at 0 are twice as wide, which harms no search for
// neighbours. Coordinates beyond all reason are clamped, and NaN counts as 0.
int32_t CellIndex(math::real coordinate, math::real cellsPerMetre);

// Finds all pairs of points closer than a radius.
//
// Points are sorted by their grid cell, column by column (water lies flat, so columns are short), and the
// points of neighbouring cells lie next to each other: for each point, what is still to be paired with it in
// its own column is one stretch, and in the next column another, whose start only moves forward. Pairs name
// points by their place in the sorted order. Time grows like the number of points and pairs; all arrays keep
// their memory.
class NeighborGrid {
  public:
    // `cellSize` should be at least `radius`: with smaller cells pairs get lost.
    void Build(const util::VectorPOD<math::Vec2>& points, math::real radius, math::real cellSize);

    // Index in `points` of each point in the sorted order.
    const util::VectorPOD<uint32_t>& GetOrder() const { return m_order; }
    const util::VectorPOD<math::Vec2>& GetSortedPoints() const { return m_points; }

    // How full the cells are that hold any points.
    size_t GetCellCount() const { return m_cells.size(); }
    uint32_t GetFullestCell() const;  // points in it

    // The pairs, as parallel arrays: places i and j, point j less point i and its squared length.
    size_t GetPairCount() const { return m_pairCount; }
    const uint32_t* GetFirst() const { return m_first.data(); }
    const uint32_t* GetSecond() const { return m_second.data(); }
    const math::Vec2* GetDelta() const { return m_delta.data(); }
    const math::real* GetDistSq() const { return m_distSq.data(); }

  private:
    using Keys = RadixSort<uint64_t>;
    struct Cell {
        uint64_t key;  // column in the upper half, row in the lower
        uint32_t begin;
        uint32_t end;
    };

    void SortPoints(const util::VectorPOD<math::Vec2>& points, math::real cellsPerMetre);
    void ListCells(const util::VectorPOD<Keys::Item>& items);
    void FindPairs(math::real radius);
    void PairWith(uint32_t i, uint32_t begin, uint32_t end, math::real radiusSq);
    void ReservePairs(size_t more);

    Keys m_keys;
    util::VectorPOD<Cell> m_cells;
    util::VectorPOD<uint32_t> m_order;
    util::VectorPOD<math::Vec2> m_points;
    util::VectorPOD<uint32_t> m_first;
    util::VectorPOD<uint32_t> m_second;
    util::VectorPOD<math::Vec2> m_delta;
    util::VectorPOD<math::real> m_distSq;
    size_t m_pairCount = 0;
};

}  // namespace physics
