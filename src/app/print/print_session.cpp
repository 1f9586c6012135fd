// SPDX-License-Identifier: MIT
#include "app/print/print_session.hpp"

#include <cerrno>
#include <utility>

#include "app/print/print_completion.hpp"

namespace vantora {

PrintSession::PrintSession(const PrintOptions& options, PrintOutput& output, TaskQueue& queue,
                           const Clock& clock, std::function<void(int error)> onEnd)
    : options_(options), output_(output), queue_(queue), clock_(clock), onEnd_(std::move(onEnd)) {}

void PrintSession::start(AppCoordinator& coordinator) {
  coordinator_ = &coordinator;
  coordinator.onUpdate = [this] { updated(); };
  if (!options_.follow || options_.hasTimeout) {
    timeout_ = queue_.runAfter(options_.timeout, Seconds{0}, [this] {
      if (!options_.follow) {
        print();
      }
      end(0);
    });
  }
  coordinator.launch();
}

void PrintSession::show(const StatusPresentation& presentation) {
  presentation_ = presentation;
  if (options_.follow) {
    print();
  }
}

void PrintSession::updated() {
  if (!output_.hasReader()) {
    end(0);
    return;
  }
  if (!options_.follow &&
      PrintCompletion::isComplete(coordinator_->model().configuration(), coordinator_->snapshot(),
                                  coordinator_->samplingRounds())) {
    print();
    end(0);
  }
}

void PrintSession::print() {
  if (hasEnded_ || !presentation_) {
    return;
  }
  const SettingsModel& model = coordinator_->model();
  const int error = output_.print({model.configuration(), coordinator_->snapshot(), *presentation_,
                                   model.notice(), clock_.now()});
  if (error != 0) {
    end(error == EPIPE ? 0 : error);
  }
}

void PrintSession::end(int error) {
  if (std::exchange(hasEnded_, true)) {
    return;
  }
  timeout_.reset();
  output_.finish();
  onEnd_(error);
}

}  // namespace vantora
