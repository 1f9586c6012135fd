// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QVBoxLayout>
#include <string>

#include "settings/conversation/window_state.hpp"

namespace vantora {

/// The lines of an integration's tab that say how it stands. The labels belong to the tab.
class QuotaLines {
 public:
  /// `program` is the tool's name before the path of its executable.
  explicit QuotaLines(std::string program);

  /// The state and the latest answer.
  void addState(QVBoxLayout& column) const;
  void addExecutable(QVBoxLayout& column) const;

  void show(const QuotaSummary& quota) const;

 private:
  std::string program_;
  QLabel* message_;
  QLabel* lastSuccess_;
  QLabel* executable_;
};

}  // namespace vantora
