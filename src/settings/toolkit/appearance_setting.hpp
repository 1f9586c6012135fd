// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <functional>
#include <optional>

#include "settings/toolkit/color_scheme.hpp"

namespace vantora {

/// One of the desktop's choices about appearance as its portal reports it: now and at every
/// change (org.freedesktop.portal.Settings). Blocks for no answer; without a portal it stays
/// silent. Main thread.
class AppearanceSetting final : public QObject {
  Q_OBJECT

 public:
  /// A setting and what it asks for; nothing for a value that is not defined.
  struct Key {
    const char* place;
    const char* name;
    std::optional<Colors> (*colors)(const QVariant& value);
  };
  static const Key colorScheme;
  static const Key contrast;
  /// Where the portal does not know `contrast` yet: GNOME's own switch, and the name of the theme,
  /// which such portals hand through.
  static const Key gnomeHighContrast;
  static const Key gtkTheme;

  /// `onColors` is called once the portal has answered and whenever it reports a change, with
  /// colours that may be the same again. A value that is not defined is ignored.
  AppearanceSetting(QDBusConnection bus, const Key& key, std::function<void(Colors)> onColors,
                    QObject* parent);

 private slots:
  void changed(const QDBusMessage& signal);

 private:
  void read();
  void take(QVariant value) const;

  QDBusConnection bus_;
  const Key& key_;
  std::function<void(Colors)> onColors_;
};

}  // namespace vantora
