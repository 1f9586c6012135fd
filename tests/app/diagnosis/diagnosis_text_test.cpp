// SPDX-License-Identifier: MIT
#include "app/diagnosis/diagnosis_text.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "app/cells.hpp"
#include "app/diagnosis/example_diagnosis.hpp"

namespace vantora {
namespace {

using test::laptopConcealer;
using test::laptopDiagnosis;
using testing::HasSubstr;
using testing::Not;

std::string textOf(const Diagnosis& diagnosis) {
  return diagnosisText(diagnosis, laptopConcealer);
}

std::vector<std::string> linesOf(const Diagnosis& diagnosis) {
  std::istringstream text(textOf(diagnosis));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) {
    lines.push_back(line);
  }
  return lines;
}

TEST(DiagnosisText, IsOneScreenOfAlignedColumns) {
  const std::vector<std::string> lines = linesOf(laptopDiagnosis());
  EXPECT_LE(lines.size(), 40U);
  for (std::size_t index = 0; index < lines.size(); ++index) {
    EXPECT_LE(cellCount(lines[index]), 100U) << lines[index];
    if (index >= 2) {
      const std::string start = cutToCells(lines[index], 29);
      EXPECT_TRUE(start.ends_with("  ")) << "the third column begins in cell 29: " << lines[index];
    }
  }
}

TEST(DiagnosisText, SaysWhyASquareIsShown) {
  const std::string text = textOf(laptopDiagnosis());
  EXPECT_THAT(text, HasSubstr("Plasma (processo kded5)\n"));
  EXPECT_THAT(
      text, HasSubstr("quadrado com um módulo, porque este painel põe todo item em um quadrado\n"));
  EXPECT_THAT(text, HasSubstr("clara, porque o ambiente prefere cores escuras\n"));
  EXPECT_THAT(text, HasSubstr("em execução (0.1.0) há 2 h\n"));
  EXPECT_THAT(text, HasSubstr("7% 61°C | 80% 2:10\n"));
}

TEST(DiagnosisText, SaysWhichMetricADeviceFeedsOrWhyNone) {
  const std::string text = textOf(laptopDiagnosis());
  EXPECT_THAT(text, HasSubstr("coretemp        temp1–temp5 → CPU · maior temperatura\n"));
  EXPECT_THAT(text, HasSubstr("thinkpad        (thinkpad_hwmon) fan1 → Ventoinha 1 · % do RPM "
                              "máximo, RPM\n"));
  EXPECT_THAT(
      text, HasSubstr("sem uso         acpitz temp1; nvme temp1: não medem a CPU nem a bateria\n"));
  EXPECT_THAT(text, HasSubstr("(battery) bateria, descarregando → Bateria · porcentagem, tempo\n"));
  EXPECT_THAT(text, HasSubstr("wlp3s0          (iwlwifi) → Rede · upload, download\n"));
}

TEST(DiagnosisText, NamesADeviceWholeWhoseNameIsLong) {
  Diagnosis diagnosis;
  DeviceReport& device = diagnosis.supplies.devices.emplace_back();
  device.name = "ucsi-source-psy-USBC000:001";
  device.state = "adaptador, conectado";
  device.feeds = {MetricID::adapterWatts};
  EXPECT_THAT(textOf(diagnosis), HasSubstr("ucsi-source-psy-USBC000:001: adaptador, conectado → "));
}

TEST(DiagnosisText, SaysWhyAReadingIsMissing) {
  const std::string text = textOf(laptopDiagnosis());
  EXPECT_THAT(text, HasSubstr("com valor       CPU · uso total 7%\n"));
  EXPECT_THAT(text, HasSubstr("Ventoinha 2 · % do RPM máximo, RPM: Ventoinha 2 não existe nesta"));
  EXPECT_THAT(text, HasSubstr("Bateria · temperatura média: bateria interna sem sensor de"));
}

TEST(DiagnosisText, SaysHowTheQuotasStand) {
  const std::string text = textOf(laptopDiagnosis());
  EXPECT_THAT(text, HasSubstr("codex.js, versão\n"));
  EXPECT_THAT(text, HasSubstr("0.63.0; achado em ~/.npm-global/bin/codex\n"));
  EXPECT_THAT(text, HasSubstr("cota em dia; lida há 3 min; nova consulta em 7 min\n"));
  EXPECT_THAT(text, HasSubstr("Claude Code     não encontrado nos lugares de costume\n"));
}

TEST(DiagnosisText, ShowsNothingOfTheUsersOwn) {
  const std::string text = textOf(laptopDiagnosis());
  for (const char* secret : {"maria", "00e04c680001", "0018"}) {
    EXPECT_THAT(text, Not(HasSubstr(secret)));
  }
  EXPECT_THAT(text, HasSubstr("~/.config/Vantora/configuration.json, gravado há 3 dias\n"));
  EXPECT_THAT(text, HasSubstr("enx… (r8152)"));
}

TEST(DiagnosisText, HasWordsForNothingAtAll) {
  Diagnosis diagnosis;
  diagnosis.agent = AgentPresence::noBus;
  diagnosis.session = "terminal, sem tela";
  diagnosis.bus = "nenhum: o da sessão não responde";
  diagnosis.item.form = "nenhuma";
  diagnosis.item.formWhy = "sem o barramento da sessão não há painel";
  diagnosis.typefaceWhy = "o vantora-glyphs, que a desenha, não está instalado";
  diagnosis.sensors.why = "o kernel não mostra sensores nesta máquina";
  diagnosis.supplies.why = "um driver não respondeu em 3 s";
  diagnosis.assistants.resize(1);
  diagnosis.assistants[0].name = "Codex CLI";
  const std::string text = textOf(diagnosis);
  for (const char* words :
       {"não se sabe: sem o barramento", "nenhum: o da sessão não responde",
        "forma prevista  nenhuma, porque sem o barramento da sessão não há painel\n",
        "— o vantora-glyphs, que a desenha, não está instalado\n",
        "— o kernel não mostra sensores nesta máquina\n", "— um driver não respondeu em 3 s\n",
        "não encontrado nos lugares de costume; cota desligada nas configurações\n",
        "nenhuma ainda: valem os padrões\n"}) {
    EXPECT_THAT(text, HasSubstr(words));
  }
}

TEST(DiagnosisText, TellsEveryKindOfAgentApart) {
  Diagnosis diagnosis;
  const std::pair<AgentPresence, const char*> cases[] = {
      {AgentPresence::none, "nenhum em execução"},
      {AgentPresence::silent, "não respondeu em 2 s"},
      {AgentPresence::older, "versão que não responde"},
      {AgentPresence::garbled, "não pôde ser lida"},
      {AgentPresence::running, "não responde a perguntas"}};
  for (const auto& [presence, words] : cases) {
    diagnosis.agent = presence;
    EXPECT_THAT(textOf(diagnosis), HasSubstr(words));
  }
}

TEST(DiagnosisText, TellsOfAConfigurationThatCannotBeUsed) {
  Diagnosis diagnosis = laptopDiagnosis();
  diagnosis.configuration.state = FileReport::State::invalid;
  EXPECT_THAT(textOf(diagnosis), HasSubstr("configuration.json: não é uma configuração que possa"));
  diagnosis.configuration.state = FileReport::State::unreadable;
  EXPECT_THAT(textOf(diagnosis), HasSubstr("configuration.json: não pode ser lido, gravado há"));
}

TEST(DiagnosisText, WritesSpansInTheirLargestUnit) {
  EXPECT_EQ(spanText(Seconds{59}), "menos de 1 min");
  EXPECT_EQ(spanText(Seconds{60}), "1 min");
  EXPECT_EQ(spanText(Seconds{3599}), "59 min");
  EXPECT_EQ(spanText(Seconds{3600}), "1 h");
  EXPECT_EQ(spanText(Seconds{172'799}), "47 h");
  EXPECT_EQ(spanText(Seconds{172'800}), "2 dias");
}

TEST(DiagnosisText, PutsTitlesOfOneThingTogether) {
  EXPECT_EQ(titlesOf({MetricID::upload, MetricID::download, MetricID::cpuUsage}),
            "Rede · upload, download; CPU · uso total");
  EXPECT_EQ(titlesOf({}), "");
}

}  // namespace
}  // namespace vantora
