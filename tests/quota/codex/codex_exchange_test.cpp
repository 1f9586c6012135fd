// SPDX-License-Identifier: MIT
#include "quota/codex/codex_exchange.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "model/json.hpp"

namespace vantora {
namespace {

using codex_result::PermissionDenied;
using codex_result::UnsupportedAccount;
using quota_result::Answer;
using quota_result::Failure;
using quota_result::NeedsAuthentication;
using quota_result::UnsupportedVersion;
using testing::ElementsAre;
using testing::IsEmpty;

// A message, whatever the order of its members.
MATCHER_P(IsJson, expected, "") {
  return parseJson(arg) == parseJson(expected);
}

constexpr const char* outOfOrder = "Resposta fora de ordem do App Server.";
constexpr const char* empty = "Resposta vazia do App Server.";
constexpr const char* invalid = "Resposta inválida do App Server.";
constexpr const char* refused = "O App Server recusou a consulta.";
constexpr const char* badLoginURL = "O endereço de login não pôde ser validado.";

constexpr const char* initialized = R"({"id":1,"result":{"userAgent":"codex"}})";
constexpr const char* account = R"({"id":2,"result":{"account":{"type":"chatgpt"}}})";
constexpr const char* loginStarted =
    R"({"id":4,"result":{"type":"chatgpt","loginId":"L1","authUrl":"https://auth.openai.com/a"}})";

void expectNothing(const CodexStep& step) {
  EXPECT_THAT(step.messages, IsEmpty());
  EXPECT_FALSE(step.deadline);
  EXPECT_FALSE(step.loginURL);
  EXPECT_FALSE(step.result);
}

void expectResult(const CodexStep& step, const CodexClientResult& expected) {
  EXPECT_THAT(step.messages, IsEmpty());
  ASSERT_TRUE(step.result);
  EXPECT_EQ(*step.result, expected);
}

// One that was brought to the stage that waits for the answer with `id`.
CodexExchange exchangeAt(int id) {
  CodexExchange exchange(id == 4 || id == 5 ? CodexClientMode::login : CodexClientMode::read);
  (void)exchange.begin();
  if (id > 1) {
    EXPECT_FALSE(exchange.take(initialized).result);
  }
  if (id == 3) {
    EXPECT_FALSE(exchange.take(account).result);
  }
  if (id == 5) {
    EXPECT_FALSE(exchange.take(loginStarted).result);
  }
  return exchange;
}
constexpr int awaitingLogin = 5;

TEST(CodexExchange, IntroducesItselfFirst) {
  CodexExchange exchange(CodexClientMode::read);
  const CodexStep step = exchange.begin();
  EXPECT_THAT(step.messages,
              ElementsAre(IsJson(
                  R"({"id":1,"method":"initialize","params":{"clientInfo":{"name":"vantora_quota",)"
                  R"("title":"Vantora Quota","version":"0.1.0"}}})")));
  EXPECT_EQ(step.deadline, Seconds{10});
  EXPECT_FALSE(step.result);
}

TEST(CodexExchange, WritesCompactJson) {
  CodexExchange exchange(CodexClientMode::read);
  const CodexStep step = exchange.begin();
  EXPECT_EQ(step.messages.front().find_first_of("\n\t"), std::string::npos);
  EXPECT_EQ(step.messages.front().find(": "), std::string::npos);
}

TEST(CodexExchange, AsksForTheAccountInReadMode) {
  CodexExchange exchange = exchangeAt(1);
  const CodexStep step = exchange.take(initialized);
  EXPECT_THAT(
      step.messages,
      ElementsAre(IsJson(R"({"method":"initialized","params":{}})"),
                  IsJson(R"({"id":2,"method":"account/read","params":{"refreshToken":false}})")));
  EXPECT_EQ(step.deadline, Seconds{10});
  EXPECT_FALSE(step.result);
}

TEST(CodexExchange, AsksForTheLimitsWithoutParameters) {
  CodexExchange exchange = exchangeAt(2);
  const CodexStep step = exchange.take(account);
  EXPECT_THAT(step.messages, ElementsAre(IsJson(R"({"id":3,"method":"account/rateLimits/read"})")));
  EXPECT_EQ(step.deadline, Seconds{20});
}

TEST(CodexExchange, HandsTheLimitsOverAsCompactJson) {
  CodexExchange exchange = exchangeAt(3);
  expectResult(
      exchange.take("{ \"result\": { \"rateLimits\": { \"usedPercent\": 12.5 } }, \"id\": 3 }\r"),
      Answer{R"({"rateLimits":{"usedPercent":12.5}})"});
}

TEST(CodexExchange, StartsALoginInLoginMode) {
  CodexExchange exchange(CodexClientMode::login);
  (void)exchange.begin();
  const CodexStep step = exchange.take(initialized);
  EXPECT_THAT(
      step.messages,
      ElementsAre(
          IsJson(R"({"method":"initialized","params":{}})"),
          IsJson(R"({"id":4,"method":"account/login/start","params":{"type":"chatgpt"}})")));
  EXPECT_EQ(step.deadline, Seconds{10});
}

TEST(CodexExchange, ReturnsTheLoginPageAndGivesTheUserFiveMinutes) {
  CodexExchange exchange = exchangeAt(4);
  const CodexStep step = exchange.take(loginStarted);
  EXPECT_THAT(step.messages, IsEmpty());
  EXPECT_EQ(step.loginURL, "https://auth.openai.com/a");
  EXPECT_EQ(step.deadline, Seconds{300});
  EXPECT_FALSE(step.result);
}

TEST(CodexExchange, ReadsTheLimitsAfterTheLogin) {
  CodexExchange exchange = exchangeAt(awaitingLogin);
  const CodexStep step = exchange.take(
      R"({"method":"account/login/completed","params":{"loginId":"L1","success":true}})");
  EXPECT_THAT(
      step.messages,
      ElementsAre(IsJson(R"({"id":2,"method":"account/read","params":{"refreshToken":false}})")));
  EXPECT_EQ(step.deadline, Seconds{10});
  EXPECT_THAT(exchange.take(account).messages,
              ElementsAre(IsJson(R"({"id":3,"method":"account/rateLimits/read"})")));
  expectResult(exchange.take(R"({"id":3,"result":{}})"), Answer{"{}"});
}

TEST(CodexExchange, AsksForALoginWhenTheBrowserLoginDidNotSucceed) {
  for (const char* params :
       {R"({"loginId":"L1","success":false})", R"({"loginId":"L1"})",
        R"({"loginId":"L1","success":null})", R"({"loginId":"L1","success":1})",
        R"({"loginId":"L1","success":"true"})"}) {
    CodexExchange exchange = exchangeAt(awaitingLogin);
    expectResult(exchange.take(R"({"method":"account/login/completed","params":)" +
                               std::string(params) + "}"),
                 NeedsAuthentication{});
  }
}

TEST(CodexExchange, IgnoresTheEndOfAnotherLogin) {
  for (const char* line :
       {R"({"method":"account/login/completed","params":{"loginId":"L2","success":true}})",
        R"({"method":"account/login/completed","params":{"loginId":"","success":true}})",
        R"({"method":"account/login/completed","params":{"success":true}})",
        R"({"method":"account/login/completed","params":{"loginId":null,"success":false}})",
        R"({"method":"account/login/completed","params":{"loginId":7,"success":true}})",
        R"({"method":"account/login/completed","params":["L1"]})",
        R"({"method":"account/login/completed"})",
        R"({"method":"account/updated","params":{"loginId":"L1","success":true}})"}) {
    CodexExchange exchange = exchangeAt(awaitingLogin);
    expectNothing(exchange.take(line));
  }
}

TEST(CodexExchange, IgnoresResponsesWhileTheUserLogsIn) {
  CodexExchange exchange = exchangeAt(awaitingLogin);
  for (const char* line :
       {loginStarted, account, R"({"id":9,"error":{"code":403}})", R"({"id":2})"}) {
    expectNothing(exchange.take(line));
  }
  // With an id it is a response, whatever else it says.
  expectNothing(exchange.take(
      R"({"id":4,"method":"account/login/completed","params":{"loginId":"L1","success":true}})"));
}

TEST(CodexExchange, IgnoresNotificationsInEveryOtherStage) {
  for (const int id : {1, 2, 3, 4}) {
    CodexExchange exchange = exchangeAt(id);
    for (const char* line :
         {R"({"method":"remoteControl/status/changed","params":{},"emittedAt":1})",
          R"({"method":"configWarning"})", "{}", R"({"id":null,"error":{"code":401}})",
          R"({"id":"2","result":{}})", R"({"id":2.5,"result":{}})", R"({"id":true,"result":{}})",
          R"({"method":"account/login/completed","params":{"loginId":"L1","success":true}})"}) {
      expectNothing(exchange.take(line));
    }
  }
}

TEST(CodexExchange, RefusesAnAnswerOutOfOrder) {
  for (const int id : {1, 2, 3, 4}) {
    for (const int other : {0, 1, 2, 3, 4, 5, -1}) {
      if (id != other) {
        CodexExchange exchange = exchangeAt(id);
        expectResult(exchange.take(R"({"result":{},"id":)" + std::to_string(other) + "}"),
                     Failure{outOfOrder});
      }
    }
  }
}

TEST(CodexExchange, PutsTheOrderBeforeAnErrorOfTheAnswer) {
  CodexExchange exchange = exchangeAt(2);
  expectResult(exchange.take(R"({"id":3,"error":{"code":403}})"), Failure{outOfOrder});
}

TEST(CodexExchange, TakesAnIdThatIsWrittenAsAFraction) {
  CodexExchange exchange = exchangeAt(3);
  expectResult(exchange.take(R"({"id":3.0,"result":{}})"), Answer{"{}"});
}

TEST(CodexExchange, RefusesAnAnswerWithoutAResultObject) {
  for (const int id : {1, 2, 3, 4}) {
    for (const char* rest : {"", R"(,"result":null)", R"(,"result":[])", R"(,"result":"ok")",
                             R"(,"error":null)", R"(,"error":"no","result":7)"}) {
      CodexExchange exchange = exchangeAt(id);
      expectResult(exchange.take("{\"id\":" + std::to_string(id) + rest + "}"), Failure{empty});
    }
  }
}

TEST(CodexExchange, LooksAtTheResultWhenTheErrorIsNoObject) {
  CodexExchange exchange = exchangeAt(3);
  expectResult(exchange.take(R"({"id":3,"error":null,"result":{"a":1}})"), Answer{R"({"a":1})"});
}

TEST(CodexExchange, AsksForALoginWithoutAnAccount) {
  for (const char* result :
       {"{}", R"({"account":null,"requiresOpenaiAuth":true})", R"({"account":{}})",
        R"({"account":"chatgpt"})", R"({"account":["chatgpt"]})", R"({"account":{"type":null}})",
        R"({"account":{"type":1}})"}) {
    CodexExchange exchange = exchangeAt(2);
    expectResult(exchange.take(R"({"id":2,"result":)" + std::string(result) + "}"),
                 NeedsAuthentication{});
  }
}

TEST(CodexExchange, SupportsNoOtherAccount) {
  for (const char* type : {"apiKey", "ChatGPT", "", "chatgpt "}) {
    CodexExchange exchange = exchangeAt(2);
    expectResult(
        exchange.take(R"({"id":2,"result":{"account":{"type":")" + std::string(type) + R"("}}})"),
        UnsupportedAccount{});
  }
}

TEST(CodexExchange, RefusesALoginThatItCannotCheck) {
  for (const char* result :
       {"{}", R"({"type":"chatgpt","loginId":"L1"})",
        R"({"type":"apiKey","loginId":"L1","authUrl":"https://chatgpt.com/"})",
        R"({"loginId":"L1","authUrl":"https://chatgpt.com/"})",
        R"({"type":"chatgpt","authUrl":"https://chatgpt.com/"})",
        R"({"type":"chatgpt","loginId":1,"authUrl":"https://chatgpt.com/"})",
        R"({"type":"chatgpt","loginId":"L1","authUrl":null})",
        R"({"type":"chatgpt","loginId":"L1","authUrl":""})",
        R"({"type":"chatgpt","loginId":"L1","authUrl":"http://chatgpt.com/"})",
        R"({"type":"chatgpt","loginId":"L1","authUrl":"https://me@chatgpt.com/"})",
        R"({"type":"chatgpt","loginId":"L1","authUrl":"https://example.com/"})"}) {
    CodexExchange exchange = exchangeAt(4);
    const CodexStep step = exchange.take(R"({"id":4,"result":)" + std::string(result) + "}");
    expectResult(step, Failure{badLoginURL});
    EXPECT_FALSE(step.loginURL);
  }
}

TEST(CodexExchange, TakesALoginHostInAnyLetterCase) {
  CodexExchange exchange = exchangeAt(4);
  EXPECT_EQ(exchange
                .take(R"({"id":4,"result":{"type":"chatgpt","loginId":"","authUrl":)"
                      R"("https://ChatGPT.com/a"}})")
                .loginURL,
            "https://ChatGPT.com/a");
}

TEST(CodexExchange, RefusesALineThatIsNoObject) {
  const std::string deep = std::string(100'000, '[') + std::string(100'000, ']');
  const std::string deepObject = [] {
    std::string text;
    for (int depth = 0; depth < 100'000; ++depth) {
      text += "{\"a\":";
    }
    return text + "1" + std::string(100'000, '}');
  }();
  for (const std::string& line :
       {std::string(), std::string("\r"), std::string("null"), std::string("[]"), std::string("1"),
        std::string("\"{}\""), std::string("{\"id\":1"), std::string("{} {}"),
        std::string("{\"id\":1e999,\"result\":{}}"), std::string("{\"a\":\"\\ud800\"}"),
        std::string("{\"a\":\"\xff\"}"), std::string("{1:2}"), deep, deepObject,
        std::string(999'999, ' '), std::string(999'999, 'x')}) {
    CodexExchange exchange = exchangeAt(2);
    expectResult(exchange.take(line), Failure{invalid});
  }
}

TEST(CodexExchange, TakesTheLastOfTwoMembersWithOneName) {
  CodexExchange exchange = exchangeAt(3);
  expectResult(exchange.take(R"({"id":9,"id":3,"result":{"a":1},"result":{"a":2,"a":3}})"),
               Answer{R"({"a":3})"});
}

struct ErrorCase {
  const char* error;
  CodexClientResult expected;
};
std::ostream& operator<<(std::ostream& stream, const ErrorCase& error) {
  return stream << error.error;
}

class CodexExchangeError : public testing::TestWithParam<ErrorCase> {};

TEST_P(CodexExchangeError, DecidesTheResult) {
  for (const int id : {1, 2, 3, 4}) {
    CodexExchange exchange = exchangeAt(id);
    expectResult(exchange.take(R"({"error":)" + std::string(GetParam().error) +
                               R"(,"result":{},"id":)" + std::to_string(id) + "}"),
                 GetParam().expected);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Permission, CodexExchangeError,
    testing::Values(ErrorCase{R"({"code":403})", PermissionDenied{}},
                    ErrorCase{R"({"code":403,"message":"method not found"})", PermissionDenied{}},
                    ErrorCase{R"({"code":403,"message":"token expired"})", PermissionDenied{}},
                    ErrorCase{R"({"message":"No PERMISSION"})", PermissionDenied{}},
                    ErrorCase{R"({"message":"Forbidden."})", PermissionDenied{}},
                    ErrorCase{R"({"message":"workspace policy"})", PermissionDenied{}},
                    ErrorCase{R"({"code":-32601,"message":"policy"})", PermissionDenied{}},
                    ErrorCase{R"({"code":401,"message":"permission: login required"})",
                              PermissionDenied{}}));

INSTANTIATE_TEST_SUITE_P(
    Version, CodexExchangeError,
    testing::Values(
        ErrorCase{R"({"code":-32601})", UnsupportedVersion{}},
        ErrorCase{R"({"code":-32601,"message":"not logged in"})", UnsupportedVersion{}},
        ErrorCase{R"({"code":-32600,"message":"Method not found: x"})", UnsupportedVersion{}},
        ErrorCase{R"({"code":401,"message":"method NOT found"})", UnsupportedVersion{}}));

INSTANTIATE_TEST_SUITE_P(
    Login, CodexExchangeError,
    testing::Values(
        ErrorCase{R"({"code":401})", NeedsAuthentication{}},
        ErrorCase{R"({"code":401,"message":"whatever"})", NeedsAuthentication{}},
        ErrorCase{
            R"({"code":-32600,"message":"codex account authentication required to read rate limits"})",
            NeedsAuthentication{}},
        ErrorCase{R"({"message":"Unauthorized"})", NeedsAuthentication{}},
        ErrorCase{R"({"message":"NOT AUTHENTICATED"})", NeedsAuthentication{}},
        ErrorCase{R"({"message":"you are not logged in"})", NeedsAuthentication{}},
        ErrorCase{R"({"message":"login required"})", NeedsAuthentication{}},
        ErrorCase{R"({"message":"Token expired"})", NeedsAuthentication{}},
        ErrorCase{R"({"message":"Refresh Token has EXPIRED"})", NeedsAuthentication{}},
        ErrorCase{R"({"message":"invalid refresh token"})", NeedsAuthentication{}}));

INSTANTIATE_TEST_SUITE_P(
    Refusal, CodexExchangeError,
    testing::Values(ErrorCase{"{}", Failure{refused}},
                    ErrorCase{R"({"code":-32600,"message":"Invalid request"})", Failure{refused}},
                    ErrorCase{R"({"message":"refresh token missing"})", Failure{refused}},
                    ErrorCase{R"({"message":"session expired"})", Failure{refused}},
                    ErrorCase{R"({"message":"authentication"})", Failure{refused}},
                    ErrorCase{R"({"message":["policy"]})", Failure{refused}},
                    ErrorCase{R"({"message":null,"code":null})", Failure{refused}},
                    ErrorCase{R"({"code":"403"})", Failure{refused}},
                    ErrorCase{R"({"code":403.5})", Failure{refused}}));

}  // namespace
}  // namespace vantora
