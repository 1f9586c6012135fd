// SPDX-License-Identifier: MIT
#include "support/scripted_process.hpp"

#include <utility>

namespace vantora::test {

class ScriptedProcess::Handle final : public ChildProcess {
 public:
  explicit Handle(std::shared_ptr<ScriptedProcess> process) : process_(std::move(process)) {}
  ~Handle() override { process_->terminate(); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  [[nodiscard]] std::int32_t id() const override { return process_->id(); }
  [[nodiscard]] bool write(std::string_view bytes) override { return process_->take(bytes); }
  void closeInput() override { process_->endInput(); }
  void terminate() override { process_->terminate(); }

 private:
  std::shared_ptr<ScriptedProcess> process_;
};

ScriptedProcess::ScriptedProcess(TaskQueue& queue, std::int32_t id, ChildProcessOptions options,
                                 ChildProcessEvents events)
    : queue_(queue), id_(id), options_(std::move(options)), events_(std::move(events)) {}

void ScriptedProcess::post(std::function<void(const ChildProcessEvents&)> deliver) {
  queue_.post([self = shared_from_this(), deliver = std::move(deliver)] {
    if (!self->isTerminated_) {
      deliver(self->events_);
    }
  });
}

std::vector<std::string> ScriptedProcess::takeInputLines() {
  std::vector<std::string> lines;
  for (std::size_t end = input_.find('\n', takenInput_); end != std::string::npos;
       end = input_.find('\n', takenInput_)) {
    lines.push_back(input_.substr(takenInput_, end - takenInput_));
    takenInput_ = end + 1;
  }
  return lines;
}

void ScriptedProcess::output(std::string bytes) {
  post([bytes = std::move(bytes)](const ChildProcessEvents& events) {
    if (events.onOutput) {
      events.onOutput(bytes);
    }
  });
}

void ScriptedProcess::errorOutput(std::string bytes) {
  post([bytes = std::move(bytes)](const ChildProcessEvents& events) {
    if (events.onErrorOutput) {
      events.onErrorOutput(bytes);
    }
  });
}

void ScriptedProcess::endOutput() {
  post([](const ChildProcessEvents& events) {
    if (events.onOutputEnd) {
      events.onOutputEnd();
    }
  });
}

void ScriptedProcess::exit(ChildExit exit) {
  refusesInput_ = true;
  post([exit](const ChildProcessEvents& events) {
    if (events.onExit) {
      events.onExit(exit);
    }
  });
}

void ScriptedProcess::loseInput() {
  refusesInput_ = true;
  post([](const ChildProcessEvents& events) {
    if (events.onInputLost) {
      events.onInputLost();
    }
  });
}

bool ScriptedProcess::take(std::string_view bytes) {
  if (isInputClosed_ || refusesInput_) {
    return false;
  }
  input_ += bytes;
  if (onInput) {
    onInput(*this, bytes);
  }
  return true;
}

void ScriptedProcess::endInput() {
  if (!std::exchange(isInputClosed_, true) && onInputEnd) {
    onInputEnd(*this);
  }
}

void ScriptedProcess::terminate() {
  isTerminated_ = true;
  isInputClosed_ = true;
}

Result<std::unique_ptr<ChildProcess>> ScriptedLauncher::start(const ChildProcessOptions& options,
                                                              ChildProcessEvents events) {
  if (fault_) {
    return *fault_;
  }
  constexpr std::int32_t firstId = 1001;
  const auto id = firstId + static_cast<std::int32_t>(started_.size());
  started_.push_back(std::make_shared<ScriptedProcess>(queue_, id, options, std::move(events)));
  if (onStart) {
    onStart(*started_.back());
  }
  return std::unique_ptr<ChildProcess>(std::make_unique<ScriptedProcess::Handle>(started_.back()));
}

}  // namespace vantora::test
