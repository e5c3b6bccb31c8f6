#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>

#include "math/Vector.h"
#include "util/VectorPOD.h"

namespace physics {

// Cells waiting in order of distance, and of number where distances are equal.
//
// A bucket queue: entries are strewn over buckets by distance, unsorted, and only those of the bucket whose
// turn it is are sorted. An entry nearer than that bucket is sorted in among them, so the order is exact
// whatever is pushed between pops.
class DistanceQueue {
  public:
    // Distances above `maxDistance` all fall into the last bucket; that costs time only. `count` pushes are
    // made room for.
    DistanceQueue(math::real maxDistance, size_t count)
        : m_bucketsPerMetre(static_cast<math::real>(BUCKETS) / maxDistance) {
        std::fill(std::begin(m_first), std::end(m_first), NONE);
        m_entries.reserve(count);
    }

    // `distSq` is not negative and not NaN.
    void Push(math::real distSq, uint32_t cell) {
        const uint64_t key = MakeKey(distSq, cell);
        const int bucket = GetBucket(distSq);
        if (bucket <= m_current) {
            m_ready.push_back(key);
            SortIn(m_ready.size() - 1);
        } else {
            m_entries.push_back({key, m_first[bucket]});
            m_first[bucket] = static_cast<uint32_t>(m_entries.size() - 1);
        }
    }

    // Takes the first entry out; false when there is none.
    bool Pop(uint32_t& cell) {
        while (m_ready.empty()) {
            if (++m_current == BUCKETS) return false;
            OpenBucket();
        }
        cell = static_cast<uint32_t>(m_ready.back());
        m_ready.pop_back();
        return true;
    }

  private:
    static constexpr int BUCKETS = 4096;  // some twenty to a cell's width in a square map
    static constexpr size_t FEW = 16;     // entries that are sorted by insertion
    static constexpr uint32_t NONE = 0xFFFFFFFFu;

    struct Entry {
        uint64_t key;
        uint32_t next;  // in the same bucket, or NONE
    };

    // Floats that are not negative are ordered like their bits.
    static uint64_t MakeKey(math::real distSq, uint32_t cell) {
        uint32_t bits;
        std::memcpy(&bits, &distSq, sizeof(bits));
        return static_cast<uint64_t>(bits) << 32 | cell;
    }
    int GetBucket(math::real distSq) const {
        const math::real place = std::sqrt(distSq) * m_bucketsPerMetre;
        return place < BUCKETS - 1 ? static_cast<int>(place) : BUCKETS - 1;
    }
    void OpenBucket() {
        for (uint32_t e = m_first[m_current]; e != NONE; e = m_entries[e].next)
            m_ready.push_back(m_entries[e].key);
        if (m_ready.size() > FEW) {
            std::sort(m_ready.begin(), m_ready.end(), std::greater<>());
        } else {
            for (size_t i = 1; i < m_ready.size(); ++i) SortIn(i);
        }
    }
    // Moves the entry at `at` to its place among those before it.
    void SortIn(size_t at) {
        const uint64_t key = m_ready[at];
        for (; at > 0 && m_ready[at - 1] < key; --at) m_ready[at] = m_ready[at - 1];
        m_ready[at] = key;
    }

    math::real m_bucketsPerMetre;
    int m_current = -1;                 // the bucket that is open
    uint32_t m_first[BUCKETS];          // heads of the lists in m_entries
    util::VectorPOD<Entry> m_entries;   // all that were ever put into a bucket
    util::VectorPOD<uint64_t> m_ready;  // of the open bucket and below; largest first
};

}  // namespace physics
