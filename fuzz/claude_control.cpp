// SPDX-License-Identifier: MIT
//
// What Claude Code may write: each line of the input is read on its own, and all of it
// once as standard error.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "model/json.hpp"
#include "process/line_framer.hpp"
#include "quota/claude/claude_control.hpp"

namespace {

using namespace vantora;

void require(bool isKept) {
  if (!isKept) {
    std::abort();
  }
}

void check(std::string_view line) {
  const auto result = ClaudeControl::readLine(line);
  if (!result) {
    return;
  }
  const auto message = parseJson(line);
  require(message && message->isObject());
  if (const auto* usage = std::get_if<quota_result::Answer>(&*result)) {
    const auto value = parseJson(usage->json);
    require(value && value->isObject());
  }
  if (const auto* failure = std::get_if<quota_result::Failure>(&*result)) {
    require(!failure->text.empty());
  }
  require(!std::holds_alternative<quota_result::Cancelled>(*result));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  LineFramer framer(1'000'000);
  if (framer.append(bytes)) {
    while (const auto line = framer.takeLine()) {
      check(*line);
    }
  }
  (void)ClaudeControl::reportsMissingLogin(bytes);
  return 0;
}
