// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/status_item_report.hpp"

#include <string>
#include <string_view>

namespace vantora {
namespace {

using Tray = XEmbedWindow::State;

std::string pixelsForAPoint(int scale) {
  return std::to_string(scale) + (scale == 1 ? " pixel por ponto" : " pixels por ponto");
}

std::string onlyScale(int scale) {
  return pixelsForAPoint(scale) + (scale == 1 ? ", como em todas as telas da sessão"
                                              : "; este painel adapta a maior imagem à tela");
}

const char* name(Ink ink) {
  switch (ink) {
    case Ink::light:
      return "clara";
    case Ink::dark:
      return "escura";
    case Ink::lightOnPlate:
      return "clara, sobre uma placa escura";
  }
  return "";
}

bool isInTray(const StatusItemFacts& facts) {
  return facts.tray == Tray::docking || facts.tray == Tray::docked || facts.tray == Tray::squeezed;
}

void describeTray(const StatusItemFacts& facts, StatusItemReport& report) {
  const bool isWhole = facts.tray != Tray::squeezed;
  report.scale = pixelsForAPoint(facts.trayScale);
  report.ink = name(facts.trayInk);
  report.inkWhy = facts.trayInk == Ink::lightOnPlate
                      ? "a bandeja não informa a cor dos seus textos"
                      : "é a cor que a bandeja informa para os seus textos";
  report.form = isWhole ? "imagem inteira" : "o que couber na janela";
  if (!isWhole) {
    report.formWhy = "a bandeja do X11 dá menos largura do que a imagem pede";
  } else if (facts.watcher.isPresent && facts.watcher.panel->keepsTrayWindowWide) {
    report.formWhy = "este painel mantém a largura de uma janela na sua bandeja do X11";
  } else {
    report.formWhy = "nenhum painel aceita itens; a bandeja do X11 mantém a largura";
  }
}

std::string whySquare(const StatusItemFacts& facts) {
  const Panel& panel = *facts.watcher.panel;
  if (facts.isVertical) {
    return "o painel é vertical: não há largura para a imagem";
  }
  if (&panel == &unknownPanel()) {
    return "o painel não é conhecido, e um quadrado cabe em qualquer um";
  }
  if (!panel.keepsTrayWindowWide) {
    return "este painel põe todo item em um quadrado";
  }
  if (!facts.tray) {
    return "este painel põe todo item em um quadrado, e não há X11 para usar a sua bandeja";
  }
  if (facts.tray == Tray::starting) {
    return "este painel põe todo item em um quadrado, e o servidor X11 não respondeu";
  }
  return facts.isTrayTooNarrow
             ? "este painel põe todo item em um quadrado, e a sua bandeja não deu a largura"
             : "este painel põe todo item em um quadrado, e a sua bandeja não apareceu";
}

void describeItem(const StatusItemFacts& facts, StatusItemReport& report) {
  const Panel& panel = *facts.watcher.panel;
  const PictureForm form = formOn(panel, facts.isVertical);
  report.form = describe(form);
  switch (form) {
    case PictureForm::wide:
      report.formWhy = "este painel mantém a largura da imagem";
      report.scale = panel.drawsLargest ? onlyScale(facts.onlyScale)
                                        : "1 e 2 pixels por ponto, à escolha do painel";
      break;
    case PictureForm::label:
      report.formWhy = "este painel põe o ícone em um quadrado, mas mostra um texto ao lado";
      report.scale = "16 a 48 pixels de lado, à escolha do painel";
      break;
    case PictureForm::square:
      report.formWhy = whySquare(facts);
      report.scale = "16 a 48 pixels de lado, à escolha do painel";
      break;
  }
  report.ink = name(inkFor(panel, facts.colorScheme));
  if (panel.isAlwaysDark) {
    report.inkWhy = "a barra deste painel é sempre escura";
  } else if (facts.colorScheme == ColorScheme::dark) {
    report.inkWhy = "o ambiente prefere cores escuras";
  } else {
    report.inkWhy = facts.colorScheme == ColorScheme::light
                        ? "o ambiente prefere cores claras, mas a barra pode ser escura"
                        : "o ambiente não diz que cores prefere";
  }
}

}  // namespace

StatusItemReport describe(const StatusItemFacts& facts) {
  StatusItemReport report;
  const StatusNotifierWatcher::State& watcher = facts.watcher;
  if (watcher.isPresent && (watcher.hasHost || isInTray(facts))) {
    report.program = watcher.program;
    report.panel =
        watcher.panel == &unknownPanel() ? "desconhecido" : std::string(watcher.panel->name);
  }
  if (isInTray(facts)) {
    report.panel = report.panel.empty() ? "bandeja do X11" : report.panel + ", bandeja do X11";
    describeTray(facts, report);
  } else if (watcher.hasHost) {
    describeItem(facts, report);
  } else {
    report.form = "nenhuma";
    if (facts.tray == Tray::starting) {
      report.formWhy = "o servidor X11 ainda não respondeu";
    } else {
      report.formWhy = watcher.hasBus ? "nenhum painel desta sessão mostra itens"
                                      : "sem o barramento da sessão não há painel";
    }
  }
  return report;
}

std::string lineOf(const StatusItemFacts& facts) {
  if (isInTray(facts)) {
    return facts.tray == Tray::docked
               ? "painel: bandeja do X11; forma: imagem inteira, em uma janela que ela mantém larga"
               : "painel: bandeja do X11; forma: o que couber na janela";
  }
  const StatusNotifierWatcher::State& watcher = facts.watcher;
  if (!watcher.hasHost) {
    return watcher.hasBus ? "painel: nenhum" : "painel: nenhum; sem barramento da sessão";
  }
  const PictureForm form = formOn(*watcher.panel, facts.isVertical);
  const std::string_view shown =
      facts.isRowOfModules ? "um quadrado para cada módulo" : describe(form);
  return "painel: " + std::string(watcher.panel->name) + "; forma: " + std::string(shown) +
         (form != watcher.panel->form ? ", porque o painel é vertical" : "");
}

}  // namespace vantora
