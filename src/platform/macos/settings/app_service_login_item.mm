// SPDX-License-Identifier: MIT
#include "platform/macos/settings/app_service_login_item.hpp"

#import <ServiceManagement/ServiceManagement.h>

#include "platform/macos/base/foundation_text.hpp"

namespace vantora {

// A worker's thread has no pool of its own.
LoginItemStatus AppServiceLoginItem::status() {
  @autoreleasepool {
    switch (SMAppService.mainAppService.status) {
      case SMAppServiceStatusNotRegistered:
        return LoginItemStatus::notRegistered;
      case SMAppServiceStatusEnabled:
        return LoginItemStatus::enabled;
      case SMAppServiceStatusRequiresApproval:
        return LoginItemStatus::requiresApproval;
      case SMAppServiceStatusNotFound:
        return LoginItemStatus::notFound;
    }
  }
  // A status of a later system.
  return LoginItemStatus::notRegistered;
}

std::optional<Fault> AppServiceLoginItem::setRegistered(bool registered) {
  @autoreleasepool {
    NSError* error = nil;
    SMAppService* service = SMAppService.mainAppService;
    const BOOL succeeded = registered ? [service registerAndReturnError:&error]
                                      : [service unregisterAndReturnError:&error];
    if (succeeded) {
      return std::nullopt;
    }
    return Fault::failed(textOf(error.localizedDescription));
  }
}

}  // namespace vantora
