// SPDX-License-Identifier: MIT
//
// Controls that are bound to members of a value. A tab says in a table which member a
// control is for, how it is called and what it allows; the form makes the controls, loads
// them from the value and turns what the user does into edits. Loading edits nothing.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QSignalBlocker>
#include <QSpinBox>
#include <cmath>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include "model/configuration.hpp"
#include "settings/window/controls/controls.hpp"
#include "settings/window/controls/qt_text.hpp"

namespace vantora {

/// A number of points, shown and edited as a whole one.
template <typename Owner>
struct NumberField {
  std::string_view label;
  Limits limits;
  double (*get)(const Owner&);
  void (*set)(Owner&, double);
};

template <typename Owner>
struct SwitchField {
  std::string_view label;
  bool (*get)(const Owner&);
  void (*set)(Owner&, bool);
};

struct ChoiceOption {
  std::string_view text;
  int value;
};
template <typename Owner>
struct ChoiceField {
  std::string_view label;
  std::vector<ChoiceOption> options;
  int (*get)(const Owner&);
  void (*set)(Owner&, int);
};

/// The accessors of a member that is stored as it is shown.
template <auto Member>
struct Access;
template <typename Owner, typename Value, Value Owner::*Member>
struct Access<Member> {
  static Value get(const Owner& owner) { return owner.*Member; }
  static void set(Owner& owner, Value value) { owner.*Member = value; }
  // The same for enumerations and integers, as a choice's values are.
  static int getChoice(const Owner& owner) { return static_cast<int>(owner.*Member); }
  static void setChoice(Owner& owner, int value) { owner.*Member = static_cast<Value>(value); }
};

template <typename Owner>
class Form {
 public:
  /// Applies a change to the value in force.
  using Edit = std::function<void(const std::function<void(Owner&)>& change)>;

  explicit Form(Edit edit) : edit_(std::move(edit)) {}
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  /// Each makes a control that the caller places; a layout takes it over.
  [[nodiscard]] QSpinBox* add(const NumberField<Owner>& field) {
    auto* spin = Controls::makeSpinBox(field.limits, spokenName(field.label));
    QObject::connect(spin, &QSpinBox::valueChanged, spin, [this, field](int value) {
      edit_([&](Owner& owner) { field.set(owner, value); });
    });
    loaders_.push_back([spin, field](const Owner& owner) {
      const QSignalBlocker quiet(spin);
      const int shown = static_cast<int>(std::lround(field.get(owner)));
      if (spin->value() != shown) {  // What is being typed stays.
        spin->setValue(shown);
      }
    });
    return spin;
  }

  [[nodiscard]] QCheckBox* add(const SwitchField<Owner>& field) {
    auto* box = new QCheckBox(qtText(field.label));
    box->setAccessibleName(spokenName(field.label));
    QObject::connect(box, &QCheckBox::toggled, box, [this, field](bool isOn) {
      edit_([&](Owner& owner) { field.set(owner, isOn); });
    });
    loaders_.push_back([box, field](const Owner& owner) {
      const QSignalBlocker quiet(box);
      box->setChecked(field.get(owner));
    });
    return box;
  }

  [[nodiscard]] QComboBox* add(const ChoiceField<Owner>& field) {
    auto* picker = Controls::makePicker(spokenName(field.label));
    for (const ChoiceOption& option : field.options) {
      picker->addItem(qtText(option.text), option.value);
    }
    QObject::connect(picker, &QComboBox::currentIndexChanged, picker, [this, picker, field](int) {
      edit_([&](Owner& owner) { field.set(owner, picker->currentData().toInt()); });
    });
    loaders_.push_back([picker, field](const Owner& owner) {
      const QSignalBlocker quiet(picker);
      picker->setCurrentIndex(picker->findData(field.get(owner)));
    });
    return picker;
  }

  /// Brings the controls to the value.
  void load(const Owner& owner) {
    for (const auto& load : loaders_) {
      load(owner);
    }
  }

 private:
  Edit edit_;
  std::vector<std::function<void(const Owner&)>> loaders_;
};

}  // namespace vantora
