// SPDX-License-Identifier: MIT
//
// Pictures of the settings window: every tab in light and dark, as PNG files in the folder
// named on the command line. The window is the real one, fed by a conversation with made-up
// readings. Options: a scale and a text size in percent for trying others.
#include <QApplication>
#include <QDir>
#include <QFont>
#include <QPixmap>
#include <cstdio>

#include "settings/window/color_scheme.hpp"
#include "settings/window/settings_view.hpp"
#include "settings_window/example_state.hpp"
#include "support/fake_file_panels.hpp"

namespace {

constexpr const char* tabNames[] = {"modulos", "aparencia", "coleta", "codex", "claude", "geral"};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 2 || arguments.size() > 3) {
    std::fprintf(stderr, "usage: %s FOLDER [TEXT-PERCENT]\n", argv[0]);
    return 2;
  }
  const QDir folder(arguments[1]);
  if (arguments.size() > 2) {
    QFont font = QApplication::font();
    font.setPointSizeF(font.pointSizeF() * arguments[2].toDouble() / 100);
    QApplication::setFont(font);
  }
  namespace protocol = vantora::SettingsProtocol;
  for (const bool isDark : {false, true}) {
    vantora::useDarkColors(isDark);
    vantora::test::FakePanels panels;
    vantora::WindowModel model([](std::string_view) {}, panels);
    vantora::SettingsView view(model);
    vantora::WindowState state = vantora::test::exampleState(view.devicePixelRatioF());
    state.notice = "Configuração exportada.";
    if (!model.receive(protocol::stateLine(state, {1, 0, vantora::allWindowFields}))) {
      return 1;
    }
    view.show();
    for (int tab = 0; tab < 6; ++tab) {
      view.setCurrentTab(tab);
      QApplication::processEvents();
      const QString name = QStringLiteral("settings-%1-%2.png")
                               .arg(QLatin1String(tabNames[tab]),
                                    isDark ? QLatin1String("dark") : QLatin1String("light"));
      if (!view.grab().save(folder.filePath(name))) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(name));
        return 1;
      }
    }
  }
  return 0;
}
