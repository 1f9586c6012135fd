// SPDX-License-Identifier: MIT
//
// The colours of the window in each of the desktop's schemes.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QStyleOption>

#include <cmath>

#include "settings/toolkit/color_scheme.hpp"
#include "settings/toolkit/outlining_style.hpp"
#include "settings/window/readings/live_reading.hpp"
#include "settings/window/window_fixture.hpp"

namespace vantora {
namespace {

class WindowColors : public test::WindowTest {
 protected:
  ~WindowColors() override { useDarkColors(false); }
  // How light the picture of the tab is in its corner, which is ground, from 0 to 255.
  int lightness(int tab) {
    view_->setCurrentTab(tab);
    settle();
    const QImage image = page(tab)->grab().toImage();
    return image.pixelColor(image.width() - 3, image.height() - 3).lightness();
  }
};

TEST_F(WindowColors, ChangesTheColoursOfAnOpenWindowAndBack) {
  for (const bool isDark : {true, false, true}) {
    useDarkColors(isDark);
    for (int tab = 0; tab < 6; ++tab) {
      EXPECT_EQ(lightness(tab) < 128, isDark) << tab;
      for (const auto* label : page(tab)->findChildren<QLabel*>()) {
        EXPECT_EQ(label->palette().color(QPalette::WindowText).lightness() > 128, isDark)
            << label->text().toStdString();
      }
    }
  }
}

// The relative luminance of a colour and the ratio of two, as WCAG 2.1 defines them.
double luminance(const QColor& color) {
  const auto part = [](double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
}
double contrast(const QColor& one, const QColor& other) {
  const auto [low, high] = std::minmax({luminance(one), luminance(other)});
  return (high + 0.05) / (low + 0.05);
}

TEST_F(WindowColors, ShowAnUncheckedBoxInEveryScheme) {
  const QString before = QApplication::style()->name();
  QApplication::setStyle(QStringLiteral("fusion"));
  useOutlines();
  auto* box = control<QCheckBox>(5, QStringLiteral("Pausar coleta"));
  ASSERT_FALSE(box->isChecked());
  for (const Colors colors :
       {Colors{}, Colors{true, false}, Colors{false, true}, Colors{true, true}}) {
    useColors(colors);
    settle();
    const QImage image = page(5)->grab(QRect(box->mapTo(page(5), QPoint()), box->size())).toImage();
    QStyleOptionButton option;
    option.initFrom(box);
    const QRect indicator =
        box->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, box);
    // The upper edge in its middle, the box inside of it and the ground outside.
    const int middle = indicator.center().x();
    const QColor edge = image.pixelColor(middle, indicator.top());
    const QColor inside = image.pixelColor(middle, indicator.center().y());
    const QColor ground = image.pixelColor(middle, indicator.top() - 2);
    EXPECT_GE(contrast(edge, inside), 3) << colors.isDark << colors.isHighContrast;
    EXPECT_GE(contrast(edge, ground), 3) << colors.isDark << colors.isHighContrast;
  }
  useColors({});
  QApplication::setStyle(before);
}

TEST_F(WindowColors, HaveTheMostContrastWhereTheDesktopAsksForIt) {
  for (const bool isDark : {false, true}) {
    useColors({isDark, true});
    settle();
    EXPECT_TRUE(looksHighContrast());
    EXPECT_EQ(looksDark(), isDark);
    const QPalette palette = QApplication::palette();
    for (const auto& [ink, ground] : {std::pair{QPalette::WindowText, QPalette::Window},
                                      std::pair{QPalette::Text, QPalette::Base},
                                      std::pair{QPalette::ButtonText, QPalette::Button},
                                      std::pair{QPalette::HighlightedText, QPalette::Highlight},
                                      std::pair{QPalette::ToolTipText, QPalette::ToolTipBase}}) {
      EXPECT_GE(contrast(palette.color(ink), palette.color(ground)), 7) << ink << isDark;
    }
    for (const auto* label : page(2)->findChildren<QLabel*>()) {
      EXPECT_EQ(label->palette().color(QPalette::WindowText).alpha(), 255);
    }
  }
  useColors({});
  EXPECT_FALSE(looksHighContrast());
}

TEST_F(WindowColors, MakeNoReadingFaintWhereTheDesktopAsksForContrast) {
  LiveReading reading(8);
  reading.resize(reading.sizeHint());
  LiveReading::Content content;
  content.text = QStringLiteral("███");
  content.isFaint = true;
  reading.show(content);
  const auto inkContrast = [&] {
    settle();
    const QImage image = reading.grab().toImage();
    const QColor ground = image.pixelColor(image.width() - 1, 0);
    double most = 1;
    for (int x = 0; x < image.width(); ++x) {
      most = std::max(most, contrast(image.pixelColor(x, image.height() / 2), ground));
    }
    return most;
  };
  useColors({false, true});
  EXPECT_GE(inkContrast(), 20);
  useColors({true, true});
  EXPECT_GE(inkContrast(), 20);
  useColors({});
  EXPECT_GE(inkContrast(), 4.5);
  EXPECT_LT(inkContrast(), 10);
}

}  // namespace
}  // namespace vantora
