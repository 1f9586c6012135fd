// SPDX-License-Identifier: MIT
#include "quota/claude/claude_control.hpp"

#include <utility>

#include "model/ascii.hpp"
#include "model/json.hpp"

namespace vantora::ClaudeControl {
namespace {

constexpr const char* initializeId = "vantora-initialize";
constexpr const char* usageId = "vantora-usage";

std::optional<std::string> request(const char* id, Json body) {
  return writeJson(Json::object(
      {{"type", "control_request"}, {"request_id", id}, {"request", std::move(body)}}));
}

bool isText(const Json& object, std::string_view key, std::string_view expected) {
  const Json* found = member(object, key);
  return found != nullptr && asText(*found) == expected;
}

// The version words come first: a text with words of both kinds, such as one about an invalid key,
// is about the version.
ClaudeClientResult resultOfError(const Json& response) {
  constexpr std::array<std::string_view, 4> versionWords{"not supported", "unsupported", "unknown",
                                                         "invalid"};
  constexpr std::array<std::string_view, 2> loginWords{"login", "auth"};
  const Json* error = member(response, "error");
  const std::string text =
      asciiLowerCased(error != nullptr ? asText(*error).value_or("") : std::string());
  if (containsAny(text, versionWords)) {
    return quota_result::UnsupportedVersion{};
  }
  if (containsAny(text, loginWords)) {
    return quota_result::NeedsAuthentication{};
  }
  return quota_result::Failure{"O Claude Code recusou a consulta de uso."};
}

}  // namespace

std::map<std::string, std::string> environmentChanges() {
  return {{"DISABLE_AUTOUPDATER", "1"}, {"DISABLE_TELEMETRY", "1"}};
}

std::optional<std::string> initializeRequest() {
  return request(initializeId, Json::object({{"subtype", "initialize"}}));
}

std::optional<std::string> usageRequest() {
  return request(usageId, Json::object({{"subtype", "get_usage"}, {"skip_behaviors", true}}));
}

std::optional<ClaudeClientResult> readLine(std::string_view line) {
  const auto message = parseJson(line);
  if (!message || !isText(*message, "type", "control_response")) {
    return std::nullopt;
  }
  const Json* response = member(*message, "response");
  if (response == nullptr || !response->isObject() || !isText(*response, "request_id", usageId)) {
    return std::nullopt;
  }
  if (!isText(*response, "subtype", "success")) {
    return resultOfError(*response);
  }
  const Json* usage = member(*response, "response");
  auto text = usage != nullptr && usage->isObject() ? writeJson(*usage) : std::nullopt;
  if (!text) {
    return quota_result::Failure{"Resposta de uso vazia do Claude Code."};
  }
  return quota_result::Answer{std::move(*text)};
}

bool reportsMissingLogin(std::string_view errorTail) {
  constexpr std::array<std::string_view, 3> words{"/login", "not logged in", "invalid api key"};
  return containsAny(asciiLowerCased(errorTail), words);
}

}  // namespace vantora::ClaudeControl
