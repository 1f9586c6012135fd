// SPDX-License-Identifier: MIT
#include "settings/window/appearance_tab.hpp"

#include <QScrollArea>
#include <QScrollBar>
#include <array>
#include <cmath>

#include "model/decimal.hpp"

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

// Whole points where the width is whole.
std::string pointsText(double width) {
  return fixedDecimal(width, std::abs(width - std::round(width)) < 0.05 ? 0 : 1, ',') + " pt";
}

}  // namespace

AppearanceTab::AppearanceTab(WindowModel& model)
    : SettingsTab(model),
      form_(configurationEdit()),
      width_(Controls::makeText()),
      warning_(Controls::makeText()),
      preview_(new StatusPreview),
      caption_(Controls::makeNote("")) {
  QVBoxLayout* column = Controls::makeScrollingColumn(this);
  QFormLayout* rows = Controls::makeForm();
  rows->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
  for (const NumberField<C>& field : fields) {
    Controls::addRow(rows, field.label, form_.add(field));
  }
  column->addLayout(rows);
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
}

void AppearanceTab::refresh(WindowFields fieldsThatChanged) {
  if (fieldsThatChanged.contains(WindowField::configuration)) {
    form_.load(state().configuration);
    caption_->setText(previewCaption(state().configuration.paused));
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

}  // namespace vantora
