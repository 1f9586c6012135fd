// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/posted_actions.hpp"

#include <utility>

namespace vantora {

void PostedActions::set(StatusItemActions actions) {
  actions_ = std::make_shared<const StatusItemActions>(std::move(actions));
}

bool PostedActions::isPaused() const {
  return actions_ != nullptr && actions_->isPaused != nullptr && actions_->isPaused();
}

void PostedActions::openSettings(std::string activationToken) {
  queue_.post([weak = std::weak_ptr(actions_), token = std::move(activationToken)] {
    const auto actions = weak.lock();
    if (actions != nullptr && actions->openSettings != nullptr) {
      actions->openSettings(token);
    }
  });
}

void PostedActions::run(StatusMenuCommand command) {
  queue_.post([weak = std::weak_ptr(actions_), command] {
    const auto actions = weak.lock();
    if (actions == nullptr) {
      return;
    }
    switch (command) {
      case StatusMenuCommand::openSettings:
        return actions->openSettings != nullptr ? actions->openSettings({}) : void();
      case StatusMenuCommand::togglePause:
        return actions->togglePause != nullptr ? actions->togglePause() : void();
      case StatusMenuCommand::quit:
        return actions->quit != nullptr ? actions->quit() : void();
    }
  });
}

}  // namespace vantora
