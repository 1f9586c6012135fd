// SPDX-License-Identifier: MIT
#include "model/json.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vantora {
namespace {

const Json& null() {
  static const Json value;
  return value;
}

bool isPairWithKey(const Json& element) {
  return element.isArray() && element.size() == 2 && element[0].isText();
}

}  // namespace

Json::Json(std::initializer_list<Json> elements) {
  if (!std::all_of(elements.begin(), elements.end(), &isPairWithKey)) {
    value_ = Array(elements);
    return;
  }
  Object members;
  for (const Json& element : elements) {
    members.insert_or_assign(std::get<std::string>(element[0].value_), element[1]);
  }
  value_ = std::move(members);
}

std::size_t Json::size() const {
  return isArray() ? elements().size() : members().size();
}

const Json::Array& Json::elements() const {
  static const Array none;
  const Array* array = std::get_if<Array>(&value_);
  return array != nullptr ? *array : none;
}

const Json::Object& Json::members() const {
  static const Object none;
  const Object* object = std::get_if<Object>(&value_);
  return object != nullptr ? *object : none;
}

void Json::append(Json element) {
  if (isNull()) {
    value_ = Array();
  }
  std::get<Array>(value_).push_back(std::move(element));
}

Json& Json::operator[](std::string_view key) {
  if (isNull()) {
    value_ = Object();
  }
  Object& object = std::get<Object>(value_);
  const auto found = object.find(key);
  return found != object.end() ? found->second : object.try_emplace(std::string(key)).first->second;
}

const Json& Json::operator[](std::string_view key) const {
  const Json* found = member(*this, key);
  return found != nullptr ? *found : null();
}

const Json& Json::operator[](std::size_t index) const {
  return index < elements().size() ? elements()[index] : null();
}

Json& Json::operator[](std::size_t index) {
  return std::get<Array>(value_).at(index);
}

bool Json::contains(std::string_view key) const {
  return members().contains(key);
}

std::size_t Json::erase(std::string_view key) {
  Object* object = std::get_if<Object>(&value_);
  const auto found = object != nullptr ? object->find(key) : Object::iterator();
  if (object == nullptr || found == object->end()) {
    return 0;
  }
  object->erase(found);
  return 1;
}

bool operator==(const Json& left, const Json& right) {
  if (left.isNumber() && right.isNumber() && left.value_.index() != right.value_.index()) {
    const auto integer = asInteger(left);
    return integer ? integer == asInteger(right) : asDouble(left) == asDouble(right);
  }
  return left.value_ == right.value_;
}

const Json* member(const Json& object, std::string_view key) {
  const auto found = object.members().find(key);
  return found != object.members().end() ? &found->second : nullptr;
}

const Json* presentMember(const Json& object, std::string_view key) {
  const Json* found = member(object, key);
  return found != nullptr && !found->isNull() ? found : nullptr;
}

std::optional<bool> asBool(const Json& value) {
  const bool* held = std::get_if<bool>(&value.value());
  return held != nullptr ? std::optional(*held) : std::nullopt;
}

std::optional<double> asDouble(const Json& value) {
  if (const auto* number = std::get_if<double>(&value.value())) {
    return *number;
  }
  if (const auto* number = std::get_if<std::int64_t>(&value.value())) {
    return static_cast<double>(*number);
  }
  if (const auto* number = std::get_if<std::uint64_t>(&value.value())) {
    return static_cast<double>(*number);
  }
  return std::nullopt;
}

std::optional<std::int64_t> asInteger(const Json& value) {
  if (const auto* number = std::get_if<std::uint64_t>(&value.value())) {
    const bool fits = *number <= std::uint64_t{std::numeric_limits<std::int64_t>::max()};
    return fits ? std::optional(static_cast<std::int64_t>(*number)) : std::nullopt;
  }
  if (const auto* number = std::get_if<std::int64_t>(&value.value())) {
    return *number;
  }
  if (const auto* number = std::get_if<double>(&value.value())) {
    // The bounds of int64 as doubles: -2^63 is exact, 2^63 is the first one too large.
    if (std::trunc(*number) == *number && *number >= -0x1p63 && *number < 0x1p63) {
      return static_cast<std::int64_t>(*number);
    }
  }
  return std::nullopt;
}

std::optional<std::string> asText(const Json& value) {
  const auto* text = std::get_if<std::string>(&value.value());
  return text != nullptr ? std::optional(*text) : std::nullopt;
}

}  // namespace vantora
