// SPDX-License-Identifier: MIT
#include "settings/popup/tool_tip_program.hpp"

#include <QToolTip>
#include <utility>

#include "settings/popup/menu_place.hpp"
#include "settings/popup/popup_application.hpp"

namespace vantora {

ToolTipProgram::ToolTipProgram(std::function<void(int status)> onEnd) : onEnd_(std::move(onEnd)) {
  endTimer_.setSingleShot(true);
  QObject::connect(&endTimer_, &QTimer::timeout, &endTimer_, [this] { end(0); });
}

void ToolTipProgram::receive(std::string_view bytes) {
  const bool isGood = framer_.feed(bytes, [this](std::string_view line) {
    const auto content = MenuProtocol::readToolTipLine(line);
    if (!content || hasShown_) {
      return false;
    }
    show(*content);
    return true;
  });
  if (!isGood) {
    end(1);
  }
}

void ToolTipProgram::show(const ToolTipContent& content) {
  hasShown_ = true;
  useDesktopColors(content.isDark);
  const std::vector<MenuScreen> screens = allScreens();
  const QPoint pointer = placeOn(screenAt(screens, content.pointer), content.pointer);
  // Plain text, whatever it looks like, in the lines that it came in.
  const QString text = QStringLiteral("<p style='white-space:pre'>%1</p>")
                           .arg(QString::fromStdString(content.text).toHtmlEscaped());
  // The toolkit keeps it off the pointer and inside of the screen.
  QToolTip::showText(pointer, text, nullptr, {}, duration);
  endTimer_.start(duration);
}

void ToolTipProgram::end(int status) {
  if (!hasEnded_) {
    hasEnded_ = true;
    onEnd_(status);
  }
}

int runToolTipProgram(int argc, char** argv) {
  PopupApplication application(argc, argv);
  ToolTipProgram program([](int status) { QApplication::exit(status); });
  application.connection().onInput = [&program](std::string_view bytes) { program.receive(bytes); };
  return PopupApplication::run();
}

}  // namespace vantora
