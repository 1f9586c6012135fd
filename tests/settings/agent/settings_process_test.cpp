// SPDX-License-Identifier: MIT
#include "settings/agent/settings_process.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "model/configuration_codec.hpp"
#include "model/words.hpp"
#include "settings/agent/child_test.hpp"
#include "support/fake_settings_ports.hpp"
#include "support/live_memory.hpp"
#include "support/temporary_folder.hpp"
#include "support/virtual_worker.hpp"

namespace vantora {
namespace {

using namespace SettingsProtocol;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* broken = "A janela de configurações falhou e foi fechada.";
constexpr const char* hanging = "A janela de configurações parou de responder e foi fechada.";

class SettingsProcessTest : public test::ChildTest {
 protected:
  SettingsProcessTest() {
    process_->onFailure = [this](const std::string& message) { failures_.push_back(message); };
    presentation_.image = {100, 20, {}};
    presentation_.width = 100;
    process_->showStatus(presentation_);
  }

  std::unique_ptr<SettingsProcess> makeProcess() {
    SettingsProcess::Parts parts{*queue_,
                                 time_,
                                 launcher_,
                                 model_,
                                 "/opt/vantora-settings",
                                 [this](const StatusImage& image, double scale) {
                                   ++drawings_;
                                   return AlphaBitmap(static_cast<int>(image.width * scale),
                                                      static_cast<int>(image.height * scale));
                                 },
                                 [this] {
                                   ++looks_;
                                   return codexExecutable_;
                                 },
                                 [] { return std::string("Claude Code"); }};
    return std::make_unique<SettingsProcess>(std::move(parts));
  }

  void say(const WindowMessage& message) { sayBytes(*windowLine(message)); }
  // The states and calls to the front that the window was told since the last time, taken
  // over into `told_`.
  std::vector<AgentMessage> heard() {
    std::vector<AgentMessage> messages;
    for (const std::string& line : child().takeInputLines()) {
      const auto message = readAgentLine(line, told_);
      EXPECT_TRUE(message) << line;
      if (message) {
        messages.push_back(*message);
      }
    }
    return messages;
  }
  // The fields of the one state that was told.
  WindowFields heardFields() {
    const auto messages = heard();
    EXPECT_EQ(messages.size(), 1U);
    if (messages.size() != 1 || !std::holds_alternative<StateChange>(messages[0])) {
      return {};
    }
    sequence_ = std::get<StateChange>(messages[0]).sequence;
    revision_ = std::get<StateChange>(messages[0]).revision;
    return std::get<StateChange>(messages[0]).fields;
  }
  void answer() { say(Seen{sequence_}); }
  void open() {
    process_->show("");
    say(Ready{2});
    EXPECT_EQ(heardFields(), allWindowFields);
    answer();
    EXPECT_THAT(heard(), IsEmpty());
  }
  void expectFailure(const char* message) {
    time_.runPosted();
    EXPECT_FALSE(process_->isVisible());
    EXPECT_THAT(failures_, ElementsAre(message));
    EXPECT_EQ(model_.notice(), message);
    EXPECT_TRUE(child().isTerminated());
    failures_.clear();
  }

  test::TemporaryFolder folder_;
  test::FakeLoginItem loginItem_;
  test::FakeUserDefaults defaults_;
  test::VirtualWorker worker_{*queue_};
  SettingsModel model_{*queue_, worker_, ConfigurationStore(folder_.path()), loginItem_, defaults_};
  std::string codexExecutable_ = "Codex CLI não encontrado";
  int looks_ = 0;  // for the executables
  int drawings_ = 0;
  StatusPresentation presentation_;
  std::unique_ptr<SettingsProcess> process_ = makeProcess();
  WindowState told_;
  std::uint64_t sequence_ = 0;
  std::uint64_t revision_ = 0;
};

TEST_F(SettingsProcessTest, StartsTheWindowWithTheDesktopsToken) {
  EXPECT_FALSE(process_->isVisible());
  process_->show("token");
  EXPECT_TRUE(process_->isVisible());
  EXPECT_EQ(child().options().executable, "/opt/vantora-settings");
  EXPECT_THAT(child().options().arguments, IsEmpty());
  EXPECT_EQ(child().options().environmentChanges.at("XDG_ACTIVATION_TOKEN"), "token");
  EXPECT_EQ(child().options().environmentChanges.at("DESKTOP_STARTUP_ID"), "token");
}

TEST_F(SettingsProcessTest, SendsTheWholeStateOnceTheWindowIsReady) {
  MetricSnapshot snapshot;
  snapshot.networkName = "eth0";
  snapshot.codex.message = "Cota";
  snapshot.codex.candidates = {{"a", "Alfa"}};
  snapshot.codex.status = CodexQuotaStatus::needsAuthentication;
  snapshot.claude.message = "Limites";
  snapshot.claude.lastSuccess = time_.now();
  snapshot.samples.set(MetricID::batteryPercent,
                       MetricSample::unavailable("Bateria interna indisponível"));
  model_.setSnapshot(snapshot);
  presentation_.warning = "Fonte reduzida";
  presentation_.accessibilityText = "Bateria: —";
  presentation_.modules.resize(1);
  presentation_.modules[0].id = model_.configuration().modules[0].id;
  presentation_.modules[0].x = 3;
  presentation_.modules[0].width = 34;
  process_->showStatus(presentation_);
  process_->show("");
  time_.runPosted();
  EXPECT_THAT(heard(), IsEmpty());
  say(Ready{2});
  EXPECT_EQ(heardFields(), allWindowFields);
  EXPECT_EQ(told_.configuration, model_.configuration());
  EXPECT_EQ(told_.networkName, "eth0");
  EXPECT_EQ(told_.codex.message, "Cota");
  EXPECT_EQ(told_.codex.executable, "Codex CLI não encontrado");
  EXPECT_EQ(told_.codex.candidates, snapshot.codex.candidates);
  EXPECT_TRUE(told_.codex.needsLogin);
  EXPECT_EQ(told_.claude.message, "Limites");
  EXPECT_EQ(told_.claude.lastSuccess, snapshot.claude.lastSuccess);
  EXPECT_EQ(told_.claude.executable, "Claude Code");
  EXPECT_FALSE(told_.claude.needsLogin);
  EXPECT_EQ(told_.backupPath, folder_ / "Vantora/configuration.backup.json");
  EXPECT_EQ(told_.picture.width, 100);
  EXPECT_EQ(told_.picture.columns, 200);
  EXPECT_EQ(told_.picture.warning, "Fonte reduzida");
  EXPECT_EQ(told_.picture.spoken, "Bateria: —");
  EXPECT_THAT(told_.picture.blocks,
              ElementsAre(PictureBlock{model_.configuration().modules[0].id, 3, 34}));
  ASSERT_TRUE(told_.picture.enlarged);
  EXPECT_EQ(told_.picture.enlarged->scale, 4);
  EXPECT_EQ(told_.picture.enlarged->columns, 400);
  ASSERT_EQ(told_.readings.size(), model_.configuration().demand().size());
  EXPECT_EQ(told_.readings[0].metric, MetricID::batteryPercent);
  EXPECT_EQ(told_.readings[0].text, "—");
  EXPECT_EQ(told_.readings[0].reason, "Bateria interna indisponível");
}

TEST_F(SettingsProcessTest, SendsReadingsOnlyWhenTheySayAnother) {
  open();
  MetricSnapshot snapshot;
  const auto measure = [&](double value) {
    time_.advance(Seconds{1});
    snapshot.samples.set(MetricID::cpuUsage,
                         MetricSample::valid(value, "Linux /proc/stat", time_.now()));
    model_.setSnapshot(snapshot);
    time_.runPosted();
  };
  measure(12);
  EXPECT_EQ(heardFields(), WindowFields{WindowField::readings});
  answer();
  measure(12.1);
  EXPECT_THAT(heard(), IsEmpty());
  measure(13);
  EXPECT_EQ(heardFields(), WindowFields{WindowField::readings});
}

TEST_F(SettingsProcessTest, SendsNoEnlargedPictureThatWouldBeTooLarge) {
  presentation_.image.width = 4000;
  process_->showStatus(presentation_);
  open();
  EXPECT_EQ(told_.picture.columns, 8000);
  EXPECT_FALSE(told_.picture.enlarged);
}

TEST_F(SettingsProcessTest, LooksAtTheStateOnceForSeveralChanges) {
  open();
  looks_ = 0;
  for (const double gap : {7, 8, 9}) {
    AppConfiguration configuration = model_.configuration();
    configuration.gap = gap;
    model_.setConfiguration(configuration);
  }
  time_.runPosted();
  EXPECT_EQ(looks_, 1);
  EXPECT_EQ(heardFields(), WindowFields{WindowField::configuration});
  EXPECT_EQ(told_.configuration.gap, 9);
}

TEST_F(SettingsProcessTest, SendsOnlyWhatChanged) {
  open();
  model_.setStartAtLogin(true);
  time_.runPosted();
  EXPECT_EQ(heardFields(), (WindowFields{WindowField::loginItemStatus, WindowField::notice}));
  EXPECT_EQ(told_.loginItemStatus, LoginItemStatus::enabled);
}

TEST_F(SettingsProcessTest, DrawsThePictureOnlyForAWindowAndOnlyWhenItChanged) {
  process_->showStatus(presentation_);
  EXPECT_EQ(drawings_, 0);
  open();
  EXPECT_EQ(drawings_, 2);  // At the window's scale and enlarged.
  model_.setStartAtLogin(true);
  time_.runPosted();
  (void)heardFields();
  answer();
  EXPECT_EQ(drawings_, 2);
  presentation_.width = 50;
  process_->showStatus(presentation_);
  time_.runPosted();
  EXPECT_EQ(heardFields(), WindowFields{WindowField::picture});
  EXPECT_EQ(drawings_, 4);
}

TEST_F(SettingsProcessTest, DrawsAgainForAnotherScale) {
  open();
  say(Ready{3});
  EXPECT_EQ(heardFields(), WindowFields{WindowField::picture});
  EXPECT_EQ(told_.picture.scale, 3);
  EXPECT_EQ(told_.picture.columns, 300);
}

TEST_F(SettingsProcessTest, KeepsNothingForAWindowThatIsSlow) {
  open();
  for (int round = 1; round <= 100; ++round) {
    MetricSnapshot snapshot;
    snapshot.networkName = "eth" + std::to_string(round);
    model_.setSnapshot(snapshot);
    time_.runPosted();
  }
  EXPECT_EQ(heardFields(), WindowFields{WindowField::networkName});
  EXPECT_EQ(told_.networkName, "eth1");
  answer();
  EXPECT_EQ(heardFields(), WindowFields{WindowField::networkName});
  EXPECT_EQ(told_.networkName, "eth100");
}

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

TEST_F(SettingsProcessTest, RaisesAnOpenWindow) {
  open();
  process_->show("again");
  const auto messages = heard();
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(std::get<Raise>(messages[0]).activationToken, "again");
  EXPECT_EQ(launcher_.started().size(), 1U);
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

TEST_F(SettingsProcessTest, OpensAFreshWindowAfterTheUserClosedOne) {
  open();
  exit();
  EXPECT_FALSE(process_->isVisible());
  EXPECT_THAT(failures_, IsEmpty());
  EXPECT_EQ(model_.notice(), std::nullopt);
  open();
  EXPECT_EQ(launcher_.started().size(), 2U);
}

TEST_F(SettingsProcessTest, SendsNothingToAWindowThatIsNotReadyYet) {
  open();
  process_->showStatus(presentation_);
  process_->close();
  process_->show("");
  time_.runPosted();
  EXPECT_THAT(heard(), IsEmpty());
}

TEST_F(SettingsProcessTest, ClosesWithoutAWord) {
  open();
  process_->close();
  EXPECT_FALSE(process_->isVisible());
  EXPECT_TRUE(child().isTerminated());
  time_.advance(Seconds{60});
  EXPECT_THAT(failures_, IsEmpty());
  process_->close();
}

TEST_F(SettingsProcessTest, SaysThatTheWindowCannotBeStarted) {
  launcher_.failStarts(Fault::failed("EACCES"));
  process_->show("");
  EXPECT_FALSE(process_->isVisible());
  EXPECT_THAT(failures_, ElementsAre("A janela de configurações não pôde ser aberta. "
                                     "/opt/vantora-settings: EACCES"));
}

TEST_F(SettingsProcessTest, SaysWhatToInstallWhereTheWindowIsNot) {
  launcher_.failStarts(Fault::absent("ENOENT"));
  process_->show("");
  EXPECT_FALSE(process_->isVisible());
  EXPECT_THAT(failures_,
              ElementsAre(std::string("A janela de configurações não pôde ser aberta. ") +
                          Words::windowProgramMissing));
}

TEST_F(SettingsProcessTest, SaysThatTheWindowEndedBeforeItOpened) {
  process_->show("");
  child().exit({1, 0});
  expectFailure("A janela de configurações não pôde ser aberta.");
}

TEST_F(SettingsProcessTest, SurvivesAWindowThatDies) {
  open();
  child().exit({0, 11});
  expectFailure(broken);
  open();
  EXPECT_EQ(told_.notice, broken);
}

TEST_F(SettingsProcessTest, SurvivesAWindowThatNeverBecomesReady) {
  process_->show("");
  EXPECT_EQ(queue_->lastLeeway(), Seconds{1});
  time_.advance(SettingsProcess::answerLimit - Seconds{0.001});
  EXPECT_TRUE(process_->isVisible());
  time_.advance(Seconds{0.001});
  expectFailure(hanging);
}

TEST_F(SettingsProcessTest, SurvivesAWindowThatHangs) {
  open();
  model_.setStartAtLogin(true);
  time_.runPosted();
  (void)heardFields();
  time_.advance(SettingsProcess::answerLimit - Seconds{0.001});
  EXPECT_TRUE(process_->isVisible());
  time_.advance(Seconds{0.001});
  expectFailure(hanging);
}

// A window that moves to another screen says `ready` again, whatever it has not shown yet.
TEST_F(SettingsProcessTest, WaitsForTheAnswerOfAWindowThatChangesItsScale) {
  open();
  model_.setStartAtLogin(true);
  time_.runPosted();
  (void)heardFields();
  say(Ready{3});
  EXPECT_THAT(heard(), IsEmpty());
  answer();
  EXPECT_EQ(heardFields(), WindowFields{WindowField::picture});
  EXPECT_TRUE(process_->isVisible());
  say(Ready{2});
  time_.advance(SettingsProcess::answerLimit);
  expectFailure(hanging);
}

TEST_F(SettingsProcessTest, LetsAWindowBeQuietWhileThereIsNothingToAnswer) {
  open();
  time_.advance(Seconds{100'000});
  EXPECT_TRUE(process_->isVisible());
}

TEST_F(SettingsProcessTest, SurvivesAWindowThatWritesWithoutALineFeed) {
  open();
  const std::string piece(60'000, 'x');
  for (int count = 0; count < 5 && process_->isVisible(); ++count) {
    sayBytes(piece);
  }
  expectFailure(broken);
}

TEST_F(SettingsProcessTest, KeepsNoMemoryOfAWindowThatSaidTooMuch) {
  const std::size_t before = test::liveBytes();
  open();
  for (int count = 0; count < 4; ++count) {
    sayBytes(std::string(60'000, 'x'));
  }
  EXPECT_GT(test::liveBytes(), before + 240'000);
  exit();
  EXPECT_FALSE(process_->isVisible());
  // The scripted child remembers what it was sent, two pictures among it.
  EXPECT_LT(test::liveBytes(), before + 160'000);
}

TEST_F(SettingsProcessTest, SurvivesAWindowThatFloodsItWithMessages) {
  open();
  const std::string line = *windowLine(Intent::scrolled);
  for (int count = 0; count <= SettingsProcess::messagesPerSecond && process_->isVisible();
       ++count) {
    sayBytes(line);
  }
  expectFailure(broken);
}

TEST_F(SettingsProcessTest, TakesAsManyMessagesAsASliderSends) {
  open();
  for (int second = 0; second < 10; ++second) {
    for (int frame = 0; frame < 240; ++frame) {
      sayBytes(*windowLine(Intent::scrolled));
    }
    time_.advance(Seconds{1});
  }
  EXPECT_TRUE(process_->isVisible());
}

TEST_F(SettingsProcessTest, CountsTheMessagesOfEachSecondAnew) {
  open();
  const std::string line = *windowLine(Intent::scrolled);
  for (int second = 0; second < 3; ++second) {
    time_.advance(Seconds{1});
    for (int count = 0; count < SettingsProcess::messagesPerSecond; ++count) {
      sayBytes(line);
    }
  }
  EXPECT_TRUE(process_->isVisible());
  time_.advance(Seconds{0.999});
  sayBytes(line);
  expectFailure(broken);
}

TEST_F(SettingsProcessTest, WaitsForTheRestOfALine) {
  open();
  const std::string line = *windowLine(StartAtLogin{true});
  sayBytes(line.substr(0, 10));
  EXPECT_EQ(model_.loginItemStatus(), LoginItemStatus::notRegistered);
  sayBytes(line.substr(10));
  EXPECT_EQ(model_.loginItemStatus(), LoginItemStatus::enabled);
}

TEST_F(SettingsProcessTest, DropsHalfALineThatAWindowLeft) {
  open();
  const std::string line = *windowLine(StartAtLogin{true});
  sayBytes(line.substr(0, line.size() - 1));
  exit();
  EXPECT_FALSE(process_->isVisible());
  EXPECT_EQ(model_.loginItemStatus(), LoginItemStatus::notRegistered);
  open();
}

TEST_F(SettingsProcessTest, EndsAWindowThatSpeaksOutOfTurn) {
  process_->show("");
  say(Intent::scrolled);
  expectFailure(broken);
  open();
  sayBytes("{\"type\":\"quit\"}\n");
  expectFailure(broken);
  open();
  say(Seen{77});
  expectFailure(broken);
  open();
  model_.setStartAtLogin(true);
  time_.runPosted();
  (void)heardFields();
  say(Seen{sequence_ + 1});
  expectFailure(broken);
  open();
  const std::uint64_t first = sequence_;
  model_.setStartAtLogin(false);
  time_.runPosted();
  (void)heardFields();
  say(Seen{first});
  expectFailure(broken);
}

TEST_F(SettingsProcessTest, EndsAWindowThatNoLongerListens) {
  open();
  child().closeInput();
  model_.setStartAtLogin(true);
  time_.runPosted();
  EXPECT_FALSE(process_->isVisible());
}

TEST_F(SettingsProcessTest, EndsItsWindowWithItself) {
  open();
  process_.reset();
  EXPECT_TRUE(child().isTerminated());
  model_.setStartAtLogin(true);
  time_.advance(Seconds{60});
}

}  // namespace
}  // namespace vantora
