// SPDX-License-Identifier: MIT
#include "app/print/print_session.hpp"

#include <cerrno>
#include <utility>

#include "app/print/print_completion.hpp"

namespace vantora {

PrintSession::PrintSession(const PrintOptions& options, PrintOutput& output, TaskQueue& queue,
                           std::function<void(int error)> onEnd)
    : options_(options), output_(output), queue_(queue), onEnd_(std::move(onEnd)) {}

void PrintSession::start(AppCoordinator& coordinator, ReaderCheck check) {
  coordinator_ = &coordinator;
  // The gauges tell how old each reading is.
  if (!options_.follow || options_.format == PrintFormat::openMetrics ||
      check == ReaderCheck::atEachTick) {
    coordinator.onUpdate = [this] { updated(); };
  }
  if (!options_.follow || options_.hasTimeout) {
    timeout_ = queue_.runAfter(options_.timeout, Seconds{0}, [this] {
      if (options_.follow) {
        end(0);
      } else {
        printLast();
      }
    });
  }
  coordinator.launch();
}

void PrintSession::show(const StatusPresentation& presentation) {
  presentation_ = presentation;
  if (options_.follow) {
    isOwed_ = true;
    deliver();
  }
}

void PrintSession::resized() {
  if (!hasEnded_ && output_.resized()) {
    isOwed_ = true;
    deliver();
  }
}

void PrintSession::togglePause() {
  if (!hasEnded_) {
    coordinator_->togglePauseOfThisRun();
  }
}

void PrintSession::updated() {
  if (!output_.hasReader()) {
    end(0);
    return;
  }
  if (!options_.follow &&
      PrintCompletion::isComplete(coordinator_->shown(), coordinator_->snapshot(),
                                  coordinator_->samplingRounds())) {
    printLast();
  }
}

void PrintSession::printLast() {
  if (!std::exchange(isLast_, true)) {
    isOwed_ = true;
    deliver();
  }
}

// A reader that is behind gets the newest state once it reads on, not all that it missed:
// a bar or script that stopped reading neither blocks the program nor fills its memory.
void PrintSession::deliver() {
  constexpr Seconds retryInterval{1};
  constexpr Seconds leeway{0.1};
  retry_.reset();
  if (!hasEnded_ && output_.isBehind()) {
    written(output_.catchUp());
  }
  if (!hasEnded_ && isOwed_ && !output_.isBehind()) {
    isOwed_ = false;
    print();
  }
  if (hasEnded_) {
    return;
  }
  if (output_.isBehind()) {
    retry_ = queue_.runAfter(retryInterval, leeway, [this] { deliver(); });
  } else if (isLast_) {
    end(0);
  }
}

void PrintSession::print() {
  if (!presentation_) {
    return;
  }
  const SettingsModel& model = coordinator_->model();
  AppConfiguration configuration = model.configuration();
  configuration.paused = coordinator_->shown().paused;
  written(output_.print({configuration, coordinator_->snapshot(), *presentation_, model.notice(),
                         coordinator_->clock().now()}));
  printAgainLater();
}

// Whoever collects readings takes a file that grows old for a program that hangs. One that
// could not be written is tried again then as well.
void PrintSession::printAgainLater() {
  constexpr Seconds maxAge{60};
  if (!hasEnded_ && options_.follow && options_.format == PrintFormat::openMetrics) {
    renewal_ = queue_.runAfter(maxAge, maxAge / 10, [this] {
      isOwed_ = true;
      deliver();
    });
  }
}

void PrintSession::written(int error) {
  if (error != 0) {
    end(error == EPIPE ? 0 : error);
  }
}

void PrintSession::end(int error) {
  if (std::exchange(hasEnded_, true)) {
    return;
  }
  timeout_.reset();
  retry_.reset();
  renewal_.reset();
  output_.finish();
  onEnd_(error);
}

}  // namespace vantora
