// SPDX-License-Identifier: MIT
#include "settings/window/claude_tab.hpp"

#include "settings/window/quota_fields.hpp"

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
      message_(Controls::makeText()),
      lastSuccess_(Controls::makeText()),
      executable_(Controls::makeText()) {
  QVBoxLayout* column = Controls::makeScrollingColumn(this);
  column->addWidget(form_.add(enabledField));
  column->addWidget(Controls::makeNote(
      "Requer também um módulo Claude ativo na lista. L1 mostra a cota semanal e L2 a janela de 5 "
      "horas, as mesmas do /usage do Claude Code."));
  Controls::addGroupGap(column);
  column->addWidget(message_);
  column->addWidget(lastSuccess_);
  Controls::addGroupGap(column);
  QFormLayout* rows = Controls::makeForm();
  Controls::addRow(rows, intervalLabel, form_.add(quotaIntervalField<S>(intervalLabel)));
  column->addLayout(rows);
  column->addWidget(form_.add(showUsedField));
  column->addWidget(form_.add(oneDecimalField));
  Controls::addGroupGap(column);
  column->addWidget(Controls::makeButtonRow(
      {Controls::makeButton("&Atualizar agora", [this] { this->model().refreshClaude(); })}));
  column->addWidget(executable_);
  column->addWidget(Controls::makeNote(
      "A cada consulta o Vantora abre o Claude Code oficial em modo SDK, pede só os dados de uso "
      "(get_usage) e o encerra. Não envia mensagens, não executa tarefas de IA e não lê o "
      "Keychain: login e renovação ficam com o próprio Claude Code."));
  column->addWidget(Controls::makeNote(
      "LOGIN indica que o Claude Code deste Mac não tem login de assinatura; rode claude no "
      "Terminal e use /login. A consulta é experimental no Claude Code e pode mudar."));
  column->addStretch();
}

void ClaudeTab::refresh(WindowFields fields) {
  if (fields.contains(WindowField::configuration)) {
    form_.load(state().configuration.claudeSettings.value_or(S{}));
  }
  if (fields.contains(WindowField::claude)) {
    const QuotaSummary& claude = state().claude;
    message_->setText(qtText("Estado: " + claude.message));
    lastSuccess_->setText(qtText("Última consulta confirmada: ") +
                          quotaTimeText(claude.lastSuccess));
    executable_->setText(qtText("Claude Code: " + claude.executable));
  }
}

}  // namespace vantora
