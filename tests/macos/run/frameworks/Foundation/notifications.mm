// SPDX-License-Identifier: MIT
//
// NSNotificationCenter. Played: observers are held weakly, are called in the order in which
// they were added, on the thread that posts, and until they are removed.
#include "frameworks/Foundation/notifications.hpp"

#include <string>
#include <vector>

#include "frameworks/Foundation/values.hpp"
#include "objc/fault.hpp"

extern "C" id objc_msgSend(id receiver, SEL selector, ...);

namespace {

struct Observer {
  __weak id observer;
  const void* identity;
  SEL selector;
  std::string name;
};

int observers = 0;

}  // namespace

@implementation NSNotification
@end

@implementation NSNotificationCenter {
 @public
  std::vector<Observer> observers_;
}

- (void)addObserver:(id)observer
           selector:(SEL)selector
               name:(NSNotificationName)name
             object:(id)__unused object {
  if (![observer respondsToSelector:selector]) {
    standin::fault("an observer of %s has no such method", standin::textOf(name).c_str());
  }
  observers_.push_back({observer, (__bridge void*)observer, selector, standin::textOf(name)});
  ++observers;
}

- (void)removeObserver:(id)observer {
  const void* identity = (__bridge void*)observer;
  observers -= static_cast<int>(
      std::erase_if(observers_, [&](const Observer& each) { return each.identity == identity; }));
}

@end

namespace standin {

void post(NSNotificationCenter* center, NSString* name) {
  const std::vector<Observer> present = center->observers_;
  NSNotification* notification = [[NSNotification alloc] init];
  for (const Observer& each : present) {
    id observer = each.observer;
    if (each.name == textOf(name) && observer != nil) {
      reinterpret_cast<void (*)(id, SEL, id)> (&objc_msgSend)(observer, each.selector,
                                                              notification);
    }
  }
}

int notificationObservers() {
  return observers;
}

}  // namespace standin
