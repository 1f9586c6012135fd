// SPDX-License-Identifier: MIT
#include "settings/window/sampling_tab.hpp"

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

// An empty field is the automatic choice.
constexpr TextField<C> interfaceField = {
    "Interface de &rede (vazio = automática)",
    static_cast<int>(ConfigurationLimits::networkInterfaceBytes),
    [](const C& owner) { return owner.networkInterface.value_or(std::string()); },
    [](C& owner, std::string name) {
      owner.networkInterface = name.empty() ? std::nullopt : std::optional(std::move(name));
    }};

constexpr std::string_view automaticNote =
    "Automático escolhe uma interface física ativa; tráfego de túnel VPN não é somado. Interface "
    "atual: ";

constexpr std::string_view rateNote =
    "Rede sempre em MB/s decimais, com M menor e sem setas: 125M ou 0,75M. Abaixo de 1 MB/s "
    "mostra duas casas decimais; valores menores que 0,005 MB/s arredondam para 0,00M. 1 Gbps "
    "equivale teoricamente a 125 MB/s.";

constexpr std::string_view averageNote =
    "A cada intervalo selecionado, mede a média dos bytes transferidos desde a leitura anterior, "
    "usando o tempo real decorrido. Não executa teste de velocidade. A primeira leitura e a troca "
    "de interface mostram —.";

constexpr std::string_view batteryNote =
    "A porcentagem da bateria é calculada das capacidades informadas pela bateria interna. O tempo "
    "vem da estimativa em minutos do IOKit.";

constexpr std::string_view sensorNote =
    "CPU mais quente: maior leitura de 18 chaves térmicas Tp* da família M5, via SMC experimental. "
    "Ventoinhas: RPM atual e porcentagem de F0Mx/F1Mx. Estas leituras são somente leitura.";

constexpr std::string_view powerNote =
    "Potência de entrada e potência de carga ainda aguardam validação com carregador conectado; "
    "não são substituídas pela potência nominal do adaptador.";

constexpr std::string_view notes[] = {rateNote, averageNote, batteryNote, sensorNote, powerNote};

}  // namespace

SamplingTab::SamplingTab(WindowModel& model)
    : SettingsTab(model), form_(configurationEdit()), interface_(Controls::makeNote({})) {
  QVBoxLayout* column = Controls::makeScrollingColumn(this);
  QFormLayout* rows = Controls::makeForm();
  Controls::addRow(rows, intervalField().label, form_.add(intervalField()));
  Controls::addRow(rows, interfaceField.label, form_.add(interfaceField));
  column->addLayout(rows);
  interface_->setObjectName(QStringLiteral("interface"));
  column->addWidget(interface_);
  Controls::addGroupGap(column);
  for (const std::string_view note : notes) {
    column->addWidget(Controls::makeNote(note));
  }
  column->addStretch();
}

void SamplingTab::refresh(WindowFields fields) {
  if (fields.contains(WindowField::configuration)) {
    form_.load(state().configuration);
  }
  if (fields.contains(WindowField::networkName)) {
    interface_->setText(qtText(automaticNote) + qtText(state().networkName.value_or("—")));
  }
}

}  // namespace vantora
