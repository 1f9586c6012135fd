// SPDX-License-Identifier: MIT
//
// The coordinator on the real queues: what virtual time cannot show is which thread runs
// what, and what the thread sanitizer says to it.
#include <gtest/gtest.h>

#include <thread>

#include "runtime/system_clock.hpp"
#include "runtime/uv_loop.hpp"
#include "sampling/sampling_coordinator_fixture.hpp"

namespace vantora::test {
namespace {

TEST(SamplingCoordinatorThreads, PublishesOnTheMainThreadWhateverItIsToldMeanwhile) {
  SystemClock clock;
  UvLoop loop;
  UvQueueThread sampling{std::string(SamplingCoordinator::queueLabel)};
  auto network = std::make_unique<FakeNetworkSource>();
  network->add("en0");
  auto coordinator = SamplingCoordinator::create(
      sampling.queue(), loop.queue(), clock,
      {std::make_unique<FakeTickCounters>(), std::move(network),
       std::make_unique<FakeBatterySource>(), std::make_unique<FakeSensorSource>()});
  const std::thread::id mainThread = std::this_thread::get_id();
  constexpr int wanted = 8;
  int published = 0;
  coordinator->onSnapshot = [&](const MetricSnapshot& snapshot) {
    EXPECT_EQ(std::this_thread::get_id(), mainThread);
    EXPECT_EQ(snapshot.networkName, "en0");
    if (++published >= wanted) {
      loop.stop();
    }
  };
  AppConfiguration configuration;
  coordinator->configure(configuration);
  coordinator->prepareForSleep();
  coordinator->resetAfterWake();
  configuration.intervalSeconds = 1;
  coordinator->configure(configuration);
  for (int refresh = 0; refresh < wanted; ++refresh) {
    coordinator->refreshBattery();
  }
  loop.run();
  EXPECT_GE(published, wanted);
  // With its timer and what is still posted.
  coordinator.reset();
}

}  // namespace
}  // namespace vantora::test
