// SPDX-License-Identifier: MIT
//
// JSON as text, by the JSON library.
#include <nlohmann/json.hpp>
#include <vector>

#include "model/json.hpp"

namespace vantora {
namespace {

// Exact for every text that is JSON; of others only the part before their first mistake
// matters. Counted ahead of the parser, so that no deep tree is built first.
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
      if (++depth > maxJsonDepth) {
        return true;
      }
    } else if (c == '}' || c == ']') {
      --depth;
    }
  }
  return false;
}

/// Builds the value from the events of the library's parser.
class Builder : public nlohmann::json_sax<nlohmann::json> {
 public:
  [[nodiscard]] Json take() { return std::move(root_); }

  bool null() override { return add(nullptr); }
  bool boolean(bool value) override { return add(value); }
  bool number_integer(number_integer_t value) override { return add(value); }
  bool number_unsigned(number_unsigned_t value) override { return add(value); }
  bool number_float(number_float_t value, const string_t& /*text*/) override { return add(value); }
  bool string(string_t& value) override { return add(std::move(value)); }
  bool binary(binary_t& /*value*/) override { return false; }
  bool start_object(std::size_t /*count*/) override { return open(Json::object()); }
  bool end_object() override { return close(); }
  bool start_array(std::size_t /*count*/) override { return open(Json::array()); }
  bool end_array() override { return close(); }
  bool key(string_t& value) override {
    key_ = std::move(value);
    return true;
  }
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const nlohmann::detail::exception& /*error*/) override {
    return false;
  }

 private:
  bool add(Json value) {
    place(std::move(value));
    return true;
  }
  bool open(Json container) {
    keys_.push_back(std::move(key_));
    containers_.push_back(std::move(container));
    return true;
  }
  bool close() {
    Json container = std::move(containers_.back());
    containers_.pop_back();
    key_ = std::move(keys_.back());
    keys_.pop_back();
    place(std::move(container));
    return true;
  }
  void place(Json value) {
    if (containers_.empty()) {
      root_ = std::move(value);
    } else if (containers_.back().isObject()) {
      containers_.back()[key_] = std::move(value);
    } else {
      containers_.back().append(std::move(value));
    }
  }

  Json root_;
  std::vector<Json> containers_;   // open ones, the innermost last
  std::vector<std::string> keys_;  // where each of them belongs in the one around it
  std::string key_;
};

nlohmann::json libraryValue(const Json& value) {
  if (value.isArray()) {
    auto array = nlohmann::json::array();
    for (const Json& element : value) {
      array.push_back(libraryValue(element));
    }
    return array;
  }
  if (value.isObject()) {
    auto object = nlohmann::json::object();
    for (const auto& [key, content] : value.members()) {
      object[key] = libraryValue(content);
    }
    return object;
  }
  return std::visit(
      [](const auto& held) -> nlohmann::json {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, Json::Array> || std::is_same_v<Held, Json::Object>) {
          return nullptr;  // Taken care of above.
        } else {
          return held;
        }
      },
      value.value());
}

}  // namespace

std::optional<Json> parseJson(std::string_view text) {
  Builder builder;
  if (nestsTooDeep(text) || !nlohmann::json::sax_parse(text.begin(), text.end(), &builder)) {
    return std::nullopt;
  }
  return builder.take();
}

std::optional<std::string> writeJson(const Json& value) {
  try {
    return libraryValue(value).dump();
  } catch (const nlohmann::json::exception&) {
    return std::nullopt;
  }
}

std::string writeJsonLossy(const Json& value) {
  return libraryValue(value).dump(-1, ' ', /*ensure_ascii=*/false,
                                  nlohmann::json::error_handler_t::replace);
}

}  // namespace vantora
