// SPDX-License-Identifier: MIT
//
// The configuration and the latest snapshot as one presentation: a row of modules, each a
// column of two lines. Pure: the same values give the same picture, and nothing is kept
// between two calls. Main thread only, because of the text engine.
#pragma once

#include "model/configuration.hpp"
#include "model/sample.hpp"
#include "model/time.hpp"
#include "status/status_presentation.hpp"
#include "status/text_engine.hpp"

namespace vantora::StatusRenderer {

/// What a picture depends on besides configuration and readings.
struct Context {
  double thickness;    ///< Of the bar, in points. Pictures are 2 points lower, at least 20.
  WallTime now;        ///< Quota texts age and count down.
  TextEngine& engine;  ///< Measures the texts; not kept.
};

/// The whole presentation. With no visible module it is a small mark that says so.
[[nodiscard]] StatusPresentation render(const AppConfiguration& configuration,
                                        const MetricSnapshot& snapshot, const Context& context);

/// The second half of render(): lays out `presentation.modules`, as StatusModules::read()
/// gave them for the same configuration and snapshot, and fills in everything else. Uses
/// the presentation's memory again.
void layOut(const AppConfiguration& configuration, const MetricSnapshot& snapshot,
            const Context& context, StatusPresentation& presentation);

}  // namespace vantora::StatusRenderer
