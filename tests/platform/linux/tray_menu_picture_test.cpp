// SPDX-License-Identifier: MIT
#include "platform/linux/tray_menu_picture.hpp"

#include <gtest/gtest.h>

#include "platform/linux/block_text_engine.hpp"
#include "status/rasterise.hpp"

namespace vantora {
namespace {

using test::BlockTextEngine;

TEST(TrayMenuPicture, IsWideEnoughForTheLongestLabel) {
  BlockTextEngine engine;
  EXPECT_EQ(layOutTrayMenu({"Sair"}, engine).width, 140);
  const std::string label(40, 'x');
  const TrayMenuLayout layout = layOutTrayMenu({label, "Sair"}, engine);
  EXPECT_GT(layout.width, engine.width(layout.texts.texts[0].text) + 30);
  EXPECT_EQ(layout.texts.width, layout.width);
}

TEST(TrayMenuPicture, PutsTheLabelsFromTheTopEachInsideOfItsRow) {
  BlockTextEngine engine;
  const TrayMenuLayout layout = layOutTrayMenu({"um", "dois", "tres"}, engine);
  EXPECT_EQ(layout.height, 2 * 5 + 3 * 26);
  ASSERT_EQ(layout.texts.texts.size(), 3U);
  for (std::size_t index = 0; index < 3; ++index) {
    const PlacedText& text = layout.texts.texts[index];
    const double middle = layout.height - (text.y + 0.35 * text.text.front().font.pointSize);
    EXPECT_EQ(trayMenuEntryAt(layout, 20, middle), index);
  }
}

TEST(TrayMenuPicture, FindsTheEntryUnderThePointer) {
  BlockTextEngine engine;
  const TrayMenuLayout layout = layOutTrayMenu({"um", "dois", "tres"}, engine);
  EXPECT_EQ(trayMenuEntryAt(layout, 0, 5), 0U);
  EXPECT_EQ(trayMenuEntryAt(layout, 139, 30.9), 0U);
  EXPECT_EQ(trayMenuEntryAt(layout, 10, 31), 1U);
  EXPECT_EQ(trayMenuEntryAt(layout, 10, 82.9), 2U);
}

TEST(TrayMenuPicture, FindsNothingOnTheRimOrOutside) {
  BlockTextEngine engine;
  const TrayMenuLayout layout = layOutTrayMenu({"um", "dois", "tres"}, engine);
  EXPECT_EQ(trayMenuEntryAt(layout, 10, 4.9), std::nullopt);
  EXPECT_EQ(trayMenuEntryAt(layout, 10, 83), std::nullopt);
  EXPECT_EQ(trayMenuEntryAt(layout, -1, 20), std::nullopt);
  EXPECT_EQ(trayMenuEntryAt(layout, 140, 20), std::nullopt);
}

TEST(TrayMenuPicture, GoesRoundTheEndsByKeyboard) {
  BlockTextEngine engine;
  const TrayMenuLayout layout = layOutTrayMenu({"um", "dois", "tres"}, engine);
  EXPECT_EQ(neighbourEntry(layout, std::nullopt, true), 0U);
  EXPECT_EQ(neighbourEntry(layout, std::nullopt, false), 2U);
  EXPECT_EQ(neighbourEntry(layout, 2, true), 0U);
  EXPECT_EQ(neighbourEntry(layout, 0, false), 2U);
  EXPECT_EQ(neighbourEntry(layout, 1, true), 2U);
}

TEST(TrayMenuPicture, MarksTheChosenEntryAlone) {
  BlockTextEngine engine;
  const TrayMenuLayout layout = layOutTrayMenu({"um", "dois"}, engine);
  for (const int scale : {1, 2}) {
    const AlphaBitmap labels = rasterise(layout.texts, engine, scale);
    const auto plain = trayMenuPixels(layout, labels, scale, std::nullopt);
    const auto chosen = trayMenuPixels(layout, labels, scale, 1);
    ASSERT_EQ(plain.size(), labels.pixels.size());
    const auto at = [&](int x, int y) {
      return static_cast<std::size_t>(y * scale * labels.width + x * scale);
    };
    EXPECT_EQ(plain[at(5, 10)], chosen[at(5, 10)]) << "the first row";
    EXPECT_NE(plain[at(5, 40)], chosen[at(5, 40)]) << "the second row";
    EXPECT_EQ(plain[0], chosen[0]) << "the edge";
  }
}

}  // namespace
}  // namespace vantora
