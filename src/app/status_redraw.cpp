// SPDX-License-Identifier: MIT
#include "app/status_redraw.hpp"

#include "status/status_modules.hpp"
#include "status/status_renderer.hpp"

namespace vantora {

bool StatusRedraw::drawIfChanged(const AppConfiguration& configuration,
                                 const MetricSnapshot& snapshot, WallTime now) {
  read(configuration, snapshot, now);
  if (configuration_ == configuration && signature_ == readSignature_) {
    return false;
  }
  drawRead(configuration, snapshot, now);
  return true;
}

void StatusRedraw::draw(const AppConfiguration& configuration, const MetricSnapshot& snapshot,
                        WallTime now) {
  read(configuration, snapshot, now);
  drawRead(configuration, snapshot, now);
}

void StatusRedraw::read(const AppConfiguration& configuration, const MetricSnapshot& snapshot,
                        WallTime now) {
  StatusModules::read(configuration, snapshot, now, readModules_);
  StatusModules::sign(readModules_, readSignature_);
}

void StatusRedraw::drawRead(const AppConfiguration& configuration, const MetricSnapshot& snapshot,
                            WallTime now) {
  signature_.swap(readSignature_);
  if (configuration_ != configuration) {
    configuration_ = configuration;
  }
  presentation_.modules.swap(readModules_);
  StatusRenderer::layOut(configuration, snapshot, {item_.thickness(), now, engine_}, presentation_);
  item_.show(presentation_);
}

}  // namespace vantora
