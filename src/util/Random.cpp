#include "util/Random.h"

#include <algorithm>
#include <boost/random/uniform_int_distribution.hpp>
#include <cmath>

#include "util/Assert.h"

namespace util {

uint32_t Random::s_nextSeed = 0;

namespace {

// A seed sequence that is another twister: its first outputs become the whole state, so that neighbouring
// seeds share nothing.
class TwisterSeed {
  public:
    using result_type = uint32_t;

    explicit TwisterSeed(uint32_t seed) : m_twister(seed) {}

    template <class Iterator>
    void generate(Iterator begin, Iterator end) {
        std::generate(begin, end, m_twister);
    }

  private:
    std::mt19937 m_twister;
};

}  // namespace

Random::Random() {
    TwisterSeed seed(s_nextSeed++);
    m_twister.seed(seed);
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
