// SPDX-License-Identifier: MIT
//
// What the program notices and decides, a line each in Portuguese, for a person who looks for a
// fault. Nothing unless it was asked for.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "model/sample.hpp"

namespace vantora {

/// Lives on the main thread.
class EventLog {
 public:
  enum class Level : std::uint8_t {
    none,
    info,   ///< What changed: panels, buses, sleep, readings that come and go, queries.
    debug,  ///< And each picture with what it shows.
  };
  using Sink = std::function<void(const std::string& line)>;

  /// The log that the environment asks for with VANTORA_LOG.
  [[nodiscard]] static EventLog fromEnvironment(Sink sink);

  /// The level by its name, "info" or "debug"; none for any other text.
  [[nodiscard]] static Level levelOf(std::string_view name);

  /// Without a sink nothing is written, as at the level `none`.
  explicit EventLog(Level level = Level::none, Sink sink = nullptr);

  /// Whether lines of this level are written, for lines that take work to make.
  [[nodiscard]] bool writes(Level level) const { return level_ >= level; }

  void info(std::string_view line) const { write(Level::info, line); }
  void debug(std::string_view line) const { write(Level::debug, line); }

  /// Which readings have come, gone, or are missing for another reason.
  void sampled(const MetricSnapshot& before, const MetricSnapshot& after) const;
  /// A quota whose status (rawText()) has changed: a query has begun or ended. Not its message,
  /// which may hold what is the user's own.
  void queried(std::string_view assistant, std::string_view before, std::string_view after) const;

 private:
  void write(Level level, std::string_view line) const;

  Level level_;
  Sink sink_;
};

}  // namespace vantora
