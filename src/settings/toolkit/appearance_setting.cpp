// SPDX-License-Identifier: MIT
#include "settings/toolkit/appearance_setting.hpp"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <utility>

namespace vantora {
namespace {

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
const QString& place() {
  static const QString name = QStringLiteral("org.freedesktop.appearance");
  return name;
}

}  // namespace

AppearanceSetting::AppearanceSetting(QDBusConnection bus, Key key,
                                     std::function<void(uint)> onValue, QObject* parent)
    : QObject(parent), bus_(std::move(bus)), key_(key), onValue_(std::move(onValue)) {
  // The bus itself picks the one setting out, so that no other wakes the program. Before the
  // question: a change in between is reported after the answer.
  bus_.connect(service(), path(), interface(), QStringLiteral("SettingChanged"),
               {place(), QLatin1String(key_.name)}, QString(), this, SLOT(changed(QDBusMessage)));
  read();
}

void AppearanceSetting::changed(const QDBusMessage& signal) {
  take(signal.arguments().value(2));  // After the setting's place and name.
}

void AppearanceSetting::read() {
  QDBusMessage question =
      QDBusMessage::createMethodCall(service(), path(), interface(), QStringLiteral("Read"));
  question << place() << QString(QLatin1String(key_.name));
  auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
    const QDBusPendingReply<QDBusVariant> reply = *watcher;
    if (!reply.isError()) {
      take(reply.value().variant());
    }
    watcher->deleteLater();
  });
}

void AppearanceSetting::take(QVariant value) const {
  // Read() puts one variant into another.
  while (value.canConvert<QDBusVariant>()) {
    value = value.value<QDBusVariant>().variant();
  }
  if (value.typeId() == QMetaType::UInt && value.toUInt() <= key_.maxValue) {
    onValue_(value.toUInt());
  }
}

}  // namespace vantora
