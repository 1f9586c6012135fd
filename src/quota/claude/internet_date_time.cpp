// SPDX-License-Identifier: MIT
#include "quota/claude/internet_date_time.hpp"

#include <chrono>

namespace vantora {
namespace {

// Takes fixed forms off the front of a text and remembers whether all of them fitted.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  int number(std::size_t digits, int most) {
    int value = 0;
    for (std::size_t index = 0; index < digits; ++index) {
      const char digit = take();
      isFine_ = isFine_ && digit >= '0' && digit <= '9';
      value = isFine_ ? value * 10 + (digit - '0') : 0;
    }
    isFine_ = isFine_ && value <= most;
    return value;
  }
  void literal(char expected) { isFine_ = take() == expected && isFine_; }
  char take() {
    if (rest_.empty()) {
      isFine_ = false;
      return '\0';
    }
    const char first = rest_.front();
    rest_.remove_prefix(1);
    return first;
  }
  [[nodiscard]] bool isDone() const { return isFine_ && rest_.empty(); }

 private:
  std::string_view rest_;
  bool isFine_ = true;
};

}  // namespace

std::optional<std::int64_t> unixTimeFromInternetDateTime(std::string_view text) {
  Scanner scanner(text);
  const std::chrono::year year{scanner.number(4, 9999)};
  scanner.literal('-');
  const auto month = static_cast<unsigned>(scanner.number(2, 12));
  scanner.literal('-');
  const auto day = static_cast<unsigned>(scanner.number(2, 31));
  scanner.literal('T');
  const std::chrono::hours hours{scanner.number(2, 23)};
  scanner.literal(':');
  const std::chrono::minutes minutes{scanner.number(2, 59)};
  scanner.literal(':');
  const std::chrono::seconds seconds{scanner.number(2, 59)};

  std::chrono::seconds offset{0};
  if (const char zone = scanner.take(); zone != 'Z') {
    const std::chrono::hours offsetHours{scanner.number(2, 23)};
    scanner.literal(':');
    offset = offsetHours + std::chrono::minutes{scanner.number(2, 59)};
    if (zone == '-') {
      offset = -offset;
    } else if (zone != '+') {
      return std::nullopt;
    }
  }
  const std::chrono::year_month_day date{year, std::chrono::month{month}, std::chrono::day{day}};
  if (!scanner.isDone() || !date.ok()) {
    return std::nullopt;
  }
  const std::chrono::seconds days = std::chrono::sys_days{date}.time_since_epoch();
  return (days + hours + minutes + seconds - offset).count();
}

}  // namespace vantora
