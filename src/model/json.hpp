// SPDX-License-Identifier: MIT
//
// JSON values, strictly read: nothing throws, depth is limited, and a member is read as
// exactly the type that is asked for. The JSON library behind it is known to json.cpp alone,
// because parsing its headers takes the compiler seconds in every file that includes them.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace vantora {

/// One JSON value; a value type. Members of an object are sorted by their names.
class Json {
 public:
  using Array = std::vector<Json>;
  using Object = std::map<std::string, Json, std::less<>>;

  Json() = default;
  Json(std::nullptr_t) {}
  Json(std::same_as<bool> auto value) : value_(value) {}
  Json(std::signed_integral auto value) : value_(std::int64_t{value}) {}
  Json(std::unsigned_integral auto value) requires(!std::same_as<decltype(value), bool>)
      : value_(std::uint64_t{value}) {}
  Json(double value) : value_(value) {}
  Json(const char* text) : value_(std::string(text)) {}
  Json(std::string_view text) : value_(std::string(text)) {}
  Json(std::string text) : value_(std::move(text)) {}
  /// An object when every element is a pair of a text and a value, else an array.
  Json(std::initializer_list<Json> elements);

  [[nodiscard]] static Json array() { return Json(Array()); }
  [[nodiscard]] static Json object(std::initializer_list<Object::value_type> members = {}) {
    return Json(Object(members));
  }

  [[nodiscard]] bool isNull() const { return holds<std::nullptr_t>(); }
  [[nodiscard]] bool isBool() const { return holds<bool>(); }
  [[nodiscard]] bool isNumber() const {
    return holds<std::int64_t>() || holds<std::uint64_t>() || holds<double>();
  }
  [[nodiscard]] bool isText() const { return holds<std::string>(); }
  [[nodiscard]] bool isArray() const { return holds<Array>(); }
  [[nodiscard]] bool isObject() const { return holds<Object>(); }

  /// Of an array or an object; 0 for any other value.
  [[nodiscard]] std::size_t size() const;
  [[nodiscard]] bool empty() const { return size() == 0; }

  /// The elements of an array; none for any other value.
  [[nodiscard]] const Array& elements() const;
  [[nodiscard]] Array::const_iterator begin() const { return elements().begin(); }
  [[nodiscard]] Array::const_iterator end() const { return elements().end(); }
  /// The members of an object; none for any other value.
  [[nodiscard]] const Object& members() const;

  /// Appends to an array; a null becomes one first.
  void append(Json element);
  /// The member of an object, created as null where it is missing; a null becomes an object
  /// first. Only for an object or a null.
  Json& operator[](std::string_view key);
  /// The element or member; a null where there is none.
  const Json& operator[](std::string_view key) const;
  const Json& operator[](const char* key) const { return (*this)[std::string_view(key)]; }
  Json& operator[](const char* key) { return (*this)[std::string_view(key)]; }
  const Json& operator[](std::size_t index) const;
  Json& operator[](std::size_t index);
  const Json& operator[](int index) const { return (*this)[static_cast<std::size_t>(index)]; }
  Json& operator[](int index) { return (*this)[static_cast<std::size_t>(index)]; }
  [[nodiscard]] bool contains(std::string_view key) const;
  /// Takes the member out of an object. Returns how many that were, 0 or 1.
  std::size_t erase(std::string_view key);

  using Value = std::variant<std::nullptr_t, bool, std::int64_t, std::uint64_t, double, std::string,
                             Array, Object>;
  [[nodiscard]] const Value& value() const { return value_; }

  /// Numbers are equal by their value: 2, 2U and 2.0.
  friend bool operator==(const Json& left, const Json& right);

 private:
  explicit Json(Array elements) : value_(std::move(elements)) {}
  explicit Json(Object members) : value_(std::move(members)) {}

  template <typename T>
  [[nodiscard]] bool holds() const {
    return std::holds_alternative<T>(value_);
  }

  Value value_;
};

/// The value, or null without one.
template <typename T>
[[nodiscard]] Json orNull(const std::optional<T>& value) {
  return value ? Json(*value) : Json(nullptr);
}
/// What `write`, a function or a member function, makes of the value, or null without one.
template <typename T, std::invocable<const T&> Write>
[[nodiscard]] Json orNull(const std::optional<T>& value, Write write) {
  return value ? Json(std::invoke(write, *value)) : Json(nullptr);
}

/// Deeper documents are refused: values are written, compared and destroyed recursively, and
/// none of the formats read here nests ten levels.
inline constexpr int maxJsonDepth = 512;

/// The document, or nothing when `text` is not one JSON value (RFC 8259, UTF-8), when a
/// number does not fit a double, or when it nests deeper than `maxJsonDepth`. Of two members
/// with one name the last one counts.
[[nodiscard]] std::optional<Json> parseJson(std::string_view text);

/// The compact text. Nothing when a text in `value` is not UTF-8.
[[nodiscard]] std::optional<std::string> writeJson(const Json& value);

/// The compact text, with U+FFFD for every byte that is not UTF-8.
[[nodiscard]] std::string writeJsonLossy(const Json& value);

/// The member, or null when `object` is not an object or has no such member.
[[nodiscard]] const Json* member(const Json& object, std::string_view key);

/// As member(), but a JSON null counts as absent.
[[nodiscard]] const Json* presentMember(const Json& object, std::string_view key);

[[nodiscard]] std::optional<bool> asBool(const Json& value);
/// Any JSON number, widened to a double.
[[nodiscard]] std::optional<double> asDouble(const Json& value);
/// A number with an integral value that fits: 2 and 2.0 are integers, 1.5 is not.
[[nodiscard]] std::optional<std::int64_t> asInteger(const Json& value);
[[nodiscard]] std::optional<std::string> asText(const Json& value);

}  // namespace vantora
