// SPDX-License-Identifier: MIT
//
// The status item on Linux: one StatusNotifierItem whose picture suits the panel that
// shows it.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/popup_menu.hpp"
#include "app/status_item.hpp"
#include "app/tool_tip.hpp"
#include "platform/linux/appearance_portal.hpp"
#include "platform/linux/bus_connection.hpp"
#include "platform/linux/dbus_menu.hpp"
#include "platform/linux/status_item_host.hpp"
#include "platform/linux/status_item_picture.hpp"
#include "platform/linux/status_notifier_item.hpp"
#include "platform/linux/status_notifier_watcher.hpp"
#include "platform/linux/xembed_window.hpp"

namespace vantora {

/// Lives on the main thread. Nothing is drawn before a panel asks for the picture, and
/// nothing is announced that has not changed.
class LinuxStatusItem final : public StatusItem,
                              private StatusNotifierContent,
                              private StatusNotifierEvents {
 public:
  struct Options {
    std::string processRoot = "/proc";
    /// Pixels in a point on the session's finest screen; wide pictures are offered for
    /// every whole scale up to it.
    int largestScale = 1;
    /// How long a session may be without a panel before that is told: at login and when
    /// a panel restarts it takes a while.
    Seconds patience{5};
  };

  struct TrayPopups {
    PopupMenu& menu;
    ToolTip& toolTip;
  };

  /// `onSituation` comes when the situation has changed, "noHost" only after the
  /// patience. Everything given here outlives the item.
  LinuxStatusItem(BusConnection& connection, TaskQueue& queue, TextEngine& engine, Options options,
                  std::function<void(StatusItemSituation)> onSituation);
  ~LinuxStatusItem() override;
  LinuxStatusItem(const LinuxStatusItem&) = delete;
  LinuxStatusItem& operator=(const LinuxStatusItem&) = delete;

  /// Lets the item dock as a window in an X11 tray: where the panel keeps that wide but
  /// not a StatusNotifierItem, and where no panel takes the latter. `display` as in
  /// DISPLAY; `popups` open there what a panel would, and outlive the item. Once, before
  /// the loop runs.
  void useTray(uv_loop_t& loop, std::string display, TrayPopups popups);

  [[nodiscard]] double thickness() const override;
  void show(const StatusPresentation& presentation) override;
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

  void chosen(StatusMenuCommand command);
  void watcherChanged(const StatusNotifierWatcher::State& state);
  void colorSchemeChanged(ColorScheme scheme);
  void patienceEnded();
  void startTray();
  void trayIsOverdue();
  [[nodiscard]] bool awaitsTray() const;
  void trayChanged(XEmbedWindow::State state);
  [[nodiscard]] AlphaBitmap trayPicture(int width, int height, int scale);
  void trayClicked(const XEmbedWindow::Click& click);
  void openTrayMenu(const XEmbedWindow::Click& click);
  void pointerEntered(ScreenPoint pointer);
  void pointerLeft();
  [[nodiscard]] bool isDark() const;
  [[nodiscard]] bool isPaused() const;
  [[nodiscard]] bool isInTray() const;
  [[nodiscard]] bool isRegistered() const;
  void tellSituation(StatusItemSituation situation);
  [[nodiscard]] PictureForm form() const;
  void takeColumns();

  BusConnection& connection_;
  TaskQueue& queue_;
  TextEngine& engine_;
  Options options_;
  std::function<void(StatusItemSituation)> onSituation_;

  // Tasks that will call them hold them weakly: they may come after the item's end.
  std::shared_ptr<const StatusItemActions> actions_;

  StatusImage image_;
  std::string text_;
  ModuleColumn squareModule_;  // kept for the square form only
  std::string label_;          // kept for the label form only

  StatusNotifierWatcher::State watcherState_;
  ColorScheme colorScheme_ = ColorScheme::noPreference;
  bool hasTold_ = false;
  StatusItemSituation told_ = StatusItemSituation::shown;
  TimerHandle patience_;

  // Ended first of all. It is here because the watcher tells at once how things stand.
  std::unique_ptr<XEmbedWindow> tray_;
  std::optional<TrayPopups> popups_;
  TimerHandle hover_;
  bool isTrayTooNarrow_ = false;  // for the panel that is there now
  bool isTrayOverdue_ = false;    // of the panel that is there now
  TimerHandle trayWait_;

  // Destroyed before what they call.
  StatusNotifierItem item_;
  AppearancePortal portal_;
  StatusNotifierWatcher watcher_;
  std::unique_ptr<DBusMenu> menu_;
};

}  // namespace vantora
