// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/status_item_report.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantora {
namespace {

using testing::HasSubstr;
using Tray = XEmbedWindow::State;

StatusItemFacts shownBy(const char* program) {
  StatusItemFacts facts;
  facts.watcher = {.hasBus = true,
                   .isPresent = true,
                   .hasHost = true,
                   .panel = &panelOf(program),
                   .program = program};
  return facts;
}

TEST(StatusItemReport, NamesThePanelWithItsProgramFormAndReason) {
  const StatusItemReport report = describe(shownBy("waybar"));
  EXPECT_EQ(report.panel, "waybar");
  EXPECT_EQ(report.program, "waybar");
  EXPECT_EQ(report.form, "imagem inteira");
  EXPECT_EQ(report.formWhy, "este painel mantém a largura da imagem");
}

TEST(StatusItemReport, TellsWhichScalesAPanelIsOffered) {
  EXPECT_EQ(describe(shownBy("mate-panel")).scale, "1 e 2 pixels por ponto, à escolha do painel");
  EXPECT_EQ(describe(shownBy("waybar")).scale,
            "2 pixels por ponto; este painel adapta a maior imagem à tela");
}

TEST(StatusItemReport, SaysWhyASquareIsShown) {
  EXPECT_EQ(describe(shownBy("plasmashell")).formWhy, "este painel põe todo item em um quadrado");
  const StatusItemReport unknown = describe(shownBy("ironbar"));
  EXPECT_EQ(unknown.panel, "desconhecido");
  EXPECT_EQ(unknown.program, "ironbar");
  EXPECT_THAT(unknown.formWhy, HasSubstr("não é conhecido"));
  StatusItemFacts column = shownBy("mate-panel");
  column.isVertical = true;
  EXPECT_THAT(describe(column).formWhy, HasSubstr("vertical"));
  StatusItemFacts xfce = shownBy("xfce4-panel");
  EXPECT_THAT(describe(xfce).formWhy, HasSubstr("não há X11"));
  xfce.tray = Tray::absent;
  EXPECT_THAT(describe(xfce).formWhy, HasSubstr("não apareceu"));
  xfce.isTrayTooNarrow = true;
  EXPECT_THAT(describe(xfce).formWhy, HasSubstr("não deu a largura"));
  for (const StatusItemFacts& facts : {shownBy("plasmashell"), shownBy("ironbar"), column, xfce}) {
    EXPECT_EQ(describe(facts).form, "quadrado com um módulo");
  }
}

TEST(StatusItemReport, TellsTheScaleAndTheInkOfATray) {
  StatusItemFacts facts = shownBy("xfce4-panel");
  facts.tray = Tray::docked;
  facts.trayScale = 2;
  facts.trayInk = Ink::dark;
  const StatusItemReport report = describe(facts);
  EXPECT_EQ(report.panel, "Xfce, bandeja do X11");
  EXPECT_EQ(report.form, "imagem inteira");
  EXPECT_EQ(report.scale, "2 pixels por ponto");
  EXPECT_EQ(report.ink, "escura");
  facts.tray = Tray::squeezed;
  EXPECT_THAT(describe(facts).formWhy, HasSubstr("menos largura"));
  facts = {};
  facts.tray = Tray::docked;
  EXPECT_EQ(describe(facts).panel, "bandeja do X11");
  EXPECT_EQ(describe(facts).scale, "1 pixel por ponto");
}

TEST(StatusItemReport, SaysWhyTheInkIsWhatItIs) {
  StatusItemFacts facts = shownBy("waybar");
  EXPECT_EQ(describe(facts).ink, "clara, sobre uma placa escura");
  EXPECT_EQ(describe(facts).inkWhy, "o ambiente não diz que cores prefere");
  facts.colorScheme = ColorScheme::light;
  EXPECT_THAT(describe(facts).inkWhy, HasSubstr("prefere cores claras"));
  facts.colorScheme = ColorScheme::dark;
  EXPECT_EQ(describe(facts).ink, "clara");
  EXPECT_EQ(describe(facts).inkWhy, "o ambiente prefere cores escuras");
  EXPECT_THAT(describe(shownBy("gnome-shell")).inkWhy, HasSubstr("sempre escura"));
}

TEST(StatusItemReport, SaysInALineWhereAndHowTheItemIsShown) {
  EXPECT_EQ(lineOf({}), "painel: nenhum; sem barramento da sessão");
  StatusItemFacts facts;
  facts.watcher.hasBus = true;
  EXPECT_EQ(lineOf(facts), "painel: nenhum");
  facts = shownBy("mate-panel");
  EXPECT_EQ(lineOf(facts), "painel: MATE; forma: imagem inteira");
  facts.isVertical = true;
  EXPECT_EQ(lineOf(facts),
            "painel: MATE; forma: quadrado com um módulo, porque o painel é vertical");
  facts = shownBy("plasmashell");
  facts.isRowOfModules = true;
  EXPECT_EQ(lineOf(facts), "painel: Plasma; forma: um quadrado para cada módulo");
  facts = shownBy("xfce4-panel");
  facts.tray = Tray::docked;
  EXPECT_EQ(lineOf(facts),
            "painel: bandeja do X11; forma: imagem inteira, em uma janela que ela mantém larga");
  facts.tray = Tray::squeezed;
  EXPECT_EQ(lineOf(facts), "painel: bandeja do X11; forma: o que couber na janela");
}

TEST(StatusItemReport, SaysWhyNothingIsShown) {
  StatusItemFacts facts;
  EXPECT_EQ(describe(facts).form, "nenhuma");
  EXPECT_EQ(describe(facts).formWhy, "sem o barramento da sessão não há painel");
  facts.watcher.hasBus = true;
  EXPECT_EQ(describe(facts).formWhy, "nenhum painel desta sessão mostra itens");
  EXPECT_EQ(describe(facts).panel, "");
  facts.tray = Tray::starting;
  EXPECT_EQ(describe(facts).formWhy, "o servidor X11 ainda não respondeu");
}

}  // namespace
}  // namespace vantora
