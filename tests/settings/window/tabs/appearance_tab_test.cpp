// SPDX-License-Identifier: MIT
#include "settings/window/tabs/appearance_tab.hpp"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QImage>
#include <vector>

#include "settings/window/tabs/tabs_fixture.hpp"

namespace vantora {
namespace {

using namespace SettingsProtocol;
using test::appearanceTab;

using TabsTest = test::TabsFixture;

TEST_F(TabsTest, OfferTheModuleOfASquareOnlyWhereThePanelKeepsOne) {
  EXPECT_FALSE(texts(appearanceTab).contains(QString::fromUtf8("Módulo do quadrado")));
  agent_.square = SquareChoice{};
  tell({WindowField::square});
  auto* picker = control<QComboBox>(appearanceTab, QString::fromUtf8("Módulo do quadrado"));
  ASSERT_NE(picker, nullptr);
  ASSERT_EQ(picker->count(), static_cast<int>(agent_.configuration.modules.size()) + 1);
  EXPECT_EQ(picker->itemText(0), QString::fromUtf8("Automático: o primeiro com leitura"));
  EXPECT_EQ(picker->currentIndex(), 0);
  picker->setCurrentIndex(2);
  EXPECT_EQ(sentOne<SquareModule>()->module, agent_.configuration.modules[1].id);
  picker->setCurrentIndex(0);
  EXPECT_EQ(sentOne<SquareModule>()->module, std::nullopt);
  agent_.square->module = agent_.configuration.modules[0].id;
  tell({WindowField::square});
  EXPECT_EQ(picker->currentIndex(), 1);
  EXPECT_TRUE(sent().empty());
  agent_.square.reset();
  tell({WindowField::square});
  EXPECT_FALSE(texts(appearanceTab).contains(QString::fromUtf8("Módulo do quadrado")));
}

TEST_F(TabsTest, ShowThePictureWithItsWidthAndItsWarning) {
  agent_.picture = {231.55, 2, 463, 44, {}, "Fonte, margem ou intervalo reduzido."};
  agent_.picture.alpha.assign(463 * 44, 128);
  tell({WindowField::picture});
  EXPECT_TRUE(texts(appearanceTab).contains(QStringLiteral("Largura atual do bloco: 231,6 pt\n")));
  EXPECT_TRUE(texts(appearanceTab).contains(QStringLiteral("Fonte, margem ou intervalo")));
  agent_.picture.width = 130;
  agent_.picture.warning.reset();
  tell({WindowField::picture});
  EXPECT_TRUE(texts(appearanceTab).contains(QStringLiteral("Largura atual do bloco: 130 pt\n")));
  EXPECT_FALSE(texts(appearanceTab).contains(QStringLiteral("⚠")));
}

TEST_F(TabsTest, DrawThePicturePixelForPixelInTheTextColour) {
  agent_.picture = {3, 1, 3, 2, {255, 0, 255, 0, 255, 0}, std::nullopt};
  tell({WindowField::picture});
  view_->setCurrentTab(appearanceTab);
  QWidget* preview = nullptr;
  for (auto* widget : page(appearanceTab)->findChildren<QWidget*>()) {
    if (widget->accessibleName() == QStringLiteral("Prévia do bloco na barra")) {
      preview = widget;
    }
  }
  ASSERT_NE(preview, nullptr);
  const QImage image = preview->grab().toImage();
  const QRgb ink = preview->palette().color(QPalette::WindowText).rgb();
  std::vector<QPoint> places;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixelColor(x, y).rgb() == ink) {
        places.emplace_back(x, y);
      }
    }
  }
  ASSERT_EQ(places.size(), 3U);
  EXPECT_EQ(places[1] - places[0], QPoint(2, 0));
  EXPECT_EQ(places[2] - places[0], QPoint(1, 1));
}

}  // namespace
}  // namespace vantora
