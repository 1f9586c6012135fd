// SPDX-License-Identifier: MIT
#include "settings/window/tabs/claude_tab.hpp"

#include "model/words.hpp"

namespace vantora {

ClaudeTab::ClaudeTab(WindowModel& model)
    : QuotaTab(model, {MetricFamily::claude, WindowField::claude, &WindowState::claude,
                       &AppConfiguration::claudeSettings, &WindowModel::addClaudeModule,
                       &WindowModel::refreshClaude, "Claude Code", "Adicionar Claude"}) {
  QVBoxLayout* column = begin(
      "Ativar i&ntegração Claude",
      "Requer também um módulo Claude ativo na lista. L1 mostra a cota semanal e L2 a janela de 5 "
      "horas, as mesmas do /usage do Claude Code.");
  Controls::addGroupGap(column);
  addForm(column, Controls::makeForm(), "M&ostrar percentual utilizado");
  Controls::addGroupGap(column);
  column->addWidget(Controls::makeButtonRow({queryButton()}));
  lines().addExecutable(*column);
  column->addWidget(Controls::makeNote(Words::claudeQueryNote));
  column->addWidget(Controls::makeNote(Words::claudeLoginNote));
  column->addStretch();
}

}  // namespace vantora
