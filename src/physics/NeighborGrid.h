#pragma once

#include <algorithm>
#include <cstdint>

#include "math/BoundingBox.h"
#include "math/Vector.h"
#include "physics/RadixSort.h"
#include "util/VectorPOD.h"

namespace physics {

// The grid cell of a coordinate, cut towards zero: cells at 0 are twice as wide, which harms no search for
// neighbours. Coordinates beyond all reason are clamped, and NaN counts as 0.
int32_t CellIndex(math::real coordinate, math::real cellsPerMetre);

// Points sorted by place, to find those near each other and those in a box.
//
// Points are sorted by their grid cell, column by column (water lies flat, so columns are short), and the
// points of neighbouring cells lie next to each other: for each point, what is still to be paired with it in
// its own column is one stretch, and in the next column another, whose start only moves forward. Pairs name
// points by their place in the sorted order. Time grows like the number of points and pairs; all arrays keep
// their memory.
class NeighborGrid {
  public:
    // A point is paired with at most so many of those behind it in the order, so that a crowd in one place
    // costs no more than its number. A drop of water at rest has some eight.
    static constexpr uint32_t MAX_PARTNERS = 64;

    void Sort(const util::VectorPOD<math::Vec2>& points, math::real cellSize);
    // All pairs of the sorted points closer than `radius`, which should be at most the size of a cell: beyond
    // that pairs get lost.
    void FindPairs(math::real radius);

    // Calls visit(begin, end) with stretches of the sorted order that together hold all points in the box,
    // and some round it.
    template <class Visit>
    void VisitBox(const math::BoundingBox2f& box, Visit visit) const;

    size_t GetSize() const { return m_points.size(); }
    // Index in `points` of each point in the sorted order.
    const util::VectorPOD<uint32_t>& GetOrder() const { return m_order; }
    const util::VectorPOD<math::Vec2>& GetSortedPoints() const { return m_points; }

    // How full the cells are that hold any points.
    size_t GetCellCount() const { return m_cells.size(); }
    uint32_t GetFullestCell() const;  // points in it

    // The pairs, as parallel arrays: places i and j, point j less point i and its squared length. All pairs
    // of one i stand together.
    size_t GetPairCount() const { return m_pairCount; }
    const uint32_t* GetFirst() const { return m_first.data(); }
    const uint32_t* GetSecond() const { return m_second.data(); }
    const math::Vec2* GetDelta() const { return m_delta.data(); }
    const math::real* GetDistSq() const { return m_distSq.data(); }

  private:
    using Keys = RadixSort<uint64_t>;
    struct Cell {
        uint64_t key;
        uint32_t begin;
        uint32_t end;
    };

    static uint64_t MakeKey(int32_t column, int32_t row);
    const Cell* FindCell(uint64_t key) const;  // the first that is not before it
    void ListCells(const util::VectorPOD<Keys::Item>& items);
    void PairWith(uint32_t i, uint32_t begin, uint32_t end, math::real radiusSq, size_t most);
    void ReservePairs(size_t more);

    Keys m_keys;  // column in the upper half, row in the lower
    math::real m_cellsPerMetre = 1;
    util::VectorPOD<Cell> m_cells;
    util::VectorPOD<uint32_t> m_order;
    util::VectorPOD<math::Vec2> m_points;
    util::VectorPOD<uint32_t> m_first;
    util::VectorPOD<uint32_t> m_second;
    util::VectorPOD<math::Vec2> m_delta;
    util::VectorPOD<math::real> m_distSq;
    size_t m_pairCount = 0;
};

// Rows and columns shifted to be unsigned, so that keys order like (column, row). Rows stay away from the
// ends of their half, so that a key plus or minus 1 is the neighbour in the column.
inline uint64_t NeighborGrid::MakeKey(int32_t column, int32_t row) {
    constexpr uint32_t ORIGIN = 0x80000000u;
    return (uint64_t(static_cast<uint32_t>(column) + ORIGIN) << 32) | (static_cast<uint32_t>(row) + ORIGIN);
}

inline const NeighborGrid::Cell* NeighborGrid::FindCell(uint64_t key) const {
    return std::lower_bound(m_cells.begin(), m_cells.end(), key,
                            [](const Cell& cell, uint64_t k) { return cell.key < k; });
}

// Column by column; where there is none or nothing in the rows of the box, on to the next cell that exists.
template <class Visit>
void NeighborGrid::VisitBox(const math::BoundingBox2f& box, Visit visit) const {
    if (!(box.min.x <= box.max.x && box.min.y <= box.max.y)) return;
    const int32_t bottom = CellIndex(box.min.y, m_cellsPerMetre);
    const uint64_t height = static_cast<uint64_t>(CellIndex(box.max.y, m_cellsPerMetre) - int64_t(bottom));
    const uint64_t last = MakeKey(CellIndex(box.max.x, m_cellsPerMetre), bottom) + height;
    const Cell* cell = FindCell(MakeKey(CellIndex(box.min.x, m_cellsPerMetre), bottom));
    while (cell != m_cells.end() && cell->key <= last) {
        const uint64_t columnBottom = (cell->key >> 32 << 32) | (last - height) % (uint64_t(1) << 32);
        const uint64_t columnTop = columnBottom + height;
        if (cell->key < columnBottom) {
            cell = FindCell(columnBottom);
        } else if (cell->key > columnTop) {
            cell = FindCell(columnBottom + (uint64_t(1) << 32));
        } else {
            const Cell* const end = FindCell(columnTop + 1);
            visit(cell->begin, end[-1].end);
            cell = end;
        }
    }
}

}  // namespace physics
