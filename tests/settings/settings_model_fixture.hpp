// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>

#include "settings/settings_model.hpp"
#include "support/fake_settings_ports.hpp"
#include "support/temporary_folder.hpp"
#include "support/virtual_time.hpp"
#include "support/virtual_worker.hpp"

namespace vantora::test {

/// A model that stores in a folder of its own.
class SettingsModelFixture : public testing::Test {
 protected:
  SettingsModelFixture() { open(); }
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
  bool isSaved() { return std::filesystem::exists(file_); }

  TemporaryFolder folder_;
  const std::filesystem::path file_ = folder_ / "Vantora/configuration.json";
  const std::filesystem::path backup_ = folder_ / "Vantora/configuration.backup.json";
  VirtualTime time_;
  std::unique_ptr<VirtualQueue> queue_ = time_.makeQueue();
  VirtualWorker worker_{*queue_};
  FakeLoginItem loginItem_;
  FakeUserDefaults defaults_;
  std::optional<SettingsModel> model_;
};

}  // namespace vantora::test
