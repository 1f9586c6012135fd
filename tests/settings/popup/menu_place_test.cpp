// SPDX-License-Identifier: MIT
#include "settings/popup/menu_place.hpp"

#include <gtest/gtest.h>

namespace vantora {
namespace {

const QSize menuSize(150, 66);
const QRect screen(0, 0, 1000, 800);

TEST(MenuPlace, IsBelowAnItemAtTheTop) {
  EXPECT_EQ(menuPlace(menuSize, {500, 14}, {450, 3, 130, 22}, screen), QPoint(500, 25));
}

TEST(MenuPlace, IsAboveAnItemAtTheBottom) {
  EXPECT_EQ(menuPlace(menuSize, {500, 790}, {450, 775, 130, 22}, screen), QPoint(500, 775 - 66));
}

TEST(MenuPlace, EndsWithTheScreen) {
  EXPECT_EQ(menuPlace(menuSize, {990, 14}, {870, 3, 130, 22}, screen), QPoint(850, 25));
  EXPECT_EQ(menuPlace(menuSize, {-5, 14}, {-20, 3, 130, 22}, screen), QPoint(0, 25));
}

TEST(MenuPlace, LeavesThePanelFree) {
  const QRect withoutPanels(0, 28, 1000, 740);
  EXPECT_EQ(menuPlace(menuSize, {500, 14}, {450, 3, 130, 22}, withoutPanels), QPoint(500, 28));
  EXPECT_EQ(menuPlace(menuSize, {500, 790}, {450, 775, 130, 22}, withoutPanels),
            QPoint(500, 768 - 66));
}

TEST(MenuPlace, FillsThePlaceToTheLastPixel) {
  const QRect low(0, 0, 1000, 25 + 66);
  EXPECT_EQ(menuPlace(menuSize, {500, 14}, {450, 3, 130, 22}, low).y(), 25);
  const QRect lower(0, 0, 1000, 25 + 65);
  EXPECT_NE(menuPlace(menuSize, {500, 14}, {450, 3, 130, 22}, lower).y(), 25);
}

TEST(MenuPlace, CoversTheItemOnlyWhereNothingElseHasRoom) {
  const QRect tiny(0, 0, 300, 80);
  EXPECT_EQ(menuPlace(menuSize, {10, 40}, {0, 30, 130, 22}, tiny), QPoint(10, 14));
  const QRect tinier(0, 0, 100, 40);
  EXPECT_EQ(menuPlace(menuSize, {50, 20}, {0, 10, 90, 22}, tinier), QPoint(0, 0));
}

TEST(MenuPlace, KnowsOtherScreens) {
  const QRect second(1000, 200, 800, 600);
  EXPECT_EQ(menuPlace(menuSize, {1790, 210}, {1700, 200, 100, 22}, second), QPoint(1650, 222));
}

TEST(MenuPlace, FindsTheScreenAndItsOwnPixels) {
  const std::vector<MenuScreen> screens{{{0, 0, 1000, 800}, {}, 2}, {{2000, 0, 800, 600}, {}, 1}};
  EXPECT_EQ(&screenAt(screens, {1999, 1599}), &screens[0]);
  EXPECT_EQ(&screenAt(screens, {2000, 0}), &screens[1]);
  EXPECT_EQ(&screenAt(screens, {2000, 700}), &screens[0]) << "on none: the first";
  EXPECT_EQ(placeOn(screens[0], {901, 20}), QPoint(451, 10));
  EXPECT_EQ(placeOn(screens[1], {2100, 20}), QPoint(2100, 20));
  EXPECT_EQ(areaOn(screens[0], {100, 4, 301, 44}), QRect(50, 2, 151, 22));
}

}  // namespace
}  // namespace vantora
