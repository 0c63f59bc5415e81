#import <Foundation/Foundation.h>
#import <ServiceManagement/ServiceManagement.h>

#include <stdexcept>
#include <string>

#include "platform/login_item.hpp"

namespace vorn {

namespace {

class AppServiceLoginItem final : public LoginItem {
public:
    [[nodiscard]] bool isEnabled() const override { return m_service.status == SMAppServiceStatusEnabled; }

    void setEnabled(bool on) override {
        const SMAppServiceStatus status = m_service.status;
        const bool isRegistered = status == SMAppServiceStatusEnabled || status == SMAppServiceStatusRequiresApproval;
        NSError* error = nil;
        if (on && !isRegistered) {
            [m_service registerAndReturnError:&error];
        } else if (!on && isRegistered) {
            [m_service unregisterAndReturnError:&error];
        }
        if (error != nil) {
            throw std::runtime_error(std::string("Starting at login could not be switched ") + (on ? "on" : "off") +
                                     ": " + error.localizedDescription.UTF8String);
        }
        if (on && m_service.status == SMAppServiceStatusRequiresApproval) {
            throw std::runtime_error("Vorn does not start at login yet: allow it in System Settings, General, Login "
                                     "Items.");
        }
    }

private:
    SMAppService* m_service = SMAppService.mainAppService;
};

}  // namespace

std::unique_ptr<LoginItem> LoginItem::system() {
    if (NSBundle.mainBundle.bundleIdentifier == nil) {
        return nullptr;
    }
    return std::make_unique<AppServiceLoginItem>();
}

}  // namespace vorn
