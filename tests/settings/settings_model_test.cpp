// SPDX-License-Identifier: MIT
#include "settings/settings_model.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "model/configuration_codec.hpp"
#include "model/words.hpp"
#include "settings/error_text.hpp"
#include "support/fake_settings_ports.hpp"
#include "support/temporary_folder.hpp"
#include "support/virtual_time.hpp"
#include "support/virtual_worker.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;
using test::readBytes;
using test::writeBytes;
using testing::ElementsAre;

class SettingsModelTest : public testing::Test {
 protected:
  SettingsModelTest() { open(); }
  void open() {
    model_.emplace(*queue_, worker_, ConfigurationStore(folder_.path()), loginItem_, defaults_);
  }
  AppConfiguration paddedBy(double padding) {
    AppConfiguration configuration = model_->configuration();
    configuration.horizontalPadding = padding;
    return configuration;
  }
  void padBy(double padding) { model_->setConfiguration(paddedBy(padding)); }
  void setStartAtLogin(bool enabled) {
    model_->setStartAtLogin(enabled);
    time_.runPosted();
  }
  bool isSaved() { return fs::exists(file_); }

  test::TemporaryFolder folder_;
  const fs::path file_ = folder_ / "Vantora/configuration.json";
  const fs::path backup_ = folder_ / "Vantora/configuration.backup.json";
  test::VirtualTime time_;
  std::unique_ptr<test::VirtualQueue> queue_ = time_.makeQueue();
  test::VirtualWorker worker_{*queue_};
  test::FakeLoginItem loginItem_;
  test::FakeUserDefaults defaults_;
  std::optional<SettingsModel> model_;
};

TEST_F(SettingsModelTest, StartsWithTheStoredConfigurationAndNoNotice) {
  padBy(9);
  time_.advance(SettingsModel::saveDelay);
  open();
  EXPECT_EQ(model_->configuration().horizontalPadding, 9);
  EXPECT_EQ(model_->notice(), std::nullopt);
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(SettingsModelTest, StartsWithANoticeOverACorruptFileThatTheFirstSaveBacksUp) {
  fs::create_directories(file_.parent_path());
  writeBytes(file_, "corrupt");
  open();
  EXPECT_EQ(model_->notice(), "Configuração inválida preservada em disco; padrão carregado.");
  EXPECT_EQ(readBytes(file_), "corrupt");
  padBy(9);
  time_.advance(SettingsModel::saveDelay);
  EXPECT_EQ(readBytes(backup_), "corrupt");
  EXPECT_EQ(model_->notice(), std::nullopt);
}

TEST_F(SettingsModelTest, KeepsACorruptFileUnderANameOfItsOwnHoweverOftenItSaves) {
  const fs::path unreadable = folder_ / "Vantora/configuration.unreadable.json";
  fs::create_directories(file_.parent_path());
  writeBytes(file_, "corrupt");
  open();
  EXPECT_EQ(model_->keepAs(), unreadable);
  EXPECT_FALSE(fs::exists(unreadable));
  for (const double padding : {1, 2, 3}) {
    padBy(padding);
    time_.advance(SettingsModel::saveDelay);
    EXPECT_EQ(readBytes(unreadable), "corrupt");
  }
  EXPECT_EQ(model_->keepAs(), std::nullopt);
  EXPECT_EQ(ConfigurationCodec::decode(readBytes(backup_))->horizontalPadding, 2);
  // A second one does not take the place of the first.
  writeBytes(file_, "worse");
  open();
  padBy(4);
  time_.advance(SettingsModel::saveDelay);
  EXPECT_EQ(readBytes(unreadable), "corrupt");
  EXPECT_EQ(readBytes(folder_ / "Vantora/configuration.unreadable-2.json"), "worse");
}

TEST_F(SettingsModelTest, SavesFourTenthsOfASecondAfterTheChange) {
  padBy(9);
  EXPECT_EQ(queue_->lastLeeway(), Seconds{0});
  time_.advance(Seconds{0.399});
  EXPECT_FALSE(isSaved());
  time_.advance(Seconds{0.001});
  EXPECT_EQ(readBytes(file_), ConfigurationCodec::encode(model_->configuration()));
}

TEST_F(SettingsModelTest, SavesABurstOfChangesOnceAfterTheLast) {
  padBy(1);
  time_.advance(SettingsModel::saveDelay);
  const std::string first = readBytes(file_);
  padBy(2);
  time_.advance(Seconds{0.2});
  padBy(3);
  time_.advance(Seconds{0.399});
  EXPECT_EQ(readBytes(file_), first);
  time_.advance(Seconds{0.001});
  EXPECT_EQ(readBytes(file_), ConfigurationCodec::encode(model_->configuration()));
  EXPECT_EQ(readBytes(backup_), first);
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(SettingsModelTest, TakesEditsWhileTheDiskHangsAndSavesTheLatestAfterwards) {
  worker_.hang();
  for (const double padding : {1, 2, 3}) {
    padBy(padding);
    time_.advance(Seconds{60});
  }
  EXPECT_EQ(model_->configuration().horizontalPadding, 3);
  EXPECT_FALSE(isSaved());
  EXPECT_EQ(worker_.heldCount(), 1U);
  worker_.resume();
  time_.runPosted();
  EXPECT_EQ(readBytes(file_), ConfigurationCodec::encode(model_->configuration()));
  // The first of the three and the last.
  EXPECT_EQ(ConfigurationCodec::decode(readBytes(backup_))->horizontalPadding, 1);
  EXPECT_EQ(time_.pendingCount(), 0U);
}

class FailingSaveTest : public SettingsModelTest {
 protected:
  FailingSaveTest() {
    model_->onSaveFailure = [this](const std::string& message) { messages_.push_back(message); };
    block();
  }
  // No folder can be made where a file is.
  void block() { writeBytes(file_.parent_path(), "in the way"); }
  void unblock() { fs::remove(file_.parent_path()); }

  const std::string failure_ = "Falha ao salvar: " + systemErrorText(ENOTDIR);
  std::vector<std::string> messages_;
};

TEST_F(FailingSaveTest, IsToldOnceUntilOneSucceeds) {
  for (const double padding : {1, 2, 3}) {
    padBy(padding);
    time_.advance(SettingsModel::saveDelay);
  }
  EXPECT_EQ(model_->notice(), failure_);
  EXPECT_THAT(messages_, ElementsAre(failure_));
  unblock();
  padBy(4);
  time_.advance(SettingsModel::saveDelay);
  EXPECT_EQ(model_->notice(), std::nullopt);
  fs::remove_all(file_.parent_path());
  block();
  padBy(5);
  time_.advance(SettingsModel::saveDelay);
  EXPECT_THAT(messages_, ElementsAre(failure_, failure_));
}

TEST_F(FailingSaveTest, IsTriedAgainEverLessOften) {
  padBy(1);
  time_.advance(SettingsModel::saveDelay);
  std::vector<double> intervals;
  for (int attempt = 0; attempt < 9; ++attempt) {
    const auto interval = time_.untilNext();
    ASSERT_TRUE(interval);
    intervals.push_back(interval->count());
    EXPECT_EQ(queue_->lastLeeway(), *interval / 8);
    time_.advance(*interval);
  }
  EXPECT_THAT(intervals, ElementsAre(10, 20, 40, 80, 160, 320, 600, 600, 600));
  EXPECT_THAT(messages_, ElementsAre(failure_));
  unblock();
  time_.advance(SettingsModel::maxRetryInterval);
  EXPECT_EQ(readBytes(file_), ConfigurationCodec::encode(model_->configuration()));
  EXPECT_EQ(time_.pendingCount(), 0U);
  // And anew from the start.
  fs::remove_all(file_.parent_path());
  block();
  padBy(2);
  time_.advance(SettingsModel::saveDelay);
  EXPECT_EQ(time_.untilNext(), SettingsModel::minRetryInterval);
}

TEST_F(FailingSaveTest, IsTriedAgainWhenAPauseEnds) {
  AppConfiguration configuration = model_->configuration();
  configuration.paused = true;
  model_->setConfiguration(configuration);
  time_.advance(SettingsModel::saveDelay);
  EXPECT_EQ(model_->notice(), failure_);
  unblock();
  configuration.paused = false;
  model_->setConfiguration(configuration);
  time_.advance(SettingsModel::saveDelay);
  EXPECT_TRUE(isSaved());
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(FailingSaveTest, WaitsForTheDelayOfAnEditAndNotForTheRetry) {
  worker_.hang();
  padBy(1);
  time_.advance(SettingsModel::saveDelay);
  padBy(2);
  worker_.resume();
  time_.runPosted();
  EXPECT_THAT(messages_, ElementsAre(failure_));
  EXPECT_EQ(time_.untilNext(), SettingsModel::saveDelay);
}

TEST_F(FailingSaveTest, IsNoneWhereTheConfigurationIsOutOfBounds) {
  padBy(17);
  time_.advance(SettingsModel::saveDelay);
  EXPECT_THAT(messages_, ElementsAre());
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(SettingsModelTest, HearsNothingOfASaveThatOutlivesIt) {
  worker_.hang();
  padBy(9);
  time_.advance(SettingsModel::saveDelay);
  model_->exportJSON(folder_ / "out.json");
  model_->importJSON(folder_ / "out.json");
  model_->setStartAtLogin(true);
  model_->selectCodexExecutable("codex");
  model_.reset();
  worker_.resume();
  time_.runPosted();
  EXPECT_TRUE(isSaved());
}

TEST_F(SettingsModelTest, DoesNothingForAnEqualConfiguration) {
  int calls = 0;
  model_->onConfigurationChange = [&](const AppConfiguration&) { ++calls; };
  model_->onFieldChange = [&](SettingsModel::Field) { ++calls; };
  model_->setConfiguration(AppConfiguration(model_->configuration()));
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(SettingsModelTest, NotifiesTheCoordinatorBeforeAnythingIsScheduled) {
  std::vector<double> seen;
  model_->onConfigurationChange = [&](const AppConfiguration& configuration) {
    seen.push_back(configuration.horizontalPadding);
    EXPECT_EQ(model_->configuration(), configuration);
    EXPECT_EQ(time_.pendingCount(), 0U);
  };
  padBy(4);
  EXPECT_THAT(seen, ElementsAre(4));
  EXPECT_EQ(time_.pendingCount(), 1U);
}

TEST_F(SettingsModelTest, PutsAConfigurationOutOfBoundsInForceAndDoesNotSaveIt) {
  padBy(1);
  time_.advance(SettingsModel::saveDelay);
  const std::string good = readBytes(file_);
  int calls = 0;
  model_->onConfigurationChange = [&](const AppConfiguration&) { ++calls; };
  padBy(17);
  time_.advance(SettingsModel::saveDelay);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(model_->configuration().horizontalPadding, 17);
  EXPECT_EQ(model_->notice(), "Configuração fora dos limites; alterações ainda não foram salvas.");
  EXPECT_EQ(readBytes(file_), good);
  padBy(16);
  time_.advance(SettingsModel::saveDelay);
  EXPECT_EQ(model_->notice(), std::nullopt);
}

TEST_F(SettingsModelTest, DropsAPendingSaveWhenItEnds) {
  padBy(9);
  model_.reset();
  EXPECT_EQ(time_.pendingCount(), 0U);
  time_.advance(Seconds{1});
  EXPECT_FALSE(isSaved());
}

TEST_F(SettingsModelTest, ImportsThroughTheChangeHookAndSavesAfterTheDelay) {
  const fs::path layout = folder_ / "layout.json";
  const AppConfiguration wanted = paddedBy(11);
  writeBytes(layout, *ConfigurationCodec::encode(wanted));
  int calls = 0;
  model_->onConfigurationChange = [&](const AppConfiguration&) { ++calls; };
  model_->importJSON(layout);
  time_.runPosted();
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(model_->configuration(), wanted);
  EXPECT_EQ(model_->notice(), "Configuração importada.");
  EXPECT_FALSE(isSaved());
  time_.advance(SettingsModel::saveDelay);
  EXPECT_TRUE(isSaved());
}

TEST_F(SettingsModelTest, TakesBackARemovalAndBringsTheModuleIntoView) {
  const AppConfiguration before = model_->configuration();
  AppConfiguration edited = before;
  const UUID removed = edited.modules[1].id;
  edited.modules.erase(edited.modules.begin() + 1);
  model_->setConfiguration(edited, UndoableEdit::removal);
  EXPECT_EQ(model_->undoable(), UndoableEdit::removal);
  model_->undo();
  EXPECT_EQ(model_->configuration(), before);
  EXPECT_EQ(model_->pendingScrollID(), removed);
  EXPECT_EQ(model_->undoable(), std::nullopt);
  model_->undo();
  EXPECT_EQ(model_->configuration(), before);
  time_.advance(SettingsModel::saveDelay);
  EXPECT_TRUE(isSaved());
}

TEST_F(SettingsModelTest, TakesBackAnImportAndTheDefaults) {
  padBy(9);
  const AppConfiguration before = model_->configuration();
  const fs::path layout = folder_ / "layout.json";
  writeBytes(layout, *ConfigurationCodec::encode(paddedBy(11)));
  model_->importJSON(layout);
  time_.runPosted();
  EXPECT_EQ(model_->undoable(), UndoableEdit::importing);
  model_->undo();
  EXPECT_EQ(model_->configuration(), before);
  model_->restoreDefaults();
  EXPECT_EQ(model_->undoable(), UndoableEdit::restoring);
  model_->undo();
  EXPECT_EQ(model_->configuration(), before);
  EXPECT_EQ(model_->pendingScrollID(), std::nullopt);
}

TEST_F(SettingsModelTest, UndoesNothingAfterTheNextChange) {
  padBy(9);
  int tellings = 0;
  model_->onFieldChange = [&](SettingsModel::Field field) {
    tellings += field == SettingsModel::Field::undoable ? 1 : 0;
  };
  model_->restoreDefaults();
  EXPECT_EQ(tellings, 1);
  padBy(10);
  EXPECT_EQ(tellings, 2);
  EXPECT_EQ(model_->undoable(), std::nullopt);
  const AppConfiguration after = model_->configuration();
  model_->undo();
  EXPECT_EQ(model_->configuration(), after);
}

TEST_F(SettingsModelTest, KeepsItsConfigurationWhenAnImportIsRefused) {
  const AppConfiguration before = model_->configuration();
  const fs::path layout = folder_ / "layout.json";
  writeBytes(layout, *ConfigurationCodec::encode(paddedBy(17)));
  model_->importJSON(layout);
  time_.runPosted();
  EXPECT_EQ(model_->configuration(), before);
  EXPECT_EQ(model_->notice(),
            "Arquivo inválido ou não suportado: Verifique a versão e os limites dos campos.");
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(SettingsModelTest, ExportsToTheChosenPath) {
  model_->exportJSON(folder_ / "out.json");
  time_.runPosted();
  EXPECT_EQ(readBytes(folder_ / "out.json"), ConfigurationCodec::encode(model_->configuration()));
  EXPECT_EQ(model_->notice(), "Configuração exportada.");
}

TEST_F(SettingsModelTest, LeavesEverythingWhenAPanelIsCancelled) {
  model_->exportJSON(folder_ / "out.json");
  time_.runPosted();
  const auto notice = model_->notice();
  model_->exportJSON(std::nullopt);
  model_->importJSON(std::nullopt);
  model_->selectCodexExecutable(std::nullopt);
  time_.runPosted();
  EXPECT_EQ(model_->notice(), notice);
  EXPECT_TRUE(defaults_.texts.empty());
}

TEST_F(SettingsModelTest, FollowsTheSystemAndNotTheRequestAboutTheLoginItem) {
  setStartAtLogin(true);
  EXPECT_EQ(model_->loginItemStatus(), LoginItemStatus::enabled);
  EXPECT_EQ(model_->notice(), Words::loginItemEnabled);
  setStartAtLogin(false);
  EXPECT_EQ(model_->loginItemStatus(), LoginItemStatus::notRegistered);
  EXPECT_EQ(model_->notice(), "Início automático desativado.");
  loginItem_.forced = LoginItemStatus::enabled;
  setStartAtLogin(false);
  EXPECT_EQ(model_->notice(), Words::loginItemEnabled);
  loginItem_.forced = LoginItemStatus::requiresApproval;
  setStartAtLogin(true);
  EXPECT_EQ(model_->notice(), Words::loginItemNeedsApproval);
  for (const auto status : {LoginItemStatus::notRegistered, LoginItemStatus::notFound}) {
    loginItem_.forced = status;
    setStartAtLogin(true);
    EXPECT_EQ(model_->notice(), "O item de início ainda não foi habilitado.");
    setStartAtLogin(false);
    EXPECT_EQ(model_->notice(), "Início automático desativado.");
  }
}

TEST_F(SettingsModelTest, ShowsTheRealLoginStatusAfterAFailure) {
  loginItem_.current = LoginItemStatus::requiresApproval;
  loginItem_.fault = Fault::failed("Sem espaço");
  setStartAtLogin(true);
  EXPECT_EQ(model_->loginItemStatus(), LoginItemStatus::requiresApproval);
  EXPECT_EQ(model_->notice(), "Falha ao ajustar início automático: Sem espaço");
}

TEST_F(SettingsModelTest, ReadsTheLoginStatusWhenAskedAndLeavesTheNotice) {
  loginItem_.current = LoginItemStatus::notFound;
  model_->refreshLoginStatus();
  time_.runPosted();
  EXPECT_EQ(model_->loginItemStatus(), LoginItemStatus::notFound);
  EXPECT_EQ(model_->notice(), std::nullopt);
}

TEST_F(SettingsModelTest, WaitsForNoDiskThatHoldsTheLoginItemOrTheUserDefaults) {
  worker_.hang();
  const fs::path codex = folder_ / "codex";
  writeBytes(codex, "#!/bin/sh\n");
  fs::permissions(codex, fs::perms(0755));
  model_->setStartAtLogin(true);
  model_->refreshLoginStatus();
  model_->selectCodexExecutable(codex);
  time_.advance(Seconds{60});
  EXPECT_EQ(loginItem_.current, LoginItemStatus::notRegistered);
  EXPECT_TRUE(defaults_.texts.empty());
  EXPECT_EQ(model_->notice(), std::nullopt);
  worker_.resume();
  time_.runPosted();
  EXPECT_EQ(model_->loginItemStatus(), LoginItemStatus::enabled);
  EXPECT_EQ(defaults_.text(codexExecutablePathKey), codex.string());
  EXPECT_EQ(model_->notice(), Words::codexExecutableSelected);
}

TEST_F(SettingsModelTest, ReadsTheModuleOfTheSquareOnceAPanelKeepsOne) {
  const UUID module = UUID::random();
  defaults_.texts.insert_or_assign(std::string(squareModuleKey), module.text());
  std::vector<std::optional<UUID>> told;
  model_->onSquareModuleChange = [&](const std::optional<UUID>& chosen) { told.push_back(chosen); };
  time_.runPosted();
  EXPECT_EQ(model_->squareModule(), std::nullopt);
  model_->setKeepsSquare(true);
  time_.runPosted();
  EXPECT_EQ(told, std::vector{std::optional(module)});
  model_->setKeepsSquare(false);
  model_->setKeepsSquare(true);
  time_.runPosted();
  EXPECT_EQ(told.size(), 1U);
  EXPECT_EQ(model_->squareModule(), module);
}

TEST_F(SettingsModelTest, StoresTheModuleOfTheSquareAndNoneForTheAutomaticChoice) {
  const UUID module = UUID::random();
  model_->setSquareModule(module);
  EXPECT_EQ(model_->squareModule(), module);
  time_.runPosted();
  EXPECT_EQ(defaults_.text(squareModuleKey), module.text());
  model_->setSquareModule(std::nullopt);
  time_.runPosted();
  EXPECT_EQ(defaults_.text(squareModuleKey), "");
  EXPECT_EQ(model_->notice(), std::nullopt);
}

TEST_F(SettingsModelTest, KeepsTheUsersModuleWhenTheStoredOneComesLate) {
  const UUID module = UUID::random();
  defaults_.texts.insert_or_assign(std::string(squareModuleKey), UUID::random().text());
  worker_.hang();
  model_->setKeepsSquare(true);
  model_->setSquareModule(module);
  worker_.resume();
  time_.runPosted();
  EXPECT_EQ(model_->squareModule(), module);
}

TEST_F(SettingsModelTest, SaysThatTheModuleOfTheSquareCouldNotBeStored) {
  defaults_.fault = Fault::failed("Disco cheio.");
  model_->setSquareModule(UUID::random());
  time_.runPosted();
  EXPECT_EQ(model_->notice(), "Falha ao guardar o módulo do quadrado: Disco cheio.");
}

class CodexSelectionTest : public SettingsModelTest {
 protected:
  CodexSelectionTest() {
    model_->onCodexExecutableChange = [this] {
      ++calls_;
      EXPECT_TRUE(defaults_.text("Vantora.CodexExecutablePath"));
    };
  }
  fs::path makeFile(std::string_view name, fs::perms mode) {
    const fs::path path = folder_ / name;
    writeBytes(path, "#!/bin/sh\n");
    fs::permissions(path, mode);
    return path;
  }
  void select(const fs::path& path) {
    model_->selectCodexExecutable(path);
    time_.runPosted();
  }
  void expectRefused(const fs::path& path) {
    select(path);
    EXPECT_EQ(model_->notice(), "Selecione um executável codex válido.");
    EXPECT_EQ(calls_, 0);
    EXPECT_TRUE(defaults_.texts.empty());
  }
  int calls_ = 0;
};

TEST_F(CodexSelectionTest, StoresAnExecutableNamedCodex) {
  const fs::path codex = makeFile("codex", fs::perms(0755));
  select(codex);
  EXPECT_EQ(defaults_.text(codexExecutablePathKey), codex.string());
  EXPECT_EQ(calls_, 1);
  EXPECT_EQ(model_->notice(), Words::codexExecutableSelected);
}

TEST_F(CodexSelectionTest, RefusesEverythingElse) {
  expectRefused(makeFile("codex-beta", fs::perms(0755)));
  expectRefused(makeFile("Codex", fs::perms(0755)));
  expectRefused(makeFile("codex", fs::perms(0644)));
  fs::remove(folder_ / "codex");
  expectRefused(folder_ / "codex");
  fs::create_directory(folder_ / "codex");
  expectRefused(folder_ / "codex");
  expectRefused("codex");
  expectRefused("");
}

TEST_F(CodexSelectionTest, SaysThatTheChoiceCouldNotBeStored) {
  defaults_.fault = Fault::failed("Disco cheio");
  select(makeFile("codex", fs::perms(0755)));
  EXPECT_EQ(calls_, 0);
  EXPECT_EQ(model_->notice(), "Falha ao salvar: Disco cheio");
}

TEST_F(SettingsModelTest, ReportsWhichFieldChanged) {
  using Field = SettingsModel::Field;
  std::vector<Field> fields;
  model_->onFieldChange = [&](Field field) { fields.push_back(field); };
  padBy(9);
  MetricSnapshot snapshot;
  snapshot.networkName = "eth0";
  model_->setSnapshot(snapshot);
  model_->setSnapshot(snapshot);
  model_->setPendingScrollID(model_->configuration().modules[0].id);
  model_->setPendingScrollID(std::nullopt);
  model_->setLinks({{"eth0", true, true, true}});
  model_->setLinks({{"eth0", true, true, true}});
  EXPECT_EQ(model_->links().size(), 1U);
  setStartAtLogin(true);
  EXPECT_THAT(fields, ElementsAre(Field::configuration, Field::snapshot, Field::pendingScrollID,
                                  Field::pendingScrollID, Field::links, Field::loginItemStatus,
                                  Field::notice));
}

}  // namespace
}  // namespace vantora
