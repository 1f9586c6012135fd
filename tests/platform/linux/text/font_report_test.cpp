// SPDX-License-Identifier: MIT
#include "platform/linux/text/font_report.hpp"

#include <gtest/gtest.h>

namespace vantora {
namespace {

TEST(FontReport, ReadsBackWhatWasWritten) {
  const FontReport report{"Inter Medium", "", "2.12.1", "2.14.1"};
  EXPECT_EQ(parseFontReport(encode(report)), report);
  EXPECT_EQ(parseFontReport(encode({"In\nter", "x", "y", "z"}))->text, "In ter");
}

TEST(FontReport, RefusesOtherNumbersOfLines) {
  for (const char* bytes : {"", "a", "a\nb\nc\n", "a\nb\nc\nd", "a\nb\nc\nd\ne\n"}) {
    EXPECT_FALSE(parseFontReport(bytes)) << bytes;
  }
}

}  // namespace
}  // namespace vantora
