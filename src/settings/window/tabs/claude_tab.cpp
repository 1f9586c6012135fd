// SPDX-License-Identifier: MIT
#include "settings/window/tabs/claude_tab.hpp"

#include "model/words.hpp"
#include "settings/window/quota/quota_fields.hpp"

namespace vantora {
namespace {

using S = ClaudeQuotaSettings;

constexpr auto enabledField = quotaSwitch<&S::enabled, S>("Ativar i&ntegração Claude");
constexpr auto showUsedField = quotaSwitch<&S::showUsed, S>("M&ostrar percentual utilizado");
constexpr auto oneDecimalField = quotaSwitch<&S::oneDecimal, S>("Uma casa &decimal");
constexpr std::string_view intervalLabel = "Consulta automát&ica";

}  // namespace

ClaudeTab::ClaudeTab(WindowModel& model)
    : SettingsTab(model),
      form_(optionalEdit<&AppConfiguration::claudeSettings, S>()),
      missing_(new MissingModule(MetricFamily::claude, "Adicionar Claude",
                                 [this] { this->model().addClaudeModule(); })),
      refresh_(
          Controls::makeButton("&Atualizar agora", [this] { this->model().refreshClaude(); })) {
  QVBoxLayout* column = Controls::makeScrollingColumn(this);
  column->addWidget(form_.add(enabledField));
  column->addWidget(Controls::makeNote(
      "Requer também um módulo Claude ativo na lista. L1 mostra a cota semanal e L2 a janela de 5 "
      "horas, as mesmas do /usage do Claude Code."));
  column->addWidget(missing_);
  Controls::addGroupGap(column);
  lines_.addState(*column);
  Controls::addGroupGap(column);
  QFormLayout* rows = Controls::makeForm();
  Controls::addRow(rows, intervalLabel, form_.add(quotaIntervalField<S>(intervalLabel)));
  column->addLayout(rows);
  column->addWidget(form_.add(showUsedField));
  column->addWidget(form_.add(oneDecimalField));
  Controls::addGroupGap(column);
  column->addWidget(Controls::makeButtonRow({refresh_}));
  lines_.addExecutable(*column);
  column->addWidget(Controls::makeNote(Words::claudeQueryNote));
  column->addWidget(Controls::makeNote(Words::claudeLoginNote));
  column->addStretch();
}

void ClaudeTab::refresh(WindowFields fields) {
  if (fields.contains(WindowField::configuration)) {
    const AppConfiguration& configuration = state().configuration;
    const S settings = configuration.claudeSettings.value_or(S{});
    form_.load(settings);
    missing_->refresh(configuration);
    setReason(refresh_, whyNotQueried(configuration, MetricFamily::claude, settings.enabled));
  }
  if (fields.contains(WindowField::claude)) {
    lines_.show(state().claude);
  }
}

}  // namespace vantora
