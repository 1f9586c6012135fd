// SPDX-License-Identifier: MIT
#include "app/status_redraw.hpp"

#include <gtest/gtest.h>

#include <memory>

#include "status/status_renderer.hpp"
#include "support/example_time.hpp"
#include "support/fake_app_ports.hpp"
#include "support/fake_text_engine.hpp"
#include "support/live_memory.hpp"

namespace vantora::test {
namespace {

class StatusRedrawTest : public testing::Test {
 protected:
  StatusRedrawTest() {
    configuration_.modules.resize(1);
    configuration_.modules[0].top = MetricID::cpuUsage;
    configuration_.modules[0].bottom = MetricID::none;
    setUsage(17);
  }

  void setUsage(double percent) {
    snapshot_.samples.set(MetricID::cpuUsage, MetricSample::valid(percent, "fonte", exampleTime));
  }
  bool drawIfChanged() { return redraw_.drawIfChanged(configuration_, snapshot_, exampleTime); }

  AppConfiguration configuration_;
  MetricSnapshot snapshot_;
  FakeStatusItem item_;
  FakeTextEngine engine_;
  StatusRedraw redraw_{item_, engine_};
};

TEST_F(StatusRedrawTest, DrawsFirstOfAll) {
  EXPECT_TRUE(drawIfChanged());
  ASSERT_EQ(item_.shown.size(), 1U);
  EXPECT_EQ(item_.shown.back(), StatusRenderer::render(configuration_, snapshot_,
                                                       {item_.thickness(), exampleTime, engine_}));
  EXPECT_EQ(redraw_.presentation(), item_.shown.back());
}

TEST_F(StatusRedrawTest, DrawsFirstOfAllWithoutAnyModule) {
  configuration_.modules.clear();
  EXPECT_TRUE(drawIfChanged());
  EXPECT_FALSE(drawIfChanged());
}

TEST_F(StatusRedrawTest, NeitherDrawsNorMeasuresWhileTheTextsStay) {
  drawIfChanged();
  engine_.measurements = 0;
  setUsage(17.4);
  EXPECT_FALSE(drawIfChanged());
  EXPECT_EQ(item_.shown.size(), 1U);
  EXPECT_EQ(engine_.measurements, 0);
}

TEST_F(StatusRedrawTest, DrawsAChangedText) {
  drawIfChanged();
  setUsage(18);
  EXPECT_TRUE(drawIfChanged());
  setUsage(17);
  EXPECT_TRUE(drawIfChanged()) << "what counts is the last drawing, not an earlier one";
  EXPECT_EQ(item_.shown.size(), 3U);
  EXPECT_EQ(item_.shown.back(), item_.shown.front());
}

TEST_F(StatusRedrawTest, DrawsAChangedConfigurationThatLeavesTheTextsAsTheyAre) {
  drawIfChanged();
  configuration_.modules[0].width = 90;
  EXPECT_TRUE(drawIfChanged());
  EXPECT_FALSE(drawIfChanged());
}

TEST_F(StatusRedrawTest, DrawsWhatIsTheSameWhenItIsTold) {
  drawIfChanged();
  redraw_.draw(configuration_, snapshot_, exampleTime);
  EXPECT_EQ(item_.shown.size(), 2U);
  EXPECT_FALSE(drawIfChanged());
}

// A front end as the real ones are: it keeps what it shows.
class KeepingItem final : public StatusItem {
 public:
  [[nodiscard]] double thickness() const override { return 24; }
  void show(const StatusPresentation& presentation) override { shown_ = presentation; }

 private:
  StatusPresentation shown_;
};

class StatusRedrawAllocationsTest : public StatusRedrawTest {
 protected:
  StatusRedrawAllocationsTest() {
    configuration_.modules = AppConfiguration::defaultModules();
    setReadings(10);
    keepingRedraw_.drawIfChanged(configuration_, snapshot_, exampleTime);
    setReadings(11);
    keepingRedraw_.drawIfChanged(configuration_, snapshot_, exampleTime);
  }

  void setReadings(double value) {
    for (const MetricID metric : configuration_.demand()) {
      snapshot_.samples.set(metric, MetricSample::valid(value, "fonte", exampleTime));
    }
  }
  std::size_t allocationsOfATick() {
    const std::size_t before = allocations();
    keepingRedraw_.drawIfChanged(configuration_, snapshot_, exampleTime);
    return allocations() - before;
  }

  KeepingItem keepingItem_;
  StatusRedraw keepingRedraw_{keepingItem_, engine_};
};

TEST_F(StatusRedrawAllocationsTest, AllocatesNothingOnAnUnchangedTick) {
  EXPECT_EQ(allocationsOfATick(), 0U);
}

TEST_F(StatusRedrawAllocationsTest, AllocatesAHandfulAtMostOnAChangedTick) {
  setReadings(12);
  EXPECT_LE(allocationsOfATick(), 2U);
}

TEST_F(StatusRedrawAllocationsTest, CountsWhatIsAllocated) {
  const std::size_t before = allocations();
  const auto copy = std::make_unique<StatusPresentation>(keepingRedraw_.presentation());
  EXPECT_GT(allocations() - before, 1U) << copy->width;
}

}  // namespace
}  // namespace vantora::test
