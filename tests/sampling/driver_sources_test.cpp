// SPDX-License-Identifier: MIT
#include "sampling/driver_sources.hpp"

#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "sampling/sampling_coordinator_fixture.hpp"

namespace vantora::test {
namespace {

constexpr Seconds ample{600};
constexpr MetricSet temperatures{MetricID::cpuTemperature, MetricID::batteryTemperature};

// A driver that may be made to hang.
class Driver {
 public:
  void hang() { held_ = release_.get_future().share(); }
  void recover() { release_.set_value(); }
  void answer() {
    if (held_.valid()) {
      held_.wait();
    }
    thread_ = std::this_thread::get_id();
  }
  [[nodiscard]] std::thread::id thread() const { return thread_; }

 private:
  std::promise<void> release_;
  std::shared_future<void> held_;
  std::thread::id thread_;
};

class HangingBattery final : public BatterySource {
 public:
  Driver driver;
  [[nodiscard]] BatteryReadings read() override {
    driver.answer();
    BatteryReadings readings;
    readings.percentage = MetricSample::valid(80, "driver", {});
    readings.onAC = true;
    return readings;
  }
};

class HangingSensors final : public SensorSource {
 public:
  Driver driver;
  int resets = 0;
  double value = 50;
  MetricSet configured;
  void configure(MetricSet demand) override { configured = demand; }
  [[nodiscard]] SampleTable sample(MetricSet demand) override {
    driver.answer();
    SampleTable table;
    for (const MetricID metric : metricsOfFamily(demand, MetricFamily::sensors)) {
      table.set(metric, MetricSample::valid(value, "driver", {}));
    }
    return table;
  }
  void reset() override { ++resets; }
};

class DriverSourcesTest : public testing::Test {
 protected:
  DriverPlace place(Seconds wait) {
    return {.thread = thread,
            .clock = time,
            .hasDrivers = [this] { return hasDrivers; },
            .overdue = "não responde",
            .limits = {.waitTimeout = wait, .overdueAfter = Seconds{5}}};
  }
  void letTheThreadFinish() {
    std::promise<void> done;
    ASSERT_TRUE(thread.post([&] { done.set_value(); }));
    done.get_future().wait();
  }

  VirtualTime time;
  WorkThread thread{"test"};
  bool hasDrivers = true;
  std::shared_ptr<HangingBattery> battery = std::make_shared<HangingBattery>();
  std::shared_ptr<HangingSensors> sensors = std::make_shared<HangingSensors>();
};

TEST_F(DriverSourcesTest, ResetTheSensorsAtOnceWhileTheyHaveNoThread) {
  hasDrivers = false;
  DriverSensors source(sensors, place(ample));
  source.reset();
  EXPECT_EQ(sensors->resets, 1);
  EXPECT_FALSE(thread.hasStarted());
}

TEST_F(DriverSourcesTest, ReadTheBatteryOnAThreadOfItsOwn) {
  DriverBattery source(battery, place(ample));
  EXPECT_EQ(source.read().percentage.value, 80);
  EXPECT_NE(battery->driver.thread(), std::this_thread::get_id());
}

TEST_F(DriverSourcesTest, StartNoThreadWhereThereIsNoDriverAndOneWhenItAppears) {
  hasDrivers = false;
  DriverBattery source(battery, place(ample));
  DriverSensors sensorSource(sensors, place(ample));
  EXPECT_EQ(source.read().percentage.value, 80);
  EXPECT_EQ(battery->driver.thread(), std::this_thread::get_id());
  EXPECT_EQ(sensorSource.sample(temperatures).find(MetricID::cpuTemperature)->value, 50);
  EXPECT_FALSE(thread.hasStarted());
  hasDrivers = true;
  EXPECT_EQ(source.read().percentage.value, 80);
  EXPECT_NE(battery->driver.thread(), std::this_thread::get_id());
  EXPECT_EQ(sensorSource.sample(temperatures).find(MetricID::cpuTemperature)->value, 50);
  EXPECT_EQ(sensors->driver.thread(), battery->driver.thread());
}

TEST_F(DriverSourcesTest, SayWhyABatteryHasNoReadingsWhileItsDriverHangs) {
  battery->driver.hang();
  DriverBattery source(battery, place(Seconds{0}));
  const BatteryReadings readings = source.read();
  EXPECT_EQ(readings.percentage, MetricSample::unavailable("não responde"));
  EXPECT_EQ(readings.duration, MetricSample::unavailable("não responde"));
  EXPECT_EQ(readings.adapterWatts, MetricSample::unavailable("não responde"));
  EXPECT_FALSE(readings.onAC);
  battery->driver.recover();
}

TEST_F(DriverSourcesTest, SayWhySensorsHaveNoReadingsWhileTheirDriverHangs) {
  sensors->driver.hang();
  DriverSensors source(sensors, place(Seconds{0}));
  const MetricSet demand{MetricID::cpuTemperature, MetricID::fan1RPM, MetricID::cpuUsage};
  const SampleTable samples = source.sample(demand);
  EXPECT_EQ(*samples.find(MetricID::cpuTemperature), MetricSample::unavailable("não responde"));
  EXPECT_EQ(*samples.find(MetricID::fan1RPM), MetricSample::unavailable("não responde"));
  EXPECT_EQ(samples.find(MetricID::cpuUsage), nullptr);
  sensors->driver.recover();
}

TEST_F(DriverSourcesTest, AnswerForTheDemandOfTheMoment) {
  DriverSensors source(sensors, place(Seconds{0}));
  (void)source.sample({MetricID::cpuTemperature});
  letTheThreadFinish();
  sensors->driver.hang();
  const SampleTable samples = source.sample(temperatures);
  EXPECT_EQ(samples.find(MetricID::cpuTemperature)->value, 50);
  EXPECT_EQ(*samples.find(MetricID::batteryTemperature), MetricSample::unavailable("não responde"));
  EXPECT_EQ(source.sample({MetricID::batteryTemperature}).find(MetricID::cpuTemperature), nullptr);
  sensors->driver.recover();
}

TEST_F(DriverSourcesTest, PassOnWhatIsWantedOfTheSensorsWithoutWaiting) {
  DriverSensors source(sensors, place(Seconds{0}));
  sensors->driver.hang();
  (void)source.sample(temperatures);
  source.reset();
  source.configure({MetricID::fan1RPM});
  EXPECT_EQ(sensors->resets, 0);
  sensors->driver.recover();
  letTheThreadFinish();
  EXPECT_EQ(sensors->resets, 1);
  EXPECT_EQ(sensors->configured, MetricSet{MetricID::fan1RPM});
}

TEST_F(DriverSourcesTest, ReadTheSensorsAnewOnceTheDemandChanges) {
  DriverPlace reusing = place(ample);
  reusing.limits.reuseFor = Seconds{2.5};
  DriverSensors source(sensors, std::move(reusing));
  source.configure({MetricID::cpuTemperature});
  (void)source.sample({MetricID::cpuTemperature});
  source.configure(temperatures);
  EXPECT_EQ(source.sample(temperatures).find(MetricID::batteryTemperature)->value, 50);
}

TEST_F(DriverSourcesTest, ReadTheSensorsAnewAfterAReset) {
  DriverPlace reusing = place(ample);
  reusing.limits.reuseFor = Seconds{2.5};
  DriverSensors source(sensors, std::move(reusing));
  EXPECT_EQ(source.sample(temperatures).find(MetricID::cpuTemperature)->value, 50);
  source.reset();
  sensors->value = 60;
  EXPECT_EQ(source.sample(temperatures).find(MetricID::cpuTemperature)->value, 60);
}

// The whole coordinator over a battery and sensors that never answer.
TEST_F(DriverSourcesTest, LeaveCpuAndNetworkTheirReadingsWhileADriverHangs) {
  WorkThread sensorThread("test");
  battery->driver.hang();
  sensors->driver.hang();
  const auto queue = time.makeQueue();
  const auto main = time.makeQueue();
  auto ticks = std::make_unique<FakeTickCounters>();
  auto network = std::make_unique<FakeNetworkSource>();
  ticks->set(100, 100);
  network->add("en0");
  auto* const counters = ticks.get();
  DriverPlace sensorPlace{.thread = sensorThread,
                          .clock = time,
                          .hasDrivers = [] { return true; },
                          .overdue = "não responde",
                          .limits = {.waitTimeout = Seconds{0}}};
  const auto coordinator = SamplingCoordinator::create(
      *queue, *main, time,
      {std::move(ticks), std::move(network),
       std::make_unique<DriverBattery>(battery, place(Seconds{0})),
       std::make_unique<DriverSensors>(sensors, std::move(sensorPlace))});
  MetricSnapshot last;
  coordinator->onSnapshot = [&](MetricSnapshot snapshot) { last = std::move(snapshot); };
  AppConfiguration configuration =
      showing({moduleOf(MetricID::cpuUsage, MetricID::download),
               moduleOf(MetricID::batteryPercent, MetricID::cpuTemperature)});
  configuration.intervalSeconds = 2;
  coordinator->configure(configuration);
  time.runPosted();
  counters->set(150, 150);
  time.advance(Seconds{2});
  EXPECT_EQ(last[MetricID::cpuUsage].value, 50);
  EXPECT_EQ(last[MetricID::download].quality, Quality::valid);
  EXPECT_EQ(last[MetricID::batteryPercent], MetricSample::unavailable("não responde"));
  EXPECT_EQ(last[MetricID::cpuTemperature], MetricSample::unavailable("não responde"));
  battery->driver.recover();
  sensors->driver.recover();
}

}  // namespace
}  // namespace vantora::test
