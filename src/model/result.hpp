// SPDX-License-Identifier: MIT
//
// What a port answers: a value, or a fault that says whether the thing is absent on
// this machine or could not be read this time. No exception crosses a port.
#pragma once

#include <cassert>
#include <string>
#include <utility>
#include <variant>

namespace vantora {

struct Fault {
  enum class Kind {
    absent,  ///< This machine does not have the thing: an ordinary state.
    failed,  ///< The thing exists, or may exist, and could not be read.
  };
  Kind kind = Kind::failed;
  std::string detail;  ///< Why, for people, in Portuguese; empty when there is nothing to add.

  [[nodiscard]] static Fault absent(std::string detail = {}) {
    return {Kind::absent, std::move(detail)};
  }
  [[nodiscard]] static Fault failed(std::string detail) {
    return {Kind::failed, std::move(detail)};
  }
  bool operator==(const Fault&) const = default;
};

template <typename T>
class [[nodiscard]] Result {
 public:
  Result(T value) : content_(std::in_place_index<0>, std::move(value)) {}
  Result(Fault fault) : content_(std::in_place_index<1>, std::move(fault)) {}

  [[nodiscard]] bool hasValue() const { return content_.index() == 0; }
  explicit operator bool() const { return hasValue(); }

  /// Only while hasValue().
  [[nodiscard]] const T& value() const& {
    assert(hasValue());
    return *std::get_if<0>(&content_);
  }
  [[nodiscard]] T&& value() && {
    assert(hasValue());
    return std::move(*std::get_if<0>(&content_));
  }
  const T& operator*() const& { return value(); }
  const T* operator->() const { return &value(); }

  /// Only while not hasValue().
  [[nodiscard]] const Fault& fault() const {
    assert(!hasValue());
    return *std::get_if<1>(&content_);
  }

 private:
  std::variant<T, Fault> content_;
};

}  // namespace vantora
