// SPDX-License-Identifier: MIT
#include "settings/window/tabs/appearance_tab.hpp"

#include <QScrollArea>
#include <QScrollBar>
#include <QSignalBlocker>
#include <array>
#include <cmath>

#include "model/decimal.hpp"
#include "settings/window/readings/reading_text.hpp"

namespace vantora {
namespace {

using C = AppConfiguration;

template <auto Member>
constexpr NumberField<C> points(std::string_view label, Limits limits) {
  return {label, limits, &Access<Member>::get, &Access<Member>::set};
}

constexpr std::array fields = {
    points<&C::gap>("&Espaço entre módulos: ", ConfigurationLimits::gap),
    points<&C::horizontalPadding>("Margem &horizontal: ", ConfigurationLimits::horizontalPadding),
    points<&C::verticalPadding>("Margem &vertical: ", ConfigurationLimits::verticalPadding),
    points<&C::lineGap>("Espaço entre l&inhas: ", ConfigurationLimits::lineGap),
};

constexpr std::string_view squareLabel = "Módulo do &quadrado: ";

// Whole points where the width is whole.
std::string pointsText(double width) {
  return fixedDecimal(width, std::abs(width - std::round(width)) < 0.05 ? 0 : 1, ',') + " pt";
}

}  // namespace

AppearanceTab::AppearanceTab(WindowModel& model)
    : SettingsTab(model),
      form_(configurationEdit()),
      rows_(Controls::makeForm()),
      square_(Controls::makePicker(spokenName(squareLabel))),
      squareNote_(Controls::makeNote(
          "O painel em uso reserva um quadrado para o Vantora e mostra nele um só módulo.")),
      width_(Controls::makeText()),
      warning_(Controls::makeText()),
      preview_(new StatusPreview),
      caption_(Controls::makeNote("")) {
  QVBoxLayout* column = Controls::makeScrollingColumn(this);
  rows_->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
  for (const NumberField<C>& field : fields) {
    Controls::addRow(rows_, field.label, form_.add(field));
  }
  Controls::addRow(rows_, squareLabel, square_);
  column->addLayout(rows_);
  column->addWidget(squareNote_);
  square_->setMinimumContentsLength(30);  // The automatic choice in full.
  rows_->setRowVisible(square_, false);
  squareNote_->hide();
  Controls::addGroupGap(column);
  column->addWidget(Controls::makeNote(
      "A largura fixa reserva espaço para o maior texto previsto da métrica; se necessário, a "
      "largura efetiva cresce para evitar corte."));
  Controls::addGroupGap(column);
  column->addWidget(width_);
  warning_->setObjectName(QStringLiteral("warning"));
  column->addWidget(warning_);
  column->addWidget(preview_->inScrollArea());
  caption_->setText(previewCaption(false));
  column->addWidget(caption_);
  column->addStretch();

  QObject::connect(square_, &QComboBox::currentIndexChanged, square_, [this](int index) {
    this->model().setSquareModule(UUID::parse(square_->itemData(index).toString().toStdString()));
  });
}

void AppearanceTab::refresh(WindowFields fieldsThatChanged) {
  if (fieldsThatChanged.contains(WindowField::configuration)) {
    form_.load(state().configuration);
    caption_->setText(previewCaption(state().configuration.paused));
  }
  if (fieldsThatChanged.intersects({WindowField::configuration, WindowField::square})) {
    showSquare();
  }
  if (fieldsThatChanged.contains(WindowField::picture)) {
    const StatusPicture& picture = state().picture;
    width_->setText(qtText("Largura atual do bloco: " + pointsText(picture.width)));
    warning_->setText(picture.warning ? QStringLiteral("⚠ ") + qtText(*picture.warning)
                                      : QString());
    warning_->setVisible(picture.warning.has_value());
    preview_->show(picture);
  }
}

// The choice that is left to the agent, then the active modules.
void AppearanceTab::showSquare() {
  rows_->setRowVisible(square_, state().square.has_value());
  squareNote_->setVisible(state().square.has_value());
  if (!state().square) {
    return;
  }
  const QSignalBlocker quiet(square_);
  QList<std::pair<QString, QString>> wanted = {{qtText("Automático: o primeiro com leitura"), {}}};
  int current = 0;
  for (const ModuleConfiguration& module : state().configuration.modules) {
    if (module.enabled) {
      current = module.id == state().square->module ? static_cast<int>(wanted.size()) : current;
      wanted.append({ReadingText::moduleName(module), qtText(module.id.text())});
    }
  }
  bool isSame = square_->count() == wanted.size();
  for (int index = 0; isSame && index < wanted.size(); ++index) {
    isSame = square_->itemText(index) == wanted[index].first &&
             square_->itemData(index).toString() == wanted[index].second;
  }
  if (!isSame) {  // An open list is not disturbed by what says the same.
    square_->clear();
    for (const auto& [name, id] : wanted) {
      square_->addItem(name, id);
    }
  }
  square_->setCurrentIndex(current);
}

}  // namespace vantora
