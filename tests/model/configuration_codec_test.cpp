// SPDX-License-Identifier: MIT
#include "model/configuration_codec.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "model/json.hpp"

namespace vantora {
namespace {

AppConfiguration fullConfiguration() {
  AppConfiguration configuration;
  configuration.intervalSeconds = 1;
  configuration.gap = 2.5;
  configuration.networkInterface = "en0";
  configuration.paused = true;
  configuration.modules[0].gapAfter = 7;
  configuration.modules[0].hideInactiveFans = false;
  configuration.modules[1].alignment = Alignment::right;
  configuration.modules[2].widthMode = WidthMode::automatic;
  configuration.codexSettings = CodexQuotaSettings{true, 5, "codex", true, true, true};
  configuration.claudeSettings = ClaudeQuotaSettings{true, 10, true, false};
  return configuration;
}

Json fullDocument() {
  return *parseJson(*ConfigurationCodec::encode(fullConfiguration()));
}

TEST(ConfigurationCodec, ReadsBackWhatItWrites) {
  for (const auto& configuration : {AppConfiguration(), fullConfiguration()}) {
    const auto document = ConfigurationCodec::encode(configuration);
    ASSERT_TRUE(document);
    EXPECT_EQ(ConfigurationCodec::decode(*document), configuration);
  }
}

TEST(ConfigurationCodec, LeavesAbsentValuesOut) {
  const auto document = *parseJson(*ConfigurationCodec::encode(AppConfiguration()));
  EXPECT_FALSE(document.contains("networkInterface"));
  EXPECT_FALSE(document.contains("codexSettings"));
  EXPECT_FALSE(document.contains("claudeSettings"));
  EXPECT_FALSE(document["modules"][0].contains("gapAfter"));
  EXPECT_FALSE(document["modules"][0].contains("hideInactiveFans"));
}

TEST(ConfigurationCodec, WritesCompactTextWithRawNames) {
  const auto text = *ConfigurationCodec::encode(fullConfiguration());
  EXPECT_EQ(text.find_first_of("\n\t "), std::string::npos);
  EXPECT_NE(text.find(R"("top":"batteryPercent")"), std::string::npos);
  EXPECT_NE(text.find(R"("widthMode":"automatic")"), std::string::npos);
  EXPECT_NE(text.find(R"("alignment":"right")"), std::string::npos);
}

// Every key, required (true) or not, by the path to its object.
struct Key {
  const char* object;  // a JSON pointer
  const char* name;
  bool isRequired;
};
constexpr Key keys[] = {
    {"", "schemaVersion", true},
    {"", "intervalSeconds", true},
    {"", "modules", true},
    {"", "gap", true},
    {"", "horizontalPadding", true},
    {"", "verticalPadding", true},
    {"", "lineGap", true},
    {"", "networkInterface", false},
    {"", "paused", true},
    {"", "codexSettings", false},
    {"", "claudeSettings", false},
    {"/modules/0", "id", true},
    {"/modules/0", "enabled", true},
    {"/modules/0", "top", true},
    {"/modules/0", "bottom", true},
    {"/modules/0", "widthMode", true},
    {"/modules/0", "width", true},
    {"/modules/0", "fontTop", true},
    {"/modules/0", "fontBottom", true},
    {"/modules/0", "alignment", true},
    {"/modules/0", "gapAfter", false},
    {"/modules/0", "hideInactiveFans", false},
    {"/codexSettings", "enabled", true},
    {"/codexSettings", "intervalMinutes", true},
    {"/codexSettings", "selectedLimitID", false},
    {"/codexSettings", "showUsed", true},
    {"/codexSettings", "oneDecimal", true},
    {"/codexSettings", "showResetDate", true},
    {"/claudeSettings", "enabled", true},
    {"/claudeSettings", "intervalMinutes", true},
    {"/claudeSettings", "showUsed", true},
    {"/claudeSettings", "oneDecimal", true},
};

bool decodes(const Json& document) {
  return ConfigurationCodec::decode(document.dump()).has_value();
}

TEST(ConfigurationCodec, FailsWithoutARequiredKeyAndReadsAMissingOptionalOneAsAbsent) {
  for (const Key& key : keys) {
    Json document = fullDocument();
    ASSERT_EQ(document[Json::json_pointer(key.object)].erase(key.name), 1U) << key.name;
    EXPECT_EQ(decodes(document), !key.isRequired) << key.object << "/" << key.name;
  }
}

TEST(ConfigurationCodec, TakesNullForAbsenceUnderOptionalKeysOnly) {
  for (const Key& key : keys) {
    Json document = fullDocument();
    document[Json::json_pointer(key.object)][key.name] = nullptr;
    EXPECT_EQ(decodes(document), !key.isRequired) << key.object << "/" << key.name;
  }
}

TEST(ConfigurationCodec, FailsOnAValueOfTheWrongType) {
  for (const Key& key : keys) {
    for (const char* wrong : {"true", "7", "\"text\"", "[]", "{}"}) {
      Json document = fullDocument();
      Json& value = document[Json::json_pointer(key.object)][key.name];
      const Json replacement = *parseJson(wrong);
      const bool isSameType =
          value.type() == replacement.type() || (value.is_number() && replacement.is_number());
      if (isSameType) {
        continue;
      }
      value = replacement;
      EXPECT_FALSE(decodes(document)) << key.object << "/" << key.name << " = " << wrong;
    }
  }
}

TEST(ConfigurationCodec, FailsOnAnUnknownEnumerationText) {
  for (const char* name : {"top", "bottom", "widthMode", "alignment", "id"}) {
    Json document = fullDocument();
    document["modules"][1][name] = "unknown";
    EXPECT_FALSE(decodes(document)) << name;
  }
}

TEST(ConfigurationCodec, IgnoresKeysThatItDoesNotKnow) {
  Json document = fullDocument();
  const auto expected = ConfigurationCodec::decode(document.dump());
  ASSERT_TRUE(expected);
  document["future"] = {{"a", 1}};
  document["modules"][0]["future"] = nullptr;
  document["codexSettings"]["future"] = "x";
  EXPECT_EQ(ConfigurationCodec::decode(document.dump()), expected);
}

TEST(ConfigurationCodec, ReadsIntegralNumbersAsIntegersAndNoOthers) {
  Json document = fullDocument();
  document["intervalSeconds"] = 2.0;
  ASSERT_TRUE(decodes(document));
  EXPECT_EQ(ConfigurationCodec::decode(document.dump())->intervalSeconds, 2);
  document["intervalSeconds"] = 1.5;
  EXPECT_FALSE(decodes(document));
  document["intervalSeconds"] = 4'294'967'297;  // Would be 1 if it were cut to 32 bits.
  EXPECT_FALSE(decodes(document));
}

TEST(ConfigurationCodec, ReadsLengthsWithOrWithoutAFraction) {
  Json document = fullDocument();
  document["gap"] = 4;
  document["lineGap"] = 0.5;
  const auto configuration = ConfigurationCodec::decode(document.dump());
  ASSERT_TRUE(configuration);
  EXPECT_EQ(configuration->gap, 4);
  EXPECT_EQ(configuration->lineGap, 0.5);
}

TEST(ConfigurationCodec, LeavesTheLimitsToValidated) {
  Json document = fullDocument();
  document["schemaVersion"] = 7;
  document["gap"] = -1;
  const auto configuration = ConfigurationCodec::decode(document.dump());
  ASSERT_TRUE(configuration);
  EXPECT_FALSE(configuration->validated());
}

TEST(ConfigurationCodec, ReadsIdentitiesInEitherCase) {
  Json document = fullDocument();
  document["modules"][0]["id"] = "e621e1f8-c36c-495a-93fc-0c247a3e6e5f";
  ASSERT_TRUE(decodes(document));
  EXPECT_EQ(ConfigurationCodec::decode(document.dump())->modules[0].id.text(),
            "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
}

TEST(ConfigurationCodec, FailsOnWhatIsNoObject) {
  for (const char* text : {"", "null", "[]", "1", "\"{}\"", "{", "{}", "\xff\xfe{}"}) {
    EXPECT_FALSE(ConfigurationCodec::decode(text)) << text;
  }
  EXPECT_FALSE(ConfigurationCodec::decode(std::string(100'000, '{')));
  std::string deep = R"({"schemaVersion":)" + std::string(100'000, '[');
  EXPECT_FALSE(ConfigurationCodec::decode(deep));
}

TEST(ConfigurationCodec, WritesNothingThatJsonCannotHold) {
  AppConfiguration configuration;
  configuration.networkInterface = "\xff";
  EXPECT_EQ(ConfigurationCodec::encode(configuration), std::nullopt);
  configuration = AppConfiguration();
  configuration.modules[0].width = std::numeric_limits<double>::infinity();
  EXPECT_EQ(ConfigurationCodec::encode(configuration), std::nullopt);
  configuration = AppConfiguration();
  configuration.gap = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(ConfigurationCodec::encode(configuration), std::nullopt);
}

}  // namespace
}  // namespace vantora
