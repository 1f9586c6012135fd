// SPDX-License-Identifier: MIT
//
// A presentation of two modules whose places can be worked out in the head: two lines,
// then one.
#pragma once

#include <string>

#include "status/metric_formatter.hpp"
#include "status/status_presentation.hpp"

namespace vantora::test {

inline StyledText line(const std::string& text) {
  return {{.text = text, .font = {.typeface = Typeface::tabularDigits, .pointSize = 9}}};
}

inline StatusLine statusLine(const std::string& text) {
  return {MetricID::cpuUsage, text, MetricFormatter::isReading(text), line(text).front().font};
}

/// `first` over `below` in the first module, `second` at the bottom of the other.
inline StatusPresentation examplePresentation(const std::string& first,
                                              const std::string& second = "0,1M",
                                              const std::string& below = "48") {
  StatusPresentation shown;
  shown.modules = {
      {.id = {},
       .index = 0,
       .top = statusLine(first),
       .bottom = statusLine(below),
       .x = 2,
       .width = 24},
      {.id = {}, .index = 1, .top = {}, .bottom = statusLine(second), .x = 30, .width = 28}};
  shown.image = {.width = 60,
                 .height = 22,
                 .texts = {{2, 3, line(below)}, {2, 13, line(first)}, {30, 3, line(second)}}};
  shown.width = 60;
  shown.accessibilityText = "CPU: " + first + ". Rede: " + second;
  shown.toolTip = "CPU: " + first + "\nRede: " + second;
  return shown;
}

}  // namespace vantora::test
