// SPDX-License-Identifier: MIT
#include "app/agent_report.hpp"

#include <gtest/gtest.h>

#include "model/json.hpp"

namespace vantora {
namespace {

AgentReport example() {
  AgentReport report;
  report.version = "0.1.0";
  report.running = Seconds{7200.5};
  report.item = {"Xfce, bandeja do X11", "xfce4-panel", "imagem inteira",       "mantém a largura",
                 "1 pixel por ponto",    "clara",       "prefere cores escuras"};
  report.shown = "7% 61°C | —";
  report.notice = "Configuração inválida preservada em disco; padrão carregado.";
  report.readings = {
      {MetricID::cpuUsage, Quality::valid, "7%", "Linux /proc/stat"},
      {MetricID::fan1RPM, Quality::unavailable, "—", "Ventoinha 1 não existe nesta máquina"}};
  report.codex = {"ready", "", wallTimeFromUnix(1'790'000'000), wallTimeFromUnix(1'790'000'600)};
  report.claude = {"needsAuthentication", "Sem login.", std::nullopt, std::nullopt};
  return report;
}

TEST(AgentReport, ReadsBackWhatWasWritten) {
  const auto parsed = parseAgentReport(encode(example()));
  ASSERT_TRUE(parsed);
  EXPECT_EQ(*parsed, example());
  EXPECT_EQ(parseAgentReport(encode(AgentReport())), AgentReport());
}

TEST(AgentReport, RefusesWhatLacksAMemberOrHoldsAnotherType) {
  const auto whole = parseJson(encode(example()));
  ASSERT_TRUE(whole);
  for (const auto& [name, value] : whole->members()) {
    Json document = *whole;
    document.erase(name);
    EXPECT_FALSE(parseAgentReport(writeJsonLossy(document))) << name;
    document[name] = Json::array();
    EXPECT_EQ(parseAgentReport(writeJsonLossy(document)).has_value(), name == "readings") << name;
  }
  for (const char* text : {"", "null", "[]", "{}", "{\"version\":\"1\"}"}) {
    EXPECT_FALSE(parseAgentReport(text)) << text;
  }
}

TEST(AgentReport, RefusesUnknownMetricsQualitiesAndTimesOfNoCalendar) {
  const auto refused = [](const char* from, const char* to) {
    std::string text = encode(example());
    const std::size_t place = text.find(from);
    EXPECT_NE(place, std::string::npos) << from;
    text.replace(place, std::string(from).size(), to);
    return !parseAgentReport(text);
  };
  EXPECT_TRUE(refused("cpuUsage", "cpuUse"));
  EXPECT_TRUE(refused("\"valid\"", "\"good\""));
  EXPECT_TRUE(refused("1790000000", "-1"));
  EXPECT_TRUE(refused("1790000000", "4102444800"));
  EXPECT_TRUE(refused("7200.5", "-1"));
}

TEST(AgentReport, RefusesAnAnswerThatIsTooLong) {
  AgentReport report = example();
  report.shown = std::string(maxAgentReport - encode(report).size() + report.shown.size(), 'x');
  ASSERT_EQ(encode(report).size(), maxAgentReport);
  EXPECT_TRUE(parseAgentReport(encode(report)));
  report.shown += 'x';
  EXPECT_FALSE(parseAgentReport(encode(report)));
}

}  // namespace
}  // namespace vantora
