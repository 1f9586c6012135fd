// SPDX-License-Identifier: MIT
#include "settings/window/controls/controls.hpp"

#include <QEvent>
#include <QFrame>
#include <QGuiApplication>
#include <QScrollArea>
#include <QStyle>
#include <QStyleOption>
#include <QStylePainter>
#include <QWheelEvent>
#include <cmath>

#include "settings/toolkit/color_scheme.hpp"
#include "settings/window/controls/flow_layout.hpp"
#include "settings/window/controls/qt_text.hpp"

namespace vantora::Controls {
namespace {

constexpr float noteOpacity = 0.72F;

template <typename Control>
class WheelOnlyWithFocus : public Control {
 public:
  WheelOnlyWithFocus() { this->setFocusPolicy(Qt::StrongFocus); }

 protected:
  void wheelEvent(QWheelEvent* event) override {
    if (this->hasFocus()) {
      Control::wheelEvent(event);
    } else {
      event->ignore();
    }
  }
};

// Cuts a text that is too long with an ellipsis; the tool tip has all of it.
class Picker final : public WheelOnlyWithFocus<QComboBox> {
 protected:
  bool event(QEvent* event) override {
    if (event->type() == QEvent::ToolTip) {
      setToolTip(shownText() == currentText() ? QString() : currentText());
    }
    return WheelOnlyWithFocus::event(event);
  }
  void paintEvent(QPaintEvent* /*event*/) override {
    QStyleOptionComboBox option;
    initStyleOption(&option);
    option.currentText = shownText();
    QStylePainter painter(this);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
  }

 private:
  [[nodiscard]] QString shownText() const {
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const QRect place =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    return fontMetrics().elidedText(currentText(), Qt::ElideRight, place.width() - 2);
  }
};

// A label whose ink is the text colour made fainter, in whatever palette comes.
class NoteLabel final : public QLabel {
 public:
  NoteLabel() { fade(); }

 protected:
  void changeEvent(QEvent* event) override {
    if (event->type() == QEvent::PaletteChange) {
      fade();
    }
    QLabel::changeEvent(event);
  }

 private:
  void fade() {
    QColor ink = QGuiApplication::palette().color(QPalette::WindowText);
    ink.setAlphaF(looksHighContrast() ? 1.0F : noteOpacity);
    if (palette().color(QPalette::WindowText) == ink) {
      return;  // Its own change.
    }
    QPalette faded;  // Of which this one colour counts, the others stay the parent's.
    faded.setColor(QPalette::WindowText, ink);
    setPalette(faded);
  }
};

void dress(QLabel* label, const QString& text) {
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  label->setText(text);
}

}  // namespace

QSpinBox* makeSpinBox(const Limits& limits, const QString& spokenName) {
  auto* spin = new WheelOnlyWithFocus<QSpinBox>;
  spin->setRange(static_cast<int>(std::lround(limits.least)),
                 static_cast<int>(std::lround(limits.most)));
  spin->setSuffix(QStringLiteral(" pt"));
  // All alike, whatever their limits.
  spin->setMinimumWidth(spin->sizeHint().width() +
                        spin->fontMetrics().horizontalAdvance(QLatin1Char('0')) *
                            (3 - static_cast<int>(QString::number(spin->maximum()).size())));
  spin->setAccessibleName(spokenName);
  return spin;
}

QComboBox* makePicker(const QString& spokenName) {
  auto* picker = new Picker;
  setSpokenName(picker, spokenName);
  // Long titles are cut in the closed picker rather than made the width of everything.
  picker->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  picker->setMinimumContentsLength(8);
  picker->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  picker->setMaxVisibleItems(20);
  return picker;
}

void setSpokenName(QWidget* control, const QString& name) {
  control->setAccessibleName(name);
  if (qobject_cast<QComboBox*>(control) != nullptr) {
    control->setAccessibleDescription(name);
  }
}

QLabel* makeText(const QString& text) {
  auto* label = new QLabel;
  dress(label, text);
  return label;
}

QLabel* makeNote(std::string_view text) {
  auto* label = new NoteLabel;
  dress(label, qtText(text));
  return label;
}

QLabel* makeHeading(std::string_view text) {
  QLabel* label = makeText(qtText(text));
  QFont font = label->font();
  font.setBold(true);
  label->setFont(font);
  return label;
}

QPushButton* makeButton(std::string_view label, std::function<void()> pressed) {
  auto* button = new QPushButton(qtText(label));
  button->setAccessibleName(spokenName(label));
  button->setAutoDefault(false);
  QObject::connect(button, &QPushButton::clicked, button, std::move(pressed));
  return button;
}

void setUsable(QWidget* control, bool isUsable, std::string_view reason) {
  const QString why = isUsable ? QString() : qtText(reason);
  control->setEnabled(isUsable);
  control->setToolTip(why);
  control->setAccessibleDescription(why);
}

QFormLayout* makeForm() {
  auto* form = new QFormLayout;
  form->setRowWrapPolicy(QFormLayout::WrapLongRows);
  form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
  return form;
}

void addRow(QFormLayout* form, std::string_view label, QWidget* control) {
  auto* text = new QLabel(qtText(label));
  text->setBuddy(control);
  form->addRow(text, control);
}

QWidget* makeButtonRow(std::initializer_list<QPushButton*> buttons) {
  auto* row = new QWidget;
  auto* layout =
      new FlowLayout(row->style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing, nullptr, row));
  for (QPushButton* button : buttons) {
    layout->addWidget(button);
  }
  row->setLayout(layout);
  return row;
}

void addGroupGap(QVBoxLayout* column) {
  column->addSpacing(column->spacing() + 4);
}

QVBoxLayout* makeScrollingColumn(QWidget* page) {
  auto* outer = new QVBoxLayout(page);
  outer->setContentsMargins(0, 0, 0, 0);
  auto* area = new QScrollArea;
  area->setWidgetResizable(true);
  area->setFrameShape(QFrame::NoFrame);
  // The page's own ground shows through.
  area->viewport()->setAutoFillBackground(false);
  auto* content = new QWidget;
  auto* column = new QVBoxLayout(content);
  area->setWidget(content);
  content->setAutoFillBackground(false);
  outer->addWidget(area);
  return column;
}

}  // namespace vantora::Controls
