// SPDX-License-Identifier: MIT
#include "settings/settings_protocol.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "model/configuration_codec.hpp"
#include "settings/base64.hpp"

namespace vantora::SettingsProtocol {
namespace {

WindowState richState() {
  WindowState state;
  state.configuration.gap = 7.5;
  state.configuration.paused = true;
  state.networkName = "wlp3s0";
  state.codex = {"Cota \"semanal\" disponível.",
                 WallTime(std::chrono::milliseconds(1'790'000'000'250)),
                 "codex 0.46 em /usr/bin/codex",
                 {{"a", "Alfa"}, {"b", std::nullopt}}};
  state.claude = {"Integração desativada.", std::nullopt, "claude\n2.0", {}};
  state.notice = "Configuração importada.";
  state.loginItemStatus = LoginItemStatus::requiresApproval;
  state.pendingScrollID = state.configuration.modules[1].id;
  state.picture = {130, 2, 3, 2, {0, 1, 2, 253, 254, 255}, "Fonte reduzida"};
  return state;
}

TEST(SettingsProtocol, CarriesTheWholeState) {
  const WindowState state = richState();
  WindowState read;
  const auto message = readAgentLine(stateLine(state, {17, 4, allWindowFields}), read);
  ASSERT_TRUE(message && std::holds_alternative<StateChange>(*message));
  const auto& change = std::get<StateChange>(*message);
  EXPECT_EQ(change.sequence, 17U);
  EXPECT_EQ(change.revision, 4U);
  EXPECT_EQ(change.fields, allWindowFields);
  EXPECT_EQ(differences(state, read), WindowFields{});
}

TEST(SettingsProtocol, CarriesEachFieldAlone) {
  const WindowState state = richState();
  for (const WindowField field : allWindowFields) {
    WindowState read;
    const auto line = stateLine(state, {1, 0, {field}});
    ASSERT_TRUE(readAgentLine(line, read)) << line;
    WindowFields rest = allWindowFields;
    rest.erase(field);
    EXPECT_FALSE(differences(state, read).contains(field)) << line;
    WindowFields untouched = differences(WindowState{}, read);
    untouched.erase(WindowField::configuration);  // Its default modules differ by identity.
    untouched.erase(field);
    EXPECT_EQ(untouched, WindowFields{}) << line;
  }
}

TEST(SettingsProtocol, TakesValuesAway) {
  WindowState read = richState();
  WindowState empty;
  empty.codex = read.codex;
  empty.codex.lastSuccess.reset();
  ASSERT_TRUE(readAgentLine(stateLine(empty, {1, 0, allWindowFields}), read));
  EXPECT_EQ(differences(empty, read), WindowFields{});
}

TEST(SettingsProtocol, WritesTextThatIsNotUTF8AsReplacementCharacters) {
  WindowState state;
  state.networkName = "eth\xff";
  WindowState read;
  ASSERT_TRUE(readAgentLine(stateLine(state, {1, 0, {WindowField::networkName}}), read));
  EXPECT_EQ(read.networkName, "eth\xef\xbf\xbd");
}

TEST(SettingsProtocol, IgnoresMembersThatItDoesNotKnow) {
  WindowState state;
  EXPECT_TRUE(readAgentLine(R"({"type":"raise","activationToken":"t","more":[1]})", state));
  EXPECT_TRUE(readWindowLine(R"({"type":"seen","sequence":1,"more":{}})"));
}

TEST(SettingsProtocol, LeavesTheStateAloneForALineThatIsNoMessage) {
  const WindowState before = richState();
  WindowState state = before;
  for (
      const char* line :
      {"", "null", "[]", "{}", "{\"type\":1}", R"({"type":"ready","protocol":1,"scale":1})",
       R"({"type":"raise"})", R"({"type":"state"})", R"({"type":"state","sequence":1})",
       R"({"type":"state","sequence":-1,"revision":0})",
       R"({"type":"state","sequence":1,"revision":0,"networkName":7})",
       R"({"type":"state","sequence":1,"revision":0,"networkName":"x","notice":false})",
       R"({"type":"state","sequence":1,"revision":0,"loginItemStatus":"perhaps"})",
       R"({"type":"state","sequence":1,"revision":0,"pendingScrollID":"1234"})",
       R"({"type":"state","sequence":1,"revision":0,"configuration":{"schemaVersion":1}})",
       R"({"type":"state","sequence":1,"revision":0,"codex":{"message":"m"}})",
       R"({"type":"state","sequence":1,"revision":0,"claude":{"message":"m","lastSuccess":1e300,"executable":"","candidates":[]}})",
       R"({"type":"state","sequence":1,"revision":0,"codex":{"message":"m","lastSuccess":null,"executable":"","candidates":[{"name":"n"}]}})"}) {
    EXPECT_FALSE(readAgentLine(line, state)) << line;
    EXPECT_EQ(differences(before, state), WindowFields{}) << line;
  }
}

TEST(SettingsProtocol, RefusesAPictureThatIsNotWhatItsSizesSay) {
  WindowState state;
  const auto read = [&](const std::string& picture) {
    return readAgentLine(R"({"type":"state","sequence":1,"revision":0,"picture":)" + picture + "}",
                         state)
        .has_value();
  };
  EXPECT_TRUE(read(R"({"width":1,"scale":1,"columns":3,"rows":1,"alpha":"AAAA","warning":null})"));
  EXPECT_TRUE(read(R"({"width":0,"scale":1,"columns":0,"rows":0,"alpha":"","warning":null})"));
  for (const char* picture :
       {R"({"width":1,"scale":1,"columns":4,"rows":1,"alpha":"AAAA","warning":null})",
        R"({"width":1,"scale":1,"columns":-3,"rows":-1,"alpha":"AAAA","warning":null})",
        R"({"width":1,"scale":1,"columns":16385,"rows":0,"alpha":"","warning":null})",
        R"({"width":-1,"scale":1,"columns":3,"rows":1,"alpha":"AAAA","warning":null})",
        R"({"width":1,"scale":0,"columns":3,"rows":1,"alpha":"AAAA","warning":null})",
        R"({"width":1,"scale":99,"columns":3,"rows":1,"alpha":"AAAA","warning":null})",
        R"({"width":1,"scale":1,"columns":3,"rows":1,"alpha":"AAA","warning":null})",
        R"({"width":1,"scale":1,"columns":3,"rows":1,"alpha":"AA=A","warning":null})",
        R"({"width":1,"scale":1,"columns":1e9,"rows":1e9,"alpha":"AAAA","warning":null})"}) {
    EXPECT_FALSE(read(picture)) << picture;
  }
}

template <typename Message>
Message roundTrip(const WindowMessage& message) {
  const auto line = windowLine(message);
  EXPECT_TRUE(line && line->ends_with('\n') && line->find('\n') == line->size() - 1);
  const auto read = readWindowLine(line.value_or(std::string()));
  EXPECT_TRUE(read && std::holds_alternative<Message>(*read));
  return read && std::holds_alternative<Message>(*read) ? std::get<Message>(*read) : Message{};
}

TEST(SettingsProtocol, CarriesEveryMessageOfTheWindow) {
  EXPECT_EQ(roundTrip<Ready>(Ready{1.5}).scale, 1.5);
  EXPECT_EQ(roundTrip<Seen>(Seen{9}).sequence, 9U);
  EXPECT_TRUE(roundTrip<StartAtLogin>(StartAtLogin{true}).enabled);
  for (const Intent intent : {Intent::refreshCodex, Intent::connectCodex, Intent::refreshClaude,
                              Intent::restoreDefaults, Intent::scrolled}) {
    EXPECT_EQ(roundTrip<Intent>(intent), intent);
  }
  for (const PathIntent intent :
       {PathIntent::exportJSON, PathIntent::importJSON, PathIntent::selectCodexExecutable}) {
    const auto read = roundTrip<PathRequest>(PathRequest{intent, "/home/joão/a b\n.json"});
    EXPECT_EQ(read.intent, intent);
    EXPECT_EQ(read.path, "/home/joão/a b\n.json");
  }
  NewConfiguration change{3, {}, UUID::random()};
  change.configuration.horizontalPadding = 400;  // Out of bounds is the agent's affair.
  const auto read = roundTrip<NewConfiguration>(change);
  EXPECT_EQ(read.revision, 3U);
  EXPECT_EQ(read.configuration, change.configuration);
  EXPECT_EQ(read.pendingScrollID, change.pendingScrollID);
}

TEST(SettingsProtocol, RefusesLinesThatAreNoMessageOfTheWindow) {
  for (const char* line :
       {"", "x", "7", "{\"type\":\"\"}", "{\"type\":null}", R"({"type":"quit"})",
        R"({"type":"ready","protocol":2,"scale":1})", R"({"type":"ready","protocol":1})",
        R"({"type":"ready","protocol":1,"scale":1000})", R"({"type":"seen","sequence":1.5})",
        R"({"type":"startAtLogin","enabled":1})", R"({"type":"exportJSON"})",
        R"({"type":"importJSON","path":"relative.json"})",
        R"({"type":"importJSON","path":"/a\u0000b"})",
        R"({"type":"configuration","revision":1,"configuration":{}})",
        R"({"type":"state","sequence":1,"revision":0})"}) {
    EXPECT_FALSE(readWindowLine(line)) << line;
  }
  const std::string document = *ConfigurationCodec::encode({});
  EXPECT_TRUE(
      readWindowLine(R"({"type":"configuration","revision":1,"configuration":)" + document + "}"));
  EXPECT_FALSE(readWindowLine(R"({"type":"configuration","configuration":)" + document + "}"));
  EXPECT_FALSE(readWindowLine(
      R"({"type":"configuration","revision":1,"pendingScrollID":"x","configuration":)" + document +
      "}"));
}

TEST(Base64, WritesTheVectorsOfTheStandard) {
  const auto encoded = [](std::string_view text) {
    return Base64::encode({text.begin(), text.end()});
  };
  EXPECT_EQ(encoded(""), "");
  EXPECT_EQ(encoded("f"), "Zg==");
  EXPECT_EQ(encoded("fo"), "Zm8=");
  EXPECT_EQ(encoded("foo"), "Zm9v");
  EXPECT_EQ(encoded("foob"), "Zm9vYg==");
  EXPECT_EQ(encoded("\xff\xfe\xfd"), "//79");
}

TEST(Base64, ReadsOnlyWhatItWrites) {
  for (std::size_t size = 0; size < 70; ++size) {
    std::vector<std::uint8_t> bytes(size);
    for (std::size_t index = 0; index < size; ++index) {
      bytes[index] = static_cast<std::uint8_t>(index * 151 + size);
    }
    EXPECT_EQ(Base64::decode(Base64::encode(bytes)), bytes);
  }
  for (const char* text :
       {"Z", "Zg", "Zg=", "Zh==", "Zm9=", "Z===", "====", "Zg==Zg==", "Zm 9", "Zm9v\n", "Zm9-"}) {
    EXPECT_EQ(Base64::decode(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace vantora::SettingsProtocol
