// SPDX-License-Identifier: MIT
//
// The lines from the window to the agent.
#include <array>
#include <utility>

#include "model/configuration_codec.hpp"
#include "model/json.hpp"
#include "settings/conversation/settings_protocol.hpp"

namespace vantora::SettingsProtocol {
namespace {

// The types of the messages without members and of those with a path, in the order of
// Intent and of PathIntent.
constexpr std::array<std::string_view, 7> intentTypes = {
    "refreshCodex", "connectCodex", "refreshClaude", "restoreDefaults",
    "undo",         "listLinks",    "scrolled"};
constexpr std::array<std::string_view, 3> pathTypes = {"exportJSON", "importJSON",
                                                       "selectCodexExecutable"};

template <std::size_t Count>
std::optional<std::size_t> indexIn(const std::array<std::string_view, Count>& types,
                                   std::string_view type) {
  for (std::size_t index = 0; index < Count; ++index) {
    if (types[index] == type) {
      return index;
    }
  }
  return std::nullopt;
}

struct Writer {
  std::optional<Json> operator()(const Ready& ready) const {
    return Json{{"type", "ready"}, {"protocol", version}, {"scale", ready.scale}};
  }
  std::optional<Json> operator()(const Seen& seen) const {
    return Json{{"type", "seen"}, {"sequence", seen.sequence}};
  }
  std::optional<Json> operator()(const NewConfiguration& change) const {
    const auto document = ConfigurationCodec::encode(change.configuration);
    auto configuration = document ? parseJson(*document) : std::nullopt;
    if (!configuration) {
      return std::nullopt;
    }
    Json message = {{"type", "configuration"},
                    {"revision", change.revision},
                    {"configuration", *std::move(configuration)}};
    if (change.pendingScrollID) {
      message["pendingScrollID"] = change.pendingScrollID->text();
    }
    if (change.isRemoval) {
      message["removal"] = true;
    }
    return message;
  }
  std::optional<Json> operator()(const StartAtLogin& request) const {
    return Json{{"type", "startAtLogin"}, {"enabled", request.enabled}};
  }
  std::optional<Json> operator()(const SquareModule& choice) const {
    return Json{{"type", "squareModule"}, {"module", orNull(choice.module, &UUID::text)}};
  }
  std::optional<Json> operator()(Intent intent) const {
    return Json{{"type", std::string(intentTypes[static_cast<std::size_t>(intent)])}};
  }
  std::optional<Json> operator()(const PathRequest& request) const {
    return Json{{"type", std::string(pathTypes[static_cast<std::size_t>(request.intent)])},
                {"path", request.path}};
  }
};

std::optional<std::uint64_t> countMember(const Json& message, std::string_view key) {
  const Json* value = member(message, key);
  const auto number = value != nullptr ? asInteger(*value) : std::nullopt;
  return number && *number >= 0 ? std::optional(static_cast<std::uint64_t>(*number)) : std::nullopt;
}

std::optional<WindowMessage> readReady(const Json& message) {
  const Json* scale = member(message, "scale");
  const auto number = scale != nullptr ? asDouble(*scale) : std::nullopt;
  if (countMember(message, "protocol") != version || !number || !scales.contains(*number)) {
    return std::nullopt;
  }
  return Ready{*number};
}

std::optional<WindowMessage> readConfiguration(const Json& message) {
  NewConfiguration change;
  const auto revision = countMember(message, "revision");
  const Json* object = member(message, "configuration");
  const auto document = object != nullptr ? writeJson(*object) : std::nullopt;
  auto configuration = document ? ConfigurationCodec::decode(*document) : std::nullopt;
  if (!revision || !configuration) {
    return std::nullopt;
  }
  change.revision = *revision;
  change.configuration = *std::move(configuration);
  if (const Json* id = presentMember(message, "pendingScrollID")) {
    const auto text = asText(*id);
    change.pendingScrollID = text ? UUID::parse(*text) : std::nullopt;
    if (!change.pendingScrollID) {
      return std::nullopt;
    }
  }
  if (const Json* removal = presentMember(message, "removal")) {
    const auto isRemoval = asBool(*removal);
    if (!isRemoval) {
      return std::nullopt;
    }
    change.isRemoval = *isRemoval;
  }
  return change;
}

std::optional<WindowMessage> readSquareModule(const Json& message) {
  const Json* id = member(message, "module");
  if (id == nullptr || id->isNull()) {
    return id != nullptr ? std::optional<WindowMessage>(SquareModule{}) : std::nullopt;
  }
  const auto text = asText(*id);
  const auto module = text ? UUID::parse(*text) : std::nullopt;
  return module ? std::optional<WindowMessage>(SquareModule{module}) : std::nullopt;
}

}  // namespace

std::optional<std::string> windowLine(const WindowMessage& message) {
  const std::optional<Json> json = std::visit(Writer{}, message);
  if (!json) {
    return std::nullopt;
  }
  return writeJsonLossy(*json) + '\n';
}

std::optional<WindowMessage> readWindowLine(std::string_view line) {
  const auto message = parseJson(line);
  const Json* typeMember = message ? member(*message, "type") : nullptr;
  const auto type = typeMember != nullptr ? asText(*typeMember) : std::nullopt;
  if (!type) {
    return std::nullopt;
  }
  if (*type == "ready") {
    return readReady(*message);
  }
  if (*type == "seen") {
    const auto sequence = countMember(*message, "sequence");
    return sequence ? std::optional<WindowMessage>(Seen{*sequence}) : std::nullopt;
  }
  if (*type == "configuration") {
    return readConfiguration(*message);
  }
  if (*type == "startAtLogin") {
    const Json* enabled = member(*message, "enabled");
    const auto value = enabled != nullptr ? asBool(*enabled) : std::nullopt;
    return value ? std::optional<WindowMessage>(StartAtLogin{*value}) : std::nullopt;
  }
  if (*type == "squareModule") {
    return readSquareModule(*message);
  }
  if (const auto index = indexIn(intentTypes, *type)) {
    return static_cast<Intent>(*index);
  }
  if (const auto index = indexIn(pathTypes, *type)) {
    const Json* path = member(*message, "path");
    auto text = path != nullptr ? asText(*path) : std::nullopt;
    // A path with a NUL would be cut there by the system.
    if (!text || !text->starts_with('/') || text->find('\0') != std::string::npos) {
      return std::nullopt;
    }
    return PathRequest{static_cast<PathIntent>(*index), *std::move(text)};
  }
  return std::nullopt;
}

}  // namespace vantora::SettingsProtocol
