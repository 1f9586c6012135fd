// SPDX-License-Identifier: MIT
//
// The status item on Linux: one StatusNotifierItem whose picture suits the panel that
// shows it, or one for each module.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/bus/bus_connection.hpp"
#include "platform/linux/panels/panel.hpp"
#include "platform/linux/status_item/appearance_portal.hpp"
#include "platform/linux/status_item/dbus_menu.hpp"
#include "platform/linux/status_item/item_pictures.hpp"
#include "platform/linux/status_item/module_items.hpp"
#include "platform/linux/status_item/posted_actions.hpp"
#include "platform/linux/status_item/status_item_report.hpp"
#include "platform/linux/status_item/status_item_situation.hpp"
#include "platform/linux/status_item/status_notifier_item.hpp"
#include "platform/linux/status_item/status_notifier_watcher.hpp"
#include "platform/linux/status_item/tray_pointer.hpp"
#include "platform/linux/x11_tray/xembed_window.hpp"
#include "ports/status_item.hpp"

namespace vantora {

/// Lives on the main thread. Nothing is drawn before a panel asks for the picture, and
/// nothing is announced that has not changed.
class LinuxStatusItem final : public StatusItem,
                              private StatusNotifierContent,
                              private StatusNotifierEvents {
 public:
  struct Options {
    std::string processRoot = "/proc";
    /// Reads the configuration of a panel that has one to tell whether it is vertical; none is
    /// read without it. Outlives the item.
    Worker* fileWorker = nullptr;
    /// How long a session may be without a panel before that is reported: at login and when
    /// a panel restarts it takes a while.
    Seconds hostTimeout{5};
    /// Gets a line of Portuguese whenever the item is shown elsewhere or otherwise.
    std::function<void(const std::string& line)> onDecision;
    /// The panel is offered the picture for one scale alone, and setScreenScale() would choose it.
    /// May come again.
    std::function<void()> onScaleWanted;
  };

  using TrayPopups = TrayPointer::Popups;

  /// `onSituation` comes when the situation has changed, "noHost" only after
  /// `hostTimeout`. Everything given here outlives the item.
  LinuxStatusItem(BusConnection& connection, TaskQueue& queue, TextEngine& engine, Options options,
                  std::function<void(StatusItemSituation)> onSituation);
  ~LinuxStatusItem() override;
  LinuxStatusItem(const LinuxStatusItem&) = delete;
  LinuxStatusItem& operator=(const LinuxStatusItem&) = delete;

  /// Lets the item dock as a window in an X11 tray: where the panel keeps that wide but
  /// not a StatusNotifierItem, and where no panel takes the latter. `display` as in
  /// DISPLAY, spoken to on `thread`; `popups` open there what a panel would. Both outlive
  /// the item. Once, before the loop runs.
  void useTray(DisplayThread& thread, std::string display, TrayPopups popups);

  /// Which module a square shows where the panel keeps only one; nothing leaves it to the item.
  void setSquareModule(const std::optional<UUID>& module);

  /// The largest scale of the session's screens; nothing while it is not known.
  void setScreenScale(std::optional<int> scale);

  /// `onSquare` gets whether the panel keeps one square of the picture: now, and whenever that
  /// has changed.
  void setSquareListener(std::function<void(bool keepsSquare)> onSquare);

  [[nodiscard]] double thickness() const override;
  void show(const StatusPresentation& presentation) override;
  [[nodiscard]] StatusItemReport report() const override;
  /// Once, before the loop runs: panels ask for the menu when the item registers.
  void setActions(StatusItemActions actions) override;

 private:
  [[nodiscard]] std::size_t pictureCount() const override;
  [[nodiscard]] Picture picture(std::size_t index) override;
  [[nodiscard]] Ink ink() const override;
  [[nodiscard]] std::string toolTip() const override;
  [[nodiscard]] std::string accessibleDescription() const override;
  [[nodiscard]] std::string label() const override;
  void activated(std::string token) override;

  void watcherChanged(const StatusNotifierWatcher::State& state);
  void colorSchemeChanged(ColorScheme scheme);
  void hostTimedOut();
  void stopTray();
  void watchTray();
  void startTray();
  void trayIsOverdue();
  [[nodiscard]] bool awaitsTray() const;
  void trayChanged(XEmbedWindow::State state);
  [[nodiscard]] bool isInTray() const;
  [[nodiscard]] bool isRegistered() const;
  void reportStatus(StatusItemSituation situation);
  void explain();
  void reportSquare();
  [[nodiscard]] StatusItemFacts facts() const;
  [[nodiscard]] const Panel& panel() const { return *watcherState_.panel; }
  void layoutChanged();
  void orientationChanged(bool isVertical);
  void chooseScale();
  void putUpModules();

  BusConnection& connection_;
  TaskQueue& queue_;
  TextEngine& engine_;
  Options options_;
  std::function<void(StatusItemSituation)> onSituation_;

  PostedActions actions_;
  StatusNotifierWatcher::State watcherState_;
  ItemPictures pictures_;
  ColorScheme colorScheme_ = ColorScheme::noPreference;
  std::optional<int> screenScale_;
  std::optional<StatusItemSituation> reported_;
  std::string explained_;
  std::function<void(bool)> onSquare_;
  bool keepsSquare_ = false;  // as last reported
  TimerHandle hostTimeout_;
  bool hasHostTimedOut_ = false;  // since the last host or tray, or since the bus came

  std::unique_ptr<TrayPointer> trayPointer_;  // of `tray_`

  // Ended first of all. They are here because the watcher reports its state at once.
  std::unique_ptr<XEmbedWindow> tray_;
  std::unique_ptr<ModuleItems> modules_;  // in place of the item, where a panel keeps them in order
  bool isTrayTooNarrow_ = false;          // for the panel that is there now
  bool isTrayOverdue_ = false;            // of the panel that is there now
  TimerHandle trayWait_;

  // Destroyed before what they call.
  StatusNotifierItem item_;
  AppearancePortal portal_;
  StatusNotifierWatcher watcher_;
  std::unique_ptr<DBusMenu> menu_;
};

}  // namespace vantora
