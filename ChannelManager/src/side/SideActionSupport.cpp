#include "side/SideActionSupport.h"

#include <limits>

namespace side {

int32_t clampToInt(unsigned long long value) {
    const auto top = static_cast<unsigned long long>(std::numeric_limits<int32_t>::max());
    return static_cast<int32_t>(value > top ? top : value);
}

}  // namespace side
