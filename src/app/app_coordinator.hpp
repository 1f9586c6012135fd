// SPDX-License-Identifier: MIT
//
// The spine of the program: owns the settings model, the sampling and what is shown,
// keeps the current snapshot, and redraws the status item when what it shows changed.
// Everything here runs on the main thread.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/status_item.hpp"
#include "model/configuration.hpp"
#include "model/sample.hpp"
#include "runtime/clock.hpp"
#include "sampling/sampling_coordinator.hpp"
#include "settings/settings_model.hpp"
#include "status/text_engine.hpp"

namespace vantora {

/// What the main chooses for the coordinator. Everything referred to must outlive it.
struct AppParts {
  const Clock& clock;
  StatusItem& statusItem;
  TextEngine& textEngine;
  std::unique_ptr<SettingsModel> model;
  std::shared_ptr<SamplingCoordinator> sampling;
};

class AppCoordinator final : public std::enable_shared_from_this<AppCoordinator> {
 public:
  [[nodiscard]] static std::shared_ptr<AppCoordinator> create(AppParts parts);

  /// Installs every callback, draws once and starts what the configuration asks for.
  /// Once, when the main loop is about to run.
  void launch();

  [[nodiscard]] SettingsModel& model() { return *parts_.model; }
  [[nodiscard]] const SettingsModel& model() const { return *parts_.model; }

  /// The latest readings with the latest quota states.
  [[nodiscard]] const MetricSnapshot& snapshot() const { return snapshot_; }

  /// How many snapshots the sampling has handed over so far.
  [[nodiscard]] int samplingRounds() const { return samplingRounds_; }

  /// After new readings or quota states were taken over and, where that changed a text,
  /// drawn.
  std::function<void()> onUpdate;

 private:
  struct Token {};

 public:
  /// For create() alone.
  AppCoordinator(Token token, AppParts parts);

 private:
  void drawStatus(bool force);
  void configurationChanged(const AppConfiguration& configuration);
  void sampled(MetricSnapshot snapshot);
  void updated();

  AppParts parts_;
  MetricSnapshot snapshot_;
  int samplingRounds_ = 0;
  std::optional<std::string> lastSignature_;               // of what was drawn last
  std::optional<AppConfiguration> lastConfiguration_;      // of what was drawn last
  std::optional<AppConfiguration> samplingConfiguration_;  // handed to the sampling last
};

}  // namespace vantora
