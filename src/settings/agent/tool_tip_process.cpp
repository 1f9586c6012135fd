// SPDX-License-Identifier: MIT
#include "settings/agent/tool_tip_process.hpp"

#include <utility>

#include "settings/agent/let_go.hpp"

namespace vantora {

ToolTipProcess::ToolTipProcess(MenuProcess::Parts parts) : parts_(std::move(parts)) {}

void ToolTipProcess::show(const ToolTipContent& content) {
  hide();
  ChildProcessOptions options;
  options.executable = parts_.executable;
  options.arguments = {MenuProtocol::toolTipArgument};
  options.environmentChanges = parts_.environmentChanges;
  ChildProcessEvents events;
  events.onExit = [this](ChildExit exit) { ended(exit); };
  auto started = parts_.launcher.start(options, std::move(events));
  if (!started) {
    fail();
    return;
  }
  child_ = std::move(started).value();
  if (!child_->write(MenuProtocol::toolTipLine(content))) {
    fail();
  }
}

void ToolTipProcess::hide() {
  letGo(child_, parts_.queue);
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
