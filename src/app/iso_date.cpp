// SPDX-License-Identifier: MIT
#include "app/iso_date.hpp"

#include <array>
#include <cstdio>

namespace vantora {

std::string isoDate(WallTime instant) {
  using namespace std::chrono;
  const auto whole = floor<seconds>(instant);
  const auto day = floor<days>(whole);
  const year_month_day date(day);
  const hh_mm_ss time(whole - day);
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ",
                static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                static_cast<unsigned>(date.day()), static_cast<int>(time.hours().count()),
                static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
  return text.data();
}

}  // namespace vantora
