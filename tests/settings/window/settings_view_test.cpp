// SPDX-License-Identifier: MIT
//
// The window itself: how it comes to the front and how it closes.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QGuiApplication>
#include <QKeySequence>
#include <QLabel>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyleOption>
#include <QTabBar>
#include <algorithm>

#include "settings/window/readings/status_preview.hpp"
#include "settings/window/window_fixture.hpp"

namespace vantora {
namespace {

constexpr const char* tokenVariable = "XDG_ACTIVATION_TOKEN";

class SettingsViewTest : public test::WindowTest {
 protected:
  ~SettingsViewTest() override { qunsetenv(tokenVariable); }
};

TEST_F(SettingsViewTest, ComesToTheFrontAndKeepsNoTokenForLater) {
  view_->showMinimized();
  ASSERT_TRUE(model_->receive(SettingsProtocol::raiseLine("token-7")));
  EXPECT_FALSE(view_->isMinimized());
  EXPECT_TRUE(view_->isVisible());
  EXPECT_FALSE(qEnvironmentVariableIsSet(tokenVariable));
  ASSERT_TRUE(model_->receive(SettingsProtocol::raiseLine("")));
  EXPECT_FALSE(qEnvironmentVariableIsSet(tokenVariable));
}

TEST_F(SettingsViewTest, KeepsTheTokenUntilItHasSomethingToShow) {
  WindowModel model([](std::string_view) {}, panels_);
  const SettingsView view(model);
  ASSERT_TRUE(model.receive(SettingsProtocol::raiseLine("token-7")));
  EXPECT_FALSE(view.isVisible());
  EXPECT_EQ(qgetenv(tokenVariable), "token-7");
}

TEST_F(SettingsViewTest, ClosesWithTheKeysThatTheDesktopClosesWindowsWith) {
  int places = 0;
  view_->onPlaceChange = [&] { ++places; };
  const QKeyCombination keys = QKeySequence(QKeySequence::Close)[0];
  view_->activateWindow();
  QTest::keyClick(&*view_, keys.key(), keys.keyboardModifiers());
  EXPECT_FALSE(view_->isVisible());
  EXPECT_EQ(places, 1);
}

TEST_F(SettingsViewTest, ReportsAChangeOfTab) {
  int places = 0;
  view_->onPlaceChange = [&] { ++places; };
  view_->setCurrentTab(3);
  EXPECT_EQ(places, 1);
  EXPECT_EQ(view_->currentTab(), 3);
}

TEST_F(SettingsViewTest, AsksForPicturesOfItsScreensScale) {
  EXPECT_EQ(view_->devicePixelRatioF(), 1);
  model_->setScale(3);  // As if it had been on another screen.
  (void)sent();
  view_->repaint();
  const auto ready = sentOne<SettingsProtocol::Ready>();
  ASSERT_TRUE(ready);
  EXPECT_EQ(ready->scale, 1);
}

TEST_F(SettingsViewTest, FitsIntoASmallScreenAndIsNeverLargerThanIt) {
  EXPECT_LE(view_->minimumSizeHint().width(), 300);
  EXPECT_LE(view_->minimumSizeHint().height(), 200);
  const QSize screen = QGuiApplication::primaryScreen()->availableSize();
  EXPECT_LE(view_->height(), screen.height());
  EXPECT_LE(view_->width(), screen.width());
}

// What of a control's text does not fit into it; nothing when all does.
QString cutPart(const QWidget* widget) {
  if (const auto* label = qobject_cast<const QLabel*>(widget)) {
    const bool isLow = label->wordWrap() && label->height() < label->heightForWidth(label->width());
    const bool isNarrow = !label->wordWrap() && label->width() < label->sizeHint().width();
    return isLow || isNarrow ? label->text() : QString();
  }
  if (const auto* picker = qobject_cast<const QComboBox*>(widget)) {
    QStyleOptionComboBox option;
    option.initFrom(picker);
    option.editable = picker->isEditable();
    const int room =
        picker->style()
            ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, picker)
            .width();
    const QString text = picker->currentText();
    return picker->fontMetrics().horizontalAdvance(text) > room ? text : QString();
  }
  const auto* button = qobject_cast<const QAbstractButton*>(widget);
  const bool isCut = button != nullptr && button->width() < button->minimumSizeHint().width();
  return isCut ? button->text() : QString();
}

class WholeWindow : public test::WindowTest {
 protected:
  // Everything that is cut on any tab, with the first row open; of a window that is not small
  // what scrolls sideways as well.
  std::string cutParts(bool isSmall = false) {
    for (ModuleRow* row : rows()) {
      row->setOpen(row->id() == agent_.configuration.modules[0].id);
    }
    QStringList cut;
    for (int tab = 0; tab < 6; ++tab) {
      view_->setCurrentTab(tab);
      settle();
      for (auto* widget : page(tab)->findChildren<QWidget*>()) {
        const bool isPicker = qobject_cast<QComboBox*>(widget) != nullptr;
        if (widget->isVisible() && !(isSmall && isPicker)) {
          cut << cutPart(widget);
        }
      }
      // The bar does so on purpose.
      for (auto* area : page(tab)->findChildren<QScrollArea*>()) {
        const bool isBar = dynamic_cast<StatusPreview*>(area->widget()) != nullptr;
        if (!isSmall && !isBar && area->horizontalScrollBar()->maximum() > 0) {
          cut << QStringLiteral("tab %1: %2").arg(tab).arg(area->horizontalScrollBar()->maximum());
        }
      }
    }
    cut.removeAll(QString());
    return cut.join(QLatin1Char('\n')).toStdString();
  }
};

TEST_F(WholeWindow, CutsNothingAtItsUsualSize) {
  for (const MetricID metric : allMetrics) {
    agent_.configuration.modules[0].top = metric;
    tell({WindowField::configuration});
    EXPECT_EQ(cutParts(), "") << title(metric);
  }
}

TEST_F(WholeWindow, CutsNothingButATitleInItsPickerWhereItIsSmall) {
  view_->resize(300, 200);
  agent_.configuration.modules[0].top = MetricID::fan1RPM;
  tell({WindowField::configuration});
  EXPECT_EQ(cutParts(true), "");
}

// As small as the window gets, with all that the footer can say.
class SmallWindow : public test::WindowTest {
 protected:
  static constexpr QSize least{300, 200};
  SmallWindow() {
    view_->resize(least);
    settle();
  }
  void sayEverything() {
    agent_.configuration.paused = true;
    agent_.undoable = UndoableEdit::restoring;
    agent_.notice =
        "Falha ao ajustar início automático: a pasta de início automático não pode ser escrita.";
    tellAll();
  }
  QScrollArea* footer() {
    auto* label = view_->findChild<QLabel*>(QStringLiteral("footerNotice"));
    return qobject_cast<QScrollArea*>(label->parentWidget()->parentWidget()->parentWidget());
  }
};

TEST_F(SmallWindow, LeavesMostOfItselfToItsTabs) {
  sayEverything();
  EXPECT_EQ(view_->size(), least);
  ASSERT_NE(footer(), nullptr);
  EXPECT_LE(footer()->height(), least.height() / 3);
  EXPECT_GE(view_->findChild<QTabWidget*>()->height(), least.height() / 2);
}

TEST_F(SmallWindow, ScrollsAFooterThatDoesNotFit) {
  sayEverything();
  auto* notice = view_->findChild<QLabel*>(QStringLiteral("footerNotice"));
  EXPECT_GE(notice->height(), notice->heightForWidth(notice->width()));
  const int hidden = footer()->widget()->height() - footer()->viewport()->height();
  EXPECT_GT(hidden, 0);
  EXPECT_EQ(footer()->verticalScrollBar()->maximum(), hidden);
  EXPECT_LE(footer()->widget()->width(), footer()->viewport()->width());
}

TEST_F(SmallWindow, HasNoFooterWhileThereIsNothingToSay) {
  EXPECT_FALSE(footer()->isVisible());
  sayEverything();
  EXPECT_TRUE(footer()->isVisible());
}

TEST_F(SmallWindow, KeepsTheControlWithTheFocusInSight) {
  view_->activateWindow();
  for (int tab = 0; tab < 6; ++tab) {
    view_->setCurrentTab(tab);
    settle();
    QWidget* bar = view_->findChild<QTabBar*>();
    bar->setFocus(Qt::TabFocusReason);
    int visited = 0;
    for (QWidget* focused = bar;; ++visited) {
      QTest::keyClick(focused, Qt::Key_Tab);
      settle();
      focused = QApplication::focusWidget();
      ASSERT_NE(focused, nullptr);
      if (focused == bar || visited > 100) {
        break;
      }
      const QRect seen = focused->visibleRegion().boundingRect();
      EXPECT_GE(seen.height(), std::min(focused->height(), 20))
          << tab << ' ' << focused->accessibleName().toStdString();
      EXPECT_GE(seen.width(), std::min(focused->width(), 40))
          << tab << ' ' << focused->accessibleName().toStdString();
    }
    EXPECT_GT(visited, 2) << tab;
    EXPECT_LT(visited, 100) << tab;
  }
}

}  // namespace
}  // namespace vantora
