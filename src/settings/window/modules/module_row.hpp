// SPDX-License-Identifier: MIT
#pragma once

#include <QBoxLayout>
#include <QFrame>
#include <QList>
#include <QToolButton>
#include <functional>

#include "settings/conversation/window_model.hpp"
#include "settings/window/controls/form.hpp"
#include "settings/window/controls/named_controls.hpp"
#include "settings/window/modules/drag_handle.hpp"
#include "settings/window/modules/module_editor.hpp"
#include "settings/window/readings/live_reading.hpp"

namespace vantora {

/// One module in the list: a line with what it shows and reads, which unfolds to all of its
/// configuration.
class ModuleRow final : public QFrame {
 public:
  ModuleRow(WindowModel& model, const UUID& id);

  [[nodiscard]] const UUID& id() const { return id_; }
  [[nodiscard]] DragHandle& handle() const { return *handle_; }

  /// The user folds or unfolds the row.
  std::function<void(bool isOpen)> onOpen;
  /// The tab of this integration is asked for.
  std::function<void(MetricFamily)> onQuotaTab;

  /// Shows the module, which is at `index` of the configuration.
  void load(const AppConfiguration& configuration, std::size_t index);
  /// Shows what its lines read. `missing`: what this machine was found not to have.
  void showReadings(const WindowState& state, MetricSet missing);
  [[nodiscard]] bool isOpen() const { return isOpen_; }
  void setOpen(bool isOpen);
  void focusFirstPicker();
  void focusLine();
  /// In the order in which the tab key goes through them.
  [[nodiscard]] QList<QWidget*> controls() const;
  /// Faint while the row is dragged.
  void setLifted(bool isLifted);

  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void mouseReleaseEvent(QMouseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void edit(const std::function<void(ModuleConfiguration&)>& change);
  void unfold();
  void nameAfterModule();
  void showReadings();
  [[nodiscard]] LiveReading::Content content(MetricID metric, bool isInLine,
                                             const char* line) const;
  [[nodiscard]] int lineWidth(QBoxLayout::Direction direction) const;
  [[nodiscard]] int sideMargins() const;

  WindowModel& model_;
  UUID id_;
  Form<ModuleConfiguration> form_;
  NamedControls named_;
  DragHandle* handle_;
  QHBoxLayout* line_;
  QBoxLayout* cells_;
  LiveReading* top_;
  LiveReading* bottom_;
  LiveReading* hidden_;
  QToolButton* open_;
  bool isOpen_ = false;
  ModuleEditor* editor_ = nullptr;  // From the first time that the row is open.

  ModuleConfiguration module_;
  std::size_t index_ = 0;
  const WindowState* state_ = nullptr;
  MetricSet missing_;
};

}  // namespace vantora
