// SPDX-License-Identifier: MIT
#include "settings/agent/menu_process.hpp"

#include <algorithm>
#include <utility>

namespace vantora {

using namespace MenuProtocol;

namespace {

constexpr const char* unopenedText = "O menu não pôde ser aberto.";
constexpr const char* brokenText = "O menu falhou e foi fechado.";
constexpr const char* hangingText = "O menu não respondeu e foi fechado.";

}  // namespace

MenuProcess::MenuProcess(Parts parts)
    : parts_(std::move(parts)),
      conversation_(parts_.queue, parts_.launcher, agentReadLimit,
                    {[this](std::string_view line) { return received(line); },
                     [this] { fail(brokenText); }, [this](ChildExit exit) { ended(exit); }}) {}

std::map<std::string, std::string> MenuProcess::onX11(const std::string& busAddress) {
  // There is no such transport, and the toolkit does not look for another address.
  const std::string none = "disabled:";
  return {{"QT_QPA_PLATFORM", "xcb"},
          {"DBUS_SESSION_BUS_ADDRESS", busAddress.empty() ? none : busAddress}};
}

void MenuProcess::open(const MenuContent& content, OnChosen onChosen) {
  forget();
  ChildProcessOptions options;
  options.executable = parts_.executable;
  options.arguments = {argument};
  options.environmentChanges = parts_.environmentChanges;
  if (const auto fault = conversation_.start(options)) {
    fail(unopenedText + (" " + fault->detail));
    return;
  }
  entries_ = content.entries;
  onChosen_ = std::move(onChosen);
  openTimer_ = parts_.queue.runAfter(openLimit, Seconds{1}, [this] { fail(hangingText); });
  if (!conversation_.write(menuLine(content))) {
    fail(unopenedText);
  }
}

void MenuProcess::close() {
  forget();
}

// False for a line that is no answer, or out of turn.
bool MenuProcess::received(std::string_view line) {
  const auto answer = readAnswerLine(line);
  if (!answer) {
    return false;
  }
  if (const auto* choice = std::get_if<Chosen>(&*answer)) {
    return isShown_ && chosen(choice->id);
  }
  if (isShown_) {
    return false;
  }
  isShown_ = true;
  openTimer_.reset();
  return true;
}

bool MenuProcess::chosen(std::int32_t id) {
  if (std::none_of(entries_.begin(), entries_.end(),
                   [id](const MenuEntry& entry) { return entry.id == id; })) {
    return false;
  }
  // What was chosen may open the next menu.
  const OnChosen onChosen = std::move(onChosen_);
  forget();
  if (onChosen != nullptr) {
    onChosen(id);
  }
  return true;
}

void MenuProcess::ended(ChildExit exit) {
  if (exit == ChildExit{} && isShown_) {
    forget();  // given up by the user
  } else {
    fail(isShown_ ? brokenText : unopenedText);
  }
}

void MenuProcess::fail(const std::string& message) {
  forget();
  if (onFailure) {
    onFailure(message);
  }
}

void MenuProcess::forget() {
  conversation_.end();
  openTimer_.reset();
  entries_.clear();
  onChosen_ = nullptr;
  isShown_ = false;
}

}  // namespace vantora
