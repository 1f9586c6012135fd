// SPDX-License-Identifier: MIT
//
// The path of a tick from the readings to the pixels that a panel is sent, with real fonts: what
// it allocates, and that a picture that is kept is the one that would be drawn anew.
#include <gtest/gtest.h>

#include <array>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "platform/linux/fonts/dejavu_fonts.hpp"
#include "platform/linux/fonts/freetype_text_engine.hpp"
#include "platform/linux/panels/status_item_picture.hpp"
#include "status/drawn_image.hpp"
#include "status/status_modules.hpp"
#include "status/status_renderer.hpp"
#include "support/example_time.hpp"
#include "support/live_memory.hpp"

namespace vantora::test {
namespace {

class KeptPictureTest : public testing::Test {
 protected:
  KeptPictureTest() {
    configuration_.modules = AppConfiguration::defaultModules();
    // Room for the first reading of each.
    setReadings(0.5e6);
    tick();
    setReadings(88);
    tick();
  }

  void set(MetricID metric, double value) {
    snapshot_.samples.set(metric, MetricSample::valid(value, "fonte", exampleTime));
  }
  void setReadings(double value) {
    for (const MetricID metric : configuration_.demand()) {
      set(metric, value);
    }
  }

  /// The number of allocations.
  std::size_t tick() {
    const std::size_t before = allocations();
    StatusModules::read(configuration_, snapshot_, exampleTime, readModules_);
    StatusModules::sign(readModules_, readSignature_);
    if (signature_ != readSignature_) {
      signature_.swap(readSignature_);
      presentation_.modules.swap(readModules_);
      StatusRenderer::layOut(configuration_, snapshot_, {24, exampleTime, engine_}, presentation_);
    }
    for (const int scale : {1, 2}) {
      const AlphaBitmap& bitmap = kept(scale);
      tint(bitmap, Ink::lightOnPlate, 5 * scale,
           std::span(message_).first(bitmap.pixels.size() * 4));
    }
    return allocations() - before;
  }

  [[nodiscard]] ImageFrame frame() const {
    return {
        .width = presentation_.image.width + 6, .height = presentation_.image.height, .left = 3};
  }
  const AlphaBitmap& kept(int scale) {
    return drawn_[static_cast<std::size_t>(scale) - 1].draw(presentation_.image, frame(), engine_,
                                                            scale);
  }

  AppConfiguration configuration_;
  MetricSnapshot snapshot_;
  FreetypeTextEngine engine_{dejavuFonts()};
  std::vector<StatusModule> readModules_;
  std::string readSignature_;
  std::string signature_;
  StatusPresentation presentation_;
  std::array<DrawnImage, 2> drawn_;
  std::vector<std::uint8_t> message_ = std::vector<std::uint8_t>(1'000'000);
};

TEST_F(KeptPictureTest, AllocatesNothingWhereNothingHasChanged) {
  EXPECT_EQ(tick(), 0U);
}

TEST_F(KeptPictureTest, AllocatesAHandfulAtMostWhereATextHasChanged) {
  set(MetricID::cpuUsage, 17);
  EXPECT_LE(tick(), 4U);
  setReadings(0.25e6);
  EXPECT_LE(tick(), 4U);
}

TEST_F(KeptPictureTest, EqualsThePictureThatIsDrawnAnewWhateverChanges) {
  std::mt19937 chance(1);
  const auto oneOf = [&](unsigned count) { return static_cast<int>(chance() % count); };
  for (int turn = 0; turn < 500; ++turn) {
    ModuleConfiguration& module = configuration_.modules[chance() % configuration_.modules.size()];
    switch (oneOf(12)) {
      case 0:
        module.alignment = static_cast<Alignment>(oneOf(3));
        break;
      case 1:
        configuration_.gap = oneOf(4);
        break;
      case 2:
        // Narrower than its text at times, which then reaches into its neighbour.
        module.widthMode = oneOf(2) == 0 ? WidthMode::automatic : WidthMode::fixed;
        module.fontTop = 6 + oneOf(4);
        break;
      default:
        for (const MetricID metric : configuration_.demand()) {
          if (oneOf(3) == 0) {
            set(metric, oneOf(2) == 0 ? oneOf(100) : 1e4 * oneOf(1'000'000));
          }
        }
    }
    signature_.clear();
    tick();
    for (const int scale : {1, 2}) {
      ASSERT_EQ(kept(scale), rasterise(presentation_.image, frame(), engine_, scale)) << turn;
    }
  }
}

TEST_F(KeptPictureTest, EqualsThePictureThatIsDrawnAnewWhereLinesReachIntoEachOther) {
  std::mt19937 chance(2);
  const auto places = [&] { return static_cast<double>(chance() % 90); };
  StatusImage image{.width = 100, .height = 22, .texts = {}};
  for (int line = 0; line < 5; ++line) {
    image.texts.push_back({places(), 7, {{"8W4", {Typeface::system, 9}}}});
  }
  DrawnImage drawn;
  const ImageFrame whole{.width = 100, .height = 22};
  for (int turn = 0; turn < 500; ++turn) {
    PlacedText& text = image.texts[chance() % image.texts.size()];
    text.x = places() + 0.25 * static_cast<double>(chance() % 4);
    text.text[0].text = std::to_string(chance() % 1000);
    ASSERT_EQ(drawn.draw(image, whole, engine_, 2), rasterise(image, whole, engine_, 2)) << turn;
  }
}

}  // namespace
}  // namespace vantora::test
