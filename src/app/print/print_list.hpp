// SPDX-License-Identifier: MIT
//
// The readings as a list for people: a line for each shown metric with its title, its value
// and, where the value is missing or old, the reason. Pure.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "app/print/print_report.hpp"

namespace vantora::PrintFormatter {

inline constexpr std::size_t anyWidth = std::numeric_limits<std::size_t>::max();

/// The lines of the list in the modules' order, each metric once, in aligned columns of at
/// most `columns` cells: reasons give way first, then titles. Never empty.
[[nodiscard]] std::vector<std::string> listLines(const PrintReport& report,
                                                 std::size_t columns = anyWidth);

/// Why the metric has no fresh reading; empty where it has one.
[[nodiscard]] std::string reason(MetricID metric, const PrintReport& report);

}  // namespace vantora::PrintFormatter
