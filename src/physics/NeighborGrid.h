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
    static constexpr uint32_t PADDING = 8;

    void Sort(const util::VectorPOD<math::Vec2>& points, math::real cellSize);
    // All pairs of the sorted points closer than `radius`, which should be at most the size of a cell: beyond
    // that pairs get lost.
    void FindPairs(math::real radius);

    // Places [begin, end) in the sorted order.
    struct Stretch {
        uint32_t begin;
        uint32_t end;
        uint32_t GetSize() const { return end - begin; }
    };
    // The points of a cell, and those of the cells round it: all that may be near them.
    struct Neighborhood {
        Stretch cell;
        Stretch before;  // in the column before
        Stretch column;  // in its own, the cell's points among them
        Stretch after;
    };
    // Calls visit(neighborhood) for each cell in the sorted order.
    template <class Visit>
    void VisitCells(Visit visit) const;

    // Calls visit(begin, end) with stretches of the sorted order that together hold all points in the box,
    // and some round it.
    template <class Visit>
    void VisitBox(const math::BoundingBox2f& box, Visit visit) const;

    size_t GetSize() const { return m_order.size(); }
    // Index in `points` of each point in the sorted order.
    const util::VectorPOD<uint32_t>& GetOrder() const { return m_order; }
    // The points in that order. PADDING more may be read behind them.
    const math::Vec2* GetSortedPoints() const { return m_points.data(); }

    // Holds all points, and at most a cell more on each side.
    math::BoundingBox2f GetBounds() const;

    // How full the cells are that hold any points.
    size_t GetCellCount() const { return m_cells.size(); }
    uint32_t GetFullestCell() const;  // points in it

    // The pairs: those of the point at place i with points behind it are at [begins[i], begins[i + 1]) in the
    // list of partners, which are places too, in rising order.
    size_t GetPairCount() const { return m_pairCount; }
    const uint32_t* GetPartnerBegins() const { return m_partnerBegins.data(); }
    const uint32_t* GetPartners() const { return m_partners.data(); }

  private:
    using Keys = RadixSort<uint64_t>;
    struct Cell {
        uint64_t key;
        uint32_t begin;
        uint32_t end;
    };

    // Columns and rows of cells, the last ones included.
    struct Window {
        int64_t left, bottom, right, top;
    };

    static constexpr uint32_t ORIGIN = 0x80000000u;  // of rows and columns in keys

    static uint64_t MakeKey(int32_t column, int32_t row);
    const Cell* FindCell(uint64_t key) const;  // the first that is not before it
    Stretch FindBeside(const Cell*& from, uint64_t first) const;
    void ListCells(const util::VectorPOD<Keys::Item>& items);
    void MakeTable();
    template <class Visit>
    void VisitInTable(Window box, Visit visit) const;
    template <class Visit>
    void VisitInCells(Window box, Visit visit) const;
    void PairWith(uint32_t i, uint32_t begin, uint32_t end, math::real radiusSq, size_t most);

    Keys m_keys;  // column in the upper half, row in the lower
    math::real m_cellsPerMetre = 1;
    util::VectorPOD<Cell> m_cells;
    Window m_tableWindow = {0, 0, -1,
                            -1};  // holds all points; empty where they are too far apart for a table
    util::VectorPOD<uint32_t>
        m_table;  // of each cell of it, column by column: the first point there or behind
    util::VectorPOD<uint32_t> m_order;
    util::VectorPOD<math::Vec2> m_points;
    util::VectorPOD<uint32_t> m_partnerBegins;
    util::VectorPOD<uint32_t> m_partners;
    size_t m_pairCount = 0;
};

// Rows and columns shifted to be unsigned, so that keys order like (column, row). Rows stay away from the
// ends of their half, so that a key plus or minus 1 is the neighbour in the column.
inline uint64_t NeighborGrid::MakeKey(int32_t column, int32_t row) {
    return (uint64_t(static_cast<uint32_t>(column) + ORIGIN) << 32) | (static_cast<uint32_t>(row) + ORIGIN);
}

inline const NeighborGrid::Cell* NeighborGrid::FindCell(uint64_t key) const {
    return std::lower_bound(m_cells.begin(), m_cells.end(), key,
                            [](const Cell& cell, uint64_t k) { return cell.key < k; });
}

// The three cells of a column from the key `first` on. `from` is a cell not behind the first of them, and
// moves there.
inline NeighborGrid::Stretch NeighborGrid::FindBeside(const Cell*& from, uint64_t first) const {
    while (from != m_cells.end() && from->key < first) ++from;
    const Cell* stop = from;
    while (stop != m_cells.end() && stop->key <= first + 2) ++stop;
    return stop == from ? Stretch{0, 0} : Stretch{from->begin, stop[-1].end};
}

template <class Visit>
void NeighborGrid::VisitCells(Visit visit) const {
    constexpr uint64_t COLUMN = uint64_t(1) << 32;
    const Cell* before = m_cells.begin();
    const Cell* after = m_cells.begin();
    for (const Cell* cell = m_cells.begin(); cell != m_cells.end(); ++cell) {
        Neighborhood near;
        near.cell = near.column = {cell->begin, cell->end};
        if (cell != m_cells.begin() && cell[-1].key + 1 == cell->key) near.column.begin = cell[-1].begin;
        if (cell + 1 != m_cells.end() && cell[1].key == cell->key + 1) near.column.end = cell[1].end;
        near.before = FindBeside(before, cell->key - COLUMN - 1);
        near.after = FindBeside(after, cell->key + COLUMN - 1);
        visit(near);
    }
}

template <class Visit>
void NeighborGrid::VisitBox(const math::BoundingBox2f& box, Visit visit) const {
    if (!(box.min.x <= box.max.x && box.min.y <= box.max.y)) return;
    const Window window = {CellIndex(box.min.x, m_cellsPerMetre), CellIndex(box.min.y, m_cellsPerMetre),
                           CellIndex(box.max.x, m_cellsPerMetre), CellIndex(box.max.y, m_cellsPerMetre)};
    m_table.empty() ? VisitInCells(window, visit) : VisitInTable(window, visit);
}

template <class Visit>
void NeighborGrid::VisitInTable(Window box, Visit visit) const {
    const Window all = m_tableWindow;
    const int64_t bottom = std::max(box.bottom, all.bottom), top = std::min(box.top, all.top);
    if (bottom > top) return;
    for (int64_t x = std::max(box.left, all.left); x <= std::min(box.right, all.right); ++x) {
        const uint32_t* const column = m_table.data() + (x - all.left) * (all.top - all.bottom + 1);
        const uint32_t begin = column[bottom - all.bottom], end = column[top - all.bottom + 1];
        if (begin < end) visit(begin, end);
    }
}

// Column by column; where there is none or nothing in the rows of the box, on to the next cell that exists.
template <class Visit>
void NeighborGrid::VisitInCells(Window box, Visit visit) const {
    const int32_t bottom = static_cast<int32_t>(box.bottom);
    const uint64_t height = static_cast<uint64_t>(box.top - box.bottom);
    const uint64_t last = MakeKey(static_cast<int32_t>(box.right), bottom) + height;
    const Cell* cell = FindCell(MakeKey(static_cast<int32_t>(box.left), bottom));
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
