#include "platform/memory.hpp"

#include <malloc/malloc.h>

namespace vorn {

void releaseUnusedMemory() {
    malloc_zone_pressure_relief(nullptr, 0);
}

}  // namespace vorn
