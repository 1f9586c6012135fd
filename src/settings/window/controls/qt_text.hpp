// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace vantora {

/// UTF-8 text as the toolkit's.
[[nodiscard]] inline QString qtText(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// The label without its accelerator's mark and without the blank and colon that lead to
/// a value: what a control is called.
[[nodiscard]] inline QString spokenName(std::string_view label) {
  QString name = qtText(label).remove(QLatin1Char('&')).trimmed();
  if (name.endsWith(QLatin1Char(':'))) {
    name.chop(1);
  }
  return name;
}

}  // namespace vantora
