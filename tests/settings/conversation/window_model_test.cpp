// SPDX-License-Identifier: MIT
#include "settings/conversation/window_model.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "support/fake_file_panels.hpp"

namespace vantora {
namespace {

using namespace SettingsProtocol;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class WindowModelTest : public testing::Test {
 protected:
  WindowModelTest() {
    model_.onChange = [this](WindowFields fields) { changes_.push_back(fields); };
  }
  // What the window sent since the last time.
  std::vector<WindowMessage> sent() {
    std::vector<WindowMessage> messages;
    for (const std::string& line : std::exchange(lines_, {})) {
      const auto message = readWindowLine(line);
      EXPECT_TRUE(message) << line;
      messages.push_back(message.value_or(Intent::scrolled));
    }
    return messages;
  }
  template <typename Message>
  Message sentOne() {
    const auto messages = sent();
    EXPECT_EQ(messages.size(), 1U);
    const bool isIt = messages.size() == 1 && std::holds_alternative<Message>(messages[0]);
    EXPECT_TRUE(isIt);
    return isIt ? std::get<Message>(messages[0]) : Message{};
  }
  void tell(WindowFields fields, std::uint64_t revision = 0) {
    ASSERT_TRUE(model_.receive(stateLine(agent_, {++sequence_, revision, fields})));
  }
  void start() {
    model_.setScale(2);
    tell(allWindowFields);
    (void)sent();
    changes_.clear();
  }
  const std::vector<ModuleConfiguration>& modules() { return model_.state().configuration.modules; }

  std::vector<std::string> lines_;
  std::vector<WindowFields> changes_;
  test::FakePanels panels_;
  WindowModel model_{[this](std::string_view line) { lines_.emplace_back(line); }, panels_};
  WindowState agent_;
  std::uint64_t sequence_ = 0;
};

TEST_F(WindowModelTest, BeginsWithItsScaleAndAnswersTheFirstState) {
  model_.setScale(2);
  EXPECT_EQ(sentOne<Ready>().scale, 2);
  EXPECT_FALSE(model_.hasState());
  tell(allWindowFields);
  EXPECT_EQ(sentOne<Seen>().sequence, 1U);
  EXPECT_TRUE(model_.hasState());
  EXPECT_THAT(changes_, ElementsAre(allWindowFields));
}

TEST_F(WindowModelTest, SendsANewScaleOnceAndWithinBounds) {
  model_.setScale(1);
  model_.setScale(1);
  EXPECT_EQ(sentOne<Ready>().scale, 1);
  model_.setScale(50);
  EXPECT_EQ(sentOne<Ready>().scale, scales.most);
}

TEST_F(WindowModelTest, TakesWhatTheAgentSends) {
  start();
  agent_.networkName = "eth0";
  agent_.notice = "Configuração exportada.";
  tell({WindowField::networkName, WindowField::notice});
  EXPECT_EQ(model_.state().networkName, "eth0");
  EXPECT_EQ(model_.notice(), "Configuração exportada.");
  EXPECT_THAT(changes_, ElementsAre(WindowFields{WindowField::networkName, WindowField::notice}));
}

TEST_F(WindowModelTest, TakesALineInPieces) {
  start();
  agent_.notice = "ção";
  const std::string line = stateLine(agent_, {++sequence_, 0, {WindowField::notice}});
  for (const char letter : line) {
    ASSERT_TRUE(model_.receive({&letter, 1}));
  }
  EXPECT_EQ(model_.notice(), "ção");
}

TEST_F(WindowModelTest, SendsAnEditAtOnceAndShowsIt) {
  start();
  AppConfiguration edited = model_.state().configuration;
  edited.gap = 9;
  model_.setConfiguration(edited);
  const auto change = sentOne<NewConfiguration>();
  EXPECT_EQ(change.revision, 1U);
  EXPECT_EQ(change.configuration, edited);
  EXPECT_EQ(change.pendingScrollID, std::nullopt);
  EXPECT_EQ(model_.state().configuration, edited);
  EXPECT_THAT(changes_, ElementsAre(WindowFields{WindowField::configuration}));
}

TEST_F(WindowModelTest, SendsNothingForAnEditThatChangesNothing) {
  start();
  model_.setConfiguration(AppConfiguration(model_.state().configuration));
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_THAT(changes_, IsEmpty());
}

TEST_F(WindowModelTest, KeepsTheUsersEditOverAConfigurationThatDidNotKnowOfIt) {
  start();
  AppConfiguration edited = model_.state().configuration;
  edited.gap = 9;
  model_.setConfiguration(edited);
  (void)sent();
  agent_.configuration.paused = true;
  tell({WindowField::configuration}, 0);
  EXPECT_EQ(model_.state().configuration, edited);
  EXPECT_EQ(sentOne<Seen>().sequence, sequence_);
  agent_.configuration.gap = 9;
  tell({WindowField::configuration}, 1);
  EXPECT_EQ(model_.state().configuration, agent_.configuration);
}

TEST_F(WindowModelTest, AddsAModuleAtTheLeftEndToBeScrolledTo) {
  start();
  model_.addModule();
  ASSERT_EQ(modules().size(), 4U);
  EXPECT_EQ(model_.state().pendingScrollID, modules()[0].id);
  EXPECT_EQ(sentOne<NewConfiguration>().pendingScrollID, modules()[0].id);
  EXPECT_TRUE(model_.state().configuration.validated());
  EXPECT_TRUE(modules()[0].isVisible({}));
  model_.scrolled();
  EXPECT_EQ(sentOne<Intent>(), Intent::scrolled);
  model_.scrolled();
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(WindowModelTest, AddsThePresetsOfTheTwoQuotas) {
  start();
  model_.addCodexModule();
  model_.addClaudeModule();
  EXPECT_EQ(modules()[0].top, MetricID::claudeWeeklyPercent);
  EXPECT_EQ(modules()[0].bottom, MetricID::claudeSessionPercent);
  EXPECT_EQ(modules()[1].top, MetricID::codexWeeklyPercent);
  EXPECT_EQ(modules()[1].bottom, MetricID::codexWeeklyReset);
}

TEST_F(WindowModelTest, PutsADuplicateToTheRightOfItsModule) {
  start();
  const std::vector<ModuleConfiguration> before = modules();
  model_.duplicateModule(before[1].id);
  ASSERT_EQ(modules().size(), 4U);
  EXPECT_EQ(modules()[1], before[1]);
  EXPECT_EQ(modules()[3], before[2]);
  ModuleConfiguration copy = modules()[2];
  EXPECT_NE(copy.id, before[1].id);
  EXPECT_EQ(model_.state().pendingScrollID, copy.id);
  copy.id = before[1].id;
  EXPECT_EQ(copy, before[1]);
}

TEST_F(WindowModelTest, RefusesThe25thModuleWithANotice) {
  start();
  for (int index = 0; index < 21; ++index) {
    model_.addModule();
  }
  (void)sent();
  const AppConfiguration full = model_.state().configuration;
  ASSERT_EQ(full.modules.size(), 24U);
  const auto refusals = {
      std::function<void()>([&] { model_.addModule(); }),
      std::function<void()>([&] { model_.addCodexModule(); }),
      std::function<void()>([&] { model_.addClaudeModule(); }),
      std::function<void()>([&] { model_.duplicateModule(full.modules[3].id); })};
  for (const auto& refused : refusals) {
    changes_.clear();
    refused();
    EXPECT_THAT(sent(), IsEmpty());
    EXPECT_EQ(model_.state().configuration, full);
    EXPECT_THAT(*model_.notice(), HasSubstr("24 módulos"));
    EXPECT_THAT(changes_, ElementsAre(WindowFields{WindowField::notice}));
  }
  model_.removeModule(full.modules[0].id);
  EXPECT_EQ(model_.notice(), std::nullopt);
  EXPECT_EQ(modules().size(), 23U);
}

TEST_F(WindowModelTest, MovesAModuleToAPlace) {
  start();
  const std::vector<ModuleConfiguration> m = modules();
  model_.moveModule(m[0].id, 2);
  EXPECT_THAT(modules(), ElementsAre(m[1], m[2], m[0]));
  model_.moveModule(m[0].id, 0);
  EXPECT_THAT(modules(), ElementsAre(m[0], m[1], m[2]));
  model_.moveModule(m[1].id, 99);
  EXPECT_THAT(modules(), ElementsAre(m[0], m[2], m[1]));
  (void)sent();
  model_.moveModule(m[1].id, 2);
  model_.moveModule(UUID::random(), 0);
  model_.removeModule(UUID::random());
  model_.duplicateModule(UUID::random());
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(WindowModelTest, AsksThePanelsAndSendsTheChosenPath) {
  start();
  model_.exportJSON();
  EXPECT_EQ(panels_.shown, "export Vantora-layout.json");
  panels_.choose("/tmp/x.json");
  auto request = sentOne<PathRequest>();
  EXPECT_EQ(request.intent, PathIntent::exportJSON);
  EXPECT_EQ(request.path, "/tmp/x.json");
  model_.importJSON();
  EXPECT_EQ(panels_.shown, "import");
  panels_.choose("/tmp/y.json");
  request = sentOne<PathRequest>();
  EXPECT_EQ(request.intent, PathIntent::importJSON);
  model_.selectCodexExecutable();
  EXPECT_EQ(panels_.shown, "executable Escolha o executável oficial codex desta instalação.");
  panels_.choose("/usr/bin/codex");
  request = sentOne<PathRequest>();
  EXPECT_EQ(request.intent, PathIntent::selectCodexExecutable);
}

TEST_F(WindowModelTest, SendsNothingWhenAPanelIsCancelled) {
  start();
  model_.exportJSON();
  panels_.cancel();
  model_.importJSON();
  panels_.cancel();
  model_.selectCodexExecutable();
  panels_.cancel();
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(WindowModelTest, SendsTheIntents) {
  start();
  model_.refreshCodex();
  EXPECT_EQ(sentOne<Intent>(), Intent::refreshCodex);
  model_.connectCodex();
  EXPECT_EQ(sentOne<Intent>(), Intent::connectCodex);
  model_.refreshClaude();
  EXPECT_EQ(sentOne<Intent>(), Intent::refreshClaude);
  model_.restoreDefaults();
  EXPECT_EQ(sentOne<Intent>(), Intent::restoreDefaults);
  model_.setStartAtLogin(true);
  EXPECT_TRUE(sentOne<StartAtLogin>().enabled);
}

TEST_F(WindowModelTest, HoldsANoticeThatTheAgentClearsUntilItWasShownLongEnough) {
  start();
  agent_.notice = "Configuração exportada.";
  tell({WindowField::notice});
  agent_.notice.reset();
  tell({WindowField::notice});
  EXPECT_EQ(model_.notice(), "Configuração exportada.");
  changes_.clear();
  model_.releaseNotice();
  EXPECT_EQ(model_.notice(), std::nullopt);
  EXPECT_THAT(changes_, ElementsAre(WindowFields{WindowField::notice}));
  model_.releaseNotice();
  EXPECT_EQ(changes_.size(), 1U);
}

TEST_F(WindowModelTest, ClearsANoticeWithTheAgentOnceItWasShownLongEnough) {
  start();
  agent_.notice = "Falha ao salvar: disco cheio";
  tell({WindowField::notice});
  model_.releaseNotice();
  EXPECT_EQ(model_.notice(), agent_.notice);
  agent_.notice.reset();
  tell({WindowField::notice});
  EXPECT_EQ(model_.notice(), std::nullopt);
}

class OwnNoticeTest : public WindowModelTest {
 protected:
  OwnNoticeTest() {
    agent_.configuration.modules.resize(24);
    for (ModuleConfiguration& module : agent_.configuration.modules) {
      module.id = UUID::random();
    }
    agent_.notice = "Configuração exportada.";
    start();
    model_.addModule();
    EXPECT_THAT(model_.notice().value_or(""), HasSubstr("24 módulos"));
    changes_.clear();
  }
};

TEST_F(OwnNoticeTest, GivesWayToTheResultOfALaterActionThoughItIsTheSameAsBefore) {
  model_.exportJSON();
  panels_.choose("/tmp/x.json");
  EXPECT_EQ(model_.notice(), "Configuração exportada.");
  EXPECT_THAT(changes_, ElementsAre(WindowFields{WindowField::notice}));
}

TEST_F(OwnNoticeTest, GivesWayToAnIntent) {
  model_.setStartAtLogin(true);
  EXPECT_EQ(model_.notice(), "Configuração exportada.");
}

TEST_F(OwnNoticeTest, GivesWayToANoticeOfTheAgents) {
  agent_.notice = "Falha ao salvar: disco cheio";
  tell({WindowField::notice});
  EXPECT_EQ(model_.notice(), "Falha ao salvar: disco cheio");
}

TEST_F(OwnNoticeTest, StaysOverAStateThatBringsNoNotice) {
  agent_.networkName = "eth0";
  tell({WindowField::networkName});
  EXPECT_THAT(model_.notice().value_or(""), HasSubstr("24 módulos"));
}

TEST_F(WindowModelTest, ComesToTheFrontWhenAsked) {
  std::string token;
  model_.onRaise = [&](const std::string& given) { token = given; };
  ASSERT_TRUE(model_.receive(raiseLine("token-7")));
  EXPECT_EQ(token, "token-7");
}

TEST_F(WindowModelTest, EndsOverALineThatIsNoMessage) {
  start();
  EXPECT_FALSE(model_.receive("garbage\n"));
}

TEST_F(WindowModelTest, EndsOverALineThatNeverEnds) {
  start();
  const std::string piece(1'000'000, 'x');
  bool isGood = true;
  for (int count = 0; count < 6 && isGood; ++count) {
    isGood = model_.receive(piece);
  }
  EXPECT_FALSE(isGood);
}

TEST_F(WindowModelTest, EditsNothingBeforeItKnowsTheState) {
  model_.addModule();
  model_.setConfiguration({});
  EXPECT_THAT(sent(), IsEmpty());
}

}  // namespace
}  // namespace vantora
