#pragma once

#include <cstdint>
#include <random>

namespace util {

// The Mersenne Twister MT19937 (Matsumoto and Nishimura, ACM TOMACS 8, 1998). Each instance differs from
// the last, yet every run of the program gives the same numbers: seeds come from a counter.
class Random {
  public:
    using result_type = uint32_t;
    static constexpr uint32_t min() { return 0; }
    static constexpr uint32_t max() { return 0xFFFFFFFFu; }

    Random();

    // A raw 32-bit output.
    uint32_t operator()() { return static_cast<uint32_t>(m_twister()); }

    // min + draw * (max - min) with draw = raw / 2^32 in float, so the greatest raw values round up to
    // max itself: never use the result as an index. Throws BadDataException when min > max.
    float GetUniform(float min, float max);

    // From min to max - 1. Throws BadDataException unless min < max.
    int GetUniformInt(int min, int max);

  private:
    std::mt19937 m_twister;

    static uint32_t s_nextSeed;
};

// A normal deviate of mean 0 and deviation 1 by Box and Muller (Ann. Math. Statist. 29, 1958), two draws
// each.
float DrawNormal(Random& random);

}  // namespace util
