// SPDX-License-Identifier: MIT
//
// Pictures of every tab of the settings window as FOLDER/settings-TAB-NAME.png, and of what shows
// only at times. The window is the real one in the colours that the desktop wants, fed by a
// conversation with made-up readings. For take_screenshots.py.
#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QPixmap>
#include <QScreen>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>

#include "settings/toolkit/color_scheme.hpp"
#include "settings/toolkit/outlining_style.hpp"
#include "settings/window/controls/link_picker.hpp"
#include "settings/window/example_state.hpp"
#include "settings/window/modules/module_row.hpp"
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

// The one window of the program, told its states in the agent's place.
class Scenes {
 public:
  Scenes(QString folder, QString name) : folder_(std::move(folder)), name_(std::move(name)) {}

  [[nodiscard]] vantora::SettingsView& view() { return view_; }
  bool tell(bool isPaused, std::optional<std::string> notice,
            std::optional<vantora::UndoableEdit> undoable) {
    auto state = vantora::test::exampleState(view_.devicePixelRatioF(), isPaused);
    state.notice = std::move(notice);
    state.undoable = undoable;
    return model_.receive(
        vantora::SettingsProtocol::stateLine(state, {++sequence_, 0, vantora::allWindowFields}));
  }
  // What the screen shows where the window is: lists that are open stand in windows of their own.
  bool take(const QString& scene) {
    runFor(300);
    const QRect place = view_.frameGeometry();
    const QString file =
        QDir(folder_).filePath(QStringLiteral("settings-%1-%2.png").arg(scene, name_));
    if (view_.screen()
            ->grabWindow(0, place.x(), place.y(), place.width(), place.height())
            .save(file)) {
      return true;
    }
    std::fprintf(stderr, "cannot write %s\n", qPrintable(file));
    return false;
  }
  bool takeTab(int tab, const QString& scene) {
    view_.setCurrentTab(tab);
    return take(scene);
  }
  vantora::ModuleRow* row(int number) {
    vantora::ModuleRow* found = nullptr;
    for (auto* frame : view_.findChildren<QFrame*>()) {
      auto* row = dynamic_cast<vantora::ModuleRow*>(frame);
      if (row != nullptr &&
          row->accessibleName().startsWith(QStringLiteral("módulo %1 ").arg(number))) {
        found = row;
      }
    }
    return found;
  }
  vantora::LinkPicker* links() {
    const auto boxes = view_.findChildren<QComboBox*>();
    const auto found = std::find_if(boxes.begin(), boxes.end(), [](QComboBox* box) {
      return dynamic_cast<vantora::LinkPicker*>(box) != nullptr;
    });
    return found != boxes.end() ? dynamic_cast<vantora::LinkPicker*>(*found) : nullptr;
  }

 private:
  QString folder_;
  QString name_;
  vantora::test::FakePanels panels_;
  vantora::WindowModel model_{[](std::string_view) {}, panels_};
  vantora::SettingsView view_{model_};
  std::uint64_t sequence_ = 0;
};

// What shows only at times, a row that is open, what can be undone, the list of the links, a pause,
// and then every tab. A notice stays for some seconds, so those with one come last.
bool takeAll(Scenes& scenes) {
  constexpr int modules = 0;
  constexpr int sampling = 2;
  bool isGood = scenes.tell(false, std::nullopt, vantora::UndoableEdit::removal);
  scenes.view().show();
  isGood = isGood && scenes.takeTab(modules, QStringLiteral("desfazer")) &&
           scenes.tell(true, std::nullopt, std::nullopt) &&
           scenes.takeTab(modules, QStringLiteral("pausada")) &&
           scenes.tell(false, std::nullopt, std::nullopt);
  scenes.row(3)->setOpen(true);
  isGood = isGood && scenes.take(QStringLiteral("aberto"));
  scenes.row(3)->setOpen(false);
  scenes.view().setCurrentTab(sampling);
  runFor(100);
  scenes.links()->showPopup();
  isGood = isGood && scenes.take(QStringLiteral("interfaces"));
  scenes.links()->hidePopup();
  isGood = isGood && scenes.tell(false, "Configuração exportada.", std::nullopt);
  for (int tab = 0; tab < 6 && isGood; ++tab) {
    isGood = scenes.takeTab(tab, QLatin1String(tabNames[tab]));
  }
  return isGood;
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
  Scenes scenes(arguments[1], arguments[2]);
  if (arguments.size() == 5) {
    scenes.view().resize(arguments[3].toInt(), arguments[4].toInt());
  }
  return takeAll(scenes) ? 0 : 1;
}
