// SPDX-License-Identifier: MIT
//
// Rows of three columns: the group's name before its first row, what the row is about, and the
// text, which is wrapped between words. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "app/diagnosis/concealer.hpp"

namespace vantora {

class DiagnosisRows {
 public:
  /// What a row is about is cut to this many cells.
  static constexpr std::size_t maxAbout = 14;

  /// `conceal` outlives the rows.
  DiagnosisRows(std::size_t columns, const Concealer& conceal)
      : columns_(columns), conceal_(conceal) {}

  /// The rows that follow belong to this group.
  void begin(std::string group) { group_ = std::move(group); }
  /// Nothing for an empty text.
  void add(std::string_view about, std::string_view text);

  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  const std::size_t columns_;
  const Concealer& conceal_;
  std::string group_;
  std::string text_;
};

}  // namespace vantora
