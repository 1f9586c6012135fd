// SPDX-License-Identifier: MIT
#pragma once

#include <QBoxLayout>
#include <QLabel>
#include <QWidget>
#include <functional>

#include "settings/conversation/window_model.hpp"
#include "settings/window/controls/form.hpp"
#include "settings/window/controls/named_controls.hpp"
#include "settings/window/readings/live_reading.hpp"

namespace vantora {

/// The open part of a module's row: every member of its configuration except whether it is
/// active, its copy and its removal.
class ModuleEditor final : public QWidget {
 public:
  using Edit = Form<ModuleConfiguration>::Edit;

  ModuleEditor(WindowModel& model, const UUID& id, Edit edit);

  /// The tab of this integration is asked for.
  std::function<void(MetricFamily)> onQuotaTab;

  /// Shows the module; `name` is what its controls are called after.
  void load(const AppConfiguration& configuration, const ModuleConfiguration& module,
            const QString& name);
  /// Shows what the two lines read, and marks what this machine has not got.
  void showReadings(const LiveReading::Content& top, const LiveReading::Content& bottom,
                    MetricSet missing);
  /// Whether the bar shows the module; a module of fans may hide itself.
  void showVisibility(const QString& text);
  void focusFirstPicker();
  [[nodiscard]] QList<QWidget*> controls() const {
    return QList<QWidget*>{quotaButton_} + named_.list();
  }

  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  QWidget* makeLines();
  QWidget* makeWidthHalf();
  QWidget* makeFontHalf();
  QWidget* makeQuotaNote();
  void showQuotaNote(const AppConfiguration& configuration, const ModuleConfiguration& module);
  [[nodiscard]] static QString hideFansNarrowText();
  [[nodiscard]] int hideFansWidth(const QString& text) const;

  WindowModel& model_;
  UUID id_;
  Edit edit_;
  Form<ModuleConfiguration> form_;
  NamedControls named_;
  QComboBox* top_ = nullptr;
  QComboBox* bottom_ = nullptr;
  LiveReading* topReading_;
  LiveReading* bottomReading_;
  QBoxLayout* lines_[2] = {};
  QBoxLayout* halves_ = nullptr;
  QCheckBox* hasOwnGap_ = nullptr;
  QSpinBox* ownGap_ = nullptr;
  QWidget* fans_ = nullptr;
  QCheckBox* hideFans_ = nullptr;
  QLabel* visibility_ = nullptr;
  QWidget* quota_ = nullptr;
  QLabel* quotaText_ = nullptr;
  QPushButton* quotaButton_ = nullptr;
  MetricFamily quotaFamily_ = MetricFamily::codex;
  QPushButton* duplicate_ = nullptr;
};

}  // namespace vantora
