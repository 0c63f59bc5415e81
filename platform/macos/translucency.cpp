#include "platform/translucency.hpp"

namespace vorn {

bool windowsCanBeTranslucent() {
    return true;
}

}  // namespace vorn
