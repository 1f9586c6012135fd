// SPDX-License-Identifier: MIT
#include "quota/claude/claude_control.hpp"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "model/json.hpp"

namespace vantora {
namespace {

using quota_result::Answer;
using quota_result::Failure;
using quota_result::NeedsAuthentication;
using quota_result::UnsupportedVersion;

constexpr const char* empty = "Resposta de uso vazia do Claude Code.";
constexpr const char* refused = "O Claude Code recusou a consulta de uso.";

std::string answer(const std::string& members) {
  return R"({"type":"control_response","response":{"request_id":"vantora-usage",)" + members + "}}";
}

std::string errorAnswer(const std::string& text) {
  return answer(R"("subtype":"error","error":")" + text + "\"");
}

TEST(ClaudeControl, RunsClaudeCodeInItsStreamingMode) {
  const std::array<std::string_view, 11> expected{"-p",
                                                  "--input-format",
                                                  "stream-json",
                                                  "--output-format",
                                                  "stream-json",
                                                  "--verbose",
                                                  "--no-session-persistence",
                                                  "--strict-mcp-config",
                                                  "--disable-slash-commands",
                                                  "--setting-sources",
                                                  "project"};
  EXPECT_EQ(ClaudeControl::arguments, expected);
}

TEST(ClaudeControl, AsksForNeitherUpdatesNorTelemetry) {
  const std::map<std::string, std::string> expected{{"DISABLE_AUTOUPDATER", "1"},
                                                    {"DISABLE_TELEMETRY", "1"}};
  EXPECT_EQ(ClaudeControl::environmentChanges(), expected);
}

TEST(ClaudeControl, WritesItsRequestsCompactly) {
  EXPECT_EQ(
      parseJson(ClaudeControl::initializeRequest().value()),
      parseJson(
          R"({"type":"control_request","request_id":"vantora-initialize","request":{"subtype":"initialize"}})"));
  EXPECT_EQ(
      parseJson(ClaudeControl::usageRequest().value()),
      parseJson(
          R"({"type":"control_request","request_id":"vantora-usage","request":{"subtype":"get_usage","skip_behaviors":true}})"));
  EXPECT_EQ(ClaudeControl::usageRequest()->find_first_of(" \n"), std::string::npos);
}

TEST(ClaudeControl, HandsTheUsageOverAsCompactJson) {
  EXPECT_EQ(
      ClaudeControl::readLine(
          answer(R"("subtype":"success","response": { "rate_limits": null, "n": 1.5 })") + "\r"),
      ClaudeClientResult(Answer{R"({"n":1.5,"rate_limits":null})"}));
  EXPECT_EQ(ClaudeControl::readLine(answer(R"("subtype":"success","response":{})")),
            ClaudeClientResult(Answer{"{}"}));
}

TEST(ClaudeControl, FailsWhenTheUsageIsMissing) {
  for (const char* members :
       {R"("subtype":"success")", R"("subtype":"success","response":null)",
        R"("subtype":"success","response":[])", R"("subtype":"success","response":"{}")",
        R"("subtype":"success","response":1,"error":"login")"}) {
    EXPECT_EQ(ClaudeControl::readLine(answer(members)), ClaudeClientResult(Failure{empty}))
        << members;
  }
}

TEST(ClaudeControl, SkipsEveryOtherLine) {
  const std::string deep =
      R"({"type":)" + std::string(100'000, '[') + std::string(100'000, ']') + "}";
  for (
      const std::string& line :
      {std::string(),
       std::string("\r"),
       std::string("hello"),
       std::string("null"),
       std::string("[1]"),
       std::string("\"control_response\""),
       std::string("{}"),
       std::string(R"({"type":"system","subtype":"init"})"),
       std::string(R"({"type":"control_response"})"),
       std::string(R"({"type":"control_response","response":null})"),
       std::string(R"({"type":"control_response","response":{}})"),
       std::string(R"({"type":"control_response","response":["vantora-usage"]})"),
       std::string(R"({"type":"control_response","response":{"request_id":7}})"),
       std::string(R"({"type":["control_response"],"response":{"request_id":"vantora-usage"}})"),
       std::string(R"({"type":"Control_Response","response":{"request_id":"vantora-usage"}})"),
       std::string(R"({"type":"control_request","response":{"request_id":"vantora-usage"}})"),
       std::string(
           R"({"type":"control_response","request_id":"vantora-usage","response":{"a":1}})"),
       std::string(
           R"({"type":"control_response","response":{"request_id":"vantora-initialize","subtype":"success","response":{}}})"),
       std::string(
           R"({"type":"control_response","response":{"request_id":"vantora-initialize","subtype":"error","error":"login"}})"),
       answer(R"("subtype":"success","response":{"n":1e999})"),
       answer(R"("subtype":"success","response":{"n":"\ud800"})"),
       answer("\"subtype\":\"success\",\"response\":{\"n\":\"\xc3\"}"),
       answer(R"("subtype":"success")") + "{}",
       deep,
       std::string(999'999, '{')}) {
    EXPECT_EQ(ClaudeControl::readLine(line), std::nullopt) << line.substr(0, 80);
  }
}

TEST(ClaudeControl, TakesTheLastOfTwoMembersWithOneName) {
  EXPECT_EQ(ClaudeControl::readLine(
                answer(R"("subtype":"error","subtype":"success","response":1,"response":{"a":2})")),
            ClaudeClientResult(Answer{R"({"a":2})"}));
}

TEST(ClaudeControl, RecognisesAVersionThatDoesNotKnowTheRequest) {
  for (const char* text :
       {"Unknown control request", "UNKNOWN subtype", "Not Supported", "unsupported",
        "Invalid subtype", "invalid authentication", "unknown, please /login"}) {
    EXPECT_EQ(ClaudeControl::readLine(errorAnswer(text)), ClaudeClientResult(UnsupportedVersion{}))
        << text;
  }
}

TEST(ClaudeControl, RecognisesThatALoginIsNeeded) {
  for (const char* text :
       {"Please run /login", "LOGIN", "OAuth token missing", "Authentication", "author"}) {
    EXPECT_EQ(ClaudeControl::readLine(errorAnswer(text)), ClaudeClientResult(NeedsAuthentication{}))
        << text;
  }
}

TEST(ClaudeControl, ReportsAnyOtherRefusal) {
  for (const char* members :
       {R"("subtype":"error","error":"rate limited")", R"("subtype":"error","error":"")",
        R"("subtype":"error")", R"("subtype":"error","error":["login"])",
        R"("subtype":"error","error":null)", R"("subtype":"Success","response":{})",
        R"("subtype":1,"response":{})", R"("response":{})",
        R"("subtype":"error","error":"log in")"}) {
    EXPECT_EQ(ClaudeControl::readLine(answer(members)), ClaudeClientResult(Failure{refused}))
        << members;
  }
}

TEST(ClaudeControl, FindsALoginProblemInTheErrorOutput) {
  for (const char* text : {"Please run /LOGIN", "You are Not Logged In.", "INVALID API KEY \xff",
                           "\xf0\x9f invalid api key"}) {
    EXPECT_TRUE(ClaudeControl::reportsMissingLogin(text)) << text;
  }
  for (const char* text : {"", "login", "not logged", "invalid key", "invalid\xff api key"}) {
    EXPECT_FALSE(ClaudeControl::reportsMissingLogin(text)) << text;
  }
}

}  // namespace
}  // namespace vantora
