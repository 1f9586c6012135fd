// SPDX-License-Identifier: MIT
#include "settings/toolkit/x_settings.hpp"

#include <gtest/gtest.h>

#include "settings/toolkit/x_settings_bytes.hpp"

namespace vantora {
namespace {

using test::XSettingsBytes;
using Bytes = std::vector<std::uint8_t>;

constexpr const char* themeName = "Net/ThemeName";

Bytes usualSettings(bool isBigEndian = false) {
  return XSettingsBytes(isBigEndian)
      .integer("Net/DoubleClickTime", 400)
      .color("Gtk/Cursor")
      .text("Net/IconThemeName", "mate")
      .text(themeName, "ContrastHigh")
      .text("Gtk/FontName", "Sans 10")
      .bytes();
}

TEST(XSettings, FindTheTextOfASettingInEitherByteOrder) {
  for (const bool isBigEndian : {false, true}) {
    EXPECT_EQ(xSettingText(usualSettings(isBigEndian), themeName), "ContrastHigh");
    EXPECT_EQ(xSettingText(usualSettings(isBigEndian), "Gtk/FontName"), "Sans 10");
  }
}

TEST(XSettings, HaveNoTextOfWhatIsMissingOrANumber) {
  EXPECT_EQ(xSettingText(usualSettings(), "Net/Theme"), std::nullopt);
  EXPECT_EQ(xSettingText(usualSettings(), "Net/DoubleClickTime"), std::nullopt);
  EXPECT_EQ(xSettingText({}, themeName), std::nullopt);
  EXPECT_EQ(xSettingText(XSettingsBytes(false).text(themeName, "").bytes(), themeName), "");
}

TEST(XSettings, HaveNothingBehindAnEndThatCameTooSoon) {
  const Bytes whole = XSettingsBytes(false).text(themeName, "HighContrast").bytes();
  ASSERT_EQ(xSettingText(whole, themeName), "HighContrast");
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_EQ(xSettingText(cut, themeName), std::nullopt) << size;
  }
}

TEST(XSettings, EndWithATypeOfUnknownLength) {
  Bytes bytes = XSettingsBytes(false).integer("A", 1).text(themeName, "HighContrast").bytes();
  bytes[12] = 3;  // the type of the first one
  EXPECT_EQ(xSettingText(bytes, themeName), std::nullopt);
}

TEST(XSettings, BelieveNoCountBeyondTheBytes) {
  Bytes bytes = XSettingsBytes(false).integer("A", 1).bytes();
  bytes[8] = bytes[9] = bytes[10] = bytes[11] = 0xff;
  EXPECT_EQ(xSettingText(bytes, themeName), std::nullopt);
}

}  // namespace
}  // namespace vantora
