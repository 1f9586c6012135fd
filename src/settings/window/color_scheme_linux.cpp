// SPDX-License-Identifier: MIT
//
// The desktop portal's setting (org.freedesktop.portal.Settings, "color-scheme": 0 no
// preference, 1 dark, 2 light). Qt 6.4 does not look at it.
#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include "settings/window/color_scheme.hpp"

namespace vantora {
namespace {

constexpr int darkPreferred = 1;

// The value within the variants that the portal puts around it.
int schemeOf(QVariant value) {
  while (value.canConvert<QDBusVariant>()) {
    value = value.value<QDBusVariant>().variant();
  }
  return value.toInt();
}

}  // namespace

void followColorScheme() {
  // A platform theme that brings dark colours needs no help.
  if (looksDark()) {
    return;
  }
  QDBusMessage question = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.portal.Desktop"),
      QStringLiteral("/org/freedesktop/portal/desktop"),
      QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("Read"));
  question << QStringLiteral("org.freedesktop.appearance") << QStringLiteral("color-scheme");
  auto* watcher =
      new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), qApp);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, qApp, [watcher] {
    const QDBusPendingReply<QDBusVariant> reply = *watcher;
    if (!reply.isError() && schemeOf(QVariant::fromValue(reply.value())) == darkPreferred) {
      useDarkColors(true);
    }
    watcher->deleteLater();
  });
}

}  // namespace vantora
