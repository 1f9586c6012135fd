// SPDX-License-Identifier: MIT
#include "settings/settings_model.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/words.hpp"
#include "settings/settings_model_fixture.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;
using test::writeBytes;

using SettingsModelTest = test::SettingsModelFixture;

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

}  // namespace
}  // namespace vantora
