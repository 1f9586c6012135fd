// SPDX-License-Identifier: MIT
//
// Follows org.kde.StatusNotifierWatcher, with which panels and status items meet
// (freedesktop's StatusNotifierItem): registers our item whenever one appears, reports
// which panel it is, and whether any panel listens.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/bus/bus_connection.hpp"
#include "platform/linux/bus/bus_slot.hpp"
#include "platform/linux/panels/panel.hpp"
#include "runtime/worker.hpp"

namespace vantora {

/// Lives on the main thread.
class StatusNotifierWatcher final : public BusConnection::Listener {
 public:
  /// The watcher that is there now, and whether a panel shows its items.
  struct State {
    bool hasBus = false;
    bool isPresent = false;                ///< A watcher runs and `panel` is known.
    bool hasHost = false;                  ///< It says that a panel shows its items.
    const Panel* panel = &unknownPanel();  ///< Never null.
    /// The name of the watcher's process; empty while there is none, or it cannot be found out.
    std::string program = {};
    /// What the panel's configuration says. Nothing where there is none to read
    /// (Panel::readsLayout), and until it has been read.
    std::optional<PanelLayout> layout = {};
    bool operator==(const State&) const = default;
  };

  /// What is known of processes.
  struct Processes {
    std::string root = "/proc";
    Worker* worker = nullptr;  ///< Reads their configurations; null: not read.
  };

  /// `onChange` comes with the first state and whenever it has changed, before the item is
  /// registered with a new watcher. The worker reports on the main thread, and may outlive the
  /// watcher.
  StatusNotifierWatcher(BusConnection& connection, TaskQueue& queue, Processes processes,
                        std::function<void(const State&)> onChange);
  ~StatusNotifierWatcher() override;
  StatusNotifierWatcher(const StatusNotifierWatcher&) = delete;
  StatusNotifierWatcher& operator=(const StatusNotifierWatcher&) = delete;

  [[nodiscard]] const State& state() const { return state_; }

  /// Whether the item registers with watchers; true at first. Set to false
  /// while it is registered, it is withdrawn. May be called from inside of `onChange`.
  void setRegistering(bool isRegistering);

  void busConnected(sd_bus& bus) override;
  void busLost() override;

 private:
  using Reply = void (StatusNotifierWatcher::*)(sd_bus_message*);
  template <Reply reply>
  static int handle(sd_bus_message* message, void* self, sd_bus_error* error);

  void requestName();
  void subscribe();
  void onOwner(sd_bus_message* reply);
  void onOwnerChanged(sd_bus_message* signal);
  void onProcess(sd_bus_message* reply);
  void onRegistered(sd_bus_message* reply);
  void onHasHost(sd_bus_message* reply);
  void onHostAppeared(sd_bus_message* signal);
  void onHostLeft(sd_bus_message* signal);
  void onDropped(sd_bus_message* signal);

  void follow(const char* owner);
  void registerItem();
  void registerLater();
  void askForHost();
  void readLayout(const std::string& process);
  void setState(const State& state);

  BusConnection& connection_;
  TaskQueue& queue_;
  Processes processes_;
  std::function<void(const State&)> onChange_;
  std::string itemName_;
  State state_;
  bool hasReported_ = false;
  bool isRegistering_ = true;
  sd_bus* bus_ = nullptr;
  int failedRegistrations_ = 0;
  TimerHandle retry_;
  std::shared_ptr<bool> reading_;  // alive while the configuration of this panel is read
  BusSlot nameRequest_;
  BusSlot ownerMatch_;
  BusSlot hostAppearedMatch_;
  BusSlot hostLeftMatch_;
  BusSlot droppedMatch_;
  BusSlot ownerCall_;
  BusSlot processCall_;
  BusSlot registerCall_;
  BusSlot hasHostCall_;
};

}  // namespace vantora
