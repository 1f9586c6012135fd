// SPDX-License-Identifier: MIT
#include "settings/agent/tool_tip_process.hpp"

#include <utility>

namespace vantora {

ToolTipProcess::ToolTipProcess(MenuProcess::Parts parts)
    : parts_(std::move(parts)),
      conversation_(parts_.queue, parts_.launcher, 0,
                    {nullptr, nullptr, [this](ChildExit exit) { ended(exit); }}) {}

void ToolTipProcess::show(const ToolTipContent& content) {
  hide();
  ChildProcessOptions options;
  options.executable = parts_.executable;
  options.arguments = {MenuProtocol::toolTipArgument};
  options.environmentChanges = parts_.environmentChanges;
  if (conversation_.start(options) || !conversation_.write(MenuProtocol::toolTipLine(content))) {
    fail();
  }
}

void ToolTipProcess::hide() {
  conversation_.end();
}

void ToolTipProcess::ended(ChildExit exit) {
  if (exit == ChildExit{}) {
    hasFailed_ = false;
    hide();
  } else {
    fail();
  }
}

void ToolTipProcess::fail() {
  hide();
  if (!std::exchange(hasFailed_, true) && onFailure) {
    onFailure("A dica com as leituras não pôde ser mostrada.");
  }
}

}  // namespace vantora
