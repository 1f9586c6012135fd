// SPDX-License-Identifier: MIT
//
// The small pieces that the tabs are made of, alike everywhere.
#pragma once

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <functional>
#include <string_view>

#include "model/configuration.hpp"

namespace vantora::Controls {

/// A stepper of whole points. Neither it nor a picker takes the mouse wheel unless it has
/// the focus: a wheel that scrolls the tab must change nothing.
[[nodiscard]] QSpinBox* makeSpinBox(const Limits& limits, const QString& spokenName);
[[nodiscard]] QComboBox* makePicker(const QString& spokenName);

/// Names a control for assistive tools. A picker is described by its name, too: on the
/// accessibility bus of Linux its name is the choice that it shows.
void setSpokenName(QWidget* control, const QString& name);

/// A text that wraps and can be selected; never taken for markup.
[[nodiscard]] QLabel* makeText(const QString& text = {});
/// The same in the fainter dress of an explanation.
[[nodiscard]] QLabel* makeNote(std::string_view text);
[[nodiscard]] QLabel* makeHeading(std::string_view text);
[[nodiscard]] QPushButton* makeButton(std::string_view label, std::function<void()> pressed);

/// Enables a control, or disables it and says why, as tool tip and to assistive tools.
void setUsable(QWidget* control, bool isUsable, std::string_view reason);

/// A form whose rows put the control below its label where both do not fit.
[[nodiscard]] QFormLayout* makeForm();
/// A row of a form, the label leading to the control.
void addRow(QFormLayout* form, std::string_view label, QWidget* control);
/// Buttons side by side, at the beginning of the line; on several lines where needed.
[[nodiscard]] QWidget* makeButtonRow(std::initializer_list<QPushButton*> buttons);

/// The larger distance between what does not belong together.
void addGroupGap(QVBoxLayout* column);

/// Fills `page` with a column of content that scrolls where the window is too small.
[[nodiscard]] QVBoxLayout* makeScrollingColumn(QWidget* page);

}  // namespace vantora::Controls
