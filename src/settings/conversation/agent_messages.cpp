// SPDX-License-Identifier: MIT
//
// The lines from the agent to the window.
#include <array>
#include <chrono>
#include <cmath>
#include <utility>

#include "model/configuration_codec.hpp"
#include "model/json.hpp"
#include "model/json_reader.hpp"
#include "settings/conversation/base64.hpp"
#include "settings/conversation/settings_protocol.hpp"

namespace vantora::SettingsProtocol {
namespace {

// The raw texts of LoginItemStatus, in its order.
constexpr std::array<std::string_view, 4> loginItemTexts = {"notRegistered", "enabled",
                                                            "requiresApproval", "notFound"};

// The raw texts of UndoableEdit, in its order.
constexpr std::array<std::string_view, 3> undoableTexts = {"removal", "importing", "restoring"};

std::string line(const Json& message) {
  return writeJsonLossy(message) + '\n';
}

std::int64_t unixMilliseconds(WallTime time) {
  return std::chrono::round<std::chrono::milliseconds>(time.time_since_epoch()).count();
}

std::string_view undoableText(UndoableEdit edit) {
  return undoableTexts[static_cast<std::size_t>(edit)];
}

Json summaryJson(const QuotaSummary& summary) {
  Json candidates = Json::array();
  for (const CodexQuotaCandidate& candidate : summary.candidates) {
    candidates.append({{"id", candidate.id}, {"name", orNull(candidate.name)}});
  }
  return {{"message", summary.message},
          {"lastSuccess", orNull(summary.lastSuccess, unixMilliseconds)},
          {"executable", summary.executable},
          {"candidates", std::move(candidates)},
          {"needsLogin", summary.needsLogin}};
}

Json linksJson(const std::vector<NetworkLink>& links) {
  Json array = Json::array();
  for (const NetworkLink& link : links) {
    array.append({{"name", link.name},
                  {"isPhysical", link.isPhysical},
                  {"isUp", link.isUp},
                  {"isAddressed", link.isAddressed}});
  }
  return array;
}

Json blocksJson(const std::vector<PictureBlock>& blocks) {
  Json written = Json::array();
  for (const PictureBlock& block : blocks) {
    written.append({{"id", block.id.text()}, {"left", block.left}, {"width", block.width}});
  }
  return written;
}

Json pictureJson(const StatusPicture& picture) {
  Json written = {{"width", picture.width},
                  {"scale", picture.scale},
                  {"columns", picture.columns},
                  {"rows", picture.rows},
                  {"alpha", Base64::encode(picture.alpha)},
                  {"warning", orNull(picture.warning)},
                  {"blocks", blocksJson(picture.blocks)},
                  {"spoken", picture.spoken}};
  if (const auto& enlarged = picture.enlarged) {
    written["enlarged"] = {{"scale", enlarged->scale},
                           {"columns", enlarged->columns},
                           {"rows", enlarged->rows},
                           {"alpha", Base64::encode(enlarged->alpha)}};
  }
  return written;
}

Json squareJson(const SquareChoice& square) {
  return Json::object({{"module", orNull(square.module, &UUID::text)}});
}

// The text up to the limit, without the rest of a character that was cut.
std::string cut(const std::string& text) {
  if (text.size() <= maxReadingTextBytes) {
    return text;
  }
  std::size_t end = maxReadingTextBytes;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
    --end;
  }
  return text.substr(0, end);
}

Json readingsJson(const std::vector<MetricReading>& readings) {
  Json written = Json::array();
  for (const MetricReading& reading : readings) {
    written.append({{"metric", std::string(id(reading.metric))},
                    {"text", cut(reading.text)},
                    {"quality", std::string(rawText(reading.quality))},
                    {"source", cut(reading.source)},
                    {"reason", cut(reading.reason)},
                    {"sampledAt", orNull(reading.sampledAt, unixMilliseconds)}});
  }
  return written;
}

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
  return number && *number >= 0 && *number <= maxPictureSide
             ? std::optional(static_cast<int>(*number))
             : std::nullopt;
}

// In points.
std::optional<double> toLength(const Json& value) {
  const auto number = asDouble(value);
  return number && std::isfinite(*number) && *number >= 0 ? number : std::nullopt;
}

std::optional<double> toScale(const Json& value) {
  const auto number = asDouble(value);
  return number && scales.contains(*number) ? number : std::nullopt;
}

std::optional<std::vector<std::uint8_t>> toAlpha(const Json& value) {
  const auto text = asText(value);
  return text ? Base64::decode(*text) : std::nullopt;
}

std::optional<CodexQuotaCandidate> toCandidate(const Json& value) {
  CodexQuotaCandidate candidate;
  ObjectReader reader(value);
  reader.required("id", candidate.id, asText);
  reader.nullable("name", candidate.name, asText);
  return reader.isGood() ? std::optional(std::move(candidate)) : std::nullopt;
}

std::optional<std::vector<CodexQuotaCandidate>> toCandidates(const Json& value) {
  return asList(value, toCandidate);
}

std::optional<NetworkLink> toLink(const Json& value) {
  NetworkLink link;
  ObjectReader reader(value);
  reader.required("name", link.name, asText);
  reader.required("isPhysical", link.isPhysical, asBool);
  reader.required("isUp", link.isUp, asBool);
  reader.required("isAddressed", link.isAddressed, asBool);
  return reader.isGood() ? std::optional(std::move(link)) : std::nullopt;
}

std::optional<std::vector<NetworkLink>> toLinks(const Json& value) {
  return asList(value, toLink);
}

std::optional<QuotaSummary> toSummary(const Json& value) {
  QuotaSummary summary;
  ObjectReader reader(value);
  reader.required("message", summary.message, asText);
  reader.nullable("lastSuccess", summary.lastSuccess, toTime);
  reader.required("executable", summary.executable, asText);
  reader.required("candidates", summary.candidates, toCandidates);
  reader.required("needsLogin", summary.needsLogin, asBool);
  return reader.isGood() ? std::optional(std::move(summary)) : std::nullopt;
}

std::optional<UUID> toUUID(const Json& value) {
  const auto text = asText(value);
  return text ? UUID::parse(*text) : std::nullopt;
}

std::optional<SquareChoice> toSquare(const Json& value) {
  SquareChoice square;
  ObjectReader reader(value);
  reader.nullable("module", square.module, toUUID);
  return reader.isGood() ? std::optional(square) : std::nullopt;
}

std::optional<PictureBlock> toBlock(const Json& value) {
  PictureBlock block;
  ObjectReader reader(value);
  reader.required("id", block.id, toUUID);
  reader.required("left", block.left, toLength);
  reader.required("width", block.width, toLength);
  return reader.isGood() ? std::optional(block) : std::nullopt;
}

std::optional<std::vector<PictureBlock>> toBlocks(const Json& value) {
  if (value.isArray() && value.size() > ConfigurationLimits::modules) {
    return std::nullopt;
  }
  return asList(value, toBlock);
}

template <typename Ink>
void readInk(ObjectReader& reader, Ink& ink) {
  reader.required("scale", ink.scale, toScale);
  reader.required("columns", ink.columns, toSide);
  reader.required("rows", ink.rows, toSide);
  reader.required("alpha", ink.alpha, toAlpha);
}

template <typename Ink>
bool hasAllPixels(const Ink& ink) {
  return ink.alpha.size() ==
         static_cast<std::size_t>(ink.columns) * static_cast<std::size_t>(ink.rows);
}

std::optional<PictureInk> toInk(const Json& value) {
  PictureInk ink;
  ObjectReader reader(value);
  readInk(reader, ink);
  return reader.isGood() && hasAllPixels(ink) ? std::optional(std::move(ink)) : std::nullopt;
}

std::optional<StatusPicture> toPicture(const Json& value) {
  StatusPicture picture;
  ObjectReader reader(value);
  reader.required("width", picture.width, toLength);
  readInk(reader, picture);
  reader.nullable("warning", picture.warning, asText);
  std::optional<std::vector<PictureBlock>> blocks;
  std::optional<std::string> spoken;
  reader.optional("blocks", blocks, toBlocks);
  reader.optional("spoken", spoken, asText);
  reader.optional("enlarged", picture.enlarged, toInk);
  if (!reader.isGood() || !hasAllPixels(picture)) {
    return std::nullopt;
  }
  picture.blocks = std::move(blocks).value_or(std::vector<PictureBlock>());
  picture.spoken = std::move(spoken).value_or(std::string());
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

std::optional<UndoableEdit> toUndoableEdit(const Json& value) {
  const auto text = asText(value);
  for (std::size_t index = 0; text && index < undoableTexts.size(); ++index) {
    if (*text == undoableTexts[index]) {
      return static_cast<UndoableEdit>(index);
    }
  }
  return std::nullopt;
}

std::optional<AppConfiguration> toConfiguration(const Json& value) {
  const auto text = writeJson(value);
  return text ? ConfigurationCodec::decode(*text) : std::nullopt;
}

std::optional<MetricID> toMetric(const Json& value) {
  const auto text = asText(value);
  return text ? metricFromId(*text) : std::nullopt;
}

std::optional<Quality> toQuality(const Json& value) {
  const auto text = asText(value);
  for (const Quality quality : {Quality::valid, Quality::waiting, Quality::unavailable,
                                Quality::temporaryError, Quality::stale}) {
    if (text && *text == rawText(quality)) {
      return quality;
    }
  }
  return std::nullopt;
}

std::optional<std::string> toReadingText(const Json& value) {
  auto text = asText(value);
  return text && text->size() <= maxReadingTextBytes ? std::move(text) : std::nullopt;
}

std::optional<MetricReading> toReading(const Json& value) {
  MetricReading reading;
  ObjectReader reader(value);
  reader.required("metric", reading.metric, toMetric);
  reader.required("text", reading.text, toReadingText);
  reader.required("quality", reading.quality, toQuality);
  reader.required("source", reading.source, toReadingText);
  reader.required("reason", reading.reason, toReadingText);
  reader.nullable("sampledAt", reading.sampledAt, toTime);
  return reader.isGood() ? std::optional(std::move(reading)) : std::nullopt;
}

// Of each metric one.
std::optional<std::vector<MetricReading>> toReadings(const Json& value) {
  auto readings = asList(value, toReading);
  if (!readings) {
    return std::nullopt;
  }
  MetricSet metrics;
  for (const MetricReading& reading : *readings) {
    if (metrics.contains(reading.metric)) {
      return std::nullopt;
    }
    metrics.insert(reading.metric);
  }
  return readings;
}

std::optional<AgentMessage> readState(const Json& message, WindowState& state) {
  WindowState next = state;
  StateChange change;
  ObjectReader reader(message);
  reader.required("sequence", change.sequence, toCount);
  reader.required("revision", change.revision, toCount);
  // Whether the message brings the field: only then it is read.
  const auto brings = [&](std::string_view key, WindowField field) {
    if (member(message, key) == nullptr) {
      return false;
    }
    change.fields.insert(field);
    return true;
  };
  if (brings("configuration", WindowField::configuration)) {
    reader.required("configuration", next.configuration, toConfiguration);
  }
  if (brings("networkName", WindowField::networkName)) {
    reader.nullable("networkName", next.networkName, asText);
  }
  if (brings("codex", WindowField::codex)) {
    reader.required("codex", next.codex, toSummary);
  }
  if (brings("claude", WindowField::claude)) {
    reader.required("claude", next.claude, toSummary);
  }
  if (brings("notice", WindowField::notice)) {
    reader.nullable("notice", next.notice, asText);
  }
  if (brings("loginItemStatus", WindowField::loginItemStatus)) {
    reader.required("loginItemStatus", next.loginItemStatus, toLoginItemStatus);
  }
  if (brings("pendingScrollID", WindowField::pendingScrollID)) {
    reader.nullable("pendingScrollID", next.pendingScrollID, toUUID);
  }
  if (brings("picture", WindowField::picture)) {
    reader.required("picture", next.picture, toPicture);
  }
  if (brings("undoable", WindowField::undoable)) {
    reader.nullable("undoable", next.undoable, toUndoableEdit);
  }
  if (brings("links", WindowField::links)) {
    reader.required("links", next.links, toLinks);
  }
  if (brings("backupPath", WindowField::backupPath)) {
    reader.required("backupPath", next.backupPath, asText);
  }
  if (brings("readings", WindowField::readings)) {
    reader.required("readings", next.readings, toReadings);
  }
  if (brings("square", WindowField::square)) {
    reader.nullable("square", next.square, toSquare);
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
        message["pendingScrollID"] = orNull(state.pendingScrollID, &UUID::text);
        break;
      case WindowField::picture:
        message["picture"] = pictureJson(state.picture);
        break;
      case WindowField::undoable:
        message["undoable"] = orNull(state.undoable, undoableText);
        break;
      case WindowField::links:
        message["links"] = linksJson(state.links);
        break;
      case WindowField::backupPath:
        message["backupPath"] = state.backupPath;
        break;
      case WindowField::readings:
        message["readings"] = readingsJson(state.readings);
        break;
      case WindowField::square:
        message["square"] = orNull(state.square, squareJson);
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
    ObjectReader reader(*message);
    reader.required("activationToken", raise.activationToken, asText);
    return reader.isGood() ? std::optional<AgentMessage>(std::move(raise)) : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace vantora::SettingsProtocol
