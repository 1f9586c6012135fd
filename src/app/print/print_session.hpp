// SPDX-License-Identifier: MIT
//
// One run of vantora-print: the status item of a coordinator whose bar is a stream of
// lines. Prints once when everything asked for is there, or at every change.
#pragma once

#include <functional>
#include <optional>

#include "app/app_coordinator.hpp"
#include "app/print/print_options.hpp"
#include "app/print/print_output.hpp"
#include "ports/status_item.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// Lives on the main thread, longer than the coordinator that shows in it.
class PrintSession final : public StatusItem {
 public:
  /// `onEnd` is called once with 0, or with why the output cannot be written (errno).
  /// A reader that went away is an ordinary end.
  PrintSession(const PrintOptions& options, PrintOutput& output, TaskQueue& queue,
               std::function<void(int error)> onEnd);

  /// Who detects that the reader is gone.
  enum class ReaderCheck : bool {
    atEachTick,  ///< The session, which needs every tick.
    byItsOwner,  ///< The owner, who then calls stop(). Ticks that change no text are left out.
  };

  /// Launches the coordinator, which was made with this session as its status item.
  void start(AppCoordinator& coordinator, ReaderCheck check = ReaderCheck::atEachTick);

  /// The terminal has another size.
  void resized();

  /// Pauses or resumes what is printed. Without it the configuration decides.
  void togglePause();

  /// A signal asked for the end, or the reader is gone.
  void stop() { end(0); }

  [[nodiscard]] double thickness() const override { return 24; }
  void show(const StatusPresentation& presentation) override;

 private:
  void updated();
  void print();
  void printLast();
  void deliver();
  void written(int error);
  void printAgainLater();
  void end(int error);

  PrintOptions options_;
  PrintOutput& output_;
  TaskQueue& queue_;
  std::function<void(int)> onEnd_;
  AppCoordinator* coordinator_ = nullptr;
  std::optional<StatusPresentation> presentation_;
  TimerHandle timeout_;
  TimerHandle retry_;    // while the reader is behind
  TimerHandle renewal_;  // of a file that is followed
  bool isOwed_ = false;  // what changed last is not printed yet
  bool isLast_ = false;  // the end comes once everything is written
  bool hasEnded_ = false;
};

}  // namespace vantora
