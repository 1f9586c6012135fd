// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "app/status_item.hpp"

namespace vantora {

/// An NSStatusItem in the system's status bar, there as long as this object. A left click
/// opens the settings, a right click the menu.
class AppKitStatusItem final : public StatusItem {
 public:
  AppKitStatusItem();
  ~AppKitStatusItem() override;
  AppKitStatusItem(const AppKitStatusItem&) = delete;
  AppKitStatusItem& operator=(const AppKitStatusItem&) = delete;

  [[nodiscard]] double thickness() const override;
  void show(const StatusPresentation& presentation) override;
  void setActions(StatusItemActions actions) override;

 private:
  struct Item;
  std::unique_ptr<Item> item_;
};

}  // namespace vantora
