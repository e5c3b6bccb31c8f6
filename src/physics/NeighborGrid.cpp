#include "physics/NeighborGrid.h"

#include <algorithm>
#include <cmath>

namespace physics {

int32_t CellIndex(math::real coordinate, math::real cellsPerMetre) {
    constexpr math::real FARTHEST = 1e9f;
    const math::real cell = coordinate * cellsPerMetre;
    if (std::isnan(cell)) return 0;
    return static_cast<int32_t>(std::min(std::max(cell, -FARTHEST), FARTHEST));
}

void NeighborGrid::Sort(const util::VectorPOD<math::Vec2>& points, math::real cellSize) {
    m_cellsPerMetre = 1 / cellSize;
    m_pairCount = 0;
    m_keys.Clear(points.size());
    for (const math::Vec2 p : points) {
        m_keys.Add(MakeKey(CellIndex(p.x, m_cellsPerMetre), CellIndex(p.y, m_cellsPerMetre)));
    }
    const util::VectorPOD<Keys::Item>& items = m_keys.Sort();
    m_order.resize(points.size());
    m_points.clear();
    m_points.resize(points.size() + PADDING);
    for (size_t i = 0; i < items.size(); ++i) {
        m_order[i] = items[i].index;
        m_points[i] = points[items[i].index];
    }
    ListCells(items);
}

void NeighborGrid::ListCells(const util::VectorPOD<Keys::Item>& items) {
    m_cells.clear();
    for (uint32_t i = 0; i < items.size(); ++i) {
        if (m_cells.empty() || m_cells.back().key != items[i].key) m_cells.push_back({items[i].key, i, i});
        m_cells.back().end = i + 1;
    }
    MakeTable();
}

void NeighborGrid::MakeTable() {
    constexpr int64_t CELLS_PER_POINT = 4;
    m_table.clear();
    if (m_cells.empty()) return;
    const auto column = [](const Cell& cell) { return static_cast<int64_t>(cell.key >> 32) - ORIGIN; };
    const auto row = [](const Cell& cell) { return static_cast<int64_t>(cell.key & 0xFFFFFFFFu) - ORIGIN; };
    Window& window = m_tableWindow;
    window = {column(m_cells.front()), row(m_cells.front()), column(m_cells.back()), row(m_cells.front())};
    for (const Cell& cell : m_cells) {
        window.bottom = std::min(window.bottom, row(cell));
        window.top = std::max(window.top, row(cell));
    }
    const int64_t columns = window.right - window.left + 1, rows = window.top - window.bottom + 1;
    const int64_t most = CELLS_PER_POINT * static_cast<int64_t>(GetSize());
    if (columns > most || rows > most || columns * rows > most) return;
    m_table.reserve(static_cast<size_t>(columns * rows + 1));
    for (const Cell& cell : m_cells) {
        const int64_t place = (column(cell) - window.left) * rows + row(cell) - window.bottom;
        m_table.resize(static_cast<size_t>(place + 1), cell.begin);
    }
    m_table.resize(static_cast<size_t>(columns * rows + 1), static_cast<uint32_t>(GetSize()));
}

// Cells are cut towards zero, so a cell ends where the next number begins, away from zero.
math::BoundingBox2f NeighborGrid::GetBounds() const {
    const auto place = [this](int64_t cell) { return static_cast<math::real>(cell) / m_cellsPerMetre; };
    const Window& window = m_tableWindow;
    return {{place(window.left - 1), place(window.bottom - 1)},
            {place(window.right + 1), place(window.top + 1)}};
}

uint32_t NeighborGrid::GetFullestCell() const {
    uint32_t most = 0;
    for (const Cell& cell : m_cells) most = std::max(most, cell.end - cell.begin);
    return most;
}

// Each pair of cells is visited once, from the one that comes first in the order: a point is paired with
// those behind it in its own cell and in the next one of the column, and with the three cells beside it in
// the next column.
void NeighborGrid::FindPairs(math::real radius) {
    m_pairCount = 0;
    m_partnerBegins.resize(GetSize() + 1);
    VisitCells([&](const Neighborhood& near) {
        for (uint32_t i = near.cell.begin; i < near.cell.end; ++i) {
            const size_t most = m_pairCount + MAX_PARTNERS;
            m_partnerBegins[i] = static_cast<uint32_t>(m_pairCount);
            PairWith(i, i + 1, near.column.end, radius * radius, most);
            PairWith(i, near.after.begin, near.after.end, radius * radius, most);
        }
    });
    m_partnerBegins[GetSize()] = static_cast<uint32_t>(m_pairCount);
}

// Writes every candidate and keeps it by moving on: whether a point is near is a coin toss to the
// processor's branch prediction. Whether there are enough is asked once in a while.
void NeighborGrid::PairWith(uint32_t i, uint32_t begin, uint32_t end, math::real radiusSq, size_t most) {
    constexpr uint32_t BLOCK = 64;
    const math::Vec2* const points = m_points.data();
    const math::Vec2 p = points[i];
    while (begin < end && m_pairCount < most) {
        const uint32_t stop = end - begin < BLOCK ? end : begin + BLOCK;
        if (m_pairCount + BLOCK > m_partners.size()) m_partners.resize(2 * (m_pairCount + BLOCK));
        uint32_t* const partners = m_partners.data();
        size_t count = m_pairCount;
        for (uint32_t j = begin; j < stop; ++j) {
            partners[count] = j;
            count += math::LengthSquared(points[j] - p) < radiusSq ? 1 : 0;
        }
        m_pairCount = std::min(count, most);
        begin = stop;
    }
}

}  // namespace physics
