// SPDX-License-Identifier: MIT
//
// SMAppService's main application. Played: registering enables it, or leaves it to the user's
// approval, or fails with an error; unregistering ends that.
#import <ServiceManagement/ServiceManagement.h>

#include "frameworks/Foundation/values.hpp"
#include "machine/machine.hpp"

@implementation SMAppService

+ (SMAppService*)mainAppService {
  static SMAppService* const only = [[SMAppService alloc] init];
  return only;
}

- (SMAppServiceStatus)status {
  return standin::withMachine([](standin::Machine& machine) {
    return static_cast<SMAppServiceStatus>(machine.loginStatus);
  });
}

- (BOOL)registerAndReturnError:(NSError**)error {
  return [self become:SMAppServiceStatusEnabled error:error];
}

- (BOOL)unregisterAndReturnError:(NSError**)error {
  return [self become:SMAppServiceStatusNotRegistered error:error];
}

- (BOOL)become:(SMAppServiceStatus)wanted error:(NSError**)error {
  return standin::withMachine([&](standin::Machine& machine) {
    if (machine.loginAnswer == standin::LoginAnswer::refuses) {
      if (error != nullptr) {
        *error = standin::newError("Operação não permitida");
      }
      return NO;
    }
    const bool isPending = wanted == SMAppServiceStatusEnabled &&
                           machine.loginAnswer == standin::LoginAnswer::asksForApproval;
    machine.loginStatus = isPending ? SMAppServiceStatusRequiresApproval : wanted;
    return YES;
  });
}

@end
