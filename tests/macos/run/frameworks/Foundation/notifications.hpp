// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>

namespace standin {

/// Posts the notification: every observer of the name is called before this returns.
void post(NSNotificationCenter* center, NSString* name);

/// Observers of all centres that were not removed.
[[nodiscard]] int notificationObservers();

}  // namespace standin
