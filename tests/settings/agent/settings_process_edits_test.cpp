// SPDX-License-Identifier: MIT
#include "settings/agent/settings_process.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "model/configuration_codec.hpp"
#include "settings/agent/settings_process_fixture.hpp"

namespace vantora {
namespace {

using namespace SettingsProtocol;
using testing::ElementsAre;
using testing::IsEmpty;

using SettingsProcessTest = test::SettingsProcessFixture;

TEST_F(SettingsProcessTest, PutsAnEditInForceAndDoesNotSendItBack) {
  open();
  std::vector<double> gaps;
  model_.onConfigurationChange = [&](const AppConfiguration& c) { gaps.push_back(c.gap); };
  NewConfiguration change{1, model_.configuration(), model_.configuration().modules[0].id};
  change.configuration.gap = 9;
  say(change);
  EXPECT_THAT(gaps, ElementsAre(9));
  EXPECT_EQ(model_.pendingScrollID(), change.pendingScrollID);
  EXPECT_THAT(heard(), IsEmpty());
  say(Intent::scrolled);
  EXPECT_EQ(model_.pendingScrollID(), std::nullopt);
  EXPECT_THAT(heard(), IsEmpty());
}

TEST_F(SettingsProcessTest, KeepsAConfigurationOutOfBoundsInForceAndUnsaved) {
  open();
  NewConfiguration change{1, model_.configuration(), std::nullopt};
  change.configuration.gap = 500;
  say(change);
  EXPECT_EQ(model_.configuration().gap, 500);
  time_.advance(SettingsModel::saveDelay);
  EXPECT_EQ(heardFields(), WindowFields{WindowField::notice});
  EXPECT_EQ(told_.notice, "Configuração fora dos limites; alterações ainda não foram salvas.");
  EXPECT_FALSE(std::filesystem::exists(folder_ / "Vantora"));
  EXPECT_TRUE(process_->isVisible());
}

TEST_F(SettingsProcessTest, SendsAnOutsideChangeWithTheRevisionThatItKnew) {
  open();
  NewConfiguration change{5, model_.configuration(), std::nullopt};
  change.configuration.gap = 9;
  say(change);
  AppConfiguration outside = model_.configuration();
  outside.paused = true;
  model_.setConfiguration(outside);
  time_.runPosted();
  // The pause is the reason for every dash.
  EXPECT_EQ(heardFields(), (WindowFields{WindowField::configuration, WindowField::readings}));
  EXPECT_EQ(revision_, 5U);
  EXPECT_TRUE(told_.configuration.paused);
}

TEST_F(SettingsProcessTest, KnowsNoEditOfAReopenedWindow) {
  open();
  NewConfiguration change{5, model_.configuration(), std::nullopt};
  change.configuration.gap = 9;
  say(change);
  exit();
  open();
  EXPECT_EQ(revision_, 0U);
  EXPECT_EQ(told_.configuration.gap, 9);
}

TEST_F(SettingsProcessTest, PassesTheIntentsOn) {
  open();
  std::string calls;
  model_.onQuotaRefresh = [&] { calls += 'r'; };
  model_.onQuotaConnect = [&] { calls += 'c'; };
  model_.onClaudeRefresh = [&] { calls += 'l'; };
  say(Intent::refreshCodex);
  say(Intent::connectCodex);
  say(Intent::refreshClaude);
  EXPECT_EQ(calls, "rcl");
  say(StartAtLogin{true});
  EXPECT_EQ(model_.loginItemStatus(), LoginItemStatus::enabled);
}

TEST_F(SettingsProcessTest, OffersTheModuleOfASquareWhereThePanelKeepsOne) {
  open();
  EXPECT_EQ(told_.square, std::nullopt);
  model_.setKeepsSquare(true);
  time_.runPosted();
  EXPECT_EQ(heardFields(), WindowFields{WindowField::square});
  EXPECT_EQ(told_.square, SquareChoice{});
  answer();
  const UUID module = model_.configuration().modules[1].id;
  say(SquareModule{module});
  time_.runPosted();
  EXPECT_EQ(model_.squareModule(), module);
  EXPECT_THAT(heard(), IsEmpty()) << "the window knows its own choice";
  model_.setKeepsSquare(false);
  time_.runPosted();
  EXPECT_EQ(heardFields(), WindowFields{WindowField::square});
  EXPECT_EQ(told_.square, std::nullopt);
}

TEST_F(SettingsProcessTest, RestoresTheDefaultConfiguration) {
  AppConfiguration edited = model_.configuration();
  edited.modules.clear();
  edited.gap = 9;
  model_.setConfiguration(edited);
  open();
  say(Intent::restoreDefaults);
  EXPECT_EQ(model_.configuration().modules.size(), 3U);
  EXPECT_EQ(model_.configuration().gap, 4);
  EXPECT_EQ(heardFields(), (WindowFields{WindowField::configuration, WindowField::undoable,
                                         WindowField::readings}));
  EXPECT_EQ(told_.undoable, UndoableEdit::restoring);
  answer();
  say(Intent::undo);
  EXPECT_EQ(heardFields(), (WindowFields{WindowField::configuration, WindowField::undoable,
                                         WindowField::readings}));
  EXPECT_EQ(told_.configuration, edited);
  EXPECT_EQ(told_.undoable, std::nullopt);
}

TEST_F(SettingsProcessTest, SendsThatARemovalCanBeUndone) {
  open();
  AppConfiguration edited = model_.configuration();
  edited.modules.pop_back();
  say(NewConfiguration{1, edited, std::nullopt, true});
  EXPECT_EQ(heardFields(), (WindowFields{WindowField::undoable, WindowField::readings}));
  EXPECT_EQ(told_.undoable, UndoableEdit::removal);
  answer();
  edited.gap = 9;
  say(NewConfiguration{2, edited, std::nullopt, false});
  EXPECT_EQ(heardFields(), WindowFields{WindowField::undoable});
  EXPECT_EQ(told_.undoable, std::nullopt);
}

TEST_F(SettingsProcessTest, ListsTheLinksWhenTheWindowAsks) {
  open();
  model_.onLinksWanted = [&] { model_.setLinks({{"eth0", true, true, true}}); };
  say(Intent::listLinks);
  EXPECT_EQ(heardFields(), WindowFields{WindowField::links});
  EXPECT_EQ(told_.links, model_.links());
}

TEST_F(SettingsProcessTest, ExportsAndImportsAtTheChosenPaths) {
  open();
  say(PathRequest{PathIntent::exportJSON, (folder_ / "x.json").string()});
  EXPECT_EQ(heardFields(), WindowFields{WindowField::notice});
  EXPECT_EQ(told_.notice, "Configuração exportada.");
  answer();
  AppConfiguration other;
  other.gap = 11;
  test::writeBytes(folder_ / "y.json", *ConfigurationCodec::encode(other));
  say(PathRequest{PathIntent::importJSON, (folder_ / "y.json").string()});
  EXPECT_EQ(heardFields(),
            (WindowFields{WindowField::configuration, WindowField::notice, WindowField::undoable}));
  EXPECT_EQ(told_.configuration, other);
  EXPECT_EQ(told_.undoable, UndoableEdit::importing);
  EXPECT_EQ(told_.notice, "Configuração importada.");
}

TEST_F(SettingsProcessTest, SendsTheNewExecutableAfterItsChoice) {
  open();
  model_.onCodexExecutableChange = [&] { codexExecutable_ = "/x/codex"; };
  test::writeBytes(folder_ / "codex", "#!/bin/sh\n");
  std::filesystem::permissions(folder_ / "codex", std::filesystem::perms(0755));
  say(PathRequest{PathIntent::selectCodexExecutable, (folder_ / "codex").string()});
  EXPECT_EQ(heardFields(), (WindowFields{WindowField::codex, WindowField::notice}));
  EXPECT_EQ(told_.codex.executable, "/x/codex");
}

TEST_F(SettingsProcessTest, SendsAnotherExecutableThoughTheNoticeIsTheSame) {
  open();
  test::writeBytes(folder_ / "codex", "#!/bin/sh\n");
  std::filesystem::permissions(folder_ / "codex", std::filesystem::perms(0755));
  const PathRequest request{PathIntent::selectCodexExecutable, (folder_ / "codex").string()};
  say(request);
  EXPECT_EQ(heardFields(), WindowFields{WindowField::notice});
  answer();
  codexExecutable_ = "/x/codex";
  say(request);
  EXPECT_EQ(heardFields(), WindowFields{WindowField::codex});
}

// What the places of the executables hold changes without an event.
TEST_F(SettingsProcessTest, TellsAnOpenWindowWhichExecutableThereIsNow) {
  open();
  codexExecutable_ = "/opt/codex";
  process_->show("again");
  time_.runPosted();
  const auto messages = heard();
  ASSERT_EQ(messages.size(), 2U);
  EXPECT_EQ(std::get<StateChange>(messages[1]).fields, WindowFields{WindowField::codex});
  EXPECT_EQ(told_.codex.executable, "/opt/codex");
}

}  // namespace
}  // namespace vantora
