// SPDX-License-Identifier: MIT
//
// Questions to libraries that leave much behind in the process that asks them.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace vantora {

/// What `question` answers, called in a forked child whose memory goes with it. Nothing
/// when the child crashes over it, or takes longer than `limit` between two pieces of its
/// answer. Where no child can be started, the call is made here.
///
/// Waits for the child. Call it at start, before there are threads.
[[nodiscard]] std::optional<std::string> answerApart(const std::function<std::string()>& question,
                                                     std::chrono::milliseconds limit);

}  // namespace vantora
