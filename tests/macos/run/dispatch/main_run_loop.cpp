// SPDX-License-Identifier: MIT
#include "dispatch/main_run_loop.hpp"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <vector>

#include "control/control.hpp"
#include "dispatch/queues.hpp"
#include "objc/fault.hpp"

namespace standin::MainRunLoop {
namespace {

struct Entry {
  const void* identity;
  std::string mode;
  std::function<void()> function;
  bool isSignalled = false;
};

struct Watched {
  int descriptor;
  std::function<void()> readable;
};

struct Loop {
  std::vector<Entry> observers;
  std::vector<Entry> sources;
  std::vector<Watched> watched;
  std::atomic<std::uint64_t> waits = 0;
  const int wakeDescriptor = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
};

Loop& loop() {
  static auto* const only = new Loop;
  return *only;
}

void requireMainThread(const char* what) {
  if (gettid() != getpid()) {
    fault("%s on another thread than the main one", what);
  }
}

bool appliesIn(const std::string& mode, const Entry& entry) {
  return entry.mode == mode || entry.mode == commonModes;
}

void add(std::vector<Entry>& entries, Entry entry, const char* kind) {
  requireMainThread(kind);
  const bool isThere = std::any_of(entries.begin(), entries.end(), [&](const Entry& each) {
    return each.identity == entry.identity && each.mode == entry.mode;
  });
  if (isThere) {
    fault("%s is added to the run loop twice", kind);
  }
  entries.push_back(std::move(entry));
}

void remove(std::vector<Entry>& entries, const void* identity, const std::string& mode,
            const char* kind) {
  requireMainThread(kind);
  if (std::erase_if(entries, [&](const Entry& each) {
        return each.identity == identity && each.mode == mode;
      }) == 0) {
    fault("%s is removed from a mode of the run loop to which it was not added", kind);
  }
}

bool runSources(const std::string& mode) {
  for (Entry& each : loop().sources) {
    if (each.isSignalled && appliesIn(mode, each)) {
      each.isSignalled = false;
      const std::function<void()> perform = each.function;
      perform();
      return true;
    }
  }
  return false;
}

void runObservers(const std::string& mode) {
  const std::vector<Entry> before = loop().observers;
  for (const Entry& each : before) {
    if (appliesIn(mode, each)) {
      each.function();
    }
  }
}

bool runMainQueue() {
  std::unique_lock lock(Dispatch::mutex());
  return Dispatch::runNext(Dispatch::mainQueue(), lock);
}

// The uptime at which the main queue has something next: 0 when it has.
std::uint64_t nextWork() {
  const std::lock_guard lock(Dispatch::mutex());
  const StandInQueue& queue = Dispatch::mainQueue();
  if (queue.isRunning) {
    return never;
  }
  return queue.work.empty() ? Dispatch::nextDue(queue) : 0;
}

std::vector<pollfd> descriptors() {
  std::vector<pollfd> asked{{loop().wakeDescriptor, POLLIN, 0}};
  for (const Watched& each : loop().watched) {
    asked.push_back({each.descriptor, POLLIN, 0});
  }
  const std::lock_guard lock(Dispatch::mutex());
  if (!Dispatch::mainQueue().isRunning) {
    for (const StandInSource* each : Dispatch::mainQueue().sources) {
      if (!each->isTimer) {
        asked.push_back({each->descriptor, POLLIN, 0});
      }
    }
  }
  return asked;
}

void wait(std::uint64_t deadline) {
  std::vector<pollfd> asked = descriptors();
  const std::uint64_t until = std::min(nextWork(), deadline);
  const std::uint64_t now = Dispatch::now();
  const std::uint64_t span = until > now ? until - now : 0;
  const timespec limit{static_cast<time_t>(span / 1'000'000'000),
                       static_cast<long>(span % 1'000'000'000)};
  ++loop().waits;
  ppoll(asked.data(), asked.size(), until == never ? nullptr : &limit, nullptr);
  std::uint64_t count = 0;
  while (read(loop().wakeDescriptor, &count, sizeof count) > 0) {
  }
  const std::vector<Watched> watched = loop().watched;
  for (std::size_t i = 0; i < watched.size(); ++i) {
    if (asked[i + 1].revents != 0) {
      watched[i].readable();
    }
  }
}

}  // namespace

void run(const std::string& mode, const std::function<bool()>& isOver, std::uint64_t deadline) {
  requireMainThread("the main run loop runs");
  listenForCommands();
  const auto isDone = [&] {
    return isOver() || (deadline != never && Dispatch::now() >= deadline);
  };
  bool wasQueueAsked = false;
  while (!isDone()) {
    // As Core Foundation does, which does not let a busy main queue keep the rest away.
    if (!wasQueueAsked && runMainQueue()) {
      wasQueueAsked = true;
      continue;
    }
    wasQueueAsked = false;
    if (runSources(mode)) {
      continue;
    }
    runObservers(mode);
    if (isDone()) {
      return;
    }
    wait(deadline);
  }
}

void wake() {
  const std::uint64_t one = 1;
  if (write(loop().wakeDescriptor, &one, sizeof one) < 0) {
    fault("the run loop cannot be woken");
  }
}

void addObserver(const void* observer, const std::string& mode,
                 std::function<void()> beforeWaiting) {
  add(loop().observers, {observer, mode, std::move(beforeWaiting)}, "an observer");
}

void removeObserver(const void* observer, const std::string& mode) {
  remove(loop().observers, observer, mode, "an observer");
}

void addSource(const void* source, const std::string& mode, std::function<void()> perform) {
  add(loop().sources, {source, mode, std::move(perform)}, "a source");
}

void removeSource(const void* source, const std::string& mode) {
  remove(loop().sources, source, mode, "a source");
}

bool signal(const void* source) {
  bool isAdded = false;
  for (Entry& each : loop().sources) {
    if (each.identity == source) {
      each.isSignalled = true;
      isAdded = true;
    }
  }
  wake();
  return isAdded;
}

void watch(int descriptor, std::function<void()> readable) {
  loop().watched.push_back({descriptor, std::move(readable)});
}

void watchNoMore(int descriptor) {
  std::erase_if(loop().watched,
                [descriptor](const Watched& each) { return each.descriptor == descriptor; });
}

int observerCount() {
  return static_cast<int>(loop().observers.size());
}
int sourceCount() {
  return static_cast<int>(loop().sources.size());
}
std::uint64_t waits() {
  return loop().waits;
}

}  // namespace standin::MainRunLoop
