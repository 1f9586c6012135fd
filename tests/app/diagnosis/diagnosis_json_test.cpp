// SPDX-License-Identifier: MIT
#include "app/diagnosis/diagnosis_json.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/diagnosis/example_diagnosis.hpp"

namespace vantora {
namespace {

Json documentOf(const Diagnosis& diagnosis) {
  const auto document = parseJson(diagnosisJson(diagnosis, test::laptopConcealer));
  EXPECT_TRUE(document);
  return document.value_or(Json());
}

TEST(DiagnosisJson, HoldsWhatWasFoundWithTheMetricsByTheirIdentifiers) {
  const Json document = documentOf(test::laptopDiagnosis());
  EXPECT_EQ(document["at"], Json("2026-09-21T14:13:20Z"));
  EXPECT_EQ(document["agent"]["presence"], Json("answered"));
  EXPECT_EQ(document["agent"]["shown"], Json("7% 61°C | 80% 2:10"));
  EXPECT_EQ(document["item"]["formWhy"], Json("este painel põe todo item em um quadrado"));
  EXPECT_EQ(document["sensors"]["devices"].size(), 8U);
  EXPECT_EQ(document["sensors"]["devices"][0]["feeds"][0], Json("cpuTemperature"));
  EXPECT_EQ(document["sensors"]["devices"][7]["feeds"].size(), 0U);
  EXPECT_EQ(document["sensors"]["devices"][7]["why"], Json("não medem a CPU nem a bateria"));
  EXPECT_EQ(document["readings"][3]["source"],
            Json("Linux power_supply · bateria interna sem sensor de temperatura"));
  EXPECT_EQ(document["assistants"][0]["quota"]["nextQuery"], Json("2026-09-21T14:20:20Z"));
  EXPECT_EQ(document["configuration"]["path"], Json("~/.config/Vantora/configuration.json"));
  EXPECT_EQ(document["libraries"]["libuv"], Json("1.44.2"));
}

TEST(DiagnosisJson, HasANullWhereNothingIsKnown) {
  const Json document = documentOf(Diagnosis());
  EXPECT_TRUE(document["agent"]["version"].isNull());
  EXPECT_TRUE(document["item"]["panel"].isNull());
  EXPECT_TRUE(document["typefaces"]["text"].isNull());
  EXPECT_EQ(document["configuration"]["state"], Json("absent"));
  EXPECT_EQ(document["sensors"]["devices"].size(), 0U);
}

TEST(DiagnosisJson, ShowsNothingOfTheUsersOwn) {
  const std::string text = diagnosisJson(test::laptopDiagnosis(), test::laptopConcealer);
  for (const char* secret : {"maria", "00e04c680001", "0018"}) {
    EXPECT_THAT(text, testing::Not(testing::HasSubstr(secret)));
  }
}

}  // namespace
}  // namespace vantora
