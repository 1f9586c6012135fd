// SPDX-License-Identifier: MIT
#include "settings/window/quota_fields.hpp"

#include <QDateTime>

namespace vantora {

QString quotaTimeText(const std::optional<WallTime>& time) {
  if (!time) {
    return qtText("—");
  }
  using std::chrono::milliseconds;
  const auto sinceEpoch = std::chrono::floor<milliseconds>(time->time_since_epoch());
  return QDateTime::fromMSecsSinceEpoch(sinceEpoch.count())
      .toString(QStringLiteral("dd/MM/yyyy HH:mm:ss"));
}

}  // namespace vantora
