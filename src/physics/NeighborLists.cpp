#include "physics/NeighborLists.h"

#include <algorithm>

#include "physics/WaterSums.h"

namespace physics {

void NeighborLists::Build(NeighborGrid& grid, math::real radius) {
    const size_t points = grid.GetSize();
    const size_t groups = (points + LANES - 1) / LANES;
    m_begins.resize(groups + 1);
    m_reach.resize(groups);
    m_counts.clear();
    m_counts.resize(groups * LANES, 0);
    if (!ListAll(grid, radius)) ListCrowd(grid, radius);
    size_t sum = 0;
    for (const uint32_t count : m_counts) sum += count;
    m_pairCount = sum / 2;
}

// ---- where no crowd is ---------------------------------------------------------------------------------

// False in a crowd.
bool NeighborLists::ListAll(const NeighborGrid& grid, math::real radius) {
    const WaterSums& sums = GetWaterSums();
    const uint32_t last = static_cast<uint32_t>(grid.GetSize()) - 1;
    m_rowCount = 0;
    bool isCrowded = false;
    grid.VisitCells([&](const NeighborGrid::Neighborhood& near) {
        isCrowded = isCrowded || IsCrowded(near);
        for (uint32_t i = near.cell.begin; i < near.cell.end && !isCrowded; ++i) {
            m_counts[i] = sums.listNear(grid.GetSortedPoints(), i, near, radius * radius, m_found[i % LANES]);
            if (i % LANES == LANES - 1 || i == last) AddRows(i / LANES);
        }
    });
    m_begins[m_reach.size()] = m_rowCount;
    return !isCrowded;
}

bool NeighborLists::IsCrowded(const NeighborGrid::Neighborhood& near) {
    const uint32_t behind = near.column.end - near.cell.begin + near.after.GetSize();
    const uint32_t all = near.before.GetSize() + near.column.GetSize() + near.after.GetSize();
    return behind > NeighborGrid::MAX_PARTNERS || all > MOST_NEAR;
}

void NeighborLists::AddRows(uint32_t group) {
    const uint32_t* const counts = m_counts.data() + group * LANES;
    const uint32_t rows = *std::max_element(counts, counts + LANES);
    const size_t end = size_t(m_rowCount + rows) * LANES;
    if (end > m_neighbors.size()) m_neighbors.resize(2 * end);
    uint32_t* const neighbors = m_neighbors.data() + size_t(m_rowCount) * LANES;
    uint32_t reach = group == 0 ? 0 : std::max(m_reach[group - 1], group);
    for (uint32_t l = 0; l < LANES; ++l) {
        for (uint32_t k = 0; k < counts[l]; ++k) neighbors[k * LANES + l] = m_found[l][k];
        for (uint32_t k = counts[l]; k < rows; ++k) neighbors[k * LANES + l] = group * LANES + l;
        if (counts[l] != 0) reach = std::max(reach, m_found[l][counts[l] - 1] / LANES);
    }
    m_begins[group] = m_rowCount;
    m_reach[group] = reach;
    m_rowCount += rows;
}

// ---- in crowds -----------------------------------------------------------------------------------------

void NeighborLists::ListCrowd(NeighborGrid& grid, math::real radius) {
    grid.FindPairs(radius);
    CountPartners(grid);
    PlaceRows();
    FillRows(grid);
}

void NeighborLists::CountPartners(const NeighborGrid& grid) {
    const uint32_t* const begins = grid.GetPartnerBegins();
    const uint32_t* const partners = grid.GetPartners();
    std::fill(m_counts.begin(), m_counts.end(), 0);
    uint32_t farthest = 0;
    for (uint32_t i = 0; i < grid.GetSize(); ++i) {
        m_counts[i] += begins[i + 1] - begins[i];
        for (uint32_t p = begins[i]; p < begins[i + 1]; ++p) ++m_counts[partners[p]];
        farthest = std::max(farthest, begins[i] < begins[i + 1] ? partners[begins[i + 1] - 1] : i);
        m_reach[i / LANES] = farthest / LANES;
    }
}

void NeighborLists::PlaceRows() {
    m_cursors.resize(m_counts.size());
    m_rowCount = 0;
    for (size_t g = 0; g < m_reach.size(); ++g) {
        m_begins[g] = m_rowCount;
        for (uint32_t l = 0; l < LANES; ++l) m_cursors[g * LANES + l] = m_rowCount * LANES + l;
        const uint32_t* const counts = m_counts.data() + g * LANES;
        m_rowCount += *std::max_element(counts, counts + LANES);
    }
    m_begins[m_reach.size()] = m_rowCount;
    m_neighbors.resize(size_t(m_rowCount) * LANES);
}

// A point's neighbours before it are all in its list by the time that those behind it come in.
void NeighborLists::FillRows(const NeighborGrid& grid) {
    const uint32_t* const begins = grid.GetPartnerBegins();
    const uint32_t* const partners = grid.GetPartners();
    uint32_t* const neighbors = m_neighbors.data();
    uint32_t* const cursors = m_cursors.data();
    for (uint32_t i = 0; i < grid.GetSize(); ++i) {
        uint32_t own = cursors[i];
        for (uint32_t p = begins[i]; p < begins[i + 1]; ++p, own += LANES) {
            const uint32_t j = partners[p];
            neighbors[own] = j;
            neighbors[cursors[j]] = i;
            cursors[j] += LANES;
        }
        cursors[i] = own;
    }
    for (uint32_t i = 0; i < m_cursors.size(); ++i) {
        const uint32_t end = m_begins[i / LANES + 1] * LANES;
        for (uint32_t at = cursors[i]; at < end; at += LANES) neighbors[at] = i;
    }
}

}  // namespace physics
