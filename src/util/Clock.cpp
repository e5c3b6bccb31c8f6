#include "util/Clock.h"

#include <SDL/SDL_timer.h>

namespace util {

static double SecondsFromTicks() {
    return SDL_GetTicks() / 1000.0;
}

Clock::Source Clock::s_source = &SecondsFromTicks;

void Clock::SetSource(Source source) {
    s_source = source != nullptr ? source : &SecondsFromTicks;
}

}  // namespace util
