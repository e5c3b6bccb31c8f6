#include "gui/Caret.h"

#include <cmath>

#include "util/Clock.h"

namespace gui {

bool IsCaretLit(double lastInput) {
    constexpr double BLINKING = 10;  // seconds
    const double age = util::Clock::Now() - lastInput;
    return age > BLINKING || std::lround(2 * age) % 2 == 0;
}

}  // namespace gui
