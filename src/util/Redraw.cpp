#include "util/Redraw.h"

#include <utility>

namespace util {

bool Redraw::s_requested = true;

bool Redraw::Take() {
    return std::exchange(s_requested, false);
}

}  // namespace util
