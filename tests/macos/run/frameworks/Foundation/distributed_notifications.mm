// SPDX-License-Identifier: MIT
//
// NSDistributedNotificationCenter. Played: a notification reaches the observers of every
// process of the user, the poster's own too, in their main run loops and never inside of the
// posting. The processes that share a home folder are the user's; each listens on a socket in
// a folder there.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "dispatch/main_run_loop.hpp"
#include "frameworks/Foundation/notifications.hpp"
#include "frameworks/Foundation/values.hpp"
#include "objc/fault.hpp"

namespace fs = std::filesystem;

namespace {

fs::path folder() {
  const char* home = std::getenv("HOME");
  return fs::path(home != nullptr ? home : "/tmp") / "notifications";
}

sockaddr_un addressOf(const fs::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::snprintf(address.sun_path, sizeof address.sun_path, "%s", path.c_str());
  return address;
}

void deliver(int listening) {
  char name[256];
  const ssize_t length = recv(listening, name, sizeof name, 0);
  if (length <= 0) {
    return;
  }
  @autoreleasepool {
    standin::post(NSDistributedNotificationCenter.defaultCenter,
                  standin::newString({name, static_cast<std::size_t>(length)}));
  }
}

void listen() {
  static bool isListening = false;
  if (isListening) {
    return;
  }
  isListening = true;
  fs::create_directories(folder());
  static const fs::path own = folder() / std::to_string(getpid());
  const sockaddr_un address = addressOf(own);
  const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    standin::fault("%s cannot be listened on", own.c_str());
  }
  std::atexit([] { unlink(own.c_str()); });
  standin::MainRunLoop::watch(descriptor, [descriptor] { deliver(descriptor); });
}

}  // namespace

@implementation NSDistributedNotificationCenter

+ (NSDistributedNotificationCenter*)defaultCenter {
  static NSDistributedNotificationCenter* const only =
      [[NSDistributedNotificationCenter alloc] init];
  listen();
  return only;
}

- (void)addObserver:(id)observer
              selector:(SEL)selector
                  name:(NSNotificationName)name
                object:(NSString*)object
    suspensionBehavior:(NSNotificationSuspensionBehavior)__unused suspensionBehavior {
  [self addObserver:observer selector:selector name:name object:object];
}

- (void)postNotificationName:(NSNotificationName)name
                      object:(NSString*)__unused object
                    userInfo:(NSDictionary*)userInfo
          deliverImmediately:(BOOL)__unused deliverImmediately {
  if (userInfo != nil) {
    standin::fault("a distributed notification carries something, which is not played");
  }
  const std::string text = standin::textOf(name);
  const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  for (const fs::directory_entry& each : fs::directory_iterator(folder())) {
    const sockaddr_un address = addressOf(each.path());
    sendto(descriptor, text.data(), text.size(), MSG_DONTWAIT,
           reinterpret_cast<const sockaddr*>(&address), sizeof address);
  }
  close(descriptor);
}

@end
