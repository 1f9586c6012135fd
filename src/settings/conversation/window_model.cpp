// SPDX-License-Identifier: MIT
#include "settings/conversation/window_model.hpp"

#include <algorithm>
#include <utility>

namespace vantora {

using namespace SettingsProtocol;

namespace {

auto findModule(AppConfiguration& configuration, const UUID& id) {
  return std::find_if(configuration.modules.begin(), configuration.modules.end(),
                      [&](const ModuleConfiguration& module) { return module.id == id; });
}

ModuleConfiguration moduleOf(MetricID top, MetricID bottom) {
  ModuleConfiguration module;
  module.top = top;
  module.bottom = bottom;
  return module;
}

}  // namespace

WindowModel::WindowModel(Send send, FilePanels& panels) : send_(std::move(send)), panels_(panels) {}

void WindowModel::setScale(double scale) {
  const double asked = std::clamp(scale, scales.least, scales.most);
  if (asked != scale_) {
    scale_ = asked;
    send(Ready{asked});
  }
}

bool WindowModel::receive(std::string_view bytes) {
  return framer_.feed(bytes, [this](std::string_view line) { return received(line); });
}

bool WindowModel::received(std::string_view line) {
  WindowState next = state_;
  const auto message = readAgentLine(line, next);
  if (!message) {
    return false;
  }
  if (const auto* change = std::get_if<StateChange>(&*message)) {
    takeOver(*change, std::move(next));
    send(Seen{change->sequence});
  } else if (onRaise) {
    onRaise(std::get<Raise>(*message).activationToken);
  }
  return true;
}

void WindowModel::takeOver(const StateChange& change, WindowState next) {
  WindowFields fields = change.fields;
  if (fields.contains(WindowField::configuration) && change.revision != revision_) {
    // The agent did not know the user's latest edit, which is on its way and will win.
    next.configuration = state_.configuration;
    fields.erase(WindowField::configuration);
  }
  if (fields.contains(WindowField::notice)) {
    ownNotice_.reset();
    heldNotice_ = next.notice ? next.notice : std::move(heldNotice_);
  }
  state_ = std::move(next);
  hasState_ = true;
  changed(fields);
}

void WindowModel::releaseNotice() {
  if (std::exchange(heldNotice_, std::nullopt) && !state_.notice) {
    changed({WindowField::notice});
  }
}

void WindowModel::setConfiguration(AppConfiguration configuration) {
  edit(std::move(configuration), std::nullopt);
}

void WindowModel::edit(AppConfiguration configuration, std::optional<UUID> pendingScrollID,
                       bool isRemoval) {
  if (!hasState_ || configuration == state_.configuration) {
    return;
  }
  WindowFields fields = dropOwnNotice();
  fields.insert(WindowField::configuration);
  state_.configuration = std::move(configuration);
  if (pendingScrollID) {
    state_.pendingScrollID = pendingScrollID;
    fields.insert(WindowField::pendingScrollID);
  }
  send(NewConfiguration{++revision_, state_.configuration, pendingScrollID, isRemoval});
  changed(fields);
}

void WindowModel::addModule() {
  insert(moduleOf(MetricID::cpuUsage, MetricID::none), 0);
}

void WindowModel::addCodexModule() {
  insert(moduleOf(MetricID::codexWeeklyPercent, MetricID::codexWeeklyReset), 0);
}

void WindowModel::addClaudeModule() {
  insert(moduleOf(MetricID::claudeWeeklyPercent, MetricID::claudeSessionPercent), 0);
}

void WindowModel::duplicateModule(const UUID& id) {
  const auto found = findModule(state_.configuration, id);
  if (found == state_.configuration.modules.end()) {
    return;
  }
  ModuleConfiguration copy = *found;
  copy.id = UUID::random();
  insert(copy, static_cast<std::size_t>(found - state_.configuration.modules.begin()) + 1);
}

void WindowModel::insert(const ModuleConfiguration& module, std::size_t index) {
  AppConfiguration next = state_.configuration;
  const UUID id = module.id;
  if (!next.insertAtTop(module)) {
    ownNotice_ = tooManyModulesText;
    changed({WindowField::notice});
    return;
  }
  const auto first = next.modules.begin();
  std::rotate(first, first + 1, first + 1 + static_cast<std::ptrdiff_t>(index));
  edit(std::move(next), id);
}

void WindowModel::removeModule(const UUID& id) {
  AppConfiguration next = state_.configuration;
  if (const auto found = findModule(next, id); found != next.modules.end()) {
    next.modules.erase(found);
    edit(std::move(next), std::nullopt, /*isRemoval=*/true);
  }
}

void WindowModel::moveModule(const UUID& id, std::size_t index) {
  AppConfiguration next = state_.configuration;
  const auto found = findModule(next, id);
  if (found == next.modules.end()) {
    return;
  }
  const ModuleConfiguration module = *found;
  next.modules.erase(found);
  const std::size_t place = std::min(index, next.modules.size());
  next.modules.insert(next.modules.begin() + static_cast<std::ptrdiff_t>(place), module);
  edit(std::move(next), std::nullopt);
}

void WindowModel::setSquareModule(const std::optional<UUID>& module) {
  if (state_.square && state_.square->module != module) {
    state_.square->module = module;
    ask(SettingsProtocol::SquareModule{module});
    changed({WindowField::square});
  }
}

void WindowModel::undo() {
  if (state_.undoable) {
    ask(Intent::undo);
  }
}

void WindowModel::selectCodexExecutable() {
  panels_.chooseExecutable("Escolha o executável oficial codex desta instalação.",
                           [this](const std::optional<std::filesystem::path>& chosen) {
                             request(PathIntent::selectCodexExecutable, chosen);
                           });
}

void WindowModel::exportJSON() {
  panels_.chooseExport("Vantora-layout.json",
                       [this](const std::optional<std::filesystem::path>& chosen) {
                         request(PathIntent::exportJSON, chosen);
                       });
}

void WindowModel::importJSON() {
  panels_.chooseImport([this](const std::optional<std::filesystem::path>& chosen) {
    request(PathIntent::importJSON, chosen);
  });
}

void WindowModel::request(PathIntent intent, const std::optional<std::filesystem::path>& chosen) {
  if (chosen && chosen->is_absolute()) {
    ask(PathRequest{intent, chosen->string()});
  }
}

void WindowModel::scrolled() {
  if (state_.pendingScrollID) {
    state_.pendingScrollID.reset();
    send(Intent::scrolled);
  }
}

// The agent's answer may be the notice that it gave before, which it does not send again.
void WindowModel::ask(const WindowMessage& message) {
  send(message);
  changed(dropOwnNotice());
}

WindowFields WindowModel::dropOwnNotice() {
  const bool isShown = ownNotice_.has_value();
  ownNotice_.reset();
  return isShown ? WindowFields{WindowField::notice} : WindowFields{};
}

void WindowModel::send(const WindowMessage& message) {
  if (const auto line = windowLine(message)) {
    send_(*line);
  }
}

void WindowModel::changed(WindowFields fields) const {
  if (onChange && !fields.empty()) {
    onChange(fields);
  }
}

}  // namespace vantora
