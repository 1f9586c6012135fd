// SPDX-License-Identifier: MIT
#include "settings/settings_model.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "model/configuration_codec.hpp"
#include "settings/settings_model_fixture.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;
using test::readBytes;
using test::writeBytes;
using testing::ElementsAre;

using SettingsModelTest = test::SettingsModelFixture;

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
