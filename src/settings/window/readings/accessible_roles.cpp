// SPDX-License-Identifier: MIT
#include "settings/window/readings/accessible_roles.hpp"

#include <QAccessible>
#include <QAccessibleWidget>

#include "settings/window/readings/live_reading.hpp"
#include "settings/window/readings/status_preview.hpp"

namespace vantora::AccessibleRoles {
namespace {

QAccessibleInterface* make(const QString& /*className*/, QObject* object) {
  if (auto* reading = qobject_cast<LiveReading*>(object)) {
    return new QAccessibleWidget(reading, QAccessible::StaticText);
  }
  if (auto* preview = qobject_cast<StatusPreview*>(object)) {
    return new QAccessibleWidget(preview, QAccessible::Graphic);
  }
  return nullptr;
}

}  // namespace

void install() {
  QAccessible::installFactory(&make);
}

}  // namespace vantora::AccessibleRoles
