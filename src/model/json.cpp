// SPDX-License-Identifier: MIT
#include "model/json.hpp"

#include <cmath>

namespace vantora {
namespace {

// Exact for every text that is JSON; of others only the part before their first mistake
// matters. Counted here, because the JSON library's own hook for it looks through all
// members of a container again after each one that ends: quadratic.
bool nestsTooDeep(std::string_view text) {
  int depth = 0;
  bool isInString = false;
  for (std::size_t index = 0; index < text.size(); ++index) {
    const char c = text[index];
    if (c == '"') {
      isInString = !isInString;
    } else if (isInString) {
      index += c == '\\' ? 1 : 0;
    } else if (c == '{' || c == '[') {
      if (++depth > deepestJson) {
        return true;
      }
    } else if (c == '}' || c == ']') {
      --depth;
    }
  }
  return false;
}

}  // namespace

std::optional<Json> parseJson(std::string_view text) {
  if (nestsTooDeep(text)) {
    return std::nullopt;
  }
  Json value = Json::parse(text.begin(), text.end(), nullptr, /*allow_exceptions=*/false);
  if (value.is_discarded()) {
    return std::nullopt;
  }
  return value;
}

std::optional<std::string> writeJson(const Json& value) {
  try {
    return value.dump();
  } catch (const Json::exception&) {
    return std::nullopt;
  }
}

const Json* member(const Json& object, std::string_view key) {
  if (!object.is_object()) {
    return nullptr;
  }
  const auto found = object.find(key);
  return found != object.end() ? &*found : nullptr;
}

const Json* presentMember(const Json& object, std::string_view key) {
  const Json* found = member(object, key);
  return found != nullptr && !found->is_null() ? found : nullptr;
}

std::optional<bool> asBool(const Json& value) {
  return value.is_boolean() ? std::optional(value.get<bool>()) : std::nullopt;
}

std::optional<double> asDouble(const Json& value) {
  return value.is_number() ? std::optional(value.get<double>()) : std::nullopt;
}

std::optional<std::int64_t> asInteger(const Json& value) {
  if (value.is_number_unsigned()) {
    const auto number = value.get<std::uint64_t>();
    if (number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
      return std::nullopt;
    }
    return static_cast<std::int64_t>(number);
  }
  if (value.is_number_integer()) {
    return value.get<std::int64_t>();
  }
  if (value.is_number_float()) {
    const auto number = value.get<double>();
    // The bounds of int64 as doubles: -2^63 is exact, 2^63 is the first one too large.
    if (std::trunc(number) == number && number >= -0x1p63 && number < 0x1p63) {
      return static_cast<std::int64_t>(number);
    }
  }
  return std::nullopt;
}

std::optional<std::string> asText(const Json& value) {
  return value.is_string() ? std::optional(value.get<std::string>()) : std::nullopt;
}

}  // namespace vantora
