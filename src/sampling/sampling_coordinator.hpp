// SPDX-License-Identifier: MIT
//
// Owns the collectors, runs them at the configured interval for what the layout shows,
// and hands every changed snapshot to the main thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "model/configuration.hpp"
#include "model/network_link.hpp"
#include "model/sample.hpp"
#include "runtime/clock.hpp"
#include "runtime/task_queue.hpp"
#include "sampling/battery_source.hpp"
#include "sampling/cpu_collector.hpp"
#include "sampling/network_collector.hpp"
#include "sampling/sensor_source.hpp"

namespace vantora {

/// Where the readings come from. None may be null.
struct SamplingSources {
  std::unique_ptr<TickCounters> ticks;
  std::unique_ptr<NetworkSource> network;
  std::unique_ptr<BatterySource> battery;
  std::unique_ptr<SensorSource> sensors;
};

/// Fills the system's part of the snapshot: samples, batteryOnAC, batteryCharging and
/// networkName. Every public operation may be called from any thread and only schedules
/// its work on the sampling queue.
class SamplingCoordinator final : public std::enable_shared_from_this<SamplingCoordinator> {
 public:
  static constexpr std::string_view queueLabel = "local.vantora.sampling";

  /// The queues and the clock must outlive the coordinator.
  [[nodiscard]] static std::shared_ptr<SamplingCoordinator> create(TaskQueue& samplingQueue,
                                                                   TaskQueue& mainQueue,
                                                                   const Clock& clock,
                                                                   SamplingSources sources);

  /// Receives every published snapshot, in order, on the main queue. Set it on the main
  /// queue before the first configure().
  std::function<void(MetricSnapshot)> onSnapshot;

  /// Whether the snapshot of a tick is worth waking the main thread for. Called on the sampling
  /// queue for every snapshot; what is published for another reason than a tick is published
  /// whatever the answer. Without it every tick publishes. Set it as onSnapshot.
  std::function<bool(const MetricSnapshot&)> isNews;

  /// Samples by this configuration from now on: takes one pass at once, unless it is
  /// paused, shows nothing, or the machine sleeps, and always publishes once.
  void configure(AppConfiguration configuration);

  /// Takes a whole pass with a battery reading, for when the power source changes.
  void refreshBattery();

  /// Gives `done`, on the main queue, the machine's network interfaces in the kernel's order;
  /// none when they could not be read. Changes no reading, and works while paused.
  void listLinks(std::function<void(std::vector<NetworkLink>)> done);

  /// Stops until resetAfterWake(). `whenStopped` is then called on the sampling queue.
  void prepareForSleep(std::function<void()> whenStopped = {});

  /// Starts again with fresh baselines.
  void resetAfterWake();

  /// Whether further passes follow the first by themselves. Where not, what is shown
  /// changes only by refreshBattery() and by the other providers.
  [[nodiscard]] static bool startsTimer(const AppConfiguration& configuration);

 private:
  struct Token {};

 public:
  /// For create() alone.
  SamplingCoordinator(Token token, TaskQueue& samplingQueue, TaskQueue& mainQueue,
                      const Clock& clock, SamplingSources sources);

 private:
  // All of these on the sampling queue.
  void reconfigure(AppConfiguration configuration);
  void startTimer();
  enum class Reason : bool { tick, change };
  void beginPass(Reason reason);
  void refreshSensors(Reason reason, bool readsBattery);
  void sample(Reason reason, bool readsBattery);
  void sampleNetwork(MetricSet demand);
  void sampleBattery(MetricSet demand);
  [[nodiscard]] std::vector<NetworkLink> readLinks() const;
  void publish(Reason reason);
  void resetRates();

  TaskQueue& queue_;
  TaskQueue& main_;
  const Clock& clock_;
  const SamplingSources sources_;
  std::atomic<std::uint64_t> configureCalls_ = 0;

  // Everything below is touched on the sampling queue only.
  CPUCollector cpu_;
  NetworkCollector network_;
  AppConfiguration configuration_;
  MetricSet demand_;  // configuration_'s
  FamilySet families_;
  std::uint64_t appliedCall_ = 0;  // the configure() call that configuration_ came by
  MetricSnapshot snapshot_;
  Seconds batteryLastRead_{0};  // uptime
  bool isSleeping_ = false;
  TimerHandle timer_;
};

}  // namespace vantora
