// SPDX-License-Identifier: MIT
#include "model/configuration_codec.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "model/json.hpp"

namespace vantora {
namespace {

// Every value of a type is another one within its object, so that none can take the place
// of another.
AppConfiguration fullConfiguration() {
  AppConfiguration configuration;
  configuration.schemaVersion = 3;
  configuration.intervalSeconds = 1;
  configuration.gap = 2.5;
  configuration.horizontalPadding = 3.5;
  configuration.verticalPadding = 1.5;
  configuration.lineGap = 0.5;
  configuration.networkInterface = "en0";
  configuration.paused = true;
  ModuleConfiguration& first = configuration.modules[0];
  first.width = 41;
  first.fontTop = 8.5;
  first.fontBottom = 12;
  first.gapAfter = 7;
  first.hideInactiveFans = false;
  configuration.modules[1].enabled = false;
  configuration.modules[1].alignment = Alignment::right;
  configuration.modules[1].hideInactiveFans = true;
  configuration.modules[2].widthMode = WidthMode::automatic;
  configuration.modules[2].alignment = Alignment::left;
  return configuration;
}

// Two switches cannot differ from a third: each is on alone once.
std::vector<AppConfiguration> everyConfiguration() {
  std::vector<AppConfiguration> all{AppConfiguration(), fullConfiguration()};
  for (int on = 0; on < 4; ++on) {
    AppConfiguration configuration = fullConfiguration();
    configuration.codexSettings =
        CodexQuotaSettings{on == 0, 5, "codex", on == 1, on == 2, on == 3};
    configuration.claudeSettings = ClaudeQuotaSettings{on == 0, 10, on == 1, on == 2};
    all.push_back(configuration);
  }
  return all;
}

Json fullDocument() {
  return *parseJson(*ConfigurationCodec::encode(everyConfiguration().back()));
}

TEST(ConfigurationCodec, ReadsBackWhatItWrites) {
  for (const auto& configuration : everyConfiguration()) {
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
  const char* object;  // "" is the document itself
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
    {"modules", "id", true},
    {"modules", "enabled", true},
    {"modules", "top", true},
    {"modules", "bottom", true},
    {"modules", "widthMode", true},
    {"modules", "width", true},
    {"modules", "fontTop", true},
    {"modules", "fontBottom", true},
    {"modules", "alignment", true},
    {"modules", "gapAfter", false},
    {"modules", "hideInactiveFans", false},
    {"codexSettings", "enabled", true},
    {"codexSettings", "intervalMinutes", true},
    {"codexSettings", "selectedLimitID", false},
    {"codexSettings", "showUsed", true},
    {"codexSettings", "oneDecimal", true},
    {"codexSettings", "showResetDate", true},
    {"claudeSettings", "enabled", true},
    {"claudeSettings", "intervalMinutes", true},
    {"claudeSettings", "showUsed", true},
    {"claudeSettings", "oneDecimal", true},
};

// The object that holds the key; of the modules the first.
Json& objectOf(Json& document, const Key& key) {
  Json& object = *key.object == '\0' ? document : document[key.object];
  return object.isArray() ? object[0] : object;
}

bool decodes(const Json& document) {
  return ConfigurationCodec::decode(*writeJson(document)).has_value();
}

TEST(ConfigurationCodec, FailsWithoutARequiredKeyAndReadsAMissingOptionalOneAsAbsent) {
  for (const Key& key : keys) {
    Json document = fullDocument();
    ASSERT_EQ(objectOf(document, key).erase(key.name), 1U) << key.name;
    EXPECT_EQ(decodes(document), !key.isRequired) << key.object << "/" << key.name;
  }
}

TEST(ConfigurationCodec, TakesNullForAbsenceUnderOptionalKeysOnly) {
  for (const Key& key : keys) {
    Json document = fullDocument();
    objectOf(document, key)[key.name] = nullptr;
    EXPECT_EQ(decodes(document), !key.isRequired) << key.object << "/" << key.name;
  }
}

TEST(ConfigurationCodec, FailsOnAValueOfTheWrongType) {
  for (const Key& key : keys) {
    for (const char* wrong : {"true", "7", "\"text\"", "[]", "{}"}) {
      Json document = fullDocument();
      Json& value = objectOf(document, key)[key.name];
      const Json replacement = *parseJson(wrong);
      const bool isSameType = value.value().index() == replacement.value().index() ||
                              (value.isNumber() && replacement.isNumber());
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
  const auto expected = ConfigurationCodec::decode(*writeJson(document));
  ASSERT_TRUE(expected);
  document["future"] = {{"a", 1}};
  document["modules"][0]["future"] = nullptr;
  document["codexSettings"]["future"] = "x";
  EXPECT_EQ(ConfigurationCodec::decode(*writeJson(document)), expected);
}

TEST(ConfigurationCodec, ReadsIntegralNumbersAsIntegersAndNoOthers) {
  Json document = fullDocument();
  document["intervalSeconds"] = 2.0;
  ASSERT_TRUE(decodes(document));
  EXPECT_EQ(ConfigurationCodec::decode(*writeJson(document))->intervalSeconds, 2);
  document["intervalSeconds"] = 1.5;
  EXPECT_FALSE(decodes(document));
  document["intervalSeconds"] = 4'294'967'297;  // Would be 1 if it were cut to 32 bits.
  EXPECT_FALSE(decodes(document));
}

TEST(ConfigurationCodec, ReadsEveryIntegerOf32Bits) {
  Json document = fullDocument();
  for (const std::int64_t number : {-2'147'483'648LL, 2'147'483'647LL}) {
    document["schemaVersion"] = number;
    ASSERT_TRUE(decodes(document)) << number;
    EXPECT_EQ(ConfigurationCodec::decode(*writeJson(document))->schemaVersion, number);
  }
  for (const std::int64_t number : {-2'147'483'649LL, 2'147'483'648LL}) {
    document["schemaVersion"] = number;
    EXPECT_FALSE(decodes(document)) << number;
  }
}

TEST(ConfigurationCodec, ReadsLengthsWithOrWithoutAFraction) {
  Json document = fullDocument();
  document["gap"] = 4;
  document["lineGap"] = 0.5;
  const auto configuration = ConfigurationCodec::decode(*writeJson(document));
  ASSERT_TRUE(configuration);
  EXPECT_EQ(configuration->gap, 4);
  EXPECT_EQ(configuration->lineGap, 0.5);
}

TEST(ConfigurationCodec, LeavesTheLimitsToValidated) {
  Json document = fullDocument();
  document["schemaVersion"] = 7;
  document["gap"] = -1;
  const auto configuration = ConfigurationCodec::decode(*writeJson(document));
  ASSERT_TRUE(configuration);
  EXPECT_FALSE(configuration->validated());
}

TEST(ConfigurationCodec, ReadsIdentitiesInEitherCase) {
  Json document = fullDocument();
  document["modules"][0]["id"] = "e621e1f8-c36c-495a-93fc-0c247a3e6e5f";
  ASSERT_TRUE(decodes(document));
  EXPECT_EQ(ConfigurationCodec::decode(*writeJson(document))->modules[0].id.text(),
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

TEST(ConfigurationCodec, EncodesNoNumberThatIsNotFinite) {
  const auto encodes = [](const auto& number) {
    AppConfiguration configuration;
    number(configuration) = std::numeric_limits<double>::quiet_NaN();
    return ConfigurationCodec::encode(configuration).has_value();
  };
  EXPECT_FALSE(encodes([](auto& c) -> auto& { return c.gap; }));
  EXPECT_FALSE(encodes([](auto& c) -> auto& { return c.horizontalPadding; }));
  EXPECT_FALSE(encodes([](auto& c) -> auto& { return c.verticalPadding; }));
  EXPECT_FALSE(encodes([](auto& c) -> auto& { return c.lineGap; }));
  EXPECT_FALSE(encodes([](auto& c) -> auto& { return c.modules[1].width; }));
  EXPECT_FALSE(encodes([](auto& c) -> auto& { return c.modules[1].fontTop; }));
  EXPECT_FALSE(encodes([](auto& c) -> auto& { return c.modules[1].fontBottom; }));
  EXPECT_FALSE(encodes([](auto& c) -> auto& { return c.modules[1].gapAfter; }));
}

}  // namespace
}  // namespace vantora
