// SPDX-License-Identifier: MIT
#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QDBusConnection>
#include <QPalette>
#include <QStyle>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <memory>
#include <utility>

#include "settings/toolkit/appearance_setting.hpp"
#include "settings/toolkit/color_scheme.hpp"
#include "settings/toolkit/x_theme.hpp"

namespace vantora {
namespace {

// Everything that can ask for colours: what one of them asks for is used. None speaks against
// another; "no preference" is what most of them say.
class Wishes {
 public:
  static constexpr std::size_t maxWishes = 5;

  void set(std::size_t place, Colors colors) {
    wishes_.at(place) = colors;
    useColors({std::any_of(wishes_.begin(), wishes_.end(), [](Colors wish) { return wish.isDark; }),
               std::any_of(wishes_.begin(), wishes_.end(),
                           [](Colors wish) { return wish.isHighContrast; })});
  }

 private:
  std::array<Colors, maxWishes> wishes_;
};

// The number of the screen that DISPLAY names.
int defaultScreen() {
  char* host = nullptr;
  int display = 0;
  int screen = 0;
  xcb_parse_display(nullptr, &host, &display, &screen);
  std::free(host);
  return screen;
}

// Reports the theme of the X11 screen, now and when it changes.
class ThemeFollower final : public QObject, public QAbstractNativeEventFilter {
 public:
  ThemeFollower(XTheme theme, std::function<void(Colors)> onColors, QObject* parent)
      : QObject(parent), theme_(theme), onColors_(std::move(onColors)) {
    QCoreApplication::instance()->installNativeEventFilter(this);
    onColors_(colorsOfTheme(theme_.name()));
  }

  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* /*result*/) override {
    if (type == "xcb_generic_event_t" &&
        theme_.isChangedBy(*static_cast<const xcb_generic_event_t*>(message))) {
      onColors_(colorsOfTheme(theme_.name()));
    }
    return false;
  }

 private:
  XTheme theme_;
  std::function<void(Colors)> onColors_;
};

}  // namespace

void followColorScheme() {
  // Where the platform's theme brings the desktop's colours it changes them, too. Qt 6.4
  // alone does not look at the portal.
  if (QApplication::palette() != QApplication::style()->standardPalette()) {
    return;
  }
  const auto wishes = std::make_shared<Wishes>();
  std::size_t place = 0;
  const auto next = [&] {
    return [wishes, own = place++](Colors colors) { wishes->set(own, colors); };
  };
  const QDBusConnection bus = QDBusConnection::sessionBus();
  for (const auto* key : {&AppearanceSetting::colorScheme, &AppearanceSetting::contrast,
                          &AppearanceSetting::gnomeHighContrast, &AppearanceSetting::gtkTheme}) {
    new AppearanceSetting(bus, *key, next(), qApp);
  }
  // The platform without a screen has the interface, too, and no connection.
  const auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 != nullptr && x11->connection() != nullptr) {
    new ThemeFollower({x11->connection(), defaultScreen()}, next(), qApp);
  }
}

}  // namespace vantora
