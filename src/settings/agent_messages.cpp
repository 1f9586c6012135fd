// SPDX-License-Identifier: MIT
//
// The lines from the agent to the window.
#include <array>
#include <chrono>
#include <cmath>
#include <utility>

#include "model/configuration_codec.hpp"
#include "model/json.hpp"
#include "settings/base64.hpp"
#include "settings/settings_protocol.hpp"

namespace vantora::SettingsProtocol {
namespace {

// The raw texts of LoginItemStatus, in its order.
constexpr std::array<std::string_view, 4> loginItemTexts = {"notRegistered", "enabled",
                                                            "requiresApproval", "notFound"};

std::string line(const Json& message) {
  return message.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

Json orNull(const std::optional<std::string>& text) {
  return text ? Json(*text) : Json(nullptr);
}

Json milliseconds(const std::optional<WallTime>& time) {
  using std::chrono::milliseconds;
  return time ? Json(std::chrono::round<milliseconds>(time->time_since_epoch()).count())
              : Json(nullptr);
}

Json summaryJson(const QuotaSummary& summary) {
  Json candidates = Json::array();
  for (const CodexQuotaCandidate& candidate : summary.candidates) {
    candidates.push_back({{"id", candidate.id}, {"name", orNull(candidate.name)}});
  }
  return {{"message", summary.message},
          {"lastSuccess", milliseconds(summary.lastSuccess)},
          {"executable", summary.executable},
          {"candidates", std::move(candidates)}};
}

Json pictureJson(const StatusPicture& picture) {
  return {{"width", picture.width},
          {"scale", picture.scale},
          {"columns", picture.columns},
          {"rows", picture.rows},
          {"alpha", Base64::encode(picture.alpha)},
          {"warning", orNull(picture.warning)}};
}

// Reads members of one object into places; the first that does not fit spoils it all.
class Reader {
 public:
  explicit Reader(const Json& object) : object_(object), isGood_(object.is_object()) {}

  [[nodiscard]] bool isGood() const { return isGood_; }

  /// A member that must be there.
  template <typename Target, typename Convert>
  void read(std::string_view key, Target& target, Convert convert) {
    const Json* value = member(object_, key);
    auto converted = value != nullptr ? convert(*value) : decltype(convert(object_)){};
    isGood_ = isGood_ && converted.has_value();
    if (isGood_) {
      target = *std::move(converted);
    }
  }
  /// A member that must be there and may be null.
  template <typename Target, typename Convert>
  void readOptional(std::string_view key, std::optional<Target>& target, Convert convert) {
    const Json* value = member(object_, key);
    if (value != nullptr && value->is_null()) {
      target.reset();
    } else {
      read(key, target, convert);
    }
  }

 private:
  const Json& object_;
  bool isGood_;
};

std::optional<std::uint64_t> toCount(const Json& value) {
  const auto number = asInteger(value);
  return number && *number >= 0 ? std::optional(static_cast<std::uint64_t>(*number)) : std::nullopt;
}

std::optional<WallTime> toTime(const Json& value) {
  const auto count = asInteger(value);
  // The wall clock counts nanoseconds here: what does not fit is no time of ours.
  constexpr std::int64_t latest = 9'000'000'000'000;
  if (!count || *count > latest || *count < -latest) {
    return std::nullopt;
  }
  return WallTime(std::chrono::milliseconds(*count));
}

std::optional<int> toSide(const Json& value) {
  const auto number = asInteger(value);
  return number && *number >= 0 && *number <= longestPictureSide
             ? std::optional(static_cast<int>(*number))
             : std::nullopt;
}

std::optional<std::vector<std::uint8_t>> toAlpha(const Json& value) {
  const auto text = asText(value);
  return text ? Base64::decode(*text) : std::nullopt;
}

std::optional<std::vector<CodexQuotaCandidate>> toCandidates(const Json& value) {
  if (!value.is_array()) {
    return std::nullopt;
  }
  std::vector<CodexQuotaCandidate> candidates;
  for (const Json& entry : value) {
    CodexQuotaCandidate candidate;
    Reader reader(entry);
    reader.read("id", candidate.id, asText);
    reader.readOptional("name", candidate.name, asText);
    if (!reader.isGood()) {
      return std::nullopt;
    }
    candidates.push_back(std::move(candidate));
  }
  return candidates;
}

std::optional<QuotaSummary> toSummary(const Json& value) {
  QuotaSummary summary;
  Reader reader(value);
  reader.read("message", summary.message, asText);
  reader.readOptional("lastSuccess", summary.lastSuccess, toTime);
  reader.read("executable", summary.executable, asText);
  reader.read("candidates", summary.candidates, toCandidates);
  return reader.isGood() ? std::optional(std::move(summary)) : std::nullopt;
}

std::optional<StatusPicture> toPicture(const Json& value) {
  StatusPicture picture;
  Reader reader(value);
  reader.read("width", picture.width, asDouble);
  reader.read("scale", picture.scale, asDouble);
  reader.read("columns", picture.columns, toSide);
  reader.read("rows", picture.rows, toSide);
  reader.read("alpha", picture.alpha, toAlpha);
  reader.readOptional("warning", picture.warning, asText);
  const auto pixels =
      static_cast<std::size_t>(picture.columns) * static_cast<std::size_t>(picture.rows);
  if (!reader.isGood() || !scales.contains(picture.scale) || !std::isfinite(picture.width) ||
      picture.width < 0 || picture.alpha.size() != pixels) {
    return std::nullopt;
  }
  return picture;
}

std::optional<LoginItemStatus> toLoginItemStatus(const Json& value) {
  const auto text = asText(value);
  for (std::size_t index = 0; text && index < loginItemTexts.size(); ++index) {
    if (*text == loginItemTexts[index]) {
      return static_cast<LoginItemStatus>(index);
    }
  }
  return std::nullopt;
}

std::optional<AppConfiguration> toConfiguration(const Json& value) {
  const auto text = writeJson(value);
  return text ? ConfigurationCodec::decode(*text) : std::nullopt;
}

std::optional<UUID> toUUID(const Json& value) {
  const auto text = asText(value);
  return text ? UUID::parse(*text) : std::nullopt;
}

std::optional<AgentMessage> readState(const Json& message, WindowState& state) {
  WindowState next = state;
  StateChange change;
  Reader reader(message);
  reader.read("sequence", change.sequence, toCount);
  reader.read("revision", change.revision, toCount);
  // Whether the message brings the field: only then it is read.
  const auto brings = [&](std::string_view key, WindowField field) {
    if (member(message, key) == nullptr) {
      return false;
    }
    change.fields.insert(field);
    return true;
  };
  if (brings("configuration", WindowField::configuration)) {
    reader.read("configuration", next.configuration, toConfiguration);
  }
  if (brings("networkName", WindowField::networkName)) {
    reader.readOptional("networkName", next.networkName, asText);
  }
  if (brings("codex", WindowField::codex)) {
    reader.read("codex", next.codex, toSummary);
  }
  if (brings("claude", WindowField::claude)) {
    reader.read("claude", next.claude, toSummary);
  }
  if (brings("notice", WindowField::notice)) {
    reader.readOptional("notice", next.notice, asText);
  }
  if (brings("loginItemStatus", WindowField::loginItemStatus)) {
    reader.read("loginItemStatus", next.loginItemStatus, toLoginItemStatus);
  }
  if (brings("pendingScrollID", WindowField::pendingScrollID)) {
    reader.readOptional("pendingScrollID", next.pendingScrollID, toUUID);
  }
  if (brings("picture", WindowField::picture)) {
    reader.read("picture", next.picture, toPicture);
  }
  if (!reader.isGood()) {
    return std::nullopt;
  }
  state = std::move(next);
  return change;
}

}  // namespace

std::string stateLine(const WindowState& state, const StateChange& change) {
  Json message = {{"type", "state"}, {"sequence", change.sequence}, {"revision", change.revision}};
  for (const WindowField field : change.fields) {
    switch (field) {
      case WindowField::configuration:
        if (const auto document = ConfigurationCodec::encode(state.configuration)) {
          message["configuration"] = parseJson(*document).value_or(Json::object());
        }
        break;
      case WindowField::networkName:
        message["networkName"] = orNull(state.networkName);
        break;
      case WindowField::codex:
        message["codex"] = summaryJson(state.codex);
        break;
      case WindowField::claude:
        message["claude"] = summaryJson(state.claude);
        break;
      case WindowField::notice:
        message["notice"] = orNull(state.notice);
        break;
      case WindowField::loginItemStatus:
        message["loginItemStatus"] =
            std::string(loginItemTexts[static_cast<std::size_t>(state.loginItemStatus)]);
        break;
      case WindowField::pendingScrollID:
        message["pendingScrollID"] =
            state.pendingScrollID ? Json(state.pendingScrollID->text()) : Json(nullptr);
        break;
      case WindowField::picture:
        message["picture"] = pictureJson(state.picture);
        break;
    }
  }
  return line(message);
}

std::string raiseLine(std::string_view activationToken) {
  return line({{"type", "raise"}, {"activationToken", std::string(activationToken)}});
}

std::optional<AgentMessage> readAgentLine(std::string_view text, WindowState& state) {
  const auto message = parseJson(text);
  const Json* type = message ? member(*message, "type") : nullptr;
  if (type == nullptr) {
    return std::nullopt;
  }
  if (*type == "state") {
    return readState(*message, state);
  }
  if (*type == "raise") {
    Raise raise;
    Reader reader(*message);
    reader.read("activationToken", raise.activationToken, asText);
    return reader.isGood() ? std::optional<AgentMessage>(std::move(raise)) : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace vantora::SettingsProtocol
