// SPDX-License-Identifier: MIT
#include "settings/popup/menu_place.hpp"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <cmath>

namespace vantora {
namespace {

// From `first` on, before `end`; `first` for what is too long.
int within(int wanted, int length, int first, int end) {
  return std::clamp(wanted, first, std::max(first, end - length));
}

int scaled(int pixels, double ratio) {
  return static_cast<int>(std::lround(pixels / ratio));
}

}  // namespace

std::vector<MenuScreen> allScreens() {
  std::vector<MenuScreen> screens;
  for (const QScreen* screen : QGuiApplication::screens()) {
    screens.push_back(
        {screen->geometry(), screen->availableGeometry(), screen->devicePixelRatio()});
  }
  return screens;
}

const MenuScreen& screenAt(const std::vector<MenuScreen>& screens, ScreenPoint place) {
  const auto holds = [place](const MenuScreen& screen) {
    const double x = (place.x - screen.area.x()) / screen.ratio;
    const double y = (place.y - screen.area.y()) / screen.ratio;
    return x >= 0 && y >= 0 && x < screen.area.width() && y < screen.area.height();
  };
  const auto found = std::find_if(screens.begin(), screens.end(), holds);
  return found != screens.end() ? *found : screens.front();
}

QPoint placeOn(const MenuScreen& screen, ScreenPoint place) {
  const QPoint corner = screen.area.topLeft();
  return corner + QPoint(scaled(place.x - corner.x(), screen.ratio),
                         scaled(place.y - corner.y(), screen.ratio));
}

QRect areaOn(const MenuScreen& screen, const ScreenArea& area) {
  return {placeOn(screen, {area.x, area.y}),
          QSize(scaled(area.width, screen.ratio), scaled(area.height, screen.ratio))};
}

QPoint menuPlace(QSize menu, QPoint pointer, const QRect& item, const QRect& available) {
  const int top = available.y();
  const int bottom = available.y() + available.height();
  const int below = std::max(item.y() + item.height(), top);
  const int above = std::min(item.y(), bottom) - menu.height();
  int y = within(pointer.y(), menu.height(), top, bottom);
  if (below + menu.height() <= bottom) {
    y = below;
  } else if (above >= top) {
    y = above;
  }
  const int right = available.x() + available.width();
  return {within(pointer.x(), menu.width(), available.x(), right), y};
}

}  // namespace vantora
