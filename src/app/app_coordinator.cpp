// SPDX-License-Identifier: MIT
#include "app/app_coordinator.hpp"

#include <utility>

#include "status/status_renderer.hpp"

namespace vantora {

std::shared_ptr<AppCoordinator> AppCoordinator::create(AppParts parts) {
  return std::make_shared<AppCoordinator>(Token(), std::move(parts));
}

AppCoordinator::AppCoordinator(Token, AppParts parts) : parts_(std::move(parts)) {}

void AppCoordinator::launch() {
  const std::weak_ptr<AppCoordinator> weak = weak_from_this();
  parts_.model->onConfigurationChange = [weak](const AppConfiguration& configuration) {
    if (const auto self = weak.lock()) {
      self->configurationChanged(configuration);
    }
  };
  parts_.sampling->onSnapshot = [weak](MetricSnapshot snapshot) {
    if (const auto self = weak.lock()) {
      self->sampled(std::move(snapshot));
    }
  };
  drawStatus(/*force=*/true);
  samplingConfiguration_ = parts_.model->configuration();
  parts_.sampling->configure(*samplingConfiguration_);
}

void AppCoordinator::configurationChanged(const AppConfiguration& configuration) {
  drawStatus(/*force=*/true);
  // Widths, fonts and gaps never disturb the sampling timer.
  const bool isSamplingAlike =
      samplingConfiguration_ && samplingConfiguration_->demand() == configuration.demand() &&
      samplingConfiguration_->intervalSeconds == configuration.intervalSeconds &&
      samplingConfiguration_->networkInterface == configuration.networkInterface &&
      samplingConfiguration_->paused == configuration.paused;
  if (!isSamplingAlike) {
    parts_.sampling->configure(configuration);
  }
  samplingConfiguration_ = configuration;
}

void AppCoordinator::sampled(MetricSnapshot snapshot) {
  // Sampling never produces quota states.
  snapshot.codex = std::move(snapshot_.codex);
  snapshot.claude = std::move(snapshot_.claude);
  snapshot_ = std::move(snapshot);
  ++samplingRounds_;
  updated();
}

void AppCoordinator::updated() {
  drawStatus(/*force=*/false);
  if (onUpdate) {
    onUpdate();
  }
}

void AppCoordinator::drawStatus(bool force) {
  const AppConfiguration& configuration = parts_.model->configuration();
  const WallTime now = parts_.clock.now();
  std::string signature = StatusRenderer::signature(configuration, snapshot_, now);
  if (!force && lastConfiguration_ == configuration && lastSignature_ == signature) {
    return;
  }
  lastSignature_ = std::move(signature);
  lastConfiguration_ = configuration;
  parts_.statusItem.show(StatusRenderer::render(
      configuration, snapshot_, {parts_.statusItem.thickness(), now, parts_.textEngine}));
}

}  // namespace vantora
