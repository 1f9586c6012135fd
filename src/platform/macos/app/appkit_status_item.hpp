// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "ports/status_item.hpp"
#include "runtime/clock.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// An NSStatusItem in the system's status bar, there as long as this object. A left click
/// opens the settings, a right click the menu.
class AppKitStatusItem final : public StatusItem {
 public:
  /// A tool tip whose text is set anew starts its delay anew, and one that is shown goes
  /// away: with readings that change every second it would never be seen. So its text
  /// changes this often at most, which is about as long as a tool tip is shown.
  static constexpr Seconds toolTipInterval{10};

  /// Both must outlive it.
  AppKitStatusItem(TaskQueue& mainQueue, const Clock& clock);
  ~AppKitStatusItem() override;
  AppKitStatusItem(const AppKitStatusItem&) = delete;
  AppKitStatusItem& operator=(const AppKitStatusItem&) = delete;

  [[nodiscard]] double thickness() const override;
  void show(const StatusPresentation& presentation) override;
  void setActions(StatusItemActions actions) override;

 private:
  void setToolTip();

  struct Item;
  TaskQueue& mainQueue_;
  const Clock& clock_;
  std::unique_ptr<Item> item_;
};

}  // namespace vantora
