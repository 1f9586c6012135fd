// SPDX-License-Identifier: MIT
//
// What the program sees of its session, of the machine and of the user's files, as one value:
// `--diagnose` collects it, and two writers show it. Words are Portuguese, without a full stop.
//
// What works on it is cold code (gnu::cold), so that it shares no pages with what the agent runs
// all day.
//
// It holds no account, e-mail, host name or serial number on purpose. What others named after
// such things (a battery, an interface, a folder) is concealed by the writers (concealer.hpp).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/agent_report.hpp"
#include "model/time.hpp"
#include "sampling/device_report.hpp"

namespace vantora {

/// Whether an agent runs in this session, as far as it can be found out.
enum class AgentPresence : std::uint8_t {
  answered,
  none,
  noBus,    ///< The session has no bus, or its bus does not answer.
  older,    ///< One runs that does not know the question.
  silent,   ///< One runs and did not answer in time.
  garbled,  ///< It answered, but nothing that can be read.
  running,  ///< One runs; this system has no way to ask it.
};

[[nodiscard]] const char* rawText(AgentPresence presence);

/// Devices of one kind. `why` says why the list cannot be trusted or is empty; else it is empty.
struct DeviceList {
  std::vector<DeviceReport> devices;
  std::string why;
};

/// A command-line assistant on this machine.
struct AssistantReport {
  std::string name;
  bool isWanted = false;              ///< Switched on in the configuration.
  bool isShown = false;               ///< A visible module shows one of its metrics.
  std::optional<std::string> chosen;  ///< The path that the user chose; there is no other then.
  std::optional<std::string> path;    ///< Of the executable, links resolved; none was found.
  std::string foundPath;              ///< Where it was found.
  std::optional<std::string> version;
  std::optional<QuotaReport> quota;  ///< The agent's, where it answered.
};

struct FileReport {
  enum class State : std::uint8_t {
    absent,
    good,        ///< A configuration in force, or one that could be.
    invalid,     ///< It can be read, and is no configuration that can be used.
    unreadable,  ///< It cannot be read.
  };
  std::string path;
  State state = State::absent;
  std::optional<WallTime> changed;
};

[[nodiscard]] const char* rawText(FileReport::State state);

struct Diagnosis {
  std::string program;  ///< The one that was asked.
  std::string version;
  WallTime at{};

  std::string system;   ///< Distribution and kernel.
  std::string session;  ///< "Wayland", "X11", "terminal"…
  std::string desktop;  ///< As it calls itself; may be empty.
  std::string bus;      ///< Whether the session's bus can be reached.

  AgentPresence agent = AgentPresence::none;
  std::optional<AgentReport> report;  ///< Where it answered.
  /// Where the item is, by the agent; without one, where it would be.
  StatusItemReport item;

  std::string typeface;    ///< Of the texts; empty where it is not known.
  std::string monospaced;  ///< Of the other texts.
  std::string typefaceWhy;

  DeviceList sensors;
  DeviceList supplies;
  DeviceList links;

  /// Of every metric that this system can read: the agent's where it has one, else read here.
  std::vector<ReadingReport> readings;

  std::vector<AssistantReport> assistants;
  FileReport configuration;
  FileReport backup;
  std::string loginItem;
  std::vector<std::pair<std::string, std::string>> libraries;  ///< Name and version.
};

}  // namespace vantora
