#include "physics/PairSweep.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace physics {

namespace {

constexpr size_t BLOCK = 16;          // boxes tested at a time
constexpr double AXIS_LOYALTY = 1.5;  // how much wider the spread must be across to turn the sweep round
constexpr size_t SHIFTS_PER_BOX = 8;  // beyond that many the order is not nearly sorted
constexpr size_t LONG_LIST = 24;      // partners, from which on sorting by insertion is slow

// Sums that tell how widely the boxes are spread along one axis.
struct Spread {
    double sum = 0;
    double sumSq = 0;

    void Add(float low, float high) {
        const double middle = (static_cast<double>(low) + high) / 2;
        if (!std::isfinite(middle)) return;
        sum += middle;
        sumSq += middle * middle;
    }
    double GetVariance(size_t count) const {
        const double mean = sum / static_cast<double>(count);
        return sumSq / static_cast<double>(count) - mean * mean;
    }
};

}  // namespace

void PairSweep::FindPairs() {
    ChooseAxis();
    SortOrder();
    Gather();
    Sweep();
    ListByNumber();
}

void PairSweep::ChooseAxis() {
    if (m_boxes.empty()) return;
    Spread x, y;
    for (const Box& box : m_boxes) {
        x.Add(box.minX, box.maxX);
        y.Add(box.minY, box.maxY);
    }
    const double alongX = x.GetVariance(m_boxes.size()), alongY = y.GetVariance(m_boxes.size());
    if (m_alongY ? alongX > AXIS_LOYALTY * alongY : alongY > AXIS_LOYALTY * alongX) m_alongY = !m_alongY;
}

// By insertion, starting from the last order; from scratch when that is not near.
void PairSweep::SortOrder() {
    const size_t n = m_boxes.size();
    if (m_order.size() != n) {
        m_order.resize(n);
        for (size_t i = 0; i < n; ++i) m_order[i] = static_cast<uint32_t>(i);
    }
    m_low.resize(n);
    for (size_t k = 0; k < n; ++k) m_low[k] = GetLow(m_order[k]);
    size_t shifts = 0;
    for (size_t k = 1; k < n; ++k) {
        const float low = m_low[k];
        const uint32_t number = m_order[k];
        size_t at = k;
        for (; at > 0 && m_low[at - 1] > low; --at) {
            m_low[at] = m_low[at - 1];
            m_order[at] = m_order[at - 1];
        }
        m_low[at] = low;
        m_order[at] = number;
        shifts += k - at;
        if (shifts > SHIFTS_PER_BOX * n) {
            SortFromScratch();
            return;
        }
    }
}

void PairSweep::SortFromScratch() {
    std::sort(m_order.begin(), m_order.end(),
              [this](uint32_t a, uint32_t b) { return GetLow(a) < GetLow(b); });
}

// The arrays that the sweep runs over, with a block of NaN behind them, which nothing overlaps.
void PairSweep::Gather() {
    const size_t n = m_boxes.size();
    for (util::VectorPOD<float>* array : {&m_low, &m_high, &m_crossLow, &m_crossHigh}) {
        array->resize(n + BLOCK);
        std::fill(array->begin() + n, array->end(), std::numeric_limits<float>::quiet_NaN());
    }
    for (size_t k = 0; k < n; ++k) {
        const Box box = m_boxes[m_order[k]];
        m_low[k] = m_alongY ? box.minY : box.minX;
        m_high[k] = m_alongY ? box.maxY : box.maxX;
        m_crossLow[k] = m_alongY ? box.minX : box.minY;
        m_crossHigh[k] = m_alongY ? box.maxX : box.maxY;
    }
}

void PairSweep::Sweep() {
    m_pairs.clear();
    for (size_t k = 0; k < m_boxes.size(); ++k) SweepFrom(k);
}

// Tests box k of the sweep against those that begin before it ends, a block at a time and without branches.
void PairSweep::SweepFrom(size_t k) {
    const float high = m_high[k], crossLow = m_crossLow[k], crossHigh = m_crossHigh[k];
    for (size_t first = k + 1; m_low[first] <= high; first += BLOCK) {
        const float* const lows = m_low.data() + first;
        const float* const crossLows = m_crossLow.data() + first;
        const float* const crossHighs = m_crossHigh.data() + first;
        uint32_t hits[BLOCK];
        uint32_t any = 0;
        for (size_t b = 0; b < BLOCK; ++b) {
            hits[b] = (lows[b] <= high) & (crossLows[b] <= crossHigh) & (crossHighs[b] >= crossLow);
            any |= hits[b];
        }
        if (any == 0) continue;
        for (size_t b = 0; b < BLOCK; ++b) {
            if (hits[b] == 0) continue;
            const uint32_t i = m_order[k], j = m_order[first + b];
            m_pairs.push_back(i < j ? Pair{i, j} : Pair{j, i});
        }
    }
}

// Counts the pairs of each lower number, which gives every number its stretch of m_partners, and sorts
// within the stretches.
void PairSweep::ListByNumber() {
    const size_t n = m_boxes.size();
    m_firstPartner.resize(n + 1);
    std::fill(m_firstPartner.begin(), m_firstPartner.end(), 0u);
    for (const Pair& pair : m_pairs) ++m_firstPartner[pair.low];
    uint32_t end = 0;
    for (uint32_t& count : m_firstPartner) count = end += count;
    m_partners.resize(m_pairs.size());
    for (const Pair& pair : m_pairs) m_partners[--m_firstPartner[pair.low]] = pair.high;
    for (size_t i = 0; i < n; ++i)
        SortPartners(m_partners.data() + m_firstPartner[i], m_partners.data() + m_firstPartner[i + 1]);
}

void PairSweep::SortPartners(uint32_t* begin, uint32_t* end) {
    if (static_cast<size_t>(end - begin) >= LONG_LIST) {
        std::sort(begin, end);
        return;
    }
    for (uint32_t* p = begin; p != end; ++p) {
        const uint32_t partner = *p;
        uint32_t* at = p;
        for (; at != begin && at[-1] > partner; --at) *at = at[-1];
        *at = partner;
    }
}

}  // namespace physics
