// SPDX-License-Identifier: MIT
#pragma once

#include <QMainWindow>
#include <QTabWidget>
#include <QTimer>

#include <functional>
#include <string>
#include <vector>

#include "settings/conversation/window_model.hpp"
#include "settings/window/footer.hpp"
#include "settings/window/tabs/settings_tab.hpp"

namespace vantora {

/// "Configurações do Vantora": the six tabs, and below them the notice, whether collecting is
/// paused, and what can be undone. Takes the model's callbacks.
class SettingsView final : public QMainWindow {
 public:
  explicit SettingsView(WindowModel& model);
  ~SettingsView() override;
  SettingsView(const SettingsView&) = delete;
  SettingsView& operator=(const SettingsView&) = delete;

  [[nodiscard]] int currentTab() const { return tabs_->currentIndex(); }
  void setCurrentTab(int index) { tabs_->setCurrentIndex(index); }

  /// How long a notice is shown at least, in milliseconds: the agent clears one as soon as
  /// the next save has succeeded.
  static constexpr int minNoticeDuration = 5'000;

  /// The window closes, or shows another tab: what is remembered of it is to be stored.
  std::function<void()> onPlaceChange;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void addTab(SettingsTab* tab, const char* title);
  void refresh(WindowFields fields);
  void showNotice();
  void raiseWith(const std::string& activationToken);

  WindowModel& model_;
  QTabWidget* tabs_;
  Footer* footer_;
  QTimer noticeTimer_{this};
  std::vector<SettingsTab*> pages_;
};

}  // namespace vantora
