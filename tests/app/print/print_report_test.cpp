// SPDX-License-Identifier: MIT
#include "app/print/print_report.hpp"

#include <gtest/gtest.h>

#include "app/iso_date.hpp"
#include "model/json.hpp"
#include "model/words.hpp"
#include "status/status_modules.hpp"
#include "support/example_time.hpp"

namespace vantora {
namespace {

using test::exampleTime;

struct ReportScene {
  ReportScene() {
    configuration.modules.resize(2);
    configuration.modules[0].top = MetricID::cpuUsage;
    configuration.modules[0].bottom = MetricID::cpuTemperature;
    configuration.modules[1].top = MetricID::codexWeeklyPercent;
    configuration.modules[1].bottom = MetricID::codexWeeklyReset;
    snapshot.samples.set(MetricID::cpuUsage,
                         MetricSample::valid(7, "Linux /proc/stat", exampleTime));
    snapshot.codex.status = CodexQuotaStatus::ready;
    snapshot.codex.usedPercent = 99.5;
    snapshot.codex.resetAt = exampleTime + std::chrono::seconds(30);
    snapshot.codex.lastSuccess = exampleTime;
    presentation.accessibilityText = "CPU & <cota>";
    presentation.toolTip = "CPU &\n<cota>";
  }
  /// What was drawn of the readings.
  [[nodiscard]] PrintReport report() {
    StatusModules::read(configuration, snapshot, exampleTime, presentation.modules);
    return {configuration, snapshot, presentation, notice};
  }

  AppConfiguration configuration;
  MetricSnapshot snapshot;
  StatusPresentation presentation;
  std::optional<std::string> notice;
};

TEST(IsoDate, IsUtcInWholeSeconds) {
  EXPECT_EQ(isoDate(exampleTime), "2026-09-21T14:13:20Z");
  EXPECT_EQ(isoDate(exampleTime + std::chrono::milliseconds(999)), "2026-09-21T14:13:20Z");
  EXPECT_EQ(isoDate(wallTimeFromUnix(0)), "1970-01-01T00:00:00Z");
  EXPECT_EQ(isoDate(wallTimeFromUnix(-1)), "1969-12-31T23:59:59Z");
}

TEST(PrintFormatter, WritesTheVisibleModulesInOneLine) {
  EXPECT_EQ(PrintFormatter::textLine(ReportScene().report()), "7% — | <1% <1m");
}

TEST(PrintFormatter, LeavesOutInvisibleModulesAndEmptyLines) {
  ReportScene scene;
  scene.configuration.modules[1].enabled = false;
  scene.configuration.modules[0].bottom = MetricID::none;
  EXPECT_EQ(PrintFormatter::textLine(scene.report()), "7%");
}

TEST(PrintFormatter, ShowsTheMarkOfThePictureWhenNoModuleIsVisible) {
  ReportScene scene;
  scene.configuration.modules.clear();
  EXPECT_EQ(PrintFormatter::textLine(scene.report()), "VA");
}

TEST(PrintFormatter, WritesEverythingAsOneJsonObject) {
  ReportScene scene;
  scene.snapshot.networkName = "en0";
  scene.snapshot.codex.candidates = {{"codex", "Codex"}, {"outra", std::nullopt}};
  scene.notice = "aviso";
  const std::string text = PrintFormatter::jsonLine(scene.report());
  EXPECT_EQ(text.find('\n'), std::string::npos);
  const auto json = parseJson(text);
  ASSERT_TRUE(json);
  const Json& object = *json;
  ASSERT_EQ(object["modules"].size(), 2U);
  EXPECT_EQ(object["modules"][0]["id"], scene.configuration.modules[0].id.text());
  EXPECT_EQ(object["modules"][0]["top"], (Json{{"metric", "cpuUsage"}, {"text", "7%"}}));
  EXPECT_EQ(object["modules"][0]["bottom"], (Json{{"metric", "cpuTemperature"}, {"text", "—"}}));
  EXPECT_EQ(object["samples"].size(), 4U);
  EXPECT_EQ(object["samples"]["cpuUsage"], (Json{{"value", 7.0},
                                                 {"quality", "valid"},
                                                 {"source", "Linux /proc/stat"},
                                                 {"sampledAt", "2026-09-21T14:13:20Z"}}));
  EXPECT_EQ(object["samples"]["cpuTemperature"], (Json{{"value", nullptr},
                                                       {"quality", "unavailable"},
                                                       {"source", Words::sourceNotValidated},
                                                       {"sampledAt", nullptr}}));
  EXPECT_EQ(object["batteryOnAC"], false);
  EXPECT_EQ(object["batteryCharging"], false);
  EXPECT_EQ(object["networkName"], "en0");
  EXPECT_EQ(object["codex"]["status"], "ready");
  EXPECT_EQ(object["codex"]["usedPercent"], 99.5);
  EXPECT_EQ(object["codex"]["resetAt"], "2026-09-21T14:13:50Z");
  EXPECT_EQ(object["codex"]["candidates"],
            (Json{{{"id", "codex"}, {"name", "Codex"}}, {{"id", "outra"}, {"name", nullptr}}}));
  EXPECT_EQ(object["codex"]["limitID"], nullptr);
  EXPECT_EQ(object["codex"]["settings"]["intervalMinutes"], 3);
  EXPECT_EQ(object["claude"]["status"], "disabled");
  EXPECT_EQ(object["claude"]["message"], "Integração desativada.");
  EXPECT_EQ(object["claude"]["sessionUsed"], nullptr);
  EXPECT_EQ(object["accessibilityText"], "CPU & <cota>");
  EXPECT_EQ(object["warning"], nullptr);
  EXPECT_EQ(object["notice"], "aviso");
}

TEST(PrintFormatter, WritesEveryFieldOfBothQuotaStates) {
  ReportScene scene;
  const WallTime reset = exampleTime + std::chrono::hours(2);
  scene.snapshot.codex = {.status = CodexQuotaStatus::stale,
                          .usedPercent = 12.5,
                          .resetAt = reset,
                          .lastSuccess = exampleTime,
                          .limitID = "semanal",
                          .candidates = {},
                          .message = "Mensagem do Codex.",
                          .ordinaryUsageAllowed = true,
                          .accountID = "conta",
                          .settings = {.enabled = true,
                                       .intervalMinutes = 5,
                                       .selectedLimitID = "semanal",
                                       .showUsed = true,
                                       .oneDecimal = true,
                                       .showResetDate = true}};
  scene.snapshot.claude = {
      .status = ClaudeQuotaStatus::ready,
      .weeklyUsed = 101.0,
      .weeklyResetAt = reset,
      .sessionUsed = 3.0,
      .sessionResetAt = reset,
      .lastSuccess = exampleTime,
      .message = "Mensagem do Claude.",
      .settings = {.enabled = true, .intervalMinutes = 10, .showUsed = true, .oneDecimal = true}};
  const auto json = parseJson(PrintFormatter::jsonLine(scene.report()));
  ASSERT_TRUE(json);
  EXPECT_EQ((*json)["codex"], *parseJson(R"({
    "status":"stale","usedPercent":12.5,"resetAt":"2026-09-21T16:13:20Z",
    "lastSuccess":"2026-09-21T14:13:20Z","limitID":"semanal","candidates":[],
    "message":"Mensagem do Codex.","ordinaryUsageAllowed":true,"accountID":"conta",
    "settings":{"enabled":true,"intervalMinutes":5,"selectedLimitID":"semanal",
      "showUsed":true,"oneDecimal":true,"showResetDate":true}})"));
  EXPECT_EQ((*json)["claude"], *parseJson(R"({
    "status":"ready","weeklyUsed":101.0,"weeklyResetAt":"2026-09-21T16:13:20Z",
    "sessionUsed":3.0,"sessionResetAt":"2026-09-21T16:13:20Z",
    "lastSuccess":"2026-09-21T14:13:20Z","message":"Mensagem do Claude.",
    "settings":{"enabled":true,"intervalMinutes":10,"showUsed":true,"oneDecimal":true}})"));
}

TEST(PrintFormatter, ReportsAPauseToWaybar) {
  ReportScene scene;
  scene.configuration.paused = true;
  const auto json = parseJson(PrintFormatter::waybarLine(scene.report()));
  ASSERT_TRUE(json);
  EXPECT_EQ((*json)["class"], "paused");
}

TEST(PrintFormatter, WritesJsonEvenWhenANameIsNotUtf8) {
  ReportScene scene;
  scene.snapshot.networkName = "\xff";
  EXPECT_TRUE(parseJson(PrintFormatter::jsonLine(scene.report())));
}

TEST(PrintFormatter, WritesABlockAModuleForI3bar) {
  const auto json = parseJson(PrintFormatter::i3barLine(ReportScene().report()));
  ASSERT_TRUE(json);
  ASSERT_EQ(json->size(), 2U);
  EXPECT_EQ((*json)[0]["full_text"], "7% —");
  EXPECT_EQ((*json)[1]["full_text"], "<1% <1m");
  EXPECT_EQ((*json)[1]["name"], "vantora");
}

TEST(PrintFormatter, GreysI3barsBlocksDuringAPause) {
  ReportScene scene;
  EXPECT_FALSE(parseJson(PrintFormatter::i3barLine(scene.report()))
                   ->elements()[0]
                   .members()
                   .contains("color"));
  scene.configuration.paused = true;
  EXPECT_EQ((*parseJson(PrintFormatter::i3barLine(scene.report())))[1]["color"], "#808080");
}

TEST(PrintFormatter, KeepsRoomInI3barForTheWidestText) {
  ReportScene scene;
  scene.configuration.modules[0].bottom = MetricID::none;
  const auto json = parseJson(PrintFormatter::i3barLine(scene.report()));
  ASSERT_TRUE(json);
  EXPECT_EQ((*json)[0]["min_width"], "100%");
  EXPECT_EQ((*json)[1]["min_width"], "100%* 14h59m");
}

TEST(PrintFormatter, EscapesMarkupForWaybar) {
  const auto json = parseJson(PrintFormatter::waybarLine(ReportScene().report()));
  ASSERT_TRUE(json);
  EXPECT_EQ((*json)["text"], "7% — | &lt;1% &lt;1m");
  EXPECT_EQ((*json)["tooltip"], "CPU &amp;\n&lt;cota&gt;");
  EXPECT_EQ((*json)["class"], "running");
}

}  // namespace
}  // namespace vantora
