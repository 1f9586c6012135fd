// SPDX-License-Identifier: MIT
#include "settings/window/tool_tip_program.hpp"

#include <QToolTip>
#include <utility>

#include "settings/window/menu_place.hpp"
#include "settings/window/popup_application.hpp"
#include "settings/window/qt_text.hpp"

namespace vantora {

ToolTipProgram::ToolTipProgram(std::function<void(int status)> onEnd) : onEnd_(std::move(onEnd)) {
  endTimer_.setSingleShot(true);
  QObject::connect(&endTimer_, &QTimer::timeout, &endTimer_, [this] { end(0); });
}

void ToolTipProgram::receive(std::string_view bytes) {
  if (!framer_.append(bytes)) {
    end(1);
    return;
  }
  while (const auto line = framer_.takeLine()) {
    const auto content = MenuProtocol::readToolTipLine(*line);
    if (!content || hasShown_) {
      end(1);
      return;
    }
    show(*content);
  }
}

void ToolTipProgram::show(const ToolTipContent& content) {
  hasShown_ = true;
  useDesktopColors(content.isDark);
  const std::vector<MenuScreen> screens = allScreens();
  const QPoint pointer = placeOn(screenAt(screens, content.pointer), content.pointer);
  // Plain text, whatever it looks like, in the lines that it came in.
  const QString text =
      QStringLiteral("<p style='white-space:pre'>%1</p>").arg(qtText(content.text).toHtmlEscaped());
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
  application.streams().onInput = [&program](std::string_view bytes) { program.receive(bytes); };
  return PopupApplication::run();
}

}  // namespace vantora
