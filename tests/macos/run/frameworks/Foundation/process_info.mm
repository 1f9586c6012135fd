// SPDX-License-Identifier: MIT
//
// NSProcessInfo's activities, and which version of the system this is. Played: an activity
// lasts from its beginning until its token is given to endActivity, from whichever thread; a
// token that is no activity's is a fault. The system is macOS 15 or what STAND_IN_SYSTEM says.
#include "frameworks/Foundation/process_info.hpp"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>

#include "frameworks/Foundation/values.hpp"
#include "objc/fault.hpp"

namespace {

struct Held {
  std::mutex mutex;
  std::map<const void*, std::uint64_t> options;
};

Held& held() {
  static auto* const only = new Held;
  return *only;
}

}  // namespace

@interface StandInActivity : NSObject
@end
@implementation StandInActivity
@end

@implementation NSProcessInfo

+ (NSProcessInfo*)processInfo {
  static NSProcessInfo* const only = [[NSProcessInfo alloc] init];
  return only;
}

- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason {
  if (reason.length == 0) {
    standin::fault("an activity begins without a reason");
  }
  StandInActivity* token = [[StandInActivity alloc] init];
  const std::lock_guard lock(held().mutex);
  held().options[(__bridge void*)token] = options;
  return token;
}

- (void)endActivity:(id<NSObject>)activity {
  const std::lock_guard lock(held().mutex);
  if (held().options.erase((__bridge void*)activity) == 0) {
    standin::fault("an activity is ended that is not held");
  }
}

@end

namespace standin {

std::vector<std::uint64_t> heldActivities() {
  const std::lock_guard lock(held().mutex);
  std::vector<std::uint64_t> all;
  for (const auto& [token, options] : held().options) {
    all.push_back(options);
  }
  return all;
}

int systemVersion() {
  static const char* const text = std::getenv("STAND_IN_SYSTEM");
  return text != nullptr ? std::atoi(text) : 15;
}

}  // namespace standin

bool standInIsAvailable(const char* version) {
  int major = 0;
  if (std::sscanf(version, "macOS %d", &major) != 1) {
    standin::fault("it is asked whether this is %s", version);
  }
  return standin::systemVersion() >= major;
}
