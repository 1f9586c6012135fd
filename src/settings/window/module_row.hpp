// SPDX-License-Identifier: MIT
#pragma once

#include <QBoxLayout>
#include <QFrame>
#include <QList>
#include <QPair>

#include "settings/window/drag_handle.hpp"
#include "settings/window/form.hpp"
#include "settings/window_model.hpp"

namespace vantora {

/// One module in the list: every member of its configuration, its copy and its removal.
class ModuleRow final : public QFrame {
 public:
  ModuleRow(WindowModel& model, const UUID& id);

  [[nodiscard]] const UUID& id() const { return id_; }
  [[nodiscard]] DragHandle& handle() const { return *handle_; }

  /// Shows the module, which stands at `index` of the configuration.
  void load(const AppConfiguration& configuration, std::size_t index);
  void focusFirstPicker();
  /// In the order in which the tab key goes through them.
  [[nodiscard]] QList<QWidget*> controls() const;
  /// Faint while the row is dragged.
  void setLifted(bool isLifted);

  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void edit(const std::function<void(ModuleConfiguration&)>& change);
  [[nodiscard]] QWidget* makeContentHalf();
  [[nodiscard]] QWidget* makeShapeHalf();
  [[nodiscard]] int sideMargins() const;
  [[nodiscard]] static QString hideFansNarrowText();
  [[nodiscard]] int hideFansWidth(const QString& text) const;
  void nameAfterModule(const ModuleConfiguration& module, std::size_t index);
  // Notes the control as one that is named after the module.
  template <typename Control>
  Control* named(Control* control) {
    named_.append({control, control->accessibleName()});
    return control;
  }

  WindowModel& model_;
  UUID id_;
  Form<ModuleConfiguration> form_;
  QList<QPair<QWidget*, QString>> named_;
  DragHandle* handle_;
  QBoxLayout* header_;
  QComboBox* firstPicker_ = nullptr;
  QCheckBox* hasOwnGap_ = nullptr;
  QSpinBox* ownGap_ = nullptr;
  QCheckBox* hideFans_ = nullptr;
  QBoxLayout* halves_ = nullptr;
};

}  // namespace vantora
