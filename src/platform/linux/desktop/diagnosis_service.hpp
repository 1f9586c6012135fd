// SPDX-License-Identifier: MIT
//
// Answers a diagnosis request on the session bus: one method beside
// org.freedesktop.Application, at the agent's own name and path. And the question.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "platform/linux/bus/bus_connection.hpp"
#include "platform/linux/bus/bus_slot.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// The agent's end: `Diagnose() -> s` of `interface`. Lives on the main thread; costs a table
/// entry of sd-bus between requests.
class DiagnosisService final : public BusConnection::Listener {
 public:
  static constexpr const char* interface = "local.vantora.Vantora.Diagnosis1";

  /// `answer` is called for each question, from the middle of a message: it must not end the
  /// connection.
  DiagnosisService(BusConnection& connection, std::function<std::string()> answer);
  ~DiagnosisService() override;
  DiagnosisService(const DiagnosisService&) = delete;
  DiagnosisService& operator=(const DiagnosisService&) = delete;

  void busConnected(sd_bus& bus) override;
  void busLost() override;

 private:
  static int diagnose(sd_bus_message* call, void* self, sd_bus_error* error);
  static const sd_bus_vtable table[];

  BusConnection& connection_;
  const std::function<std::string()> answer_;
  BusSlot object_;
};

/// The asking end: one question to the agent of this session, which is never started for it.
/// Lives on the main thread.
class AgentQuestion final : public BusConnection::Listener {
 public:
  enum class Outcome : std::uint8_t {
    answered,
    noBus,    ///< The session's bus cannot be reached, or does not answer.
    noAgent,  ///< The agent's name has no owner.
    older,    ///< An agent that does not know the question.
    silent,   ///< No answer in time, or not one that can be read.
  };
  /// How long the connection and the answer may take together.
  static constexpr Seconds timeout{2};

  /// Asks once the connection is established; construct it just before it is opened. `done`
  /// comes once, on the main thread; `text` is the agent's, of any length and content, and only
  /// good during the call.
  AgentQuestion(BusConnection& connection, TaskQueue& queue,
                std::function<void(Outcome outcome, const char* text)> done);
  ~AgentQuestion() override;
  AgentQuestion(const AgentQuestion&) = delete;
  AgentQuestion& operator=(const AgentQuestion&) = delete;

  void busConnected(sd_bus& bus) override;
  void busLost() override;

 private:
  static int onAnswer(sd_bus_message* reply, void* self, sd_bus_error* error);
  void finish(Outcome outcome, const char* text = "");

  BusConnection& connection_;
  std::function<void(Outcome, const char*)> done_;
  TimerHandle limit_;
  BusSlot call_;
};

}  // namespace vantora
