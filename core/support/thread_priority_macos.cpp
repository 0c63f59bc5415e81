#include <pthread.h>

#include "core/support/thread_priority.hpp"

namespace vorn {

void lowerThreadPriority() noexcept {
    ::pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, 0);
}

}  // namespace vorn
