// SPDX-License-Identifier: MIT
#include "platform/linux/x11_tray/xembed_pixels.hpp"

#include <gtest/gtest.h>

namespace vantora {
namespace {

AlphaBitmap oneInk(std::uint8_t ink) {
  AlphaBitmap bitmap(20, 20);
  bitmap.at(10, 10) = ink;
  return bitmap;
}

constexpr std::size_t middle = 10 * 20 + 10;

TEST(XEmbedPixels, MultiplyTheColourByAlphaWhereTheTrayIsTranslucent) {
  const auto light = xPixels(oneInk(128), Ink::light, TrayDepth::translucent);
  EXPECT_EQ(light[middle], 0x807B7B7BU);
  EXPECT_EQ(light[0], 0U);
  const auto dark = xPixels(oneInk(255), Ink::dark, TrayDepth::translucent);
  EXPECT_EQ(dark[middle], 0xFF1E1E1EU);
}

TEST(XEmbedPixels, RoundThePlateWhereTheTrayIsTranslucent) {
  const auto pixels = xPixels(oneInk(0), Ink::lightOnPlate, TrayDepth::translucent);
  EXPECT_EQ(pixels[0], 0U);
  EXPECT_EQ(pixels[middle] >> 24U, 235U);
}

TEST(XEmbedPixels, FillTheWholeWindowWhereTheTrayIsOpaque) {
  for (const Ink ink : {Ink::light, Ink::dark, Ink::lightOnPlate}) {
    const auto pixels = xPixels(oneInk(255), ink, TrayDepth::opaque);
    EXPECT_EQ(pixels[middle], 0x00F5F5F5U) << "light ink, whatever the tray writes in";
    EXPECT_EQ(pixels[0], pixels[20 * 20 - 1]) << "no corner is left out";
    EXPECT_EQ(pixels[0], pixels[middle - 1]);
  }
}

TEST(XEmbedPixels, TakeTheInkFromTheTraysForeground) {
  const std::vector<std::uint32_t> white{65535, 65535, 65535, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  const std::vector<std::uint32_t> darkGrey{12000, 12000, 12000, 65535, 0, 0, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(trayInk(white), Ink::light);
  EXPECT_EQ(trayInk(darkGrey), Ink::dark);
  EXPECT_EQ(trayInk({}), Ink::lightOnPlate);
}

TEST(XEmbedPixels, TakeTheScaleFromTheResources) {
  EXPECT_EQ(scaleFromResources("*color0: black\nXft.dpi:\t192\nXft.hinting:\t1\n"), 2);
  EXPECT_EQ(scaleFromResources("Xft.dpi:\t96\n"), 1);
  EXPECT_EQ(scaleFromResources("Xft.dpi: 120"), 1);
  EXPECT_EQ(scaleFromResources("Xft.dpi:\t288\n"), 3);
}

TEST(XEmbedPixels, StayAtOneWhereTheResourcesMakeNoSense) {
  EXPECT_EQ(scaleFromResources(""), 1);
  EXPECT_EQ(scaleFromResources("Xft.dpi:"), 1);
  EXPECT_EQ(scaleFromResources("Xft.dpi:\tmany\n"), 1);
  EXPECT_EQ(scaleFromResources("Xft.dpi:\t-5\n"), 1);
  EXPECT_EQ(scaleFromResources("Xft.dpi:\t999999999999999999999\n"), 1);
  EXPECT_EQ(scaleFromResources("Xft.dpi:\t2000\n"), 4);
  EXPECT_EQ(scaleFromResources("\n\n\n"), 1);
}

}  // namespace
}  // namespace vantora
