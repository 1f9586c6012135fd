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
constexpr const char* appearance = "org.freedesktop.appearance";

// One of the numbers that the portal's interface defines: 0 is no preference.
std::optional<uint> choice(const QVariant& value, uint most) {
  const bool isDefined = value.typeId() == QMetaType::UInt && value.toUInt() <= most;
  return isDefined ? std::optional(value.toUInt()) : std::nullopt;
}

std::optional<Colors> schemeColors(const QVariant& value) {
  const auto scheme = choice(value, 2);  // 1 dark, 2 light
  return scheme ? std::optional(Colors{*scheme == 1, false}) : std::nullopt;
}

std::optional<Colors> contrastColors(const QVariant& value) {
  const auto contrast = choice(value, 1);  // 1 higher contrast
  return contrast ? std::optional(Colors{false, *contrast == 1}) : std::nullopt;
}

std::optional<Colors> switchColors(const QVariant& value) {
  const bool isSwitch = value.typeId() == QMetaType::Bool;
  return isSwitch ? std::optional(Colors{false, value.toBool()}) : std::nullopt;
}

std::optional<Colors> themeColors(const QVariant& value) {
  const bool isName = value.typeId() == QMetaType::QString;
  return isName ? std::optional(colorsOfTheme(value.toString().toStdString())) : std::nullopt;
}

}  // namespace

const AppearanceSetting::Key AppearanceSetting::colorScheme{appearance, "color-scheme",
                                                            schemeColors};
const AppearanceSetting::Key AppearanceSetting::contrast{appearance, "contrast", contrastColors};
const AppearanceSetting::Key AppearanceSetting::gnomeHighContrast{
    "org.gnome.desktop.a11y.interface", "high-contrast", switchColors};
const AppearanceSetting::Key AppearanceSetting::gtkTheme{"org.gnome.desktop.interface", "gtk-theme",
                                                         themeColors};

AppearanceSetting::AppearanceSetting(QDBusConnection bus, const Key& key,
                                     std::function<void(Colors)> onColors, QObject* parent)
    : QObject(parent), bus_(std::move(bus)), key_(key), onColors_(std::move(onColors)) {
  // The bus itself picks the one setting out, so that no other wakes the program. Before the
  // question: a change in between is reported after the answer.
  bus_.connect(service(), path(), interface(), QStringLiteral("SettingChanged"),
               {QLatin1String(key_.place), QLatin1String(key_.name)}, QString(), this,
               SLOT(changed(QDBusMessage)));
  read();
}

void AppearanceSetting::changed(const QDBusMessage& signal) {
  take(signal.arguments().value(2));  // After the setting's place and name.
}

void AppearanceSetting::read() {
  QDBusMessage question =
      QDBusMessage::createMethodCall(service(), path(), interface(), QStringLiteral("Read"));
  question << QString(QLatin1String(key_.place)) << QString(QLatin1String(key_.name));
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
  if (const auto colors = key_.colors(value)) {
    onColors_(*colors);
  }
}

}  // namespace vantora
