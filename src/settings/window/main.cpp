// SPDX-License-Identifier: MIT
//
// vantora-settings: the settings window as a child process of the agent, with which it
// speaks on its standard streams (docs/settings-protocol.md). It ends with status 0 when
// the window is closed or the agent ends the conversation, with 1 when the agent says what
// it does not understand, with 2 when a person starts it. With "--menu" or "--tool-tip" it shows
// one of these and no window (docs/menu-protocol.md).
#include <unistd.h>

#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QScreen>
#include <QTranslator>
#include <csignal>
#include <string_view>

#include "runtime/standard_descriptors.hpp"
#include "settings/conversation/menu_protocol.hpp"
#include "settings/popup/menu_program.hpp"
#include "settings/popup/tool_tip_program.hpp"
#include "settings/toolkit/agent_connection.hpp"
#include "settings/toolkit/color_scheme.hpp"
#include "settings/toolkit/outlining_style.hpp"
#include "settings/window/controls/qt_text.hpp"
#include "settings/window/desktop_dialogs.hpp"
#include "settings/window/native_window.hpp"
#include "settings/window/qt_file_panels.hpp"
#include "settings/window/settings_view.hpp"
#include "settings/window/started_by_hand.hpp"

namespace {

// The texts of the toolkit's own dialogs, in the language of all the others.
void useBrazilianPortuguese(QTranslator& translator) {
  const QLocale portuguese(QLocale::Portuguese, QLocale::Brazil);
  QLocale::setDefault(portuguese);
  if (translator.load(portuguese, QStringLiteral("qtbase"), QStringLiteral("_"),
                      QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QApplication::installTranslator(&translator);
  }
}

}  // namespace

int main(int argc, char** argv) {
  vantora::StandardDescriptors::openMissing();
  std::signal(SIGPIPE, SIG_IGN);
  if (const auto status = vantora::answerStartByHand(argc, argv, STDIN_FILENO)) {
    return *status;
  }
  const std::string_view mode = argc == 2 ? argv[1] : "";
  if (mode == vantora::MenuProtocol::argument) {
    return vantora::runMenuProgram(argc, argv);
  }
  if (mode == vantora::MenuProtocol::toolTipArgument) {
    return vantora::runToolTipProgram(argc, argv);
  }
  vantora::useDesktopDialogs();
  QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("vantora-settings"));
  QApplication::setApplicationDisplayName(QStringLiteral("Vantora"));
  QApplication::setDesktopFileName(QStringLiteral("local.vantora.Vantora"));
  QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("vantora")));
  QTranslator translator;
  useBrazilianPortuguese(translator);
  vantora::useOutlines();
  vantora::followColorScheme();

  vantora::WindowMemory memory;
  vantora::QtFilePanels panels(memory);
  vantora::AgentConnection connection(STDIN_FILENO, STDOUT_FILENO);
  vantora::WindowModel model([&connection](std::string_view line) { connection.write(line); },
                             panels);
  vantora::SettingsView view(model);
  panels.setParent(&view);
  view.restoreGeometry(memory.geometry());
  view.setCurrentTab(memory.tab());
  view.onPlaceChange = [&] {
    memory.setGeometry(view.saveGeometry());
    memory.setTab(view.currentTab());
  };

  bool wasShown = false;
  connection.onInput = [&](std::string_view bytes) {
    if (!model.receive(bytes)) {
      QApplication::exit(1);
    } else if (model.hasState() && !wasShown) {
      wasShown = true;
      view.show();  // With its content, not before.
      vantora::bringToFront(view);
    }
  };
  connection.onEnd = [&] {
    view.close();
    QApplication::quit();
  };
  if (const QScreen* screen = QApplication::primaryScreen()) {
    model.setScale(screen->devicePixelRatio());
  }
  return QApplication::exec();
}
