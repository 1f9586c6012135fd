// SPDX-License-Identifier: MIT
#include "settings/settings_model.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "model/configuration_codec.hpp"
#include "settings/error_text.hpp"
#include "settings/settings_model_fixture.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;
using test::readBytes;
using test::writeBytes;
using testing::ElementsAre;

using SettingsModelTest = test::SettingsModelFixture;

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

TEST_F(SettingsModelTest, DropsAPendingSaveWhenItEnds) {
  padBy(9);
  model_.reset();
  EXPECT_EQ(time_.pendingCount(), 0U);
  time_.advance(Seconds{1});
  EXPECT_FALSE(isSaved());
}

}  // namespace
}  // namespace vantora
