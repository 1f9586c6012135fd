// SPDX-License-Identifier: MIT
#include "settings/window/modules/metric_picker.hpp"

#include <QAbstractItemView>
#include <QPainter>
#include <QStyledItemDelegate>

#include "settings/toolkit/color_scheme.hpp"
#include "settings/window/controls/qt_text.hpp"

namespace vantora::MetricPicker {
namespace {

constexpr const char* missingMark = " (sem leitura nesta máquina)";

// The families as people see them: what a separator stands between.
enum class Group { none, battery, network, cpu, fans, power, codex, claude };

Group groupOf(MetricID metric) {
  switch (metric) {
    case MetricID::none:
      return Group::none;
    case MetricID::batteryPercent:
    case MetricID::batteryTime:
    case MetricID::batteryTemperature:
      return Group::battery;
    case MetricID::upload:
    case MetricID::download:
      return Group::network;
    case MetricID::cpuUsage:
    case MetricID::cpuTemperature:
      return Group::cpu;
    case MetricID::fan1Percent:
    case MetricID::fan2Percent:
    case MetricID::fan1RPM:
    case MetricID::fan2RPM:
      return Group::fans;
    case MetricID::adapterWatts:
    case MetricID::inputWatts:
    case MetricID::batteryChargeWatts:
      return Group::power;
    case MetricID::codexWeeklyPercent:
    case MetricID::codexWeeklyReset:
      return Group::codex;
    case MetricID::claudeWeeklyPercent:
    case MetricID::claudeSessionPercent:
      return Group::claude;
  }
  return Group::none;
}

// Shows in the open list what assistive tools read there; the closed picker has the title.
class MarkedItems final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    if (index.data(Qt::AccessibleDescriptionRole).toString() == QLatin1String("separator")) {
      QStyleOptionViewItem line = option;
      const int middle = line.rect.center().y();
      painter->fillRect(line.rect.left() + 4, middle, line.rect.width() - 8, 1,
                        line.palette.color(QPalette::Mid));
      return;
    }
    QStyledItemDelegate::paint(painter, option, index);
  }
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                               const QModelIndex& index) const override {
    if (index.data(Qt::AccessibleDescriptionRole).toString() == QLatin1String("separator")) {
      return {0, 7};
    }
    return QStyledItemDelegate::sizeHint(option, index);
  }

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    const QString marked = index.data(Qt::AccessibleTextRole).toString();
    if (!marked.isEmpty()) {
      option->text = marked;
      QColor faint = option->palette.color(QPalette::Text);
      faint.setAlphaF(looksHighContrast() ? 1 : 0.6F);
      option->palette.setColor(QPalette::Text, faint);
    }
  }
};

}  // namespace

void dress(QComboBox* picker) {
  for (int index = picker->count() - 1; index > 0; --index) {
    const auto metricAt = [&](int place) {
      return static_cast<MetricID>(picker->itemData(place).toInt());
    };
    if (groupOf(metricAt(index)) != groupOf(metricAt(index - 1))) {
      picker->insertSeparator(index);
    }
  }
  picker->setItemDelegate(new MarkedItems(picker));
  mark(picker, {});
}

void mark(QComboBox* picker, MetricSet missing) {
  bool isChanged = false;
  for (int index = 0; index < picker->count(); ++index) {
    const QVariant value = picker->itemData(index);
    if (!value.isValid()) {
      continue;  // a separator
    }
    const QString text = missing.contains(static_cast<MetricID>(value.toInt()))
                             ? picker->itemText(index) + qtText(missingMark)
                             : QString();
    if (picker->itemData(index, Qt::AccessibleTextRole).toString() != text) {
      picker->setItemData(index, text.isEmpty() ? QVariant() : QVariant(text),
                          Qt::AccessibleTextRole);
      isChanged = true;
    }
  }
  QAbstractItemView* list = picker->view();
  if (isChanged || list->minimumWidth() == 0) {
    // The open list shows every title in full, however narrow the picker is.
    list->setMinimumWidth(list->sizeHintForColumn(0) + 2 * list->frameWidth() +
                          list->fontMetrics().height() * 2);
  }
}

}  // namespace vantora::MetricPicker
