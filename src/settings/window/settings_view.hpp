// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QMainWindow>
#include <QTabWidget>

#include <functional>
#include <string>
#include <vector>

#include "settings/window/settings_tab.hpp"
#include "settings/window_model.hpp"

namespace vantora {

/// "Configurações do Vantora": the six tabs, and the notice below them. Takes the model's
/// callbacks.
class SettingsView final : public QMainWindow {
 public:
  explicit SettingsView(WindowModel& model);

  [[nodiscard]] int currentTab() const { return tabs_->currentIndex(); }
  void setCurrentTab(int index) { tabs_->setCurrentIndex(index); }

  /// The window closes, or shows another tab: what is remembered of it is to be stored.
  std::function<void()> onPlaceChange;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void addTab(SettingsTab* tab, const char* title);
  void refresh(WindowFields fields);
  void showNotice();
  void raiseWith(const std::string& activationToken);

  WindowModel& model_;
  QTabWidget* tabs_;
  QLabel* notice_;
  std::vector<SettingsTab*> pages_;
};

}  // namespace vantora
