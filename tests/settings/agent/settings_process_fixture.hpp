// SPDX-License-Identifier: MIT
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "settings/agent/child_test.hpp"
#include "settings/agent/settings_process.hpp"
#include "support/fake_settings_ports.hpp"
#include "support/temporary_folder.hpp"
#include "support/virtual_worker.hpp"

namespace vantora::test {

/// The agent's end of the window's conversation, with a model that stores in a folder of its own.
class SettingsProcessFixture : public ChildTest {
 protected:
  SettingsProcessFixture() {
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

  void say(const SettingsProtocol::WindowMessage& message) {
    sayBytes(*SettingsProtocol::windowLine(message));
  }
  // The states and calls to the front that the window was told since the last time, taken
  // over into `told_`.
  std::vector<SettingsProtocol::AgentMessage> heard() {
    std::vector<SettingsProtocol::AgentMessage> messages;
    for (const std::string& line : child().takeInputLines()) {
      const auto message = SettingsProtocol::readAgentLine(line, told_);
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
    if (messages.size() != 1 ||
        !std::holds_alternative<SettingsProtocol::StateChange>(messages[0])) {
      return {};
    }
    sequence_ = std::get<SettingsProtocol::StateChange>(messages[0]).sequence;
    revision_ = std::get<SettingsProtocol::StateChange>(messages[0]).revision;
    return std::get<SettingsProtocol::StateChange>(messages[0]).fields;
  }
  void answer() { say(SettingsProtocol::Seen{sequence_}); }
  void open() {
    process_->show("");
    say(SettingsProtocol::Ready{2});
    EXPECT_EQ(heardFields(), allWindowFields);
    answer();
    EXPECT_THAT(heard(), testing::IsEmpty());
  }
  void expectFailure(const char* message) {
    time_.runPosted();
    EXPECT_FALSE(process_->isVisible());
    EXPECT_THAT(failures_, testing::ElementsAre(message));
    EXPECT_EQ(model_.notice(), message);
    EXPECT_TRUE(child().isTerminated());
    failures_.clear();
  }

  TemporaryFolder folder_;
  FakeLoginItem loginItem_;
  FakeUserDefaults defaults_;
  VirtualWorker worker_{*queue_};
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

}  // namespace vantora::test
