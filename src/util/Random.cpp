#include "util/Random.h"

#include <boost/random/uniform_int_distribution.hpp>
#include <cmath>

#include "util/Assert.h"

namespace util {

uint32_t Random::s_nextSeed = 0;

// The first 624 outputs of a generator seeded with the counter become the state, so that neighbouring
// seeds share nothing.
Random::Random() : m_index(STATE_SIZE) {
    Random seeder(s_nextSeed++);
    for (uint32_t& word : m_state) word = seeder();
}

Random::Random(uint32_t seed) : m_index(STATE_SIZE) {
    m_state[0] = seed;
    for (uint32_t i = 1; i < STATE_SIZE; ++i) {
        const uint32_t previous = m_state[i - 1];
        m_state[i] = 1812433253u * (previous ^ (previous >> 30)) + i;
    }
}

void Random::Regenerate() {
    constexpr size_t SHIFT = 397;
    constexpr uint32_t UPPER = 0x80000000u, LOWER = 0x7FFFFFFFu, MATRIX = 0x9908B0DFu;
    for (size_t i = 0; i < STATE_SIZE; ++i) {
        const uint32_t y = (m_state[i] & UPPER) | (m_state[(i + 1) % STATE_SIZE] & LOWER);
        m_state[i] = m_state[(i + SHIFT) % STATE_SIZE] ^ (y >> 1) ^ ((y & 1) != 0 ? MATRIX : 0);
    }
    m_index = 0;
}

uint32_t Random::operator()() {
    if (m_index == STATE_SIZE) Regenerate();
    uint32_t y = m_state[m_index++];
    y ^= y >> 11;
    y ^= (y << 7) & 0x9D2C5680u;
    y ^= (y << 15) & 0xEFC60000u;
    return y ^ (y >> 18);
}

float Random::GetUniform(float min, float max) {
    DATA_ASSERTION(min <= max);
    constexpr float SCALE = 1.0f / 4294967296.0f;
    const float draw = static_cast<float>((*this)()) * SCALE;
    return min + draw * (max - min);
}

int Random::GetUniformInt(int min, int max) {
    DATA_ASSERTION(min < max);
    return boost::random::uniform_int_distribution<int>(min, max - 1)(*this);
}

// sqrt(-2 ln u1) * cos(2 pi u2), with u1 in (0, 1] so that the logarithm is finite.
float DrawNormal(Random& random) {
    constexpr double SCALE = 1.0 / 4294967296.0, TWO_PI = 6.283185307179586;
    const double u1 = (random() + 1.0) * SCALE;
    const double u2 = random() * SCALE;
    return static_cast<float>(std::sqrt(-2.0 * std::log(u1)) * std::cos(TWO_PI * u2));
}

}  // namespace util
