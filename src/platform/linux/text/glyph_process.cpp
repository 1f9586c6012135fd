// SPDX-License-Identifier: MIT
#include "platform/linux/text/glyph_process.hpp"

#include <utility>
#include <vector>

#include "process/run_program.hpp"

namespace vantora {

GlyphProcess::GlyphProcess(std::string program, const Clock& clock)
    : program_(std::move(program)), clock_(clock) {}

std::optional<GlyphReply> GlyphProcess::ask(const GlyphRequest& request) const {
  std::vector<std::string> command = toArguments({request, fonts_});
  command.insert(command.begin(), program_);
  std::optional<GlyphReply> reply;
  if (const auto output = runProgram(command, fonts_.empty() ? lookUpTimeout : timeout)) {
    reply = parseGlyphReply(*output);
  }
  if (reply && reply->answer.characters.size() != request.characters.size()) {
    reply.reset();
  }
  return reply;
}

std::optional<GlyphAnswer> GlyphProcess::draw(const GlyphRequest& request) {
  if (failedAt_ && clock_.uptime() - *failedAt_ < restAfterFailure) {
    return std::nullopt;
  }
  std::optional<GlyphReply> reply = ask(request);
  if (!reply) {
    failedAt_ = clock_.uptime();
    if (onFailure) {
      std::exchange(onFailure, nullptr)("não foi possível desenhar os caracteres: " + program_ +
                                        " não respondeu");
    }
    return std::nullopt;
  }
  failedAt_.reset();
  fonts_ = std::move(reply->fonts);
  return std::move(reply->answer);
}

}  // namespace vantora
