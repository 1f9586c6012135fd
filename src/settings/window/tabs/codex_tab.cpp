// SPDX-License-Identifier: MIT
#include "settings/window/tabs/codex_tab.hpp"

namespace vantora {
namespace {

constexpr std::string_view categoryLabel = "Cat&egoria semanal";

}  // namespace

CodexTab::CodexTab(WindowModel& model)
    : QuotaTab(model, {MetricFamily::codex, WindowField::codex, &WindowState::codex,
                       &AppConfiguration::codexSettings, &WindowModel::addCodexModule,
                       &WindowModel::refreshCodex, "Codex CLI", "Adicionar Codex semanal"}),
      connect_(Controls::makeButton("&Conectar pelo navegador",
                                    [this] { this->model().connectCodex(); })),
      category_(Controls::makePicker(spokenName(categoryLabel))) {
  QVBoxLayout* column = begin(
      "Ativar i&ntegração Codex",
      "Requer também um módulo Codex ativo na lista. Usa somente a cota semanal informada pelo App "
      "Server oficial; não executa tarefas de IA.");
  lines().addExecutable(*column);
  column->addWidget(Controls::makeButtonRow({Controls::makeButton(
      "&Selecionar executável codex…", [this] { this->model().selectCodexExecutable(); })}));

  Controls::addGroupGap(column);
  QFormLayout* rows = Controls::makeForm();
  category_->setMinimumContentsLength(22);  // The automatic choice in full.
  Controls::addRow(rows, categoryLabel, category_);
  addForm(column, rows, "Mostrar percentua&l utilizado em L1");
  column->addWidget(form().add(
      memberSwitch<&CodexQuotaSettings::showResetDate>("Mostrar data de ren&ovação em L2")));
  Controls::addGroupGap(column);
  column->addWidget(Controls::makeButtonRow({queryButton(), connect_}));
  column->addWidget(Controls::makeNote(
      "Conectar usa o navegador oficial. A sessão existente é verificada antes; desativar não faz "
      "logout."));
  column->addWidget(Controls::makeNote(
      "O CLI pode compartilhar a sessão com outros clientes Codex. Conclua o login com a conta "
      "esperada."));
  column->addStretch();

  QObject::connect(category_, &QComboBox::currentIndexChanged, category_,
                   [this, edit = settingsEdit()](int index) {
                     edit([&](CodexQuotaSettings& next) {
                       next.selectedLimitID =
                           index <= 0
                               ? std::nullopt
                               : std::optional(category_->itemData(index).toString().toStdString());
                     });
                   });
}

void CodexTab::refresh(WindowFields fields) {
  QuotaTab::refresh(fields);
  if (fields.intersects({WindowField::configuration, WindowField::codex})) {
    showCategories();
    showLogin();
  }
}

void CodexTab::showLogin() {
  const std::string_view reason = whyNotQueried();
  setReason(connect_, !reason.empty()            ? reason
                      : state().codex.needsLogin ? std::string_view()
                                                 : "O Codex não pede login agora.");
}

// The automatic choice, what the service offers, and the user's choice even when it is not
// offered at the moment.
void CodexTab::showCategories() {
  const QSignalBlocker quiet(category_);
  const auto selected = settings().selectedLimitID;
  QList<std::pair<QString, QString>> wanted = {{qtText("Automática, se inequívoca"), QString()}};
  bool isOffered = !selected;
  for (const CodexQuotaCandidate& candidate : state().codex.candidates) {
    wanted.append({qtText(candidate.title()), qtText(candidate.id)});
    isOffered = isOffered || candidate.id == *selected;
  }
  if (!isOffered) {
    wanted.append({qtText(*selected), qtText(*selected)});
  }
  bool isSame = category_->count() == wanted.size();
  for (int index = 0; isSame && index < wanted.size(); ++index) {
    isSame = category_->itemText(index) == wanted[index].first &&
             category_->itemData(index).toString() == wanted[index].second;
  }
  if (!isSame) {  // An open list is not disturbed by what says the same.
    category_->clear();
    for (const auto& [title, id] : wanted) {
      category_->addItem(title, id);
    }
  }
  int current = 0;
  for (int index = 1; selected && index < wanted.size(); ++index) {
    if (wanted[index].second == qtText(*selected)) {
      current = index;
    }
  }
  category_->setCurrentIndex(current);
}

}  // namespace vantora
