// SPDX-License-Identifier: MIT
#include "model/json.hpp"

#include <gtest/gtest.h>

#include <limits>

#include <string>

namespace vantora {
namespace {

std::string nested(int depth) {
  const auto size = static_cast<std::size_t>(depth);
  return std::string(size, '[') + std::string(size, ']');
}

TEST(ParseJson, ReadsOneValue) {
  const auto value = parseJson(R"( {"a": [1, 2.5, null, true, "é"]} )");
  ASSERT_TRUE(value);
  EXPECT_EQ(writeJson(*value), R"({"a":[1,2.5,null,true,"é"]})");
}

TEST(ParseJson, RefusesWhatIsNotJson) {
  for (const char* text : {"", " ", "{", "{]", "nul", "{\"a\":1,}", "{} {}", "[1,]", "'a'",
                           "{\"a\"}", "NaN", "01", "\"\x01\""}) {
    EXPECT_FALSE(parseJson(text)) << text;
  }
}

TEST(ParseJson, RefusesNumbersThatNoDoubleHolds) {
  EXPECT_FALSE(parseJson("1e400"));
  EXPECT_FALSE(parseJson("[-1e999]"));
  EXPECT_TRUE(parseJson("1e-999"));
}

TEST(ParseJson, RefusesBytesThatAreNotUtf8) {
  EXPECT_FALSE(parseJson("\"\xff\""));
  EXPECT_FALSE(parseJson("\"\xc3\""));
  EXPECT_FALSE(parseJson(R"("\ud800")"));
  EXPECT_FALSE(parseJson(R"("\udc00")"));
  EXPECT_TRUE(parseJson(R"("\ud83d\ude00")"));
}

TEST(ParseJson, LimitsTheDepth) {
  EXPECT_TRUE(parseJson(nested(maxJsonDepth)));
  EXPECT_FALSE(parseJson(nested(maxJsonDepth + 1)));
  EXPECT_FALSE(parseJson(nested(100'000)));
  EXPECT_FALSE(parseJson(std::string(100'000, '[')));
}

TEST(ParseJson, CountsNoBracketsInsideOfTexts) {
  const std::string brackets(1000, '[');
  EXPECT_TRUE(parseJson("\"" + brackets + "\""));
  EXPECT_TRUE(parseJson("{\"" + brackets + "\":\"\\\"" + brackets + "\"}"));
  EXPECT_TRUE(parseJson("[\"\\\\\"," + nested(maxJsonDepth - 1) + "]"));
  EXPECT_FALSE(parseJson("[\"\\\\\"," + nested(maxJsonDepth) + "]"));
  EXPECT_FALSE(parseJson("\"\\"));
}

TEST(ParseJson, LimitsTheDepthOfOpenContainersOnly) {
  std::string siblings = "[[]";
  for (int index = 0; index < 1000; ++index) {
    siblings += ",[{}]";
  }
  EXPECT_TRUE(parseJson(siblings + "]"));
}

TEST(ParseJson, LetsTheLastOfTwoEqualMembersCount) {
  const auto value = parseJson(R"({"a":1,"a":2})");
  ASSERT_TRUE(value);
  EXPECT_EQ(asInteger(*member(*value, "a")), 2);
}

TEST(Member, DistinguishesNullFromAbsence) {
  const auto value = parseJson(R"({"a":null})");
  EXPECT_NE(member(*value, "a"), nullptr);
  EXPECT_EQ(presentMember(*value, "a"), nullptr);
  EXPECT_EQ(member(*value, "b"), nullptr);
  EXPECT_EQ(member(Json::array(), "a"), nullptr);
}

TEST(AsInteger, TakesIntegralNumbersOnly) {
  EXPECT_EQ(asInteger(*parseJson("2")), 2);
  EXPECT_EQ(asInteger(*parseJson("2.0")), 2);
  EXPECT_EQ(asInteger(*parseJson("2e1")), 20);
  EXPECT_EQ(asInteger(*parseJson("-3")), -3);
  EXPECT_EQ(asInteger(*parseJson("1.5")), std::nullopt);
  EXPECT_EQ(asInteger(*parseJson("9223372036854775807")), INT64_MAX);
  EXPECT_EQ(asInteger(*parseJson("9223372036854775808")), std::nullopt);
  EXPECT_EQ(asInteger(*parseJson("1e300")), std::nullopt);
  EXPECT_EQ(asInteger(*parseJson("true")), std::nullopt);
  EXPECT_EQ(asInteger(*parseJson("\"2\"")), std::nullopt);
}

TEST(AsScalars, TakeTheirOwnTypeOnly) {
  EXPECT_EQ(asDouble(*parseJson("2")), 2.0);
  EXPECT_EQ(asDouble(*parseJson("\"2\"")), std::nullopt);
  EXPECT_EQ(asDouble(*parseJson("true")), std::nullopt);
  EXPECT_EQ(asBool(*parseJson("true")), true);
  EXPECT_EQ(asBool(*parseJson("1")), std::nullopt);
  EXPECT_EQ(asText(*parseJson("\"a\"")), "a");
  EXPECT_EQ(asText(*parseJson("null")), std::nullopt);
}

TEST(WriteJson, RefusesTextsThatAreNotUtf8) {
  EXPECT_EQ(writeJson(Json("\xff")), std::nullopt);
}

TEST(WriteJson, ReplacesBytesThatAreNotUtf8WhereTheTextMustBeWritten) {
  EXPECT_EQ(writeJsonLossy(Json{{"a", "\xffz"}}), "{\"a\":\"\xEF\xBF\xBDz\"}");
}

TEST(Json, IsAnObjectWhenEveryElementIsAPairWithAText) {
  EXPECT_EQ(writeJson(Json{{"b", 1}, {"a", nullptr}}), R"({"a":null,"b":1})");
  EXPECT_EQ(writeJson(Json{{"a", 1}, 2}), R"([["a",1],2])");
  EXPECT_EQ(writeJson(Json{{1, "a"}}), R"([[1,"a"]])");
  EXPECT_EQ(writeJson(Json{{{"a", 1}}, {{"b", 2.5}}}), R"([{"a":1},{"b":2.5}])");
  EXPECT_EQ(writeJson(Json::object()), "{}");
  EXPECT_EQ(writeJson(Json::array()), "[]");
}

TEST(Json, ComparesNumbersByTheirValue) {
  EXPECT_EQ(Json(2), Json(2U));
  EXPECT_EQ(Json(2), Json(2.0));
  EXPECT_NE(Json(2), Json(2.5));
  EXPECT_NE(Json(-1), Json(std::numeric_limits<std::uint64_t>::max()));
  EXPECT_EQ(Json(std::numeric_limits<std::uint64_t>::max()), Json(0x1p64));
  EXPECT_NE(Json(1), Json(true));
  EXPECT_NE(Json("1"), Json(1));
}

TEST(Json, AnswersWhatIsNotThereWithNull) {
  const Json value{{"a", Json::array()}};
  EXPECT_TRUE(value["b"].isNull());
  EXPECT_TRUE(value["a"][0].isNull());
  EXPECT_TRUE(value["a"]["c"].isNull());
  EXPECT_TRUE(Json(1).empty());
  EXPECT_FALSE(Json("a").contains("a"));
}

TEST(Json, WritesAValueThatMayBeMissingOrNull) {
  EXPECT_EQ(orNull(std::optional(0)), Json(0));
  EXPECT_EQ(orNull(std::optional<std::string>("")), Json(""));
  EXPECT_TRUE(orNull(std::optional<std::string>()).isNull());
  const auto twice = [](int value) { return 2 * value; };
  EXPECT_EQ(orNull(std::optional(3), twice), Json(6));
  EXPECT_TRUE(orNull(std::optional<int>(), twice).isNull());
}

TEST(Json, TakesMembersInAndOut) {
  Json value;
  value["a"] = 1;
  value["list"].append("x");
  EXPECT_EQ(value, *parseJson(R"({"a":1,"list":["x"]})"));
  EXPECT_EQ(value.erase("a"), 1U);
  EXPECT_EQ(value.erase("a"), 0U);
  EXPECT_EQ(Json(1).erase("a"), 0U);
  EXPECT_EQ(value.size(), 1U);
}

}  // namespace
}  // namespace vantora
