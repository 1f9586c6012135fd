// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "platform/linux/text/glyph_message.hpp"
#include "platform/linux/text/glyph_source.hpp"
#include "runtime/clock.hpp"

namespace vantora {

/// Characters drawn by vantora-glyphs, which is executed for each request and ends with it.
/// So the agent holds neither FreeType nor fontconfig nor a font file, and a damaged font
/// cannot crash it. The first request looks up the user's fonts; a change of them is seen at
/// the next start.
class GlyphProcess final : public GlyphSource {
 public:
  /// After a request without an answer there is no other for this long.
  static constexpr Seconds restAfterFailure{60};
  /// What a request may take. The first one may have to build fontconfig's cache.
  static constexpr std::chrono::milliseconds timeout{5'000};
  static constexpr std::chrono::milliseconds lookUpTimeout{60'000};

  /// `program` is the path of vantora-glyphs.
  GlyphProcess(std::string program, const Clock& clock);

  /// Waits for the program, some milliseconds as a rule.
  [[nodiscard]] std::optional<GlyphAnswer> draw(const GlyphRequest& request) override;

  /// Called once, with the first request that is not answered.
  std::function<void(const std::string& message)> onFailure;

 private:
  std::optional<GlyphReply> ask(const GlyphRequest& request) const;

  const std::string program_;
  const Clock& clock_;
  FontArguments fonts_;
  std::optional<Seconds> failedAt_;
};

}  // namespace vantora
