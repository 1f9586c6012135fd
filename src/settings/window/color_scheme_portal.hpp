// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <functional>

namespace vantora {

/// The desktop's choice of light or dark as its portal tells it: now and at every change
/// (org.freedesktop.portal.Settings, "org.freedesktop.appearance" "color-scheme": 0 no
/// preference, 1 dark, 2 light). Blocks for no answer; without a portal it stays silent.
/// Main thread.
class ColorSchemePortal final : public QObject {
  Q_OBJECT

 public:
  /// `onScheme` is called once the portal has answered and whenever it tells a change, with
  /// a choice that may be the same again.
  ColorSchemePortal(QDBusConnection bus, std::function<void(bool isDark)> onScheme,
                    QObject* parent);

 private slots:
  void changed(const QDBusMessage& signal);

 private:
  void read();
  void take(QVariant value) const;

  QDBusConnection bus_;
  std::function<void(bool)> onScheme_;
};

}  // namespace vantora
