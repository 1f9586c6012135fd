// SPDX-License-Identifier: MIT
#include "settings/settings_model.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "model/configuration_codec.hpp"
#include "settings/error_text.hpp"
#include "support/fake_settings_ports.hpp"
#include "support/temporary_folder.hpp"
#include "support/virtual_time.hpp"

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
    model_.emplace(*queue_, ConfigurationStore(folder_.path()), loginItem_, defaults_);
  }
  AppConfiguration paddedBy(double padding) {
    AppConfiguration configuration = model_->configuration();
    configuration.horizontalPadding = padding;
    return configuration;
  }
  void padBy(double padding) { model_->setConfiguration(paddedBy(padding)); }
  bool isSaved() { return fs::exists(file_); }

  test::TemporaryFolder folder_;
  const fs::path file_ = folder_ / "Vantora/configuration.json";
  const fs::path backup_ = folder_ / "Vantora/configuration.backup.json";
  test::VirtualTime time_;
  std::unique_ptr<test::VirtualQueue> queue_ = time_.makeQueue();
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

TEST_F(SettingsModelTest, SavesFourTenthsOfASecondAfterTheChange) {
  padBy(9);
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

TEST_F(SettingsModelTest, DoesNothingForAnEqualConfiguration) {
  int calls = 0;
  model_->onConfigurationChange = [&](const AppConfiguration&) { ++calls; };
  model_->onFieldChange = [&](SettingsModel::Field) { ++calls; };
  model_->setConfiguration(AppConfiguration(model_->configuration()));
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(SettingsModelTest, TellsTheCoordinatorBeforeAnythingIsScheduled) {
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
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(model_->configuration(), wanted);
  EXPECT_EQ(model_->notice(), "Configuração importada.");
  EXPECT_FALSE(isSaved());
  time_.advance(SettingsModel::saveDelay);
  EXPECT_TRUE(isSaved());
}

TEST_F(SettingsModelTest, KeepsItsConfigurationWhenAnImportIsRefused) {
  const AppConfiguration before = model_->configuration();
  const fs::path layout = folder_ / "layout.json";
  writeBytes(layout, *ConfigurationCodec::encode(paddedBy(17)));
  model_->importJSON(layout);
  EXPECT_EQ(model_->configuration(), before);
  EXPECT_EQ(model_->notice(),
            "Arquivo inválido ou não suportado: Verifique a versão e os limites dos campos.");
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(SettingsModelTest, ExportsToTheChosenPath) {
  model_->exportJSON(folder_ / "out.json");
  EXPECT_EQ(readBytes(folder_ / "out.json"), ConfigurationCodec::encode(model_->configuration()));
  EXPECT_EQ(model_->notice(), "Configuração exportada.");
}

TEST_F(SettingsModelTest, LeavesEverythingWhenAPanelIsCancelled) {
  model_->exportJSON(folder_ / "out.json");
  const auto notice = model_->notice();
  model_->exportJSON(std::nullopt);
  model_->importJSON(std::nullopt);
  model_->selectCodexExecutable(std::nullopt);
  EXPECT_EQ(model_->notice(), notice);
  EXPECT_TRUE(defaults_.texts.empty());
}

TEST_F(SettingsModelTest, FollowsTheSystemAndNotTheRequestAboutTheLoginItem) {
  model_->setStartAtLogin(true);
  EXPECT_EQ(model_->loginItemStatus(), LoginItemStatus::enabled);
  EXPECT_EQ(model_->notice(), "Vantora iniciará ao entrar na sessão do Mac.");
  model_->setStartAtLogin(false);
  EXPECT_EQ(model_->loginItemStatus(), LoginItemStatus::notRegistered);
  EXPECT_EQ(model_->notice(), "Início automático desativado.");
  loginItem_.forced = LoginItemStatus::enabled;
  model_->setStartAtLogin(false);
  EXPECT_EQ(model_->notice(), "Vantora iniciará ao entrar na sessão do Mac.");
  loginItem_.forced = LoginItemStatus::requiresApproval;
  model_->setStartAtLogin(true);
  EXPECT_EQ(model_->notice(), "Aprovação pendente em Ajustes do Sistema → Itens de Início.");
  for (const auto status : {LoginItemStatus::notRegistered, LoginItemStatus::notFound}) {
    loginItem_.forced = status;
    model_->setStartAtLogin(true);
    EXPECT_EQ(model_->notice(), "O item de início ainda não foi habilitado.");
    model_->setStartAtLogin(false);
    EXPECT_EQ(model_->notice(), "Início automático desativado.");
  }
}

TEST_F(SettingsModelTest, ShowsTheRealLoginStatusAfterAFailure) {
  loginItem_.current = LoginItemStatus::requiresApproval;
  loginItem_.fault = Fault::failed("Sem espaço");
  model_->setStartAtLogin(true);
  EXPECT_EQ(model_->loginItemStatus(), LoginItemStatus::requiresApproval);
  EXPECT_EQ(model_->notice(), "Falha ao ajustar início automático: Sem espaço");
}

TEST_F(SettingsModelTest, ReadsTheLoginStatusWhenAskedAndLeavesTheNotice) {
  loginItem_.current = LoginItemStatus::notFound;
  model_->refreshLoginStatus();
  EXPECT_EQ(model_->loginItemStatus(), LoginItemStatus::notFound);
  EXPECT_EQ(model_->notice(), std::nullopt);
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
  void expectRefused(const fs::path& path) {
    model_->selectCodexExecutable(path);
    EXPECT_EQ(model_->notice(), "Selecione um executável codex válido.");
    EXPECT_EQ(calls_, 0);
    EXPECT_TRUE(defaults_.texts.empty());
  }
  int calls_ = 0;
};

TEST_F(CodexSelectionTest, StoresAnExecutableNamedCodex) {
  const fs::path codex = makeFile("codex", fs::perms(0755));
  model_->selectCodexExecutable(codex);
  EXPECT_EQ(defaults_.text(codexExecutablePathKey), codex.string());
  EXPECT_EQ(calls_, 1);
  EXPECT_EQ(model_->notice(), "Executável Codex selecionado para este Mac.");
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
  model_->selectCodexExecutable(makeFile("codex", fs::perms(0755)));
  EXPECT_EQ(calls_, 0);
  EXPECT_EQ(model_->notice(), "Falha ao salvar: Disco cheio");
}

TEST_F(SettingsModelTest, TellsWhoeverShowsItWhichFieldChanged) {
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
  model_->setStartAtLogin(true);
  EXPECT_THAT(fields, ElementsAre(Field::configuration, Field::snapshot, Field::pendingScrollID,
                                  Field::pendingScrollID, Field::loginItemStatus, Field::notice));
}

}  // namespace
}  // namespace vantora
