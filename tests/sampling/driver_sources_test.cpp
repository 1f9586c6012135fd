// SPDX-License-Identifier: MIT
#include "sampling/driver_sources.hpp"

#include <gtest/gtest.h>

#include <deque>
#include <optional>

#include "sampling/sampling_coordinator_fixture.hpp"

namespace vantora::test {
namespace {

constexpr MetricSet temperatures{MetricID::cpuTemperature, MetricID::batteryTemperature};

// A queue whose drivers answer at once, or hang until the test lets them answer.
class FakeDriverCalls final : public DriverCalls {
 public:
  bool hangs = false;
  int calls = 0;

  void call(Task work, Task done) override {
    ++calls;
    if (hangs) {
      hanging_.push_back(std::move(work));
    } else {
      work();
    }
    done();
  }
  void letAnswer() {
    hangs = false;
    for (const Task& work : std::exchange(hanging_, {})) {
      work();
    }
  }

 private:
  std::deque<Task> hanging_;
};

class CountingSensors final : public SensorSource {
 public:
  int resets = 0;
  double value = 50;
  void configure(MetricSet) override { ADD_FAILURE() << "it would wait for the driver"; }
  [[nodiscard]] SampleTable sample(MetricSet demand) override {
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
  DriverSourcesTest() {
    battery->next.percentage = MetricSample::valid(80, "driver", {});
    battery->next.onAC = true;
  }
  BatteryReadings readBattery() {
    int runs = 0;
    batterySource.refresh([&] { ++runs; });
    EXPECT_EQ(runs, 1);
    return batterySource.read();
  }
  SampleTable sample(MetricSet demand) {
    int runs = 0;
    sensorSource.refresh(demand, [&] { ++runs; });
    EXPECT_EQ(runs, 1);
    return sensorSource.sample(demand);
  }

  VirtualTime time;
  FakeDriverCalls calls;
  std::shared_ptr<FakeBatterySource> battery = std::make_shared<FakeBatterySource>();
  std::shared_ptr<CountingSensors> sensors = std::make_shared<CountingSensors>();
  DriverBattery batterySource{battery, calls, time, "não responde"};
  DriverSensors sensorSource{sensors, calls, time, "não responde"};
};

TEST_F(DriverSourcesTest, ReadWhatTheDriverAnswers) {
  EXPECT_EQ(readBattery(), battery->next);
  EXPECT_EQ(sample(temperatures).find(MetricID::cpuTemperature)->value, 50);
  sensors->value = 60;
  EXPECT_EQ(sample(temperatures).find(MetricID::cpuTemperature)->value, 60);
}

TEST_F(DriverSourcesTest, AskOneQuestionAtATime) {
  calls.hangs = true;
  (void)readBattery();
  (void)readBattery();
  EXPECT_EQ(calls.calls, 1);
  EXPECT_EQ(battery->reads, 0);
}

TEST_F(DriverSourcesTest, SayWhyABatteryHasNoReadingsWhileItsDriverHangs) {
  calls.hangs = true;
  const BatteryReadings readings = readBattery();
  EXPECT_EQ(readings.percentage, MetricSample::unavailable("não responde"));
  EXPECT_EQ(readings.duration, MetricSample::unavailable("não responde"));
  EXPECT_EQ(readings.adapterWatts, MetricSample::unavailable("não responde"));
  EXPECT_FALSE(readings.onAC);
}

TEST_F(DriverSourcesTest, SayWhySensorsHaveNoReadingsWhileTheirDriverHangs) {
  calls.hangs = true;
  const SampleTable samples =
      sample({MetricID::cpuTemperature, MetricID::fan1RPM, MetricID::cpuUsage});
  EXPECT_EQ(*samples.find(MetricID::cpuTemperature), MetricSample::unavailable("não responde"));
  EXPECT_EQ(*samples.find(MetricID::fan1RPM), MetricSample::unavailable("não responde"));
  EXPECT_EQ(samples.find(MetricID::cpuUsage), nullptr);
}

TEST_F(DriverSourcesTest, KeepTheAnswerBeforeUntilTheQuestionIsOverdue) {
  (void)sample(temperatures);
  calls.hangs = true;
  EXPECT_EQ(sample(temperatures).find(MetricID::cpuTemperature)->value, 50);
  time.advance(Seconds{5});
  EXPECT_EQ(sample(temperatures).find(MetricID::cpuTemperature)->value, 50);
  time.advance(Seconds{0.1});
  EXPECT_EQ(*sample(temperatures).find(MetricID::cpuTemperature),
            MetricSample::unavailable("não responde"));
}

TEST_F(DriverSourcesTest, TakeALateAnswerAndAskOn) {
  calls.hangs = true;
  (void)readBattery();
  time.advance(Seconds{3600});
  EXPECT_EQ(readBattery().percentage.quality, Quality::unavailable);
  calls.letAnswer();
  EXPECT_EQ(batterySource.read(), battery->next);
  battery->next.percentage = MetricSample::valid(81, "driver", {});
  EXPECT_EQ(readBattery().percentage.value, 81);
}

TEST_F(DriverSourcesTest, AnswerForTheDemandOfTheMoment) {
  (void)sample({MetricID::cpuTemperature});
  calls.hangs = true;
  const SampleTable samples = sample(temperatures);
  EXPECT_EQ(samples.find(MetricID::cpuTemperature)->value, 50);
  EXPECT_EQ(*samples.find(MetricID::batteryTemperature), MetricSample::unavailable("não responde"));
  EXPECT_EQ(sample({MetricID::batteryTemperature}).find(MetricID::cpuTemperature), nullptr);
}

TEST_F(DriverSourcesTest, LeaveOpeningTheSensorsToTheirNextRefresh) {
  sensorSource.configure(temperatures);
  EXPECT_EQ(calls.calls, 0);
  EXPECT_EQ(sensors->resets, 0);
}

TEST_F(DriverSourcesTest, LetGoOfTheSensorsOnceNoneIsDemanded) {
  sensorSource.configure({MetricID::cpuUsage});
  EXPECT_EQ(sensors->resets, 1);
}

TEST_F(DriverSourcesTest, ForgetTheirReadingsWithAReset) {
  (void)sample(temperatures);
  sensorSource.reset();
  EXPECT_EQ(sensors->resets, 1);
  EXPECT_EQ(sensorSource.sample(temperatures).find(MetricID::cpuTemperature)->quality,
            Quality::unavailable);
}

TEST_F(DriverSourcesTest, ResetSensorsThatHangOnceTheyAnswerAndDropThatAnswer) {
  calls.hangs = true;
  (void)sample(temperatures);
  sensorSource.reset();
  EXPECT_EQ(sensors->resets, 0);
  calls.letAnswer();
  EXPECT_EQ(sensors->resets, 1);
  EXPECT_EQ(sensorSource.sample(temperatures).find(MetricID::cpuTemperature)->quality,
            Quality::unavailable);
  EXPECT_EQ(sample(temperatures).find(MetricID::cpuTemperature)->value, 50);
}

TEST_F(DriverSourcesTest, MayBeGoneWhenTheDriverAnswers) {
  calls.hangs = true;
  {
    DriverSensors shortLived(sensors, calls, time, "não responde");
    shortLived.refresh(temperatures, [] {});
  }
  calls.letAnswer();
}

// The whole coordinator over a battery and sensors that never answer.
TEST_F(DriverSourcesTest, LeaveCpuAndNetworkTheirReadingsWhileADriverHangs) {
  calls.hangs = true;
  const auto queue = time.makeQueue();
  const auto main = time.makeQueue();
  auto ticks = std::make_unique<FakeTickCounters>();
  auto network = std::make_unique<FakeNetworkSource>();
  ticks->set(100, 100);
  network->add("en0");
  auto* const counters = ticks.get();
  const auto coordinator = SamplingCoordinator::create(
      *queue, *main, time,
      {std::move(ticks), std::move(network),
       std::make_unique<DriverBattery>(battery, calls, time, "não responde"),
       std::make_unique<DriverSensors>(sensors, calls, time, "não responde")});
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
  calls.letAnswer();
  time.advance(Seconds{2});
  EXPECT_EQ(last[MetricID::cpuTemperature].value, 50);
}

}  // namespace
}  // namespace vantora::test
