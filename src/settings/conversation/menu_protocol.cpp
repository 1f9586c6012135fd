// SPDX-License-Identifier: MIT
#include "settings/conversation/menu_protocol.hpp"

#include <algorithm>
#include <limits>
#include <utility>

#include "model/json.hpp"

namespace vantora::MenuProtocol {
namespace {

std::string line(const Json& message) {
  return writeJsonLossy(message) + '\n';
}

// A member that must be there, a whole number from `least` to `most`.
std::optional<int> readNumber(const Json& object, std::string_view key, int least, int most) {
  const Json* value = member(object, key);
  const auto number = value != nullptr ? asInteger(*value) : std::nullopt;
  return number && *number >= least && *number <= most ? std::optional(static_cast<int>(*number))
                                                       : std::nullopt;
}

std::optional<int> readId(const Json& object) {
  return readNumber(object, "id", std::numeric_limits<std::int32_t>::min(),
                    std::numeric_limits<std::int32_t>::max());
}

std::optional<ScreenPoint> readPoint(const Json& object) {
  const auto x = readNumber(object, "x", minCoordinate, maxCoordinate);
  const auto y = readNumber(object, "y", minCoordinate, maxCoordinate);
  return x && y ? std::optional(ScreenPoint{*x, *y}) : std::nullopt;
}

std::optional<ScreenArea> readArea(const Json& object) {
  const auto place = readPoint(object);
  const auto width = readNumber(object, "width", 0, maxCoordinate);
  const auto height = readNumber(object, "height", 0, maxCoordinate);
  return place && width && height ? std::optional(ScreenArea{place->x, place->y, *width, *height})
                                  : std::nullopt;
}

std::optional<std::vector<MenuEntry>> readEntries(const Json& value) {
  if (!value.isArray() || value.empty() || value.size() > maxEntries) {
    return std::nullopt;
  }
  std::vector<MenuEntry> entries;
  for (const Json& object : value) {
    const auto id = readId(object);
    const Json* labelMember = member(object, "label");
    auto label = labelMember != nullptr ? asText(*labelMember) : std::nullopt;
    const bool isKnown = std::any_of(entries.begin(), entries.end(),
                                     [&](const MenuEntry& entry) { return entry.id == id; });
    if (!id || isKnown || !label || label->empty() || label->size() > maxLabelBytes) {
      return std::nullopt;
    }
    entries.push_back({*id, *std::move(label)});
  }
  return entries;
}

bool hasType(const Json& message, std::string_view type) {
  const Json* value = member(message, "type");
  return value != nullptr && *value == type;
}

}  // namespace

std::string menuLine(const MenuContent& content) {
  Json entries = Json::array();
  for (const MenuEntry& entry : content.entries) {
    entries.append({{"id", entry.id}, {"label", entry.label}});
  }
  const ScreenArea& item = content.item;
  return line(
      {{"type", "menu"},
       {"entries", std::move(entries)},
       {"pointer", {{"x", content.pointer.x}, {"y", content.pointer.y}}},
       {"item", {{"x", item.x}, {"y", item.y}, {"width", item.width}, {"height", item.height}}},
       {"isDark", content.isDark}});
}

std::optional<MenuContent> readMenuLine(std::string_view text) {
  const auto message = parseJson(text);
  if (!message || !hasType(*message, "menu")) {
    return std::nullopt;
  }
  const Json* entriesMember = member(*message, "entries");
  const Json* pointerMember = member(*message, "pointer");
  const Json* itemMember = member(*message, "item");
  const Json* darkMember = member(*message, "isDark");
  if (entriesMember == nullptr || pointerMember == nullptr || itemMember == nullptr ||
      darkMember == nullptr) {
    return std::nullopt;
  }
  auto entries = readEntries(*entriesMember);
  const auto pointer = readPoint(*pointerMember);
  const auto item = readArea(*itemMember);
  const auto isDark = asBool(*darkMember);
  if (!entries || !pointer || !item || !isDark) {
    return std::nullopt;
  }
  return MenuContent{*std::move(entries), *pointer, *item, *isDark};
}

std::string toolTipLine(const ToolTipContent& content) {
  std::string text = content.text;
  if (text.size() > maxToolTipBytes) {
    constexpr std::string_view ellipsis = "…";
    std::size_t end = maxToolTipBytes - ellipsis.size();
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
      --end;
    }
    text.replace(end, std::string::npos, ellipsis);
  }
  return line({{"type", "toolTip"},
               {"text", text},
               {"pointer", {{"x", content.pointer.x}, {"y", content.pointer.y}}},
               {"isDark", content.isDark}});
}

std::optional<ToolTipContent> readToolTipLine(std::string_view text) {
  const auto message = parseJson(text);
  if (!message || !hasType(*message, "toolTip")) {
    return std::nullopt;
  }
  const Json* textMember = member(*message, "text");
  const Json* pointerMember = member(*message, "pointer");
  const Json* darkMember = member(*message, "isDark");
  if (textMember == nullptr || pointerMember == nullptr || darkMember == nullptr) {
    return std::nullopt;
  }
  auto words = asText(*textMember);
  const auto pointer = readPoint(*pointerMember);
  const auto isDark = asBool(*darkMember);
  if (!words || words->empty() || words->size() > maxToolTipBytes || !pointer || !isDark) {
    return std::nullopt;
  }
  return ToolTipContent{*std::move(words), *pointer, *isDark};
}

std::string answerLine(const MenuAnswer& answer) {
  if (const auto* chosen = std::get_if<Chosen>(&answer)) {
    return line({{"type", "chosen"}, {"id", chosen->id}});
  }
  return line({{"type", "shown"}});
}

std::optional<MenuAnswer> readAnswerLine(std::string_view text) {
  const auto message = parseJson(text);
  if (!message) {
    return std::nullopt;
  }
  if (hasType(*message, "shown")) {
    return Shown{};
  }
  if (hasType(*message, "chosen")) {
    const auto id = readId(*message);
    return id ? std::optional<MenuAnswer>(Chosen{*id}) : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace vantora::MenuProtocol
