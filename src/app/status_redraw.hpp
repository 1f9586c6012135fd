// SPDX-License-Identifier: MIT
//
// Decides whether the status item is drawn again, and draws it: when a visible text or
// the configuration has changed, and whenever that is asked for.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/configuration.hpp"
#include "model/sample.hpp"
#include "model/time.hpp"
#include "ports/status_item.hpp"
#include "status/status_presentation.hpp"
#include "status/text_engine.hpp"

namespace vantora {

/// Lives on the main thread. A call that draws nothing allocates nothing.
class StatusRedraw {
 public:
  /// Both outlive this object.
  StatusRedraw(StatusItem& item, TextEngine& engine) : item_(item), engine_(engine) {}

  /// Draws unless the item already shows these texts under this configuration. True when
  /// it has drawn.
  bool drawIfChanged(const AppConfiguration& configuration, const MetricSnapshot& snapshot,
                     WallTime now);

  /// Draws in any case.
  void draw(const AppConfiguration& configuration, const MetricSnapshot& snapshot, WallTime now);

  /// What the item shows; empty before the first drawing.
  [[nodiscard]] const StatusPresentation& presentation() const { return presentation_; }

 private:
  void read(const AppConfiguration& configuration, const MetricSnapshot& snapshot, WallTime now);
  void drawRead(const AppConfiguration& configuration, const MetricSnapshot& snapshot,
                WallTime now);

  StatusItem& item_;
  TextEngine& engine_;

  // Of what the item shows.
  StatusPresentation presentation_;
  std::string signature_;
  std::optional<AppConfiguration> configuration_;

  // Of what was read last. Kept for its memory.
  std::vector<StatusModule> readModules_;
  std::string readSignature_;
};

}  // namespace vantora
