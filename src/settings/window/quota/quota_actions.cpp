// SPDX-License-Identifier: MIT
#include "settings/window/quota/quota_actions.hpp"

#include <QHBoxLayout>
#include <utility>

#include "settings/window/controls/controls.hpp"
#include "settings/window/controls/qt_text.hpp"

namespace vantora {

MissingModule::MissingModule(MetricFamily family, std::string_view buttonLabel,
                             std::function<void()> add)
    : family_(family), button_(Controls::makeButton(buttonLabel, std::move(add))) {
  setObjectName(QStringLiteral("missingModule"));
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(Controls::makeText(qtText("Nenhum módulo ativo mostra esta cota.")));
  column->addWidget(Controls::makeButtonRow({button_}));
  hide();
}

void MissingModule::refresh(const AppConfiguration& configuration) {
  setVisible(!configuration.families().contains(family_));
  setReason(button_, configuration.modules.size() < ConfigurationLimits::modules
                         ? std::string_view()
                         : "A barra já tem o máximo de módulos.");
}

std::string_view whyNotQueried(const AppConfiguration& configuration, MetricFamily family,
                               bool isEnabled) {
  if (!isEnabled) {
    return "A integração está desativada.";
  }
  if (!configuration.families().contains(family)) {
    return "Nenhum módulo ativo mostra esta cota.";
  }
  return configuration.paused ? "A coleta está pausada." : "";
}

void setReason(QPushButton* button, std::string_view reason) {
  button->setEnabled(reason.empty());
  button->setToolTip(qtText(reason));
  button->setAccessibleDescription(qtText(reason));
}

}  // namespace vantora
