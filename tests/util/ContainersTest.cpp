#include <gtest/gtest.h>

#include "util/Array2D.h"
#include "util/Exception.h"
#include "util/Random.h"
#include "util/VectorPOD.h"

TEST(VectorPOD, GrowsToTwiceWhatItNeedsAndCopiesDeeply) {
    util::VectorPOD<int> v;
    const size_t capacities[] = {2, 2, 6, 6, 6, 6, 14};
    for (int i = 0; i < 7; ++i) {
        v.push_back(i);
        EXPECT_EQ(v.capacity(), capacities[i]);
    }
    util::VectorPOD<int> copy = v;
    copy[0] = 9;
    EXPECT_EQ(v[0], 0);
    v.push_back(v[6]);
    EXPECT_EQ(v.back(), 6);
    v.clear();
    EXPECT_EQ(v.capacity(), 14u);
    EXPECT_THROW(v.pop_back(), BadCoderException);
}

TEST(Array2D, IndexesRowByRowWithinItsRange) {
    util::Array2D<int> array(3, 2, 7);
    array(2, 1) = 1;
    EXPECT_EQ(array.GetData()[5], 1);
    EXPECT_EQ(array(0, 1), 7);
    EXPECT_THROW(array(3, 0), BadCoderException);
    EXPECT_THROW(array(0, 2), BadCoderException);
}

// The published test value of MT19937: the 10000th output of a generator seeded with 5489 is 4123659995.
// Our generators are seeded through another one, so the values here are of a generator seeded that way,
// computed with an independent implementation (see the state transfer below).
namespace {

class Reference {
  public:
    explicit Reference(uint32_t seed) {
        m_state[0] = seed;
        for (uint32_t i = 1; i < 624; ++i) {
            m_state[i] = 1812433253u * (m_state[i - 1] ^ (m_state[i - 1] >> 30)) + i;
        }
    }
    uint32_t Draw() {
        const uint32_t y = (m_state[m_i] & 0x80000000u) | (m_state[(m_i + 1) % 624] & 0x7FFFFFFFu);
        m_state[m_i] = m_state[(m_i + 397) % 624] ^ (y >> 1) ^ (y % 2 != 0 ? 0x9908B0DFu : 0u);
        uint32_t x = m_state[m_i];
        m_i = (m_i + 1) % 624;
        x ^= x >> 11;
        x ^= (x << 7) & 0x9D2C5680u;
        x ^= (x << 15) & 0xEFC60000u;
        return x ^ (x >> 18);
    }
    void SetState(size_t i, uint32_t word) { m_state[i] = word; }

  private:
    uint32_t m_state[624];
    size_t m_i = 0;
};

}  // namespace

TEST(Random, ReferenceGivesThePublishedValue) {
    Reference published(5489);
    for (int i = 0; i < 9999; ++i) published.Draw();
    EXPECT_EQ(published.Draw(), 4123659995u);
}

TEST(Random, IsATwisterSeededByTheOutputsOfTheCountersTwister) {
    util::Random first, second;
    // The counter's value is unknown here: find the seed whose transferred state gives these draws.
    const uint32_t draw = first();
    bool found = false;
    for (uint32_t seed = 0; seed < 64 && !found; ++seed) {
        Reference seeder(seed), expected(0);
        for (size_t i = 0; i < 624; ++i) expected.SetState(i, seeder.Draw());
        if (expected.Draw() != draw) continue;
        found = true;
        for (int i = 0; i < 2000; ++i) ASSERT_EQ(first(), expected.Draw());
    }
    EXPECT_TRUE(found);
    EXPECT_NE(second(), draw);
}

TEST(Random, RangesAndTheirFailures) {
    util::Random random;
    EXPECT_EQ(random.GetUniform(2, 2), 2);
    EXPECT_THROW(random.GetUniform(2, 1), BadDataException);
    EXPECT_THROW(random.GetUniformInt(1, 1), BadDataException);
    double sum = 0, squares = 0;
    for (int i = 0; i < 20000; ++i) {
        const int n = random.GetUniformInt(-2, 3);
        ASSERT_TRUE(n >= -2 && n <= 2);
        const double normal = util::DrawNormal(random);
        sum += normal;
        squares += normal * normal;
    }
    EXPECT_NEAR(sum / 20000, 0, 0.03);
    EXPECT_NEAR(squares / 20000, 1, 0.05);
}
