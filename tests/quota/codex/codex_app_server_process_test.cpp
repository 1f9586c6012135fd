// SPDX-License-Identifier: MIT
//
// What the Codex client does differently with real children.
#include "quota/process_fixture.hpp"

namespace vantora {
namespace {

using quota_result::Answer;
using quota_result::Failure;

class CodexAppServerProcessTest : public test::QuotaProcessFixture<test::CodexClientCase> {};

TEST_F(CodexAppServerProcessTest, ReadsTheLimitsAmongNotifications) {
  start("answer", {R"({"method":"configWarning","params":{},"emittedAtMs":1})"
                   "\n"
                   R"({"result":{"userAgent":"codex"},"id":1})",
                   "", R"({"id":2,"result":{"account":{"type":"chatgpt"}}})",
                   R"({"id":3,"result":{"rateLimits":null}})"});
  expectResult(Answer{R"({"rateLimits":null})"});
}

TEST_F(CodexAppServerProcessTest, DrainsLongErrorOutput) {
  start("huge-error");
  expectResult(Failure{"Resposta inválida do App Server."});  // "done", after four megabytes
}

TEST_F(CodexAppServerProcessTest, FailsWhenTheInputWasClosedEarly) {
  start("answer-and-close-input", {R"({"id":1,"result":{}})"});
  expectResult(Failure{"O App Server fechou a entrada antes da consulta."});
}

}  // namespace
}  // namespace vantora
