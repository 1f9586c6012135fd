// SPDX-License-Identifier: MIT
#include "settings/popup/menu_program.hpp"

#include <QWindow>
#include <utility>

#include "settings/popup/menu_place.hpp"
#include "settings/popup/popup_application.hpp"

namespace vantora {

using namespace MenuProtocol;

namespace {

// Another client may hold the pointer or the keyboard for a moment: both are tried again.
constexpr int grabInterval = 20;  // milliseconds
constexpr int maxGrabAttempts = 50;

}  // namespace

MenuProgram::MenuProgram(Parts parts) : parts_(std::move(parts)) {
  // The program ends only after the choice has been sent.
  QObject::connect(
      &menu_, &QMenu::aboutToHide, &menu_, [this] { end(0); }, Qt::QueuedConnection);
  QObject::connect(&menu_, &QMenu::triggered, &menu_, [this](const QAction* action) {
    parts_.write(answerLine(Chosen{action->data().toInt()}));
  });
  grabTimer_.setInterval(grabInterval);
  QObject::connect(&grabTimer_, &QTimer::timeout, &menu_, [this] { grab(); });
}

void MenuProgram::receive(std::string_view bytes) {
  const bool isGood = framer_.feed(bytes, [this](std::string_view line) {
    const auto content = readMenuLine(line);
    if (!content || hasOpened_) {
      return false;
    }
    open(*content);
    return true;
  });
  if (!isGood) {
    end(1);
  }
}

void MenuProgram::open(const MenuContent& content) {
  hasOpened_ = true;
  useDesktopColors(content.isDark);
  for (const MenuEntry& entry : content.entries) {
    QString label = QString::fromStdString(entry.label);
    // The toolkit marks the letter of a shortcut with it.
    label.replace(QLatin1Char('&'), QLatin1String("&&"));
    menu_.addAction(label)->setData(entry.id);
  }
  const std::vector<MenuScreen> screens = allScreens();
  const MenuScreen& screen = screenAt(screens, content.pointer);
  const QPoint pointer = placeOn(screen, content.pointer);
  menu_.popup(menuPlace(menu_.sizeHint(), pointer, areaOn(screen, content.item), screen.available));
  parts_.write(answerLine(Shown{}));
  grabsLeft_ = maxGrabAttempts;
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
  AgentConnection& connection = application.connection();
  MenuProgram program({[&connection](std::string_view line) { connection.write(line); },
                       [](int status) { QApplication::exit(status); }});
  connection.onInput = [&program](std::string_view bytes) { program.receive(bytes); };
  return PopupApplication::run();
}

}  // namespace vantora
