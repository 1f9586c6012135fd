// SPDX-License-Identifier: MIT
#include "settings/window/menu_program.hpp"

#include <QWindow>
#include <utility>

#include "settings/window/menu_place.hpp"
#include "settings/window/popup_application.hpp"
#include "settings/window/qt_text.hpp"

namespace vantora {

using namespace MenuProtocol;

namespace {

// Somebody else may hold the pointer or the keyboard for a moment: tried again this often.
constexpr int grabPause = 20;  // milliseconds
constexpr int mostGrabs = 50;

}  // namespace

MenuProgram::MenuProgram(Parts parts) : parts_(std::move(parts)) {
  // The choice is told only after the menu has gone.
  QObject::connect(
      &menu_, &QMenu::aboutToHide, &menu_, [this] { end(0); }, Qt::QueuedConnection);
  QObject::connect(&menu_, &QMenu::triggered, &menu_, [this](const QAction* action) {
    parts_.write(answerLine(Chosen{action->data().toInt()}));
  });
  grabTimer_.setInterval(grabPause);
  QObject::connect(&grabTimer_, &QTimer::timeout, &menu_, [this] { grab(); });
}

void MenuProgram::receive(std::string_view bytes) {
  if (!framer_.append(bytes)) {
    end(1);
    return;
  }
  while (const auto line = framer_.takeLine()) {
    const auto content = readMenuLine(*line);
    if (!content || hasOpened_) {
      end(1);
      return;
    }
    open(*content);
  }
}

void MenuProgram::open(const MenuContent& content) {
  hasOpened_ = true;
  useDesktopColors(content.isDark);
  for (const MenuEntry& entry : content.entries) {
    QString label = qtText(entry.label);
    // The toolkit marks the letter of a shortcut with it.
    label.replace(QLatin1Char('&'), QLatin1String("&&"));
    menu_.addAction(label)->setData(entry.id);
  }
  const std::vector<MenuScreen> screens = allScreens();
  const MenuScreen& screen = screenAt(screens, content.pointer);
  const QPoint pointer = placeOn(screen, content.pointer);
  menu_.popup(menuPlace(menu_.sizeHint(), pointer, areaOn(screen, content.item), screen.available));
  parts_.write(answerLine(Shown{}));
  grabsLeft_ = mostGrabs;
  grab();
}

// The toolkit asks for both as it opens a menu, and once only. Without them clicks on the
// menu still arrive; those elsewhere and the keyboard do not.
void MenuProgram::grab() {
  QWindow* window = menu_.windowHandle();
  const bool isGrabbed =
      window == nullptr || !menu_.isVisible() ||
      (window->setKeyboardGrabEnabled(true) && window->setMouseGrabEnabled(true));
  if (isGrabbed || --grabsLeft_ == 0) {
    grabTimer_.stop();
  } else {
    grabTimer_.start();
  }
}

void MenuProgram::end(int status) {
  if (!hasEnded_) {
    hasEnded_ = true;
    parts_.onEnd(status);
  }
}

int runMenuProgram(int argc, char** argv) {
  PopupApplication application(argc, argv);
  StandardStreams& streams = application.streams();
  MenuProgram program({[&streams](std::string_view line) { streams.write(line); },
                       [](int status) { QApplication::exit(status); }});
  streams.onInput = [&program](std::string_view bytes) { program.receive(bytes); };
  return PopupApplication::run();
}

}  // namespace vantora
