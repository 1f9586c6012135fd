// SPDX-License-Identifier: MIT
//
// Pictures of every tab of the settings window as FOLDER/settings-TAB-NAME.png. The window is
// the real one in the colours that the desktop wants, fed by a conversation with made-up
// readings. For take_screenshots.py.
#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QPixmap>
#include <QTimer>
#include <cstdio>

#include "settings/toolkit/color_scheme.hpp"
#include "settings/toolkit/outlining_style.hpp"
#include "settings/window/example_state.hpp"
#include "settings/window/settings_view.hpp"
#include "support/fake_file_panels.hpp"

namespace {

constexpr const char* tabNames[] = {"modulos", "aparencia", "coleta", "codex", "claude", "geral"};

// Lets the window draw itself; what the desktop answers comes meanwhile.
void runFor(int milliseconds) {
  QEventLoop loop;
  QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
  loop.exec();
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() != 3 && arguments.size() != 5) {
    std::fprintf(stderr, "usage: %s FOLDER NAME [WIDTH HEIGHT]\n", argv[0]);
    return 2;
  }
  vantora::useOutlines();
  vantora::followColorScheme();
  runFor(1000);
  vantora::test::FakePanels panels;
  vantora::WindowModel model([](std::string_view) {}, panels);
  vantora::SettingsView view(model);
  vantora::WindowState state = vantora::test::exampleState(view.devicePixelRatioF());
  state.notice = "Configuração exportada.";
  if (!model.receive(
          vantora::SettingsProtocol::stateLine(state, {1, 0, vantora::allWindowFields}))) {
    return 1;
  }
  if (arguments.size() == 5) {
    view.resize(arguments[3].toInt(), arguments[4].toInt());
  }
  view.show();
  for (int tab = 0; tab < 6; ++tab) {
    view.setCurrentTab(tab);
    runFor(200);
    const QString name =
        QStringLiteral("settings-%1-%2.png").arg(QLatin1String(tabNames[tab]), arguments[2]);
    if (!view.grab().save(QDir(arguments[1]).filePath(name))) {
      std::fprintf(stderr, "cannot write %s\n", qPrintable(name));
      return 1;
    }
  }
  return 0;
}
