#include "physics/NeighborGrid.h"

#include <algorithm>
#include <cmath>

namespace physics {

constexpr uint64_t NEXT_COLUMN = uint64_t(1) << 32;

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
    m_points.resize(points.size());
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
    const Cell* const cellsEnd = m_cells.end();
    const Cell* beside = m_cells.begin();
    for (const Cell* cell = m_cells.begin(); cell != cellsEnd; ++cell) {
        const Cell* const next = cell + 1;
        const bool hasNext = next != cellsEnd && next->key == cell->key + 1;
        const uint32_t ownEnd = hasNext ? next->end : cell->end;

        const uint64_t firstBeside = cell->key + NEXT_COLUMN - 1;
        while (beside != cellsEnd && beside->key < firstBeside) ++beside;
        const Cell* besideStop = beside;
        while (besideStop != cellsEnd && besideStop->key <= firstBeside + 2) ++besideStop;
        const uint32_t besideBegin = beside == besideStop ? 0 : beside->begin;
        const uint32_t besideEnd = beside == besideStop ? 0 : besideStop[-1].end;

        for (uint32_t i = cell->begin; i < cell->end; ++i) {
            const size_t most = m_pairCount + MAX_PARTNERS;
            PairWith(i, i + 1, ownEnd, radius * radius, most);
            PairWith(i, besideBegin, besideEnd, radius * radius, most);
        }
    }
}

// Writes every candidate and keeps it by moving on: whether a point is near is a coin toss to the
// processor's branch prediction. Whether there are enough is asked once in a while.
void NeighborGrid::PairWith(uint32_t i, uint32_t begin, uint32_t end, math::real radiusSq, size_t most) {
    constexpr uint32_t BLOCK = 64;
    const math::Vec2* const points = m_points.data();
    const math::Vec2 p = points[i];
    while (begin < end && m_pairCount < most) {
        const uint32_t stop = end - begin < BLOCK ? end : begin + BLOCK;
        ReservePairs(BLOCK);
        uint32_t* const first = m_first.data();
        uint32_t* const second = m_second.data();
        math::Vec2* const deltas = m_delta.data();
        math::real* const distSqs = m_distSq.data();
        size_t count = m_pairCount;
        for (uint32_t j = begin; j < stop; ++j) {
            const math::Vec2 delta = points[j] - p;
            const math::real distSq = math::LengthSquared(delta);
            first[count] = i;
            second[count] = j;
            deltas[count] = delta;
            distSqs[count] = distSq;
            count += distSq < radiusSq ? 1 : 0;
        }
        m_pairCount = std::min(count, most);
        begin = stop;
    }
}

void NeighborGrid::ReservePairs(size_t more) {
    const size_t wanted = m_pairCount + more;
    if (wanted <= m_first.size()) return;
    const size_t size = 2 * wanted;
    m_first.resize(size);
    m_second.resize(size);
    m_delta.resize(size);
    m_distSq.resize(size);
}

}  // namespace physics
