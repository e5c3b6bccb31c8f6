#include "physics/ResidualSort.h"

#include <cstring>
#include <limits>

namespace physics {

// No residual is negative, and the bits of such floats order like the numbers themselves; complemented, they
// put the greatest first.
void ResidualSort::Add(math::real residual) {
    const bool isFinite = residual < std::numeric_limits<math::real>::infinity();
    const math::real known = isFinite ? residual : 0;
    uint32_t bits;
    std::memcpy(&bits, &known, sizeof(bits));
    m_sort.Add(~bits);
}

void ResidualSort::Sort(util::VectorPOD<uint32_t>& order) {
    order.clear();
    for (const RadixSort<uint32_t>::Item& item : m_sort.Sort()) order.push_back(item.index);
}

}  // namespace physics
