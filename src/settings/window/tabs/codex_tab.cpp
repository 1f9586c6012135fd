// SPDX-License-Identifier: MIT
#include "settings/window/tabs/codex_tab.hpp"

#include "settings/window/quota/quota_fields.hpp"

namespace vantora {
namespace {

using S = CodexQuotaSettings;

constexpr auto enabledField = quotaSwitch<&S::enabled, S>("Ativar i&ntegração Codex");
constexpr auto showUsedField = quotaSwitch<&S::showUsed, S>("Mostrar percentua&l utilizado em L1");
constexpr auto oneDecimalField = quotaSwitch<&S::oneDecimal, S>("Uma casa &decimal");
constexpr auto showResetDateField =
    quotaSwitch<&S::showResetDate, S>("Mostrar data de ren&ovação em L2");
constexpr std::string_view categoryLabel = "Cat&egoria semanal";
constexpr std::string_view intervalLabel = "Consulta automát&ica";

}  // namespace

CodexTab::CodexTab(WindowModel& model)
    : SettingsTab(model),
      form_(optionalEdit<&AppConfiguration::codexSettings, S>()),
      missing_(new MissingModule(MetricFamily::codex, "Adicionar Codex semanal",
                                 [this] { this->model().addCodexModule(); })),
      refresh_(Controls::makeButton("&Atualizar agora", [this] { this->model().refreshCodex(); })),
      connect_(Controls::makeButton("&Conectar pelo navegador",
                                    [this] { this->model().connectCodex(); })),
      category_(Controls::makePicker(spokenName(categoryLabel))) {
  QVBoxLayout* column = Controls::makeScrollingColumn(this);
  column->addWidget(form_.add(enabledField));
  column->addWidget(Controls::makeNote(
      "Requer também um módulo Codex ativo na lista. Usa somente a cota semanal informada pelo App "
      "Server oficial; não executa tarefas de IA."));
  column->addWidget(missing_);
  Controls::addGroupGap(column);
  lines_.addState(*column);
  lines_.addExecutable(*column);
  column->addWidget(Controls::makeButtonRow({Controls::makeButton(
      "&Selecionar executável codex…", [this] { this->model().selectCodexExecutable(); })}));

  Controls::addGroupGap(column);
  QFormLayout* rows = Controls::makeForm();
  category_->setMinimumContentsLength(22);  // The automatic choice in full.
  Controls::addRow(rows, categoryLabel, category_);
  Controls::addRow(rows, intervalLabel, form_.add(quotaIntervalField<S>(intervalLabel)));
  column->addLayout(rows);
  column->addWidget(form_.add(showUsedField));
  column->addWidget(form_.add(oneDecimalField));
  column->addWidget(form_.add(showResetDateField));
  Controls::addGroupGap(column);
  column->addWidget(Controls::makeButtonRow({refresh_, connect_}));
  column->addWidget(Controls::makeNote(
      "Conectar usa o navegador oficial. A sessão existente é verificada antes; desativar não faz "
      "logout."));
  column->addWidget(Controls::makeNote(
      "O CLI pode compartilhar a sessão com outros clientes Codex. Conclua o login com a conta "
      "esperada."));
  column->addStretch();

  QObject::connect(category_, &QComboBox::currentIndexChanged, category_,
                   [this, edit = optionalEdit<&AppConfiguration::codexSettings, S>()](int index) {
                     edit([&](S& settings) {
                       settings.selectedLimitID =
                           index <= 0
                               ? std::nullopt
                               : std::optional(category_->itemData(index).toString().toStdString());
                     });
                   });
}

void CodexTab::refresh(WindowFields fields) {
  if (fields.contains(WindowField::configuration)) {
    form_.load(state().configuration.codexSettings.value_or(S{}));
  }
  if (fields.contains(WindowField::codex)) {
    lines_.show(state().codex);
  }
  if (fields.intersects({WindowField::configuration, WindowField::codex})) {
    showCategories();
    showActions();
  }
}

void CodexTab::showActions() {
  const AppConfiguration& configuration = state().configuration;
  missing_->refresh(configuration);
  const std::string_view reason = whyNotQueried(configuration, MetricFamily::codex,
                                                configuration.codexSettings.value_or(S{}).enabled);
  setReason(refresh_, reason);
  setReason(connect_, !reason.empty()            ? reason
                      : state().codex.needsLogin ? std::string_view()
                                                 : "O Codex não pede login agora.");
}

// The automatic choice, what the service offers, and the user's choice even when it is not
// offered at the moment.
void CodexTab::showCategories() {
  const QSignalBlocker quiet(category_);
  const auto selected = state().configuration.codexSettings.value_or(S{}).selectedLimitID;
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
