// SPDX-License-Identifier: MIT
#include "settings/window/quota/quota_lines.hpp"

#include <utility>

#include "settings/window/controls/controls.hpp"
#include "settings/window/controls/qt_text.hpp"
#include "settings/window/readings/reading_text.hpp"

namespace vantora {

QuotaLines::QuotaLines(std::string program)
    : program_(std::move(program)),
      message_(Controls::makeText()),
      lastSuccess_(Controls::makeText()),
      executable_(Controls::makeText()) {}

void QuotaLines::addState(QVBoxLayout& column) const {
  column.addWidget(message_);
  column.addWidget(lastSuccess_);
}

void QuotaLines::addExecutable(QVBoxLayout& column) const {
  column.addWidget(executable_);
}

void QuotaLines::show(const QuotaSummary& quota) const {
  message_->setText(qtText("Estado: " + quota.message));
  lastSuccess_->setText(qtText("Última consulta confirmada: ") +
                        ReadingText::time(quota.lastSuccess));
  executable_->setText(qtText(program_ + ": " + quota.executable));
}

}  // namespace vantora
