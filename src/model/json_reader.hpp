// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "model/json.hpp"

namespace vantora {

/// The elements of a JSON array, each read by `toElement`, which takes a Json and returns an
/// optional. Nothing where the value is no array or one of its elements does not fit.
template <typename Convert>
auto asList(const Json& value, Convert toElement) {
  using Element = typename decltype(toElement(value))::value_type;
  std::optional<std::vector<Element>> list;
  if (!value.isArray()) {
    return list;
  }
  list.emplace();
  list->reserve(value.size());
  for (const Json& entry : value) {
    auto element = toElement(entry);
    if (!element) {
      list.reset();
      break;
    }
    list->push_back(*std::move(element));
  }
  return list;
}

/// Reads the members of one JSON object into variables. `convert` takes a Json and returns
/// an optional. The first member that does not fit, or an `object` that is none, spoils
/// the whole: see isGood(). The object must outlive the reader.
class ObjectReader {
 public:
  explicit ObjectReader(const Json& object) : object_(object), isGood_(object.isObject()) {}

  [[nodiscard]] bool isGood() const { return isGood_; }

  /// A member that must be there.
  template <typename Target, typename Convert>
  void required(std::string_view key, Target& target, Convert convert) {
    store(member(object_, key), target, convert);
  }

  /// A member that may be missing or null: `target` is then empty.
  template <typename Target, typename Convert>
  void optional(std::string_view key, std::optional<Target>& target, Convert convert) {
    target.reset();
    if (const Json* value = presentMember(object_, key)) {
      store(value, target, convert);
    }
  }

  /// A member that must be there and may be null.
  template <typename Target, typename Convert>
  void nullable(std::string_view key, std::optional<Target>& target, Convert convert) {
    isGood_ = isGood_ && member(object_, key) != nullptr;
    optional(key, target, convert);
  }

 private:
  template <typename Target, typename Convert>
  void store(const Json* value, Target& target, Convert convert) {
    auto converted = value != nullptr ? convert(*value) : decltype(convert(object_)){};
    isGood_ = isGood_ && converted.has_value();
    if (isGood_) {
      target = *std::move(converted);
    }
  }

  const Json& object_;
  bool isGood_;
};

}  // namespace vantora
