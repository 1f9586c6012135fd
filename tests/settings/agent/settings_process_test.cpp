// SPDX-License-Identifier: MIT
#include "settings/agent/settings_process.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <variant>

#include "settings/agent/settings_process_fixture.hpp"

namespace vantora {
namespace {

using namespace SettingsProtocol;
using testing::ElementsAre;
using testing::IsEmpty;

using SettingsProcessTest = test::SettingsProcessFixture;

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

TEST_F(SettingsProcessTest, RaisesAnOpenWindow) {
  open();
  process_->show("again");
  const auto messages = heard();
  ASSERT_EQ(messages.size(), 1U);
  EXPECT_EQ(std::get<Raise>(messages[0]).activationToken, "again");
  EXPECT_EQ(launcher_.started().size(), 1U);
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

TEST_F(SettingsProcessTest, EndsItsWindowWithItself) {
  open();
  process_.reset();
  EXPECT_TRUE(child().isTerminated());
  model_.setStartAtLogin(true);
  time_.advance(Seconds{60});
}

}  // namespace
}  // namespace vantora
