// SPDX-License-Identifier: MIT
//
// The configuration and the latest snapshot as one picture: a row of modules, each a
// column of two lines. Pure: the same values give the same picture, and nothing is kept
// between two calls. Main thread only, because of the text engine.
#pragma once

#include <string>

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

/// The visible texts with the identities of their modules. Two equal signatures under
/// one configuration mean equal pictures, so that a tick that changes nothing ends
/// here: one allocation, no measuring. Sizes, fonts and gaps are not part of it.
[[nodiscard]] std::string signature(const AppConfiguration& configuration,
                                    const MetricSnapshot& snapshot, WallTime now);

}  // namespace vantora::StatusRenderer
