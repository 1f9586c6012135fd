// SPDX-License-Identifier: MIT
//
// One agent in a session: the agent owns a name on the session bus, and a second start
// asks its owner to come forward instead of running beside it (freedesktop.org, Desktop
// Entry Specification, "D-Bus Activation", interface org.freedesktop.Application).
//
// The name goes with the connection, so that nothing of an agent that crashed is left to
// stand in the way of the next start.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/linux/bus_connection.hpp"
#include "platform/linux/bus_slot.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// What whoever launches a program gives it, so that a window of its may come to the
/// front. Empty where nothing was given.
struct LaunchTokens {
  std::string activation;  ///< Wayland's, $XDG_ACTIVATION_TOKEN
  std::string startupId;   ///< X11's, $DESKTOP_STARTUP_ID

  /// From the values of the two variables, null when unset. What is not printable ASCII
  /// is no token and must not go on the bus.
  [[nodiscard]] static LaunchTokens from(const char* activationToken, const char* startupId);
};

/// Whether this process is the session's agent.
enum class ApplicationStart {
  first,         ///< It is: it owns the name, or there is nobody who could tell.
  another,       ///< Another one is, and has taken our request.
  silentAnother  ///< Another one is, and did not answer.
};

/// Lives on the main thread. Once the start is decided nothing is scheduled, and nothing
/// wakes the process up but calls of it.
class ApplicationService final : public BusConnection::Listener {
 public:
  static constexpr const char* name = "local.vantora.Vantora";
  static constexpr const char* path = "/local/vantora/Vantora";
  static constexpr const char* interface = "org.freedesktop.Application";
  /// A bus, or another agent, that has not answered by then is waited for no longer.
  static constexpr Seconds longestStart{2};

  /// Takes the name as soon as the connection stands. `tokens` are passed on to the
  /// agent that has it. Make it just before the connection is opened.
  ApplicationService(BusConnection& connection, TaskQueue& queue, LaunchTokens tokens);
  ~ApplicationService() override;
  ApplicationService(const ApplicationService&) = delete;
  ApplicationService& operator=(const ApplicationService&) = delete;

  /// Nothing until it is decided, at longest `longestStart` after the construction; then
  /// it stays. Without a bus it is `first` at once.
  [[nodiscard]] std::optional<ApplicationStart> start() const { return start_; }

  /// Somebody started the program again; with the token for the window, or empty. Comes
  /// from the middle of a message: it must not end the connection. Requests that come
  /// before this is set are answered and do nothing.
  std::function<void(const std::string& token)> onActivate;

  /// There was no bus for a while, and now another agent has the name. A program that a
  /// person sees is not taken away under their hands: both go on, new starts are the
  /// other one's, and this one takes the name when the other ends. Once each time.
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
