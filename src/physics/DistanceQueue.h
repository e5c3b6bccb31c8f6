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
// turn it is stand in a heap. An entry nearer than that bucket joins the heap, so the order is exact
// whatever is pushed between pops.
class DistanceQueue {
  public:
    // Distances above `maxDistance` all fall into the last bucket; that costs time only.
    explicit DistanceQueue(math::real maxDistance)
        : m_bucketsPerMetre(static_cast<math::real>(BUCKETS) / maxDistance) {
        std::fill(std::begin(m_first), std::end(m_first), NONE);
    }

    // `distSq` is not negative and not NaN.
    void Push(math::real distSq, uint32_t cell) {
        const uint64_t key = MakeKey(distSq, cell);
        const int bucket = GetBucket(distSq);
        if (bucket <= m_current) {
            m_heap.push_back(key);
            std::push_heap(m_heap.begin(), m_heap.end(), std::greater<>());
        } else {
            m_entries.push_back({key, m_first[bucket]});
            m_first[bucket] = static_cast<uint32_t>(m_entries.size() - 1);
        }
    }

    // Takes the first entry out; false when there is none.
    bool Pop(uint32_t& cell) {
        while (m_heap.empty()) {
            if (++m_current == BUCKETS) return false;
            HeapBucket();
        }
        std::pop_heap(m_heap.begin(), m_heap.end(), std::greater<>());
        cell = static_cast<uint32_t>(m_heap.back());
        m_heap.pop_back();
        return true;
    }

  private:
    static constexpr int BUCKETS = 1024;  // five or six to a cell's width in a square map
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
    void HeapBucket() {
        for (uint32_t e = m_first[m_current]; e != NONE; e = m_entries[e].next) {
            m_heap.push_back(m_entries[e].key);
        }
        std::make_heap(m_heap.begin(), m_heap.end(), std::greater<>());
    }

    math::real m_bucketsPerMetre;
    int m_current = -1;                // the bucket in the heap
    uint32_t m_first[BUCKETS];         // heads of the lists in m_entries
    util::VectorPOD<Entry> m_entries;  // all that were ever put into a bucket
    util::VectorPOD<uint64_t> m_heap;  // smallest first
};

}  // namespace physics
