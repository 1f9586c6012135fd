// SPDX-License-Identifier: MIT
#include "settings/window/color_scheme_portal.hpp"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <utility>

namespace vantora {
namespace {

constexpr uint noPreference = 0;
constexpr uint darkPreferred = 1;
constexpr uint lightPreferred = 2;

const QString& service() {
  static const QString name = QStringLiteral("org.freedesktop.portal.Desktop");
  return name;
}
const QString& path() {
  static const QString name = QStringLiteral("/org/freedesktop/portal/desktop");
  return name;
}
const QString& interface() {
  static const QString name = QStringLiteral("org.freedesktop.portal.Settings");
  return name;
}
// The setting's place and name.
const QStringList& setting() {
  static const QStringList names = {QStringLiteral("org.freedesktop.appearance"),
                                    QStringLiteral("color-scheme")};
  return names;
}

}  // namespace

ColorSchemePortal::ColorSchemePortal(QDBusConnection bus, std::function<void(bool)> onScheme,
                                     QObject* parent)
    : QObject(parent), bus_(std::move(bus)), onScheme_(std::move(onScheme)) {
  // The bus itself picks the one setting out, so that no other wakes the program. Before the
  // question: a change in between is told after the answer.
  bus_.connect(service(), path(), interface(), QStringLiteral("SettingChanged"), setting(),
               QString(), this, SLOT(changed(QDBusMessage)));
  read();
}

void ColorSchemePortal::changed(const QDBusMessage& signal) {
  take(signal.arguments().value(2));  // After the setting's place and name.
}

void ColorSchemePortal::read() {
  QDBusMessage question =
      QDBusMessage::createMethodCall(service(), path(), interface(), QStringLiteral("Read"));
  question << setting()[0] << setting()[1];
  auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
    const QDBusPendingReply<QDBusVariant> reply = *watcher;
    if (!reply.isError()) {
      take(reply.value().variant());
    }
    watcher->deleteLater();
  });
}

// What is no choice that the portal's interface knows changes nothing.
void ColorSchemePortal::take(QVariant value) const {
  // Read() puts one variant into another.
  while (value.canConvert<QDBusVariant>()) {
    value = value.value<QDBusVariant>().variant();
  }
  if (value.typeId() != QMetaType::UInt) {
    return;
  }
  const uint scheme = value.toUInt();
  if (scheme == noPreference || scheme == darkPreferred || scheme == lightPreferred) {
    onScheme_(scheme == darkPreferred);
  }
}

}  // namespace vantora
