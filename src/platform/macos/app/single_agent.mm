// SPDX-License-Identifier: MIT
#include "platform/macos/app/single_agent.hpp"

#import <Foundation/Foundation.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

static NSNotificationName const askedToOpen = @"local.vantora.Vantora.open";
static NSNotificationName const willOpen = @"local.vantora.Vantora.willOpen";

/// Calls a function when a notification comes in from any process of the user.
@interface VantoraDistributedObserver : NSObject
- (instancetype)initWithName:(NSNotificationName)name received:(std::function<void()>)received;
- (void)stop;
- (void)received:(NSNotification*)notification;
@end

@implementation VantoraDistributedObserver {
  std::function<void()> received_;
}

- (instancetype)initWithName:(NSNotificationName)name received:(std::function<void()>)received {
  self = [super init];
  if (self != nil) {
    received_ = std::move(received);
    [NSDistributedNotificationCenter.defaultCenter
               addObserver:self
                  selector:@selector(received:)
                      name:name
                    object:nil
        suspensionBehavior:NSNotificationSuspensionBehaviorDeliverImmediately];
  }
  return self;
}

- (void)stop {
  [NSDistributedNotificationCenter.defaultCenter removeObserver:self];
}

- (void)received:(NSNotification*)__unused notification {
  received_();
}

@end

namespace vantora {
namespace {

void post(NSNotificationName name) {
  [NSDistributedNotificationCenter.defaultCenter postNotificationName:name
                                                               object:nil
                                                             userInfo:nil
                                                   deliverImmediately:YES];
}

}  // namespace

struct SingleAgent::Answering {
  VantoraDistributedObserver* observer;
};

SingleAgent::SingleAgent(const std::filesystem::path& folder) {
  std::error_code ignored;
  std::filesystem::create_directories(folder, ignored);
  lock_ = open((folder / "agent.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  isFirst_ = lock_ < 0 || flock(lock_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool SingleAgent::isRunning(const std::filesystem::path& folder) {
  const int lock = open((folder / "agent.lock").c_str(), O_RDWR | O_CLOEXEC);
  if (lock < 0) {
    return false;
  }
  const bool isTaken = flock(lock, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  close(lock);
  return isTaken;
}

SingleAgent::~SingleAgent() {
  if (answering_) {
    [answering_->observer stop];
  }
  if (lock_ >= 0) {
    close(lock_);
  }
}

bool SingleAgent::isFirst() const {
  return isFirst_;
}

void SingleAgent::answer(std::function<void()> open) {
  answering_ = std::make_unique<Answering>();
  answering_->observer = [[VantoraDistributedObserver alloc] initWithName:askedToOpen
                                                                 received:[open = std::move(open)] {
                                                                   post(willOpen);
                                                                   open();
                                                                 }];
}

bool SingleAgent::ask() {
  constexpr CFTimeInterval answerLimit = 2;
  bool isAnswered = false;
  VantoraDistributedObserver* observer =
      [[VantoraDistributedObserver alloc] initWithName:willOpen
                                              received:[&isAnswered] {
                                                isAnswered = true;
                                                CFRunLoopStop(CFRunLoopGetMain());
                                              }];
  post(askedToOpen);
  CFRunLoopRunInMode(kCFRunLoopDefaultMode, answerLimit, /*returnAfterSourceHandled=*/0);
  [observer stop];
  return isAnswered;
}

}  // namespace vantora
