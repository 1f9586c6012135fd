// SPDX-License-Identifier: MIT
#include "settings/window/controls/link_picker.hpp"

#include <QAbstractItemView>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

#include "model/configuration.hpp"
#include "settings/window/controls/qt_text.hpp"

namespace vantora {

LinkPicker::LinkPicker() {
  setEditable(true);
  setInsertPolicy(QComboBox::NoInsert);
  setCompleter(nullptr);  // It would complete a name with the link's description.
  setFocusPolicy(Qt::StrongFocus);
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  setMinimumContentsLength(12);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  lineEdit()->setMaxLength(static_cast<int>(ConfigurationLimits::networkInterfaceBytes));
  lineEdit()->setPlaceholderText(qtText("automática"));
  lineEdit()->setAccessibleName(qtText("Nome da interface de rede"));
  setLinks({});
  setName(std::nullopt);
  QObject::connect(this, &QComboBox::activated, this, [this](int index) {
    setEditText(itemData(index).toString());
    takeOver();
  });
  QObject::connect(lineEdit(), &QLineEdit::editingFinished, this, [this] { takeOver(); });
}

void LinkPicker::setName(const std::optional<std::string>& name) {
  const bool isTyping = lineEdit()->hasFocus() && typedName() != name_;
  name_ = name;
  if (!isTyping && typedName() != name) {
    setEditText(qtText(name.value_or(std::string())));
  }
}

void LinkPicker::setLinks(const std::vector<NetworkLink>& links) {
  if (view()->isVisible()) {
    return;
  }
  const QSignalBlocker quiet(this);
  const QString typed = lineEdit()->text();
  clear();
  addItem(qtText("automática"), QString());
  for (const NetworkLink& link : links) {
    addItem(qtText(link.name + " · " + linkDescription(link)), qtText(link.name));
  }
  setCurrentIndex(-1);
  lineEdit()->setText(typed);
}

// A wheel that scrolls the tab must change nothing.
void LinkPicker::wheelEvent(QWheelEvent* event) {
  event->ignore();
}

void LinkPicker::takeOver() {
  if (auto name = typedName(); name != name_) {
    name_ = name;
    if (onName) {
      onName(std::move(name));
    }
  }
}

std::optional<std::string> LinkPicker::typedName() const {
  std::string name = currentText().trimmed().toStdString();
  return name.empty() ? std::nullopt : std::optional(std::move(name));
}

std::string linkDescription(const NetworkLink& link) {
  std::string text = link.isPhysical ? "física" : "virtual";
  text += !link.isUp ? ", desligada" : link.isAddressed ? ", com endereço" : ", sem endereço";
  return text;
}

bool isMissing(const std::string& name, const std::vector<NetworkLink>& links) {
  return !links.empty() && std::none_of(links.begin(), links.end(),
                                        [&](const NetworkLink& link) { return link.name == name; });
}

}  // namespace vantora
