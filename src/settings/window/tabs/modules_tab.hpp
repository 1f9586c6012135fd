// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>
#include <vector>

#include "settings/window/modules/module_row.hpp"
#include "settings/window/readings/status_preview.hpp"
#include "settings/window/tabs/settings_tab.hpp"

namespace vantora {

/// "Módulos": the bar enlarged, and the modules in their order, which the user changes by
/// dragging. One of them is open for editing, the others are folded.
class ModulesTab final : public SettingsTab {
 public:
  explicit ModulesTab(WindowModel& model);
  void refresh(WindowFields fields) override;

  /// The tab of this integration is asked for.
  std::function<void(MetricFamily)> onQuotaTab;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void addPreview(QVBoxLayout* column);
  void addList(QVBoxLayout* column);
  void addButtons(QVBoxLayout* column);
  void showModules();
  void showReadings();
  void opened(ModuleRow* row);
  void goTo(const UUID& id);
  [[nodiscard]] QString describe(const UUID& id) const;
  [[nodiscard]] ModuleRow* makeRow(const UUID& id);
  [[nodiscard]] ModuleRow* rowOf(const UUID& id) const;
  [[nodiscard]] std::size_t placeOf(const ModuleRow* row) const;
  void scrollToPending();
  void bringIntoView(ModuleRow* row);
  void joinTabOrder() const;

  void move(ModuleRow* row, DragHandle::Step step);
  void drag(ModuleRow* row, QPoint globalPosition);
  void drop(ModuleRow* row, bool isCancelled);
  void endDrag();
  void showDropPlace();

  StatusPreview* preview_;
  QLabel* caption_;
  QScrollArea* area_;
  class RepeatingScrollBar;
  RepeatingScrollBar* scrollBar_;
  QWidget* list_;
  QVBoxLayout* layout_;
  QLabel* empty_;
  QFrame* dropLine_;
  std::vector<QPushButton*> addButtons_;
  MetricSet missing_;             // What this machine was found not to have.
  std::vector<ModuleRow*> rows_;  // in the order of the modules
  ModuleRow* dragged_ = nullptr;
  QPoint dragPosition_;        // on the screen, while a row is dragged
  std::size_t dropPlace_ = 0;  // before which row the dragged one would go
};

}  // namespace vantora
