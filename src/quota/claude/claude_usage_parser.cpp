// SPDX-License-Identifier: MIT
#include "quota/claude/claude_usage_parser.hpp"

#include <cmath>
#include <string>

#include "model/json.hpp"
#include "quota/claude/internet_date_time.hpp"

namespace vantora {

bool ClaudeUsageReading::overUsed() const {
  return weeklyUsed.value_or(0) > 100 || sessionUsed.value_or(0) > 100;
}

namespace ClaudeUsageParser {
namespace {

constexpr double firstMilliseconds = 1e11;

struct Window {
  std::optional<double> utilization;
  std::optional<WallTime> resetsAt;
};

struct Envelope {
  std::optional<Window> fiveHour;
  std::optional<Window> sevenDay;
};

std::optional<WallTime> resetFrom(const Json& value) {
  if (const std::optional<double> seconds = asDouble(value)) {
    return dateFromSeconds(*seconds);
  }
  const std::optional<std::string> text = asText(value);
  return text ? dateFromISO(*text) : std::nullopt;
}

// False when the member is there and no object.
bool readWindow(const Json& envelope, std::string_view key, std::optional<Window>& window) {
  const Json* found = presentMember(envelope, key);
  if (found == nullptr) {
    return true;
  }
  if (!found->isObject()) {
    return false;
  }
  window.emplace();
  if (const Json* utilization = presentMember(*found, "utilization")) {
    window->utilization = asDouble(*utilization);
  }
  if (const Json* resetsAt = presentMember(*found, "resets_at")) {
    window->resetsAt = resetFrom(*resetsAt);
  }
  return true;
}

std::optional<Envelope> envelopeFrom(const Json& value) {
  Envelope envelope;
  if (!value.isObject() || !readWindow(value, "five_hour", envelope.fiveHour) ||
      !readWindow(value, "seven_day", envelope.sevenDay)) {
    return std::nullopt;
  }
  return envelope;
}

bool hasUsableShare(const std::optional<Window>& window) {
  return window && window->utilization && std::isfinite(*window->utilization) &&
         *window->utilization >= 0;
}

std::optional<ClaudeUsageReading> readingOf(const Envelope& envelope) {
  ClaudeUsageReading reading;
  if (hasUsableShare(envelope.sevenDay)) {
    reading.weeklyUsed = envelope.sevenDay->utilization;
    reading.weeklyResetAt = envelope.sevenDay->resetsAt;
  }
  if (hasUsableShare(envelope.fiveHour)) {
    reading.sessionUsed = envelope.fiveHour->utilization;
    reading.sessionResetAt = envelope.fiveHour->resetsAt;
  }
  return reading.weeklyUsed || reading.sessionUsed ? std::optional(reading) : std::nullopt;
}

}  // namespace

std::optional<ClaudeUsageAnswer> parseUsageResponse(std::string_view data) {
  const std::optional<Json> json = parseJson(data);
  if (!json || !json->isObject()) {
    return std::nullopt;
  }
  bool isAvailable = true;
  if (const Json* available = presentMember(*json, "rate_limits_available")) {
    const std::optional<bool> value = asBool(*available);
    if (!value) {
      return std::nullopt;
    }
    isAvailable = *value;
  }
  // Decoded even where it is not looked at: a malformed answer is one throughout.
  std::optional<ClaudeUsageReading> reading;
  if (const Json* limits = presentMember(*json, "rate_limits")) {
    const std::optional<Envelope> envelope = envelopeFrom(*limits);
    if (!envelope) {
      return std::nullopt;
    }
    reading = readingOf(*envelope);
  }
  if (!isAvailable) {
    return ClaudeUsageAbsence::planLimitsUnavailable;
  }
  if (!reading) {
    return ClaudeUsageAbsence::noWindows;
  }
  return *reading;
}

std::optional<Windows> parse(std::string_view data) {
  const std::optional<Json> json = parseJson(data);
  const std::optional<Envelope> envelope = json ? envelopeFrom(*json) : std::nullopt;
  return envelope ? std::optional(Windows{readingOf(*envelope)}) : std::nullopt;
}

std::optional<WallTime> dateFromSeconds(double seconds) {
  if (!std::isfinite(seconds)) {
    return std::nullopt;
  }
  const double sinceEpoch = seconds > firstMilliseconds ? seconds / 1000 : seconds;
  return sinceEpoch > 0 && sinceEpoch < latestBelievableUnixTime
             ? std::optional(wallTimeFromUnix(sinceEpoch))
             : std::nullopt;
}

std::optional<WallTime> dateFromISO(std::string_view text) {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  std::string whole;
  for (std::size_t index = 0; index < text.size(); ++index) {
    if (text[index] == '.' && index + 1 < text.size() && isDigit(text[index + 1])) {
      while (index + 1 < text.size() && isDigit(text[index + 1])) {
        ++index;
      }
    } else {
      whole += text[index];
    }
  }
  const std::optional<std::int64_t> seconds = unixTimeFromInternetDateTime(whole);
  // Not through dateFromSeconds: a date far ahead is no count of milliseconds.
  return seconds && *seconds > 0 && static_cast<double>(*seconds) < latestBelievableUnixTime
             ? std::optional(wallTimeFromUnix(static_cast<double>(*seconds)))
             : std::nullopt;
}

}  // namespace ClaudeUsageParser
}  // namespace vantora
