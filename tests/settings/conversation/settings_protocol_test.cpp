// SPDX-License-Identifier: MIT
#include "settings/conversation/settings_protocol.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "model/configuration_codec.hpp"
#include "settings/conversation/base64.hpp"

namespace vantora::SettingsProtocol {
namespace {

WindowState richState() {
  WindowState state;
  state.configuration.gap = 7.5;
  state.configuration.paused = true;
  state.networkName = "wlp3s0";
  state.undoable = UndoableEdit::importing;
  state.links = {{"wlp3s0", true, true, true}, {"docker0", false, true, false}};
  state.backupPath = "/home/joão/b.json";
  state.codex = {"Cota \"semanal\" disponível.",
                 WallTime(std::chrono::milliseconds(1'790'000'000'250)),
                 "codex 0.46 em /usr/bin/codex",
                 {{"a", "Alfa"}, {"b", std::nullopt}}};
  state.claude = {"Integração desativada.", std::nullopt, "claude\n2.0", {}};
  state.notice = "Configuração importada.";
  state.loginItemStatus = LoginItemStatus::requiresApproval;
  state.pendingScrollID = state.configuration.modules[1].id;
  state.picture = {130, 2, 3, 2, {0, 1, 2, 253, 254, 255}, "Fonte reduzida"};
  state.picture.blocks = {{state.configuration.modules[0].id, 3, 34.5},
                          {state.configuration.modules[1].id, 41.5, 20}};
  state.picture.spoken = "CPU · uso total: 12%; Linha vazia: ";
  state.picture.enlarged = PictureInk{4, 2, 1, {7, 8}};
  state.readings = {{MetricID::batteryPercent, "—", Quality::unavailable, "Sem bateria",
                     "Sem bateria", std::nullopt},
                    {MetricID::cpuUsage, "12%", Quality::valid, "Linux /proc/stat", "",
                     WallTime(std::chrono::milliseconds(1'790'000'000'250))}};
  state.square = SquareChoice{state.configuration.modules[1].id};
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

TEST(SettingsProtocol, CarriesEveryQuality) {
  for (const Quality quality : {Quality::valid, Quality::waiting, Quality::unavailable,
                                Quality::temporaryError, Quality::stale}) {
    WindowState state;
    state.readings = {{MetricID::upload, "—", quality, "s", "r", std::nullopt}};
    WindowState read;
    ASSERT_TRUE(readAgentLine(stateLine(state, {1, 0, {WindowField::readings}}), read));
    EXPECT_EQ(read.readings, state.readings);
  }
}

TEST(SettingsProtocol, CutsTheTextsOfAReadingBetweenTwoCharacters) {
  WindowState state;
  const std::string text = "x" + [] {
    std::string dashes;
    for (int count = 0; count < 400; ++count) {
      dashes += "\xc3\xa7";
    }
    return dashes;
  }();
  state.readings = {{MetricID::upload, "—", Quality::unavailable, text, text, std::nullopt}};
  WindowState read;
  ASSERT_TRUE(readAgentLine(stateLine(state, {1, 0, {WindowField::readings}}), read));
  ASSERT_EQ(read.readings.size(), 1U);
  EXPECT_EQ(read.readings[0].reason, text.substr(0, maxReadingTextBytes - 1));
  EXPECT_EQ(read.readings[0].source, read.readings[0].reason);
}

TEST(SettingsProtocol, RefusesReadingsThatAreNone) {
  const auto reads = [](const std::string& readings) {
    WindowState state;
    return readAgentLine(
               R"({"type":"state","sequence":1,"revision":0,"readings":)" + readings + "}", state)
        .has_value();
  };
  const std::string good =
      R"({"metric":"upload","text":"—","quality":"valid","source":"","reason":"","sampledAt":null})";
  const auto changed = [&](const std::string& part, const std::string& other) {
    std::string text = good;
    return "[" + text.replace(text.find(part), part.size(), other) + "]";
  };
  EXPECT_TRUE(reads("[]"));
  EXPECT_TRUE(reads("[" + good + "]"));
  EXPECT_FALSE(reads("[" + good + "," + good + "]"));
  EXPECT_FALSE(reads("{}"));
  EXPECT_FALSE(reads("null"));
  EXPECT_FALSE(reads("[1]"));
  EXPECT_FALSE(reads(changed("\"upload\"", "\"uploads\"")));
  EXPECT_FALSE(reads(changed("\"valid\"", "\"good\"")));
  EXPECT_FALSE(reads(changed("\"source\":\"\"", "\"source\":7")));
  EXPECT_FALSE(reads(changed("\"reason\":\"\",", "")));
  EXPECT_FALSE(reads(changed("\"sampledAt\":null", "\"sampledAt\":1e300")));
  for (const char* latest : {"9000000000000", "-9000000000000"}) {
    EXPECT_TRUE(reads(changed("\"sampledAt\":null", std::string("\"sampledAt\":") + latest)));
  }
  for (const char* beyond : {"9000000000001", "-9000000000001"}) {
    EXPECT_FALSE(reads(changed("\"sampledAt\":null", std::string("\"sampledAt\":") + beyond)));
  }
  EXPECT_FALSE(reads(changed("\"reason\":\"\"",
                             "\"reason\":\"" + std::string(maxReadingTextBytes + 1, 'x') + "\"")));
}

// What is read every second without a new value is not sent every second.
TEST(SettingsProtocol, CountsAFreshReadingAsTheSameUntilItsTextChanges) {
  WindowState one = richState();
  WindowState other = one;
  other.readings[1].sampledAt = *other.readings[1].sampledAt + std::chrono::seconds(1);
  EXPECT_EQ(differences(one, other), WindowFields{});
  other.readings[1].text = "13%";
  EXPECT_EQ(differences(one, other), WindowFields{WindowField::readings});
  other = one;
  other.readings[0].sampledAt = WallTime();
  EXPECT_EQ(differences(one, other), WindowFields{WindowField::readings});
  other = one;
  other.readings[1].quality = Quality::stale;
  EXPECT_EQ(differences(one, other), WindowFields{WindowField::readings});
  other = one;
  other.readings.pop_back();
  EXPECT_EQ(differences(one, other), WindowFields{WindowField::readings});
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
      {"",
       "null",
       "[]",
       "{}",
       "{\"type\":1}",
       R"({"type":"ready","protocol":1,"scale":1})",
       R"({"type":"raise"})",
       R"({"type":"state"})",
       R"({"type":"state","sequence":1})",
       R"({"type":"state","sequence":-1,"revision":0})",
       R"({"type":"state","sequence":1,"revision":0,"networkName":7})",
       R"({"type":"state","sequence":1,"revision":0,"networkName":"x","notice":false})",
       R"({"type":"state","sequence":1,"revision":0,"loginItemStatus":"perhaps"})",
       R"({"type":"state","sequence":1,"revision":0,"pendingScrollID":"1234"})",
       R"({"type":"state","sequence":1,"revision":0,"configuration":{"schemaVersion":1}})",
       R"({"type":"state","sequence":1,"revision":0,"codex":{"message":"m"}})",
       R"({"type":"state","sequence":1,"revision":0,"claude":{"message":"m","lastSuccess":1e300,"executable":"","candidates":[],"needsLogin":false}})",
       R"({"type":"state","sequence":1,"revision":0,"codex":{"message":"m","lastSuccess":null,"executable":"","candidates":[{"name":"n"}],"needsLogin":false}})",
       R"({"type":"state","sequence":1,"revision":0,"undoable":"typing"})",
       R"({"type":"state","sequence":1,"revision":0,"links":[{"name":"eth0"}]})"}) {
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
  EXPECT_TRUE(read(R"({"width":1,"scale":1,"columns":16384,"rows":0,"alpha":"","warning":null})"));
  const std::string open = R"({"width":1,"scale":1,"columns":0,"rows":0,"alpha":"","warning":null)";
  const std::string block = R"({"id":"0E5AD96E-59C4-4E8F-A1F0-7C7A6C1F0001","left":1,"width":2})";
  std::string blocks = block;
  for (std::size_t count = 1; count < ConfigurationLimits::modules; ++count) {
    blocks += "," + block;
  }
  EXPECT_TRUE(read(open + R"(,"blocks":[)" + blocks + "]}"));
  EXPECT_FALSE(read(open + R"(,"blocks":[)" + blocks + "," + block + "]}"));
  EXPECT_FALSE(read(open + R"(,"blocks":[{"id":"x","left":1,"width":2}]})"));
  EXPECT_FALSE(read(open + R"(,"blocks":{}})"));
  EXPECT_FALSE(read(open + R"(,"spoken":7})"));
  EXPECT_FALSE(read(open + R"(,"enlarged":{"scale":2,"columns":1,"rows":1,"alpha":""}})"));
  EXPECT_FALSE(read(open + R"(,"enlarged":{"scale":20,"columns":0,"rows":0,"alpha":""}})"));
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
  const UUID module = UUID::random();
  EXPECT_EQ(roundTrip<SquareModule>(SquareModule{module}).module, module);
  EXPECT_EQ(roundTrip<SquareModule>(SquareModule{}).module, std::nullopt);
  for (const Intent intent :
       {Intent::refreshCodex, Intent::connectCodex, Intent::refreshClaude, Intent::restoreDefaults,
        Intent::undo, Intent::listLinks, Intent::scrolled}) {
    EXPECT_EQ(roundTrip<Intent>(intent), intent);
  }
  for (const PathIntent intent :
       {PathIntent::exportJSON, PathIntent::importJSON, PathIntent::selectCodexExecutable}) {
    const auto read = roundTrip<PathRequest>(PathRequest{intent, "/home/joão/a b\n.json"});
    EXPECT_EQ(read.intent, intent);
    EXPECT_EQ(read.path, "/home/joão/a b\n.json");
  }
  NewConfiguration change{3, {}, UUID::random(), true};
  change.configuration.horizontalPadding = 400;  // Out of bounds is the agent's affair.
  const auto read = roundTrip<NewConfiguration>(change);
  EXPECT_EQ(read.revision, 3U);
  EXPECT_EQ(read.configuration, change.configuration);
  EXPECT_EQ(read.pendingScrollID, change.pendingScrollID);
  EXPECT_TRUE(read.isRemoval);
}

TEST(SettingsProtocol, RefusesLinesThatAreNoMessageOfTheWindow) {
  for (const char* line :
       {"", "x", "7", "{\"type\":\"\"}", "{\"type\":null}", R"({"type":"quit"})",
        R"({"type":"ready","protocol":2,"scale":1})", R"({"type":"ready","protocol":1})",
        R"({"type":"ready","protocol":1,"scale":1000})", R"({"type":"seen","sequence":1.5})",
        R"({"type":"startAtLogin","enabled":1})", R"({"type":"exportJSON"})",
        R"({"type":"squareModule"})", R"({"type":"squareModule","module":"x"})",
        R"({"type":"squareModule","module":1})", R"({"type":"importJSON","path":"relative.json"})",
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
