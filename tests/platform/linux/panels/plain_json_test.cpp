// SPDX-License-Identifier: MIT
#include "platform/linux/panels/plain_json.hpp"

#include <gtest/gtest.h>

#include <string>

#include "model/json.hpp"

namespace vantora {
namespace {

std::string read(std::string_view text) {
  const auto json = parseJson(plainJson(text));
  return json ? writeJsonLossy(*json) : "no JSON";
}

TEST(PlainJson, IsWithoutCommentsOfEitherKind) {
  EXPECT_EQ(read("// a bar\n{ \"a\": 1, // one\n/* \"b\": 2,\n \"c\": 3, */ \"d\": 4 } // end"),
            R"({"a":1,"d":4})");
  EXPECT_EQ(read("{}/* never closed"), "{}");
  EXPECT_EQ(read("{\"a\": /**/1}"), R"({"a":1})");
  EXPECT_EQ(read("{\"a\": /*/ 2 /*/ 1}"), R"({"a":1})");
}

TEST(PlainJson, IsWithoutACommaBeforeAClosingBracket) {
  EXPECT_EQ(read("{\"a\": [1, 2, /* 3 */ ], // the last\n}"), R"({"a":[1,2]})");
  EXPECT_EQ(read("[1,2,\n]"), "[1,2]");
  EXPECT_EQ(read("[1,,]"), "no JSON") << "only one";
}

TEST(PlainJson, LeavesTextsAsTheyAre) {
  EXPECT_EQ(read(R"({"a": "http://b", "c": "/* d */", "e": ",]", "f": "\"//", "g\\": ","})"),
            R"({"a":"http://b","c":"/* d */","e":",]","f":"\"//","g\\":","})");
}

TEST(PlainJson, TakesControlCharactersOfTextsForSpaces) {
  EXPECT_EQ(read("{\"a\tb\": \"c\nd\"}"), R"({"a b":"c d"})");
}

TEST(PlainJson, LeavesWhatIsNoJson) {
  for (const char* text : {"", "bar", "/", "\"open", "\"\\", "{]", "]", ","}) {
    EXPECT_EQ(plainJson(text), text);
  }
}

}  // namespace
}  // namespace vantora
