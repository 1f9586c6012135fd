// SPDX-License-Identifier: MIT
#pragma once

// The runtime's own entry points behind @autoreleasepool (clang's "Objective-C Automatic
// Reference Counting", section "Runtime support"), which plain C++ can call.
extern "C" {
void* objc_autoreleasePoolPush(void);
void objc_autoreleasePoolPop(void* pool);
}

namespace vantora {

/// An autorelease pool as long as this lives, on the thread that made it. What the system's
/// frameworks autorelease meanwhile goes at its end; without one around it, it would go when
/// the application's next event has been handled, or never.
class AutoreleasePool {
 public:
  AutoreleasePool() : pool_(objc_autoreleasePoolPush()) {}
  ~AutoreleasePool() { objc_autoreleasePoolPop(pool_); }
  AutoreleasePool(const AutoreleasePool&) = delete;
  AutoreleasePool& operator=(const AutoreleasePool&) = delete;

 private:
  void* pool_;
};

}  // namespace vantora
