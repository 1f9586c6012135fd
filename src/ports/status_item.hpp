// SPDX-License-Identifier: MIT
//
// The one item in the system's status bar, as the app coordinator sees it.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "status/status_presentation.hpp"

namespace vantora {

/// What the user can ask of the item. One that is empty does nothing.
struct StatusItemActions {
  /// A left click, or "Configurações…" in the menu. `activationToken` is what the desktop
  /// gave with the click (xdg-activation, startup notification), with which a window may
  /// come to the front; empty where it gave none.
  std::function<void(std::string_view activationToken)> openSettings;
  /// "Pausar" or "Retomar".
  std::function<void()> togglePause;
  /// "Sair".
  std::function<void()> quit;
  /// Whether sampling is paused, which chooses between the two words: asked when a menu
  /// is about to open and whenever the item is shown anew.
  std::function<bool()> isPaused;
};

/// Where the item is shown and why so, for a person who looks for a fault: words of Portuguese
/// without a full stop. What is not known, or does not apply, is empty.
struct StatusItemReport {
  std::string panel;    ///< By its name; "desconhecido" for one that is not known.
  std::string program;  ///< The panel's process, as the system names it.
  std::string form;     ///< What of the picture is shown; "nenhuma" while nothing is.
  std::string formWhy;  ///< Why it has that form.
  std::string scale;    ///< Pixels for a point, or which sizes are offered.
  std::string ink;      ///< The colour of the texts.
  std::string inkWhy;   ///< Why it is that one.
  bool operator==(const StatusItemReport&) const = default;
};

/// Lives on the main thread.
class StatusItem {
 public:
  virtual ~StatusItem() = default;

  /// Height of the bar that shows the item, in points.
  [[nodiscard]] virtual double thickness() const = 0;

  /// Replaces what the item shows: picture (the item becomes `presentation.width` + 6
  /// points long), tool tip and accessibility label (both the accessibility text). An
  /// item that no bar shows at the moment keeps it for when one does.
  virtual void show(const StatusPresentation& presentation) = 0;

  /// Where and how the item is shown now. An item that is only lines of text has nothing to say.
  [[nodiscard]] virtual StatusItemReport report() const { return {}; }

  /// Says what clicks and the menu do; none do anything before. The actions are called on
  /// the main thread, never from inside of a call to the item. An item that cannot be
  /// clicked, as a line of text, never calls them.
  // By value, because the items that can be clicked keep it.
  // NOLINTNEXTLINE(performance-unnecessary-value-param)
  virtual void setActions(StatusItemActions /*actions*/) {}
};

}  // namespace vantora
