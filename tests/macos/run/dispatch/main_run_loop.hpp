// SPDX-License-Identifier: MIT
//
// The main thread's run loop. What it plays: each turn runs what waits on Dispatch's main
// queue, in whichever mode; sources and observers run in the modes to which they were added,
// the common ones being the default mode and that of an open menu; observers run before the
// loop waits, and it waits until something wakes it; after an item of the main queue it looks
// at everything else before the next one; a run inside of a main queue's item leaves the queue
// alone.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace standin::MainRunLoop {

inline constexpr const char* defaultMode = "kCFRunLoopDefaultMode";
inline constexpr const char* commonModes = "kCFRunLoopCommonModes";
inline constexpr const char* trackingMode = "NSEventTrackingRunLoopMode";

inline constexpr std::uint64_t never = UINT64_MAX;

/// Runs until `isOver` says so, which is asked between turns, or until that uptime in
/// nanoseconds. Main thread.
void run(const std::string& mode, const std::function<bool()>& isOver,
         std::uint64_t deadline = never);

/// Lets the loop take its next turn. From any thread.
void wake();

/// Observers and sources are known by the address of what they are.
void addObserver(const void* observer, const std::string& mode,
                 std::function<void()> beforeWaiting);
void removeObserver(const void* observer, const std::string& mode);
void addSource(const void* source, const std::string& mode, std::function<void()> perform);
void removeSource(const void* source, const std::string& mode);
/// Lets the source's function run once; false when it was added in no mode.
bool signal(const void* source);

/// Calls `readable` whenever the descriptor has something, in every mode: the end of a test's
/// line of command, which is no part of what is played.
void watch(int descriptor, std::function<void()> readable);
void watchNoMore(int descriptor);

/// What is still added.
[[nodiscard]] int observerCount();
[[nodiscard]] int sourceCount();

/// How often the loop went to wait. From any thread.
[[nodiscard]] std::uint64_t waits();

}  // namespace standin::MainRunLoop
