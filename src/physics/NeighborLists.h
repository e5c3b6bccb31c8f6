#pragma once

#include <cstddef>
#include <cstdint>

#include "physics/NeighborGrid.h"
#include "util/VectorPOD.h"

namespace physics {

// The lists as plain arrays.
struct NeighborRows {
    uint32_t groups;
    const uint32_t* begins;     // the first row of each group, and the end of the last one
    const uint32_t* neighbors;  // places in the grid's order: lane l of row r at [r * LANES + l]
    const uint32_t* counts;     // neighbours of each point
    const uint32_t* reach;      // up to which group the neighbours of a group and of those before it lie
};

// All neighbours of each point of a grid, laid out for sums of eight points side by side.
//
// Points are taken in groups of eight in the grid's order; row k of a group holds the k-th neighbours of its
// eight points, in rising order. A point with fewer neighbours than the rows of its group fills up with
// itself. Points that fill up the last group have none. Each pair stands in both lists, so a sum only reads
// what is round it, in an order that does not depend on how many lanes a processor has.
class NeighborLists {
  public:
    static constexpr uint32_t LANES = 8;

    // Neighbours are closer than `radius`, which should be at most the size of a cell. In a crowd that is too
    // much for the grid's pairs some are left out, as there.
    void Build(NeighborGrid& grid, math::real radius);

    size_t GetPairCount() const { return m_pairCount; }
    size_t GetPaddedCount() const { return m_counts.size(); }            // points, the last group filled up
    size_t GetPlaceCount() const { return size_t(m_rowCount) * LANES; }  // in all rows
    NeighborRows GetRows() const {
        return {static_cast<uint32_t>(m_reach.size()), m_begins.data(), m_neighbors.data(), m_counts.data(),
                m_reach.data()};
    }

  private:
    static constexpr uint32_t MOST_NEAR = 256;  // points in the cells round one, beyond which it is a crowd

    bool ListAll(const NeighborGrid& grid, math::real radius);
    static bool IsCrowded(const NeighborGrid::Neighborhood& near);
    void AddRows(uint32_t group);
    void ListCrowd(NeighborGrid& grid, math::real radius);
    void CountPartners(const NeighborGrid& grid);
    void PlaceRows();
    void FillRows(const NeighborGrid& grid);

    size_t m_pairCount = 0;
    uint32_t m_rowCount = 0;
    util::VectorPOD<uint32_t> m_begins;
    util::VectorPOD<uint32_t> m_neighbors;
    util::VectorPOD<uint32_t> m_counts;
    util::VectorPOD<uint32_t> m_reach;
    uint32_t m_found[LANES][MOST_NEAR + LANES];  // neighbours of the points of one group
    util::VectorPOD<uint32_t> m_cursors;         // per point: where its next neighbour goes
};

}  // namespace physics
