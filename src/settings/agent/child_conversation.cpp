// SPDX-License-Identifier: MIT
#include "settings/agent/child_conversation.hpp"

#include <utility>

#include "model/words.hpp"

namespace vantora {

ChildConversation::ChildConversation(TaskQueue& queue, ChildProcessLauncher& launcher,
                                     std::size_t readLimit, Events events)
    : queue_(queue), launcher_(launcher), events_(std::move(events)), framer_(readLimit) {}

std::optional<Fault> ChildConversation::start(const ChildProcessOptions& options) {
  ChildProcessEvents events;
  if (events_.onLine) {
    events.onOutput = [this](std::string_view bytes) {
      if (!framer_.feed(bytes, events_.onLine)) {
        events_.onBroken();
      }
    };
  }
  events.onExit = [this](ChildExit exit) { events_.onExit(exit); };
  auto started = launcher_.start(options, std::move(events));
  if (!started) {
    Fault fault = started.fault();
    fault.detail = fault.kind == Fault::Kind::absent ? Words::windowProgramMissing
                                                     : options.executable + ": " + fault.detail;
    return fault;
  }
  child_ = std::move(started).value();
  return std::nullopt;
}

void ChildConversation::end() {
  framer_.clear();
  if (child_ != nullptr) {
    child_->terminate();
    // Destroyed later: this may be called from inside one of its events.
    queue_.post([ended = std::shared_ptr<ChildProcess>(std::move(child_))] {});
  }
}

}  // namespace vantora
