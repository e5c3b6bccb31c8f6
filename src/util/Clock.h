#pragma once

namespace util {

// The program's wall clock.
class Clock {
  public:
    using Source = double (*)();

    // Seconds since start-up, with the resolution of the source: a millisecond for SDL's ticks.
    static double Now() { return s_source(); }

    // Replaces the source, for tests; null brings SDL's ticks back.
    static void SetSource(Source source);

  private:
    static Source s_source;
};

}  // namespace util
