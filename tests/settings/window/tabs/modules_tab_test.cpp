// SPDX-License-Identifier: MIT
#include "settings/window/tabs/modules_tab.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QHelpEvent>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <algorithm>

#include "settings/window/window_fixture.hpp"

namespace vantora {
namespace {

using namespace SettingsProtocol;
using testing::ElementsAre;
using M = ModuleConfiguration;

class ModulesTabTest : public test::WindowTest {
 protected:
  // A row's control, in the row that is opened for it: the names of the first and the last
  // default module differ.
  template <typename Control>
  Control* in(int place, const char* name) {
    const M& module = agent_.configuration.modules[static_cast<std::size_t>(place)];
    row(module.id)->setOpen(true);
    settle();
    return control<Control>(
        0, QString::fromUtf8(name) +
               QStringLiteral(", módulo %1 (%2)").arg(place + 1).arg(qtText(title(module.top))));
  }
  void press(const char* name) { control<QPushButton>(0, QString::fromUtf8(name))->click(); }
  std::vector<UUID> order() {
    std::vector<UUID> ids;
    for (const M& module : agent_.configuration.modules) {
      ids.push_back(module.id);
    }
    return ids;
  }
  // The rows from top to bottom, as they are drawn.
  std::vector<UUID> drawnOrder() {
    QApplication::processEvents();
    std::vector<ModuleRow*> drawn;
    for (auto* candidate : rows()) {
      if (candidate->isVisible()) {
        drawn.push_back(candidate);
      }
    }
    std::sort(drawn.begin(), drawn.end(),
              [](const ModuleRow* one, const ModuleRow* other) { return one->y() < other->y(); });
    std::vector<UUID> ids;
    for (const ModuleRow* candidate : drawn) {
      ids.push_back(candidate->id());
    }
    return ids;
  }
  ModuleRow* row(const UUID& id) {
    for (auto* candidate : rows()) {
      if (candidate->id() == id) {
        return candidate;
      }
    }
    return nullptr;
  }
  bool isWhollyInView(const UUID& id) {
    const QRect place(row(id)->mapTo(list()->viewport(), QPoint()), row(id)->size());
    return list()->viewport()->rect().contains(place);
  }
  // The one whose content the rows are.
  QScrollArea* list() {
    for (auto* area : page(0)->findChildren<QScrollArea*>()) {
      if (area->widget() == rows().front()->parentWidget()) {
        return area;
      }
    }
    return nullptr;
  }
  const UUID a_ = agent_.configuration.modules[0].id;
  const UUID b_ = agent_.configuration.modules[1].id;
  const UUID c_ = agent_.configuration.modules[2].id;
};

TEST_F(ModulesTabTest, SendsAndShowsEveryMember) {
  struct Case {
    std::function<void()> act;
    std::function<void(M&)> change;
    std::function<QVariant()> shown;
  };
  const auto number = [this](const char* name, int value, auto member) {
    return Case{[=, this] { in<QSpinBox>(1, name)->setValue(value); },
                [=](M& module) { module.*member = value; },
                [=, this] { return QVariant(in<QSpinBox>(1, name)->value()); }};
  };
  const auto choice = [this](const char* name, const char* text, std::function<void(M&)> change) {
    return Case{[=, this] { in<QComboBox>(1, name)->setCurrentText(QString::fromUtf8(text)); },
                std::move(change),
                [=, this] { return QVariant(in<QComboBox>(1, name)->currentText()); }};
  };
  const Case cases[] = {
      {[this] { in<QCheckBox>(1, "Ativo")->click(); }, [](M& m) { m.enabled = false; },
       [this] { return QVariant(in<QCheckBox>(1, "Ativo")->isChecked()); }},
      choice("Linha 2 (L2)", "CPU · uso total", [](M& m) { m.bottom = MetricID::cpuUsage; }),
      choice("Modo da largura", "Automática", [](M& m) { m.widthMode = WidthMode::automatic; }),
      number("Largura", 160, &M::width),
      number("Fonte L1", 13, &M::fontTop),
      number("Fonte L2", 8, &M::fontBottom),
      choice("Alinhamento", "Direita", [](M& m) { m.alignment = Alignment::right; }),
      {[this] { in<QCheckBox>(1, "Espaço próprio")->click(); }, [](M& m) { m.gapAfter = 4; },
       [this] { return QVariant(in<QCheckBox>(1, "Espaço próprio")->isChecked()); }},
      {[this] { in<QSpinBox>(1, "Espaço próprio em pontos")->setValue(24); },
       [](M& m) { m.gapAfter = 24; },
       [this] { return QVariant(in<QSpinBox>(1, "Espaço próprio em pontos")->value()); }},
  };
  for (const Case& item : cases) {
    const AppConfiguration before = agent_.configuration;
    const QVariant shownBefore = item.shown();
    AppConfiguration wanted = before;
    item.change(wanted.modules[1]);
    item.act();
    EXPECT_EQ(sentConfiguration(), wanted);
    const QVariant shownAfter = item.shown();
    EXPECT_NE(shownBefore, shownAfter);
    agent_.configuration = before;
    tellAll();
    EXPECT_EQ(item.shown(), shownBefore);
    agent_.configuration = wanted;
    tellAll();
    EXPECT_EQ(item.shown(), shownAfter);
    EXPECT_TRUE(sent().empty());
  }
}

TEST_F(ModulesTabTest, ListsEveryMetricInTheOrderOfTheCatalogue) {
  for (const char* name : {"Linha 1 (L1)", "Linha 2 (L2)"}) {
    const auto* picker = in<QComboBox>(0, name);
    QStringList families;  // Each with its metrics, a separator between two.
    QStringList all;
    for (int index = 0; index < picker->count(); ++index) {
      if (picker->itemData(index).isValid()) {
        all << picker->itemText(index);
        if (families.isEmpty() || !picker->itemData(index - 1).isValid()) {
          families << picker->itemText(index).section(QStringLiteral(" ·"), 0, 0);
        }
      }
    }
    QStringList titles;
    for (const MetricID metric : allMetrics) {
      titles << qtText(title(metric));
    }
    EXPECT_EQ(all, titles);
    EXPECT_EQ(families, (QStringList{"Linha vazia", "Bateria", "Rede", "CPU", "Ventoinha 1",
                                     "Adaptador", "Codex", "Claude"}));
  }
}

TEST_F(ModulesTabTest, OffersTheWidthModesAndTheAlignmentsInTheirOrder) {
  const auto texts = [&](const char* name) {
    const auto* picker = in<QComboBox>(1, name);
    QStringList all;
    for (int index = 0; index < picker->count(); ++index) {
      all << picker->itemText(index);
    }
    return all;
  };
  EXPECT_EQ(texts("Modo da largura"), (QStringList{"Fixa", "Automática"}));
  EXPECT_EQ(texts("Alinhamento"), (QStringList{"Esquerda", "Centro", "Direita"}));
}

TEST_F(ModulesTabTest, SendsAndShowsTheFirstLineAndNamesTheRowAfterIt) {
  in<QComboBox>(1, "Linha 1 (L1)")->setCurrentText(QStringLiteral("CPU · uso total"));
  EXPECT_EQ(sentConfiguration().modules[1].top, MetricID::cpuUsage);
  EXPECT_EQ(row(b_)->accessibleName(), QStringLiteral("módulo 2 (CPU · uso total)"));
  agent_.configuration.modules[1].top = MetricID::batteryTime;
  tellAll();
  EXPECT_EQ(in<QComboBox>(1, "Linha 1 (L1)")->currentText(), qtText(title(MetricID::batteryTime)));
  EXPECT_TRUE(sent().empty());
}

TEST_F(ModulesTabTest, HoldsTheLimitsOfAModule) {
  EXPECT_EQ(in<QSpinBox>(0, "Largura")->minimum(), 16);
  EXPECT_EQ(in<QSpinBox>(0, "Largura")->maximum(), 160);
  EXPECT_EQ(in<QSpinBox>(0, "Fonte L1")->minimum(), 8);
  EXPECT_EQ(in<QSpinBox>(0, "Fonte L1")->maximum(), 13);
  EXPECT_EQ(in<QSpinBox>(0, "Espaço próprio em pontos")->maximum(), 24);
}

TEST_F(ModulesTabTest, BeginsAnOwnGapAsTheConfigurationsAndTakesItAway) {
  EXPECT_TRUE(in<QCheckBox>(0, "Espaço próprio")->isChecked());
  EXPECT_EQ(in<QSpinBox>(0, "Espaço próprio em pontos")->value(), 12);
  in<QCheckBox>(0, "Espaço próprio")->click();
  EXPECT_EQ(sentConfiguration().modules[0].gapAfter, std::nullopt);
  EXPECT_FALSE(in<QSpinBox>(0, "Espaço próprio em pontos")->isEnabled());
  EXPECT_EQ(in<QSpinBox>(0, "Espaço próprio em pontos")->value(), 4);
}

TEST_F(ModulesTabTest, OffersToHideFansWhereAModuleHasOne) {
  const char* name = "Ocultar na barra quando paradas ou sem leitura";
  auto* box = in<QCheckBox>(2, name);
  EXPECT_TRUE(box->isChecked());
  box->click();
  EXPECT_EQ(sentConfiguration().modules[2].hideInactiveFans, false);
  agent_.configuration.modules[2].hideInactiveFans = true;
  tellAll();
  EXPECT_TRUE(box->isChecked());
  agent_.configuration.modules[2].top = MetricID::cpuUsage;
  tellAll();
  EXPECT_FALSE(box->isVisibleTo(row(c_)));
}

TEST_F(ModulesTabTest, DuplicatesAndRemoves) {
  in<QPushButton>(0, "Duplicar")->click();
  ASSERT_EQ(sentConfiguration().modules.size(), 4U);
  EXPECT_EQ(drawnOrder(), order());
  in<QPushButton>(1, "Remover")->click();
  EXPECT_EQ(sentConfiguration().modules.size(), 3U);
  EXPECT_THAT(drawnOrder(), ElementsAre(a_, b_, c_));
}

TEST_F(ModulesTabTest, ScrollsToANewModuleAndFocusesItsFirstPicker) {
  view_->activateWindow();
  list()->verticalScrollBar()->setValue(list()->verticalScrollBar()->maximum());
  for (const char* button : {"Adicionar módulo", "Adicionar Codex semanal", "Adicionar Claude"}) {
    press(button);
    const auto messages = sent();
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(std::get<NewConfiguration>(messages[0]).pendingScrollID, order()[0]);
    EXPECT_EQ(std::get<Intent>(messages[1]), Intent::scrolled);
    settle();
    EXPECT_TRUE(isWhollyInView(order()[0]));
    EXPECT_TRUE(in<QComboBox>(0, "Linha 1 (L1)")->hasFocus());
  }
  EXPECT_EQ(drawnOrder(), order());
}

TEST_F(ModulesTabTest, ScrollsToAModuleAtTheEndOfALongList) {
  for (int count = 0; count < 10; ++count) {
    agent_.configuration.modules.push_back(agent_.configuration.modules[0]);
    agent_.configuration.modules.back().id = UUID::random();
  }
  agent_.pendingScrollID = agent_.configuration.modules.back().id;
  view_->setCurrentTab(3);
  tellAll();
  EXPECT_TRUE(sent().empty());
  view_->setCurrentTab(0);
  QApplication::processEvents();
  EXPECT_EQ(sentOne<Intent>(), Intent::scrolled);
  EXPECT_TRUE(isWhollyInView(order().back()));
}

TEST_F(ModulesTabTest, KeepsItsPlaceThroughChangesFromOutside) {
  for (int count = 0; count < 10; ++count) {
    agent_.configuration.modules.push_back(agent_.configuration.modules[0]);
    agent_.configuration.modules.back().id = UUID::random();
  }
  tellAll();
  list()->verticalScrollBar()->setValue(70);
  agent_.configuration.modules[5].width = 99;
  tellAll();
  EXPECT_EQ(list()->verticalScrollBar()->value(), 70);
  row(c_)->findChild<QCheckBox*>()->click();
  EXPECT_EQ(list()->verticalScrollBar()->value(), 70);
}

TEST_F(ModulesTabTest, OffersNo25thModuleAndSaysWhy) {
  while (agent_.configuration.modules.size() < 24) {
    press("Adicionar módulo");
    (void)sent();
  }
  for (const char* name : {"Adicionar módulo", "Adicionar Codex semanal", "Adicionar Claude",
                           "Duplicar, módulo 1 (CPU · uso total)"}) {
    auto* button = control<QPushButton>(0, QString::fromUtf8(name));
    ASSERT_NE(button, nullptr);
    EXPECT_FALSE(button->isEnabled()) << name;
    EXPECT_TRUE(button->toolTip().contains(QStringLiteral("24 módulos")));
    EXPECT_EQ(button->accessibleDescription(), button->toolTip());
  }
  agent_.configuration.modules.pop_back();
  tellAll();
  EXPECT_TRUE(control<QPushButton>(0, QStringLiteral("Adicionar módulo"))->isEnabled());
  EXPECT_EQ(control<QPushButton>(0, QStringLiteral("Adicionar módulo"))->toolTip(), QString());
}

TEST_F(ModulesTabTest, MovesAModuleWithTheKeyboard) {
  DragHandle& handle = row(a_)->handle();
  handle.setFocus();
  QTest::keyClick(&handle, Qt::Key_Down);
  (void)sent();
  EXPECT_THAT(order(), ElementsAre(b_, a_, c_));
  EXPECT_THAT(drawnOrder(), ElementsAre(b_, a_, c_));
  QTest::keyClick(&handle, Qt::Key_End);
  (void)sent();
  EXPECT_THAT(drawnOrder(), ElementsAre(b_, c_, a_));
  QTest::keyClick(&handle, Qt::Key_Down);
  EXPECT_TRUE(sent().empty());
  QTest::keyClick(&handle, Qt::Key_Up);
  (void)sent();
  EXPECT_THAT(drawnOrder(), ElementsAre(b_, a_, c_));
  QTest::keyClick(&handle, Qt::Key_Home);
  (void)sent();
  EXPECT_THAT(order(), ElementsAre(a_, b_, c_));
  QTest::keyClick(&handle, Qt::Key_Up);
  EXPECT_TRUE(sent().empty());
}

TEST_F(ModulesTabTest, MovesAModuleFromAnyOfItsControls) {
  view_->activateWindow();
  auto* width = in<QSpinBox>(1, "Largura");
  width->setFocus();
  QTest::keyClick(width, Qt::Key_Up, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_THAT(order().size(), 3U);
  (void)sentConfiguration();
  EXPECT_THAT(order(), ElementsAre(b_, a_, c_));
}

TEST_F(ModulesTabTest, MovesAModuleFromTheMenuOfItsHandle) {
  row(b_)->handle().click();
  auto* menu = row(b_)->handle().findChild<QMenu*>();
  ASSERT_NE(menu, nullptr);
  EXPECT_TRUE(menu->isVisible());
  ASSERT_EQ(menu->actions().size(), 4);
  EXPECT_EQ(menu->actions()[0]->text().remove(QLatin1Char('&')), QStringLiteral("Mover para cima"));
  menu->actions()[0]->trigger();
  (void)sentConfiguration();
  EXPECT_THAT(order(), ElementsAre(b_, a_, c_));
}

TEST_F(ModulesTabTest, MovesAModuleWithTheMouse) {
  DragHandle& handle = row(c_)->handle();
  const QPoint start = handle.rect().center();
  const QPoint end = handle.mapFromGlobal(row(a_)->mapToGlobal(QPoint(20, 5)));
  QTest::mousePress(&handle, Qt::LeftButton, {}, start);
  QTest::mouseMove(&handle, start + QPoint(0, -30));
  QTest::mouseMove(&handle, end);
  const auto* line = page(0)->findChild<QFrame*>(QStringLiteral("dropLine"));
  EXPECT_TRUE(line->isVisible());
  EXPECT_TRUE(sent().empty());
  QTest::mouseRelease(&handle, Qt::LeftButton, {}, end);
  (void)sentConfiguration();
  EXPECT_THAT(order(), ElementsAre(c_, a_, b_));
  EXPECT_THAT(drawnOrder(), ElementsAre(c_, a_, b_));
  EXPECT_FALSE(line->isVisible());
}

TEST_F(ModulesTabTest, LeavesTheOrderWhenADragIsCancelledOrEndsWhereItBegan) {
  DragHandle& handle = row(c_)->handle();
  const QPoint start = handle.rect().center();
  QTest::mousePress(&handle, Qt::LeftButton, {}, start);
  QTest::mouseMove(&handle, start + QPoint(0, -300));
  QTest::keyClick(&handle, Qt::Key_Escape);
  QTest::mouseRelease(&handle, Qt::LeftButton, {}, start + QPoint(0, -300));
  EXPECT_TRUE(sent().empty());
  QTest::mousePress(&handle, Qt::LeftButton, {}, start);
  QTest::mouseMove(&handle, start + QPoint(0, -40));
  QTest::mouseMove(&handle, start + QPoint(0, 1));
  QTest::mouseRelease(&handle, Qt::LeftButton, {}, start + QPoint(0, 1));
  EXPECT_TRUE(sent().empty());
}

TEST_F(ModulesTabTest, SurvivesARowThatGoesWhileItIsDragged) {
  DragHandle& handle = row(c_)->handle();
  QTest::mousePress(&handle, Qt::LeftButton, {}, handle.rect().center());
  QTest::mouseMove(&handle, QPoint(0, -100));
  agent_.configuration.modules.clear();
  tellAll();
  QTest::mouseMove(&handle, QPoint(0, -120));
  QTest::mouseRelease(&handle, Qt::LeftButton, {}, QPoint(0, -120));
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_TRUE(sent().empty());
  EXPECT_TRUE(texts(0).contains(QStringLiteral("Nenhum módulo")));
}

TEST_F(ModulesTabTest, PassesTheFocusFromRowToRowInTheirOrder) {
  agent_.configuration.modules = {agent_.configuration.modules[2], agent_.configuration.modules[0],
                                  agent_.configuration.modules[1]};
  tellAll();
  std::vector<const QWidget*> handles;
  const QWidget* at = &row(c_)->handle();
  do {
    if (dynamic_cast<const DragHandle*>(at) != nullptr) {
      handles.push_back(at);
    }
    at = at->nextInFocusChain();
  } while (at != &row(c_)->handle());
  EXPECT_THAT(handles, ElementsAre(&row(c_)->handle(), &row(a_)->handle(), &row(b_)->handle()));
}

TEST_F(ModulesTabTest, PassesTheFocusThroughARowInReadingOrder) {
  row(c_)->setOpen(true);
  settle();
  QStringList names;
  const QWidget* at = &row(c_)->handle();
  do {
    // A stepper's field takes its keys from the stepper.
    if (at->isVisible() && at->isEnabled() && (at->focusPolicy() & Qt::TabFocus) != 0 &&
        !at->accessibleName().isEmpty()) {
      names << at->accessibleName().section(QStringLiteral(", módulo"), 0, 0);
    }
    at = at->nextInFocusChain();
  } while (row(c_)->isAncestorOf(at));
  EXPECT_EQ(names, (QStringList{"Mover", "Ativo", "Recolher", "Linha 1 (L1)", "Linha 2 (L2)",
                                "Modo da largura", "Largura", "Alinhamento", "Fonte L1", "Fonte L2",
                                "Espaço próprio", "Ocultar na barra quando paradas ou sem leitura",
                                "Duplicar", "Remover"}));
}

TEST_F(ModulesTabTest, IgnoresTheWheelOverAControlWithoutFocus) {
  auto* width = in<QSpinBox>(1, "Largura");
  width->clearFocus();
  QWheelEvent wheel(width->rect().center(), width->mapToGlobal(width->rect().center()), {},
                    QPoint(0, 120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(width, &wheel);
  EXPECT_TRUE(sent().empty());
}

TEST_F(ModulesTabTest, PutsTheLinesOfBothHalvesOfARowAtTheSameHeights) {
  settle();
  const auto middle = [&](QWidget* widget) {
    return widget->mapTo(row(b_), widget->rect().center()).y();
  };
  EXPECT_EQ(middle(in<QSpinBox>(1, "Largura")), middle(in<QSpinBox>(1, "Fonte L1")));
  EXPECT_EQ(middle(in<QSpinBox>(1, "Fonte L1")), middle(in<QSpinBox>(1, "Fonte L2")));
  // A check box of an even height beside a stepper of an odd one.
  EXPECT_NEAR(middle(in<QCheckBox>(1, "Espaço próprio")),
              middle(in<QSpinBox>(1, "Espaço próprio em pontos")), 1);
}

TEST_F(ModulesTabTest, ShowsTheWholeOfATitleThatDoesNotFit) {
  auto* picker = in<QComboBox>(0, "Linha 2 (L2)");
  view_->resize(420, 520);
  settle();
  const auto toolTip = [&](const char* title) {
    picker->setCurrentText(QString::fromUtf8(title));
    QHelpEvent asks(QEvent::ToolTip, picker->rect().center(),
                    picker->mapToGlobal(picker->rect().center()));
    QApplication::sendEvent(picker, &asks);
    return picker->toolTip();
  };
  EXPECT_EQ(toolTip("Bateria · potência de carga (não validada)"),
            QStringLiteral("Bateria · potência de carga (não validada)"));
  EXPECT_EQ(toolTip("CPU · uso total"), QString());
}

TEST_F(ModulesTabTest, StacksTheHalvesOfARowWhereTheWindowIsNarrow) {
  const auto isStacked = [&] {
    QApplication::processEvents();
    const auto place = [&](QWidget* widget) { return widget->mapTo(row(b_), QPoint()); };
    return place(in<QSpinBox>(1, "Fonte L1")).y() > place(in<QSpinBox>(1, "Largura")).y();
  };
  view_->resize(640, 520);
  EXPECT_FALSE(isStacked());
  view_->resize(420, 520);
  EXPECT_TRUE(isStacked());
  EXPECT_EQ(list()->horizontalScrollBar()->maximum(), 0);
  view_->resize(640, 520);
  EXPECT_FALSE(isStacked());
}

}  // namespace
}  // namespace vantora
