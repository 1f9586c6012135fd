// SPDX-License-Identifier: MIT
//
// One agent in a session: the agent owns a name on the session bus, and a second start
// asks the running instance to show its window and ends (freedesktop.org, Desktop Entry
// Specification, "D-Bus Activation", interface org.freedesktop.Application).
//
// The bus releases the name with the connection: an agent that crashed does not block the
// next start.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/linux/bus/bus_connection.hpp"
#include "platform/linux/bus/bus_slot.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// What a launcher passes to a program so that its window may take the focus. Empty where
/// it passes nothing.
struct LaunchTokens {
  std::string activation;  ///< Wayland's, $XDG_ACTIVATION_TOKEN
  std::string startupId;   ///< X11's, $DESKTOP_STARTUP_ID

  /// From the values of the two variables, null when unset. What is not printable ASCII
  /// is no token and must not go on the bus.
  [[nodiscard]] static LaunchTokens from(const char* activationToken, const char* startupId);
};

/// Whether this process is the session's agent.
enum class ApplicationStart {
  first,            ///< It is: it owns the name, or there is no bus to ask.
  another,          ///< Another one is, and shows its window for us.
  startingAnother,  ///< Another one is, and has only just started: it shows no window yet.
  silentAnother     ///< Another one is, and did not answer.
};

/// Lives on the main thread. Once the start is decided nothing is scheduled, and nothing
/// wakes the process up but calls of it.
class ApplicationService final : public BusConnection::Listener {
 public:
  static constexpr const char* name = "local.vantora.Vantora";
  static constexpr const char* path = "/local/vantora/Vantora";
  static constexpr const char* interface = "org.freedesktop.Application";
  /// The answer to a start that comes too soon for a window.
  static constexpr const char* notYetError = "local.vantora.Error.NotYet";
  /// How long to wait for the answer of the bus, or of another agent.
  static constexpr Seconds startTimeout{2};

  /// Requests the name as soon as the connection is established. `tokens` are passed on
  /// to the agent that owns it. Construct it just before the connection is opened.
  ApplicationService(BusConnection& connection, TaskQueue& queue, LaunchTokens tokens);
  ~ApplicationService() override;
  ApplicationService(const ApplicationService&) = delete;
  ApplicationService& operator=(const ApplicationService&) = delete;

  /// Empty until it is decided, at most `startTimeout` after the construction; final from
  /// then on. Without a bus it is `first` at once.
  [[nodiscard]] std::optional<ApplicationStart> start() const { return start_; }

  /// The program was started again; with the token for the window, or empty. Returns whether
  /// the window is shown, which the other start then says. Called from the middle of a
  /// message: it must not end the connection. Before it is set no window is shown.
  std::function<bool(const std::string& token)> onActivate;

  /// There was no bus for a while, and now another agent has the name. An agent
  /// that is in use is not ended: both go on, the other one answers new starts, and this
  /// one takes the name when the other ends. Called once each time.
  std::function<void()> onRival;

  void busConnected(sd_bus& bus) override;
  void busLost() override;

 private:
  using Handler = void (ApplicationService::*)(sd_bus_message*);
  template <Handler handler>
  static int handle(sd_bus_message* message, void* self, sd_bus_error* error);
  static int activate(sd_bus_message* call, void* self, sd_bus_error* error);
  static int open(sd_bus_message* call, void* self, sd_bus_error* error);
  static int activateAction(sd_bus_message* call, void* self, sd_bus_error* error);
  static const sd_bus_vtable table[];

  void requestName();
  void onName(sd_bus_message* reply);
  void askOwner();
  void onAnswer(sd_bus_message* reply);
  void followOwner();
  void onOwnerChanged(sd_bus_message* signal);
  void decide(ApplicationStart start);
  int reopen(sd_bus_message* call);

  BusConnection& connection_;
  const LaunchTokens tokens_;
  sd_bus* bus_ = nullptr;
  std::optional<ApplicationStart> start_;
  int timesAsked_ = 0;
  TimerHandle limit_;  // only until the start is decided
  BusSlot object_;
  BusSlot nameCall_;
  BusSlot askCall_;
  BusSlot ownerMatch_;  // only while a rival has the name
};

}  // namespace vantora
