#include "core/analysis/vorn_status.hpp"

namespace vorn {

const char* label(VornStatus status) {
    switch (status) {
        case VornStatus::comfortable:
            return "Comfortable";
        case VornStatus::watch:
            return "Watch";
        case VornStatus::atRisk:
            return "At risk";
        case VornStatus::limited:
            break;
    }
    return "Limited";
}

}  // namespace vorn
