// SPDX-License-Identifier: MIT
//
// What the modules tab says of readings: live texts, reasons, the enlarged bar.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QHelpEvent>
#include <QMenu>
#include <QToolTip>
#include <algorithm>

#include "settings/window/readings/live_reading.hpp"
#include "settings/window/readings/reading_text.hpp"
#include "settings/window/readings/status_preview.hpp"
#include "settings/window/window_fixture.hpp"

namespace vantora {
namespace {

using test::codexTab;
using testing::ElementsAre;
using M = ModuleConfiguration;

class ReadingsTest : public test::WindowTest {
 protected:
  ReadingsTest() {
    agent_.configuration.modules.resize(3);
    set(0, MetricID::batteryPercent, MetricID::cpuUsage);
    set(1, MetricID::codexWeeklyPercent, MetricID::codexWeeklyReset);
    set(2, MetricID::fan1RPM, MetricID::none);
    agent_.readings = {
        {MetricID::batteryPercent, "—", Quality::unavailable, "Bateria interna indisponível",
         "Bateria interna indisponível", std::nullopt},
        {MetricID::cpuUsage, "12%", Quality::valid, "Linux /proc/stat", "", WallTime()},
        {MetricID::fan1RPM, "0", Quality::valid, "Linux hwmon", "", WallTime()},
        {MetricID::codexWeeklyPercent, "--", Quality::unavailable, "Codex App Server",
         "Integração desativada.", std::nullopt}};
    agent_.picture = {40, 1, 40, 20, std::vector<std::uint8_t>(800, 255), std::nullopt};
    agent_.picture.blocks = {{id(0), 3, 14}, {id(1), 20, 14}};
    agent_.picture.spoken = "Bateria · porcentagem: —; CPU · uso total: 12%";
    tellAll();
  }
  void set(std::size_t place, MetricID top, MetricID bottom) {
    agent_.configuration.modules[place].top = top;
    agent_.configuration.modules[place].bottom = bottom;
  }
  UUID id(std::size_t place) { return agent_.configuration.modules[place].id; }
  ModuleRow* row(std::size_t place) {
    for (ModuleRow* candidate : rows()) {
      if (candidate->id() == id(place)) {
        return candidate;
      }
    }
    return nullptr;
  }
  std::vector<LiveReading*> readings(std::size_t place) {
    std::vector<LiveReading*> shown;
    for (auto* reading : row(place)->findChildren<LiveReading*>()) {
      if (reading->isVisibleTo(row(place))) {
        shown.push_back(reading);
      }
    }
    return shown;
  }
  StatusPreview* preview() { return page(0)->findChild<StatusPreview*>(); }
  void open(std::size_t place) {
    row(place)->setOpen(true);
    settle();
  }
};

TEST_F(ReadingsTest, StandInTheFoldedLineWithTheirNames) {
  const auto shown = readings(0);
  ASSERT_EQ(shown.size(), 2U);
  EXPECT_EQ(shown[0]->content().label, QStringLiteral("Bateria"));
  EXPECT_EQ(shown[0]->content().text, QStringLiteral("— Bateria interna indisponível"));
  EXPECT_EQ(shown[1]->content().text, QStringLiteral("12%"));
  EXPECT_EQ(shown[1]->accessibleName(), QStringLiteral("CPU · uso total: 12%"));
}

TEST_F(ReadingsTest, SayTheReasonBesideThePickerInFull) {
  open(0);
  const auto shown = readings(0);
  ASSERT_EQ(shown.size(), 4U);
  EXPECT_EQ(shown[2]->content().text, QStringLiteral("— Bateria interna indisponível"));
  EXPECT_EQ(shown[2]->toolTip(), QStringLiteral("— Bateria interna indisponível"));
  EXPECT_EQ(shown[2]->accessibleDescription(), shown[2]->toolTip());
  EXPECT_EQ(shown[3]->toolTip(), QStringLiteral("12%\nFonte: Linux /proc/stat"));
}

TEST_F(ReadingsTest, StandBesideThePickerWithTheWholeReasonAtTheUsualSize) {
  row(0)->setOpen(true);
  settle();
  const LiveReading* reading = readings(0)[2];
  const auto* picker = reading->parentWidget()->findChild<QComboBox*>();
  ASSERT_NE(picker, nullptr);
  EXPECT_GT(reading->x(), picker->geometry().right());
  EXPECT_EQ(reading->geometry().center().y(), picker->geometry().center().y());
  EXPECT_GE(reading->width(), reading->fontMetrics().horizontalAdvance(reading->content().text));
}

TEST_F(ReadingsTest, AreOnlyADashInTheFoldedLineWhileTheyAreAwaited) {
  agent_.readings[1] = {MetricID::cpuUsage, "—",       Quality::stale, "Linux /proc/stat",
                        "Coleta pausada",   WallTime()};
  row(0)->setOpen(true);
  tell({WindowField::readings});
  const auto shown = readings(0);
  EXPECT_EQ(shown[1]->content().text, QStringLiteral("—"));
  EXPECT_EQ(shown[1]->accessibleName(), QStringLiteral("CPU · uso total: — Coleta pausada"));
  EXPECT_TRUE(shown[1]->toolTip().startsWith(QStringLiteral("CPU · uso total: — Coleta pausada")));
  EXPECT_EQ(shown[3]->content().text, QStringLiteral("— Coleta pausada"));
}

TEST_F(ReadingsTest, HaveALineOfTheirOwnWhereTheyDoNotFitBesideEachOther) {
  const auto isCut = [&] {
    const auto shown = readings(0);
    return shown[0]->width() < shown[0]->sizeHint().width();
  };
  const auto areStacked = [&] { return readings(0)[0]->y() != readings(0)[1]->y(); };
  EXPECT_FALSE(areStacked());
  EXPECT_FALSE(isCut());
  view_->resize(525, 360);
  settle();
  EXPECT_TRUE(areStacked());
  EXPECT_FALSE(isCut());
}

TEST_F(ReadingsTest, ChangeWithoutMovingAnythingOrTakingTheFocus) {
  view_->activateWindow();
  open(0);
  auto* picker = row(0)->findChild<QComboBox*>();
  picker->setFocus();
  const auto places = [&] {
    std::vector<QRect> all;
    for (const auto* widget : page(0)->findChildren<QWidget*>()) {
      if (widget->isVisible()) {
        all.emplace_back(widget->mapTo(page(0), QPoint()), widget->size());
      }
    }
    return all;
  };
  const auto before = places();
  agent_.readings[1].text = "100%";
  agent_.readings[0].text = "87%";
  agent_.readings[0].reason =
      "Um motivo muito mais longo do que todos os outros, em todas as telas";
  tell({WindowField::readings});
  EXPECT_EQ(readings(0)[1]->content().text, QStringLiteral("100%"));
  EXPECT_EQ(places(), before);
  EXPECT_TRUE(picker->hasFocus());
}

TEST_F(ReadingsTest, AreReadAsTextsAndThePreviewAsAGraphic) {
  const auto* text = QAccessible::queryAccessibleInterface(readings(0)[0]);
  EXPECT_EQ(text->role(), QAccessible::StaticText);
  const auto* graphic = QAccessible::queryAccessibleInterface(preview());
  EXPECT_EQ(graphic->role(), QAccessible::Graphic);
  EXPECT_EQ(graphic->text(QAccessible::Name), QStringLiteral("Prévia do bloco na barra"));
  EXPECT_EQ(graphic->text(QAccessible::Description), qtText(agent_.picture.spoken));
}

TEST_F(ReadingsTest, AreShownInAPreviewOfTwiceTheSize) {
  const QSize margins = preview()->sizeHint() - QSize(80, 40);
  EXPECT_EQ(margins.width(), margins.height());
  agent_.picture.enlarged = PictureInk{2, 80, 40, std::vector<std::uint8_t>(3200, 255)};
  tell({WindowField::picture});
  EXPECT_EQ(preview()->sizeHint() - QSize(80, 40), margins);
}

TEST_F(ReadingsTest, NameABlockThatIsPointedAt) {
  const QPoint first(6 + 2 * 10, 20);
  QHelpEvent asks(QEvent::ToolTip, first, preview()->mapToGlobal(first));
  QApplication::sendEvent(preview(), &asks);
  EXPECT_EQ(QToolTip::text(), QStringLiteral("Bateria e CPU\nBateria · porcentagem: — Bateria "
                                             "interna indisponível\nCPU · uso total: 12%"));
}

TEST_F(ReadingsTest, BringTheRowOfAClickedBlockIntoView) {
  for (int count = 0; count < 20; ++count) {
    agent_.configuration.modules.push_back(agent_.configuration.modules[0]);
    agent_.configuration.modules.back().id = UUID::random();
  }
  agent_.picture.blocks.push_back({agent_.configuration.modules.back().id, 36, 4});
  tellAll();
  QTest::mouseClick(preview(), Qt::LeftButton, {}, QPoint(6 + 2 * 38, 20));
  settle();
  ModuleRow* last = row(agent_.configuration.modules.size() - 1);
  EXPECT_TRUE(last->isOpen());
  EXPECT_FALSE(last->visibleRegion().isEmpty());
  EXPECT_TRUE(sent().empty());
}

TEST_F(ReadingsTest, SayInTheCaptionThatNothingIsMeasured) {
  EXPECT_FALSE(texts(0).contains(QStringLiteral("Coleta pausada")));
  agent_.configuration.paused = true;
  tell({WindowField::configuration});
  EXPECT_TRUE(texts(0).contains(QStringLiteral("Coleta pausada\n")));
  EXPECT_TRUE(texts(1).contains(QStringLiteral("Coleta pausada\n")));
}

TEST_F(ReadingsTest, MarkWhatThisMachineHasNot) {
  open(0);
  auto* picker = row(0)->findChild<QComboBox*>();
  const auto marked = [&](MetricID metric) {
    return picker->itemData(picker->findData(static_cast<int>(metric)), Qt::AccessibleTextRole)
        .toString();
  };
  EXPECT_EQ(marked(MetricID::batteryPercent),
            QStringLiteral("Bateria · porcentagem (sem leitura nesta máquina)"));
  EXPECT_EQ(marked(MetricID::cpuUsage), QString());
  EXPECT_EQ(marked(MetricID::codexWeeklyPercent), QString());
  EXPECT_EQ(picker->currentText(), QStringLiteral("Bateria · porcentagem"));
  agent_.readings[0] = {MetricID::batteryPercent, "87%", Quality::valid, "s", "", WallTime()};
  tell({WindowField::readings});
  EXPECT_EQ(marked(MetricID::batteryPercent), QString());
}

TEST_F(ReadingsTest, SayThatAFanModuleHidesItself) {
  const QString why = QStringLiteral("Oculto na barra agora: ventoinhas paradas ou sem leitura.");
  ASSERT_EQ(readings(2).size(), 3U);
  EXPECT_EQ(readings(2)[2]->content().text, QStringLiteral("oculto"));
  EXPECT_EQ(readings(2)[2]->toolTip(), why);
  EXPECT_EQ(row(2)->accessibleDescription(), why);
  EXPECT_EQ(readings(0).size(), 2U);
  agent_.picture.blocks.push_back({id(2), 36, 4});
  tell({WindowField::picture});
  EXPECT_EQ(readings(2).size(), 2U);
}

TEST_F(ReadingsTest, AreFaintInAnInactiveRow) {
  EXPECT_FALSE(readings(0)[0]->content().isFaint);
  agent_.configuration.modules[0].enabled = false;
  tell({WindowField::configuration});
  EXPECT_TRUE(readings(0)[0]->content().isFaint);
  EXPECT_EQ(readings(0)[0]->content().text, QString());
  EXPECT_EQ(row(0)->accessibleDescription(), QStringLiteral("Inativo: não aparece na barra."));
}

TEST_F(ReadingsTest, TellTwoQuotaModulesApart) {
  M codex;
  codex.top = MetricID::codexWeeklyPercent;
  codex.bottom = MetricID::codexWeeklyReset;
  M claude;
  claude.top = MetricID::claudeWeeklyPercent;
  claude.bottom = MetricID::claudeSessionPercent;
  EXPECT_EQ(ReadingText::moduleName(codex), QStringLiteral("Codex · semanal e Codex · renovação"));
  EXPECT_EQ(ReadingText::moduleName(claude), QStringLiteral("Claude · semanal e Claude · 5 horas"));
  EXPECT_EQ(readings(1)[0]->content().label, QStringLiteral("Codex · semanal"));
}

TEST_F(ReadingsTest, LeadToTheTabOfAnIntegrationThatIsOff) {
  open(1);
  EXPECT_TRUE(texts(0).contains(QStringLiteral("A integração Codex está desativada")));
  QPushButton* button = nullptr;
  for (auto* candidate : row(1)->findChildren<QPushButton*>()) {
    if (candidate->text() == QStringLiteral("Abrir a aba Codex semanal")) {
      button = candidate;
    }
  }
  ASSERT_NE(button, nullptr);
  button->click();
  EXPECT_EQ(view_->currentTab(), codexTab);
  agent_.configuration.codexSettings = CodexQuotaSettings{};
  agent_.configuration.codexSettings->enabled = true;
  tell({WindowField::configuration});
  EXPECT_FALSE(button->isVisibleTo(row(1)));
}

TEST_F(ReadingsTest, UnfoldOneRowAtATime) {
  open(0);
  EXPECT_EQ(row(0)->handle().accessibleName(),
            QStringLiteral("Mover, módulo 1 (Bateria · porcentagem)"));
  open(2);
  EXPECT_FALSE(row(0)->isOpen());
  EXPECT_TRUE(row(2)->isOpen());
  QTest::mouseClick(row(1), Qt::LeftButton, {}, QPoint(row(1)->width() / 2, 15));
  settle();
  EXPECT_TRUE(row(1)->isOpen());
  EXPECT_FALSE(row(2)->isOpen());
}

TEST_F(ReadingsTest, KeepTwentyFourRowsInSight) {
  while (agent_.configuration.modules.size() < ConfigurationLimits::modules) {
    agent_.configuration.modules.push_back(agent_.configuration.modules[0]);
    agent_.configuration.modules.back().id = UUID::random();
  }
  tellAll();
  EXPECT_LT(row(0)->parentWidget()->height(), 24 * 45);
}

TEST_F(ReadingsTest, ComeToAssistiveToolsInTheOrderOfTheModules) {
  std::swap(agent_.configuration.modules[0], agent_.configuration.modules[2]);
  tellAll();
  const auto* list = QAccessible::queryAccessibleInterface(row(0)->parentWidget());
  QStringList names;
  for (int index = 0; index < list->childCount(); ++index) {
    const QString name = list->child(index)->text(QAccessible::Name);
    if (name.startsWith(QStringLiteral("módulo "))) {
      names << name.section(QLatin1Char(' '), 0, 1);
    }
  }
  EXPECT_EQ(names, (QStringList{"módulo 1", "módulo 2", "módulo 3"}));
}

TEST_F(ReadingsTest, LeaveOutOfTheHandlesMenuWhatMovesNothing) {
  const auto enabled = [&](std::size_t place) {
    std::vector<bool> all;
    for (const auto* entry : row(place)->handle().menu()->actions()) {
      all.push_back(entry->isEnabled());
    }
    return all;
  };
  EXPECT_THAT(enabled(0), ElementsAre(false, true, false, true));
  EXPECT_THAT(enabled(1), ElementsAre(true, true, true, true));
  EXPECT_THAT(enabled(2), ElementsAre(true, false, true, false));
}

// Nothing is drawn again for a state in which nothing visible is new.
TEST_F(ReadingsTest, DrawNothingAgainThatLooksTheSame) {
  class Paints final : public QObject {
   public:
    int count = 0;
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
      count += event->type() == QEvent::Paint || event->type() == QEvent::LayoutRequest ? 1 : 0;
      return false;
    }
  } paints;
  settle();
  qApp->installEventFilter(&paints);
  agent_.readings[1].sampledAt = WallTime(std::chrono::seconds(60));
  tell({WindowField::readings, WindowField::picture});
  EXPECT_EQ(paints.count, 0);
  agent_.readings[1].source = "Linux /proc/stat · 4 CPUs";
  tell({WindowField::readings});
  EXPECT_THAT(readings(0)[1]->toolTip().toStdString(), testing::HasSubstr("4 CPUs"));
  EXPECT_EQ(paints.count, 0);
  agent_.readings[1].text = "13%";
  tell({WindowField::readings});
  EXPECT_GT(paints.count, 0);
  qApp->removeEventFilter(&paints);
}

}  // namespace
}  // namespace vantora
