// SPDX-License-Identifier: MIT
//
// What only the running agent knows, for a person who looks for a fault: the agent writes it
// when it is asked (`vantora --diagnose`), and the program that asks reads it.
//
// No account is in it, no category of limits and no address: a quota goes by its status and by
// the sentence for it, which names none of these while it has no value.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/json.hpp"
#include "model/metric.hpp"
#include "model/sample.hpp"
#include "model/time.hpp"
#include "ports/status_item.hpp"

namespace vantora {

/// The reading of one metric.
struct ReadingReport {
  MetricID metric = MetricID::none;
  Quality quality = Quality::unavailable;
  std::string text;    ///< As the item shows it; a dash where there is none.
  std::string source;  ///< Where it came from, or why there is none.
  bool operator==(const ReadingReport&) const = default;
};

struct QuotaReport {
  std::string status;   ///< rawText() of the integration's status.
  std::string message;  ///< Why there is no fresh value; empty while there is one.
  std::optional<WallTime> lastSuccess;
  std::optional<WallTime> nextQuery;  ///< When it asks again by itself.
  bool operator==(const QuotaReport&) const = default;
};

struct AgentReport {
  std::string version;
  Seconds running{0};  ///< Since its start, sleep not counted.
  StatusItemReport item;
  std::string shown;  ///< The texts of the visible modules, from the left.
  bool isPaused = false;
  std::optional<std::string> notice;    ///< Of the configuration.
  std::vector<ReadingReport> readings;  ///< Of what is shown, quotas left out.
  QuotaReport codex;
  QuotaReport claude;
  bool operator==(const AgentReport&) const = default;
};

/// A JSON array with an object for each reading.
[[nodiscard, gnu::cold]] Json readingsJson(const std::vector<ReadingReport>& readings);

/// One JSON object. Instants in whole seconds since 1970.
[[nodiscard, gnu::cold]] std::string encode(const AgentReport& report);

/// Longer answers are refused, unread.
inline constexpr std::size_t maxAgentReport = 262'144;

/// Nothing for a text that encode() does not make.
[[nodiscard, gnu::cold]] std::optional<AgentReport> parseAgentReport(std::string_view text);

}  // namespace vantora
