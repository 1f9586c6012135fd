// SPDX-License-Identifier: MIT
#include "settings/window/tabs/sampling_tab.hpp"

#include "model/words.hpp"

namespace vantora {
namespace {

using C = AppConfiguration;

const ChoiceField<C>& intervalField() {
  static const ChoiceField<C> field = {"I&ntervalo de CPU e rede",
                                       {{"1 segundo", 1}, {"2 segundos", 2}},
                                       &Access<&C::intervalSeconds>::getChoice,
                                       &Access<&C::intervalSeconds>::setChoice};
  return field;
}

constexpr std::string_view linkLabel = "Interface de &rede (vazio = automática)";

constexpr std::string_view automaticNote =
    "Automático escolhe uma interface física ativa; tráfego de túnel VPN não é somado. Interface "
    "atual: ";

constexpr const char* rateNote =
    "Rede sempre em MB/s decimais, com M menor e sem setas: 125M ou 0,75M. Abaixo de 1 MB/s "
    "mostra duas casas decimais; valores menores que 0,005 MB/s arredondam para 0,00M. 1 Gbps "
    "equivale teoricamente a 125 MB/s.";

constexpr const char* averageNote =
    "A cada intervalo selecionado, mede a média dos bytes transferidos desde a leitura anterior, "
    "usando o tempo real decorrido. Não executa teste de velocidade. A primeira leitura e a troca "
    "de interface mostram —.";

constexpr const char* powerNote =
    "Potência de entrada e potência de carga ainda aguardam validação com carregador conectado; "
    "não são substituídas pela potência nominal do adaptador.";

constexpr const char* notes[] = {rateNote, averageNote, Words::batteryNote, Words::sensorNote,
                                 powerNote};

}  // namespace

SamplingTab::SamplingTab(WindowModel& model)
    : SettingsTab(model),
      form_(configurationEdit()),
      link_(new LinkPicker),
      missing_(Controls::makeText()),
      interface_(Controls::makeNote({})) {
  QVBoxLayout* column = Controls::makeScrollingColumn(this);
  QFormLayout* rows = Controls::makeForm();
  Controls::addRow(rows, intervalField().label, form_.add(intervalField()));
  Controls::setSpokenName(link_, spokenName(linkLabel));
  Controls::addRow(rows, linkLabel, link_);
  column->addLayout(rows);
  missing_->setObjectName(QStringLiteral("missingLink"));
  column->addWidget(missing_);
  interface_->setObjectName(QStringLiteral("interface"));
  column->addWidget(interface_);
  Controls::addGroupGap(column);
  for (const char* note : notes) {
    column->addWidget(Controls::makeNote(note));
  }
  column->addStretch();

  link_->onName = [edit = configurationEdit()](const std::optional<std::string>& name) {
    edit([&](C& configuration) { configuration.networkInterface = name; });
  };
}

void SamplingTab::refresh(WindowFields fields) {
  if (fields.contains(WindowField::configuration)) {
    form_.load(state().configuration);
    link_->setName(state().configuration.networkInterface);
  }
  if (fields.contains(WindowField::links)) {
    link_->setLinks(state().links);
  }
  if (fields.intersects({WindowField::configuration, WindowField::links})) {
    showMissing();
  }
  if (fields.contains(WindowField::networkName)) {
    if (isVisible()) {
      model().listLinks();  // A link has come or gone.
    }
    interface_->setText(qtText(automaticNote) + qtText(state().networkName.value_or("—")));
  }
}

void SamplingTab::showEvent(QShowEvent* event) {
  SettingsTab::showEvent(event);
  if (model().hasState()) {
    model().listLinks();
  }
}

void SamplingTab::showMissing() {
  const auto& name = state().configuration.networkInterface;
  const bool isShown = name && isMissing(*name, state().links);
  missing_->setVisible(isShown);
  if (isShown) {
    missing_->setText(QStringLiteral("⚠ ") + qtText("“" + *name + "” não existe nesta máquina."));
  }
}

}  // namespace vantora
