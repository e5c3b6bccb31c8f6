#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "util/VectorPOD.h"

namespace physics {

// The broad phase: finds the pairs of overlapping boxes among many, and lists them by the boxes' numbers:
// first the pairs of box 0 with later ones, then those of box 1, and so on, each in rising order of the
// partner.
//
// Sweep and prune: boxes are sorted by their lower end along one axis, and each is tested against those that
// begin before it ends. The order is kept from one call to the next, so that a slowly changing scene is
// nearly sorted already; the axis is the one along which the boxes are spread more widely. Where there are
// many, they are strewn over bands across the axis, and the sweep runs band by band. Boxes that touch
// overlap; a box with a NaN overlaps none of finite size.
class PairSweep {
  public:
    void Clear() { m_boxes.clear(); }
    void Reserve(size_t count) { m_boxes.reserve(count); }
    void Add(float minX, float minY, float maxX, float maxY);
    void FindPairs();

    // Partners of box `i`, all above i, in rising order.
    const uint32_t* PartnersBegin(size_t i) const { return m_partners.data() + m_firstPartner[i]; }
    const uint32_t* PartnersEnd(size_t i) const { return m_partners.data() + m_firstPartner[i + 1]; }

  private:
    struct Box {
        float minX, minY, maxX, maxY;
    };
    // Beyond so many pairs (16 MB) the rest is left out: only shapes that lie in one place by the thousand
    // get there, and no step could answer them all.
    static constexpr size_t MOST_PAIRS = 2000000;

    struct Pair {
        uint32_t low, high;
    };
    struct BandRange {
        uint8_t first, last;
    };

    // Sums over some boxes that tell how widely all are spread along one axis.
    struct Spread {
        double sum = 0;    // of the boxes' middles
        double sumSq = 0;  // of their squares
        double sizes = 0;
        double count = 0;

        void Add(float low, float high);
        double GetVariance() const;
    };

    float GetLow(uint32_t number) const { return m_alongY ? m_boxes[number].minY : m_boxes[number].minX; }
    uint32_t GetBand(float across) const;
    void ChooseAxis();
    void ChooseBands(const Spread& across);
    void SortOrder();
    void SortFromScratch();
    void Gather();
    void PlaceBands();
    void Sweep();
    void SweepFrom(uint32_t k, uint32_t band);
    void ListByNumber();
    static void SortPartners(uint32_t* begin, uint32_t* end);

    util::VectorPOD<Box> m_boxes;
    bool m_alongY = false;              // the sweep's axis
    util::VectorPOD<uint32_t> m_order;  // numbers of boxes by their lower ends along it

    uint32_t m_bands = 1;                              // across the axis; the outer two are endless
    float m_bandOrigin = 0;                            // where band 0 would begin
    float m_bandsPerMetre = 0;                         // 0 for a single band
    util::VectorPOD<BandRange> m_boxBands;             // per box
    util::VectorPOD<uint32_t> m_bandBegin, m_bandEnd;  // in the arrays below

    // Boxes as the sweep meets them; one that lies in several bands stands in each.
    util::VectorPOD<uint32_t> m_number;
    util::VectorPOD<float> m_low, m_high;            // along the axis
    util::VectorPOD<float> m_crossLow, m_crossHigh;  // across it

    util::VectorPOD<Pair> m_pairs;             // as found
    util::VectorPOD<uint32_t> m_firstPartner;  // for each box where its partners begin, and the end
    util::VectorPOD<uint32_t> m_partners;
};

inline uint32_t PairSweep::GetBand(float across) const {
    const float band = (across - m_bandOrigin) * m_bandsPerMetre;
    const float last = static_cast<float>(m_bands - 1);
    return static_cast<uint32_t>(band > 0 ? (band < last ? band : last) : 0);
}

// A box with a NaN is entered as the empty one: a NaN among the ends would spoil the order of the others.
inline void PairSweep::Add(float minX, float minY, float maxX, float maxY) {
    constexpr float INF = std::numeric_limits<float>::infinity();
    const bool real = minX <= maxX && minY <= maxY;
    m_boxes.push_back(real ? Box{minX, minY, maxX, maxY} : Box{INF, INF, -INF, -INF});
}

}  // namespace physics
