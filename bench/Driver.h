#pragma once

namespace bench {

// For a scope the calls that make the driver work on vertices and pixels (drawing, clearing, copying of the
// frame) end at once, so that what remains is the program's own part of a frame: its lists and the passing
// on of state.
class ScopedIdleDriver {
  public:
    ScopedIdleDriver();
    ~ScopedIdleDriver();
    ScopedIdleDriver(const ScopedIdleDriver&) = delete;
    ScopedIdleDriver& operator=(const ScopedIdleDriver&) = delete;
};

}  // namespace bench
