// SPDX-License-Identifier: MIT
//
// What an App Server may write, in pieces of any size, through the framer and the
// message handler. The first byte chooses the mode, the second the size of the pieces.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "model/json.hpp"
#include "process/line_framer.hpp"
#include "quota/codex/codex_exchange.hpp"
#include "quota/codex/login_url.hpp"

namespace {

using namespace vantora;

void require(bool isKept) {
  if (!isKept) {
    std::abort();
  }
}

void check(const CodexStep& step) {
  for (const std::string& message : step.messages) {
    const auto value = parseJson(message);
    require(value && value->isObject() && member(*value, "method") != nullptr);
    require(message.find('\n') == std::string::npos);
  }
  require(!step.loginURL || isOfficialLoginURL(*step.loginURL));
  require(!step.deadline || step.deadline->count() > 0);
  if (step.result) {
    require(step.messages.empty() && !step.loginURL);
    if (const auto* quota = std::get_if<quota_result::Answer>(&*step.result)) {
      const auto value = parseJson(quota->json);
      require(value && value->isObject());
    }
    if (const auto* failure = std::get_if<quota_result::Failure>(&*step.result)) {
      require(!failure->text.empty());
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) {
    return 0;
  }
  CodexExchange exchange((data[0] & 1U) == 0 ? CodexClientMode::read : CodexClientMode::login);
  const std::size_t piece = data[1] + std::size_t{1};
  std::string_view rest(reinterpret_cast<const char*>(data) + 2, size - 2);
  std::string_view unread = rest;  // what the framer has not given back yet
  constexpr std::size_t limit = 3'000;
  LineFramer framer(limit);
  check(exchange.begin());
  bool isOver = false;
  while (!rest.empty()) {
    const std::string_view bytes = rest.substr(0, piece);
    rest.remove_prefix(bytes.size());
    const std::size_t waiting = framer.pendingBytes();
    if (!framer.append(bytes)) {
      require(waiting + bytes.size() > limit);
      return 0;
    }
    require(waiting + bytes.size() <= limit);
    while (const auto line = framer.takeLine()) {
      require(unread.starts_with(*line) && unread.substr(line->size()).starts_with('\n'));
      require(line->find('\n') == std::string_view::npos);
      unread.remove_prefix(line->size() + 1);
      if (!isOver) {
        const CodexStep step = exchange.take(*line);
        check(step);
        isOver = step.result.has_value();
      }
    }
    require(framer.pendingBytes() + rest.size() == unread.size());
  }
  return 0;
}
