// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QPair>
#include <QWidget>

#include "settings/window/controls/controls.hpp"

namespace vantora {

/// Controls that are called by their own name and by what they belong to, in the order in
/// which the tab key goes through them.
class NamedControls {
 public:
  /// Notes the control under the name that it has.
  template <typename Control>
  Control* add(Control* control) {
    controls_.append({control, control->accessibleName()});
    return control;
  }

  /// Calls every control "its name, owner".
  void nameAfter(const QString& owner) {
    for (const auto& [control, own] : controls_) {
      const QString full = own + QStringLiteral(", ") + owner;
      if (control->accessibleName() != full) {
        Controls::setSpokenName(control, full);
      }
    }
  }

  /// Gives one of the controls another name of its own, to be followed by nameAfter().
  void rename(const QWidget* control, const QString& own) {
    for (auto& entry : controls_) {
      if (entry.first == control) {
        entry.second = own;
      }
    }
  }

  [[nodiscard]] QList<QWidget*> list() const {
    QList<QWidget*> list;
    for (const auto& [control, own] : controls_) {
      list.append(control);
    }
    return list;
  }

 private:
  QList<QPair<QWidget*, QString>> controls_;
};

}  // namespace vantora
