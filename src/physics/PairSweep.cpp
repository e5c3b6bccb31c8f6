#include "physics/PairSweep.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "physics/Float4.h"

namespace physics {

namespace {

constexpr uint32_t BLOCK = 16;         // boxes tested at a time
constexpr double AXIS_LOYALTY = 1.5;   // how much wider the spread must be across to turn the sweep round
constexpr size_t SHIFTS_PER_BOX = 8;   // beyond that many the order is not nearly sorted
constexpr size_t LONG_LIST = 24;       // partners, from which on sorting by insertion is slow
constexpr double BAND_HEIGHT = 4;      // mean sizes of a box, so that few boxes lie in two bands
constexpr size_t BOXES_PER_BAND = 32;  // fewer are not worth a band
constexpr size_t MAX_BANDS = 128;
constexpr size_t SAMPLES = 512;       // boxes looked at for the spread, of many
constexpr double SPREAD_WIDTH = 3.5;  // standard deviations from end to end of evenly spread boxes

}  // namespace

void PairSweep::Spread::Add(float low, float high) {
    const double middle = (static_cast<double>(low) + high) / 2;
    const double size = static_cast<double>(high) - low;
    if (!std::isfinite(middle) || !std::isfinite(size)) return;
    sum += middle;
    sumSq += middle * middle;
    sizes += size;
    ++count;
}

double PairSweep::Spread::GetVariance() const {
    const double mean = sum / count;
    return std::max(sumSq / count - mean * mean, 0.0);
}

void PairSweep::FindPairs() {
    ChooseAxis();
    SortOrder();
    Gather();
    Sweep();
    ListByNumber();
}

void PairSweep::ChooseAxis() {
    Spread x, y;
    const size_t stride = m_boxes.size() / SAMPLES + 1;
    for (size_t i = 0; i < m_boxes.size(); i += stride) {
        x.Add(m_boxes[i].minX, m_boxes[i].maxX);
        y.Add(m_boxes[i].minY, m_boxes[i].maxY);
    }
    const double alongX = x.GetVariance(), alongY = y.GetVariance();
    if (m_alongY ? alongX > AXIS_LOYALTY * alongY : alongY > AXIS_LOYALTY * alongX) m_alongY = !m_alongY;
    ChooseBands(m_alongY ? x : y);
}

// Bands across the axis. Their number and place only decide how much is tested in vain.
void PairSweep::ChooseBands(const Spread& across) {
    const double width = SPREAD_WIDTH * std::sqrt(across.GetVariance());
    const double wanted = width / (BAND_HEIGHT * across.sizes / across.count);
    const double most = static_cast<double>(std::min(m_boxes.size() / BOXES_PER_BAND, MAX_BANDS));
    m_bands = wanted > 1 && most > 1 ? static_cast<uint32_t>(std::min(wanted, most)) : 1;
    m_bandsPerMetre = m_bands > 1 ? static_cast<float>(m_bands / width) : 0;
    m_bandOrigin = m_bands > 1 ? static_cast<float>(across.sum / across.count - width / 2) : 0;
}

// By insertion, starting from the last order; from scratch when that is not near.
void PairSweep::SortOrder() {
    const size_t n = m_boxes.size();
    if (m_order.size() != n) {
        m_order.resize(n);
        for (size_t i = 0; i < n; ++i) m_order[i] = static_cast<uint32_t>(i);
    }
    m_low.resize(n);  // for the time being
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

// The arrays that the sweep runs over: band after band, and within a band in the order of the axis. Behind
// each band stands a block of NaN, which nothing overlaps.
void PairSweep::Gather() {
    PlaceBands();
    for (const uint32_t number : m_order) {
        const Box box = m_boxes[number];
        const float crossLow = m_alongY ? box.minX : box.minY;
        const float crossHigh = m_alongY ? box.maxX : box.maxY;
        const BandRange bands = m_boxBands[number];
        for (uint32_t band = bands.first; band <= bands.last; ++band) {
            const uint32_t at = m_bandEnd[band]++;
            m_number[at] = number;
            m_low[at] = m_alongY ? box.minY : box.minX;
            m_high[at] = m_alongY ? box.maxY : box.maxX;
            m_crossLow[at] = crossLow;
            m_crossHigh[at] = crossHigh;
        }
    }
    for (const uint32_t end : m_bandEnd) {
        std::fill_n(m_low.begin() + end, BLOCK, std::numeric_limits<float>::quiet_NaN());
        std::fill_n(m_crossLow.begin() + end, BLOCK, std::numeric_limits<float>::quiet_NaN());
        std::fill_n(m_crossHigh.begin() + end, BLOCK, std::numeric_limits<float>::quiet_NaN());
    }
}

// Counts the boxes of each band and gives it its stretch of the arrays, which is still empty.
void PairSweep::PlaceBands() {
    m_bandBegin.resize(m_bands);
    m_bandEnd.resize(m_bands);
    std::fill(m_bandEnd.begin(), m_bandEnd.end(), 0u);
    m_boxBands.clear();
    m_boxBands.reserve(m_boxes.size());
    for (const Box& box : m_boxes) {
        const BandRange bands = {static_cast<uint8_t>(GetBand(m_alongY ? box.minX : box.minY)),
                                 static_cast<uint8_t>(GetBand(m_alongY ? box.maxX : box.maxY))};
        for (uint32_t band = bands.first; band <= bands.last; ++band) ++m_bandEnd[band];
        m_boxBands.push_back(bands);
    }
    uint32_t size = 0;
    for (uint32_t band = 0; band < m_bands; ++band) {
        const uint32_t count = m_bandEnd[band];
        m_bandBegin[band] = m_bandEnd[band] = size;
        size += count + BLOCK;
    }
    m_number.resize(size);
    for (util::VectorPOD<float>* array : {&m_low, &m_high, &m_crossLow, &m_crossHigh}) array->resize(size);
}

void PairSweep::Sweep() {
    m_pairs.clear();
    for (uint32_t band = 0; band < m_bands; ++band) {
        for (uint32_t k = m_bandBegin[band]; k < m_bandEnd[band] && m_pairs.size() < MOST_PAIRS; ++k) {
            SweepFrom(k, band);
        }
    }
}

// Tests box k of the arrays against those that begin before it ends, a block at a time and without branches.
void PairSweep::SweepFrom(uint32_t k, uint32_t band) {
    const float high = m_high[k], crossLow = m_crossLow[k], crossHigh = m_crossHigh[k];
    for (uint32_t first = k + 1; m_low[first] <= high; first += BLOCK) {
        const float* const lows = m_low.data() + first;
        const float* const crossLows = m_crossLow.data() + first;
        const float* const crossHighs = m_crossHigh.data() + first;
        uint32_t hits = 0;  // a bit for each
        for (uint32_t b = 0; b < BLOCK; b += 4) {
            const uint32_t overlap = MaskAtMost4(LoadLoose4(lows + b), Float4::Fill(high)) &
                                     MaskAtMost4(LoadLoose4(crossLows + b), Float4::Fill(crossHigh)) &
                                     MaskAtMost4(Float4::Fill(crossLow), LoadLoose4(crossHighs + b));
            hits |= overlap << b;
        }
        for (; hits != 0; hits &= hits - 1) {
            const auto b = static_cast<uint32_t>(__builtin_ctz(hits));
            // Of a pair that shares several bands, the one where the overlap begins speaks.
            if (GetBand(std::max(crossLow, crossLows[b])) != band) continue;
            const uint32_t i = m_number[k], j = m_number[first + b];
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
    for (size_t i = 0; i < n; ++i) {
        uint32_t* const begin = m_partners.data() + m_firstPartner[i];
        uint32_t* const last = m_partners.data() + m_firstPartner[i + 1];
        if (last - begin > 1) SortPartners(begin, last);
    }
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
