// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <functional>

namespace vantora {

/// One of the desktop's choices about appearance as its portal reports it: now and at every
/// change (org.freedesktop.portal.Settings, "org.freedesktop.appearance"). Blocks for no
/// answer; without a portal it stays silent. Main thread.
class AppearanceSetting final : public QObject {
  Q_OBJECT

 public:
  /// What the portal's interface defines: the setting and its greatest value.
  struct Key {
    const char* name;
    uint maxValue;
  };
  /// 0 no preference, 1 dark, 2 light.
  static constexpr Key colorScheme{"color-scheme", 2};
  /// 0 no preference, 1 higher contrast.
  static constexpr Key contrast{"contrast", 1};

  /// `onValue` is called once the portal has answered and whenever it reports a change, with a
  /// value that may be the same again. A value that the interface does not define is ignored.
  AppearanceSetting(QDBusConnection bus, Key key, std::function<void(uint value)> onValue,
                    QObject* parent);

 private slots:
  void changed(const QDBusMessage& signal);

 private:
  void read();
  void take(QVariant value) const;

  QDBusConnection bus_;
  Key key_;
  std::function<void(uint)> onValue_;
};

}  // namespace vantora
