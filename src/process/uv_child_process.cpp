// SPDX-License-Identifier: MIT
#include "process/uv_child_process.hpp"

#include <poll.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <utility>

#include "process/child_guard.hpp"
#include "process/child_streams.hpp"
#include "process/exec_strings.hpp"
#include "process/executable_file.hpp"
#include "process/spawn_program.hpp"
#include "process/uv_child_input.hpp"
#include "runtime/private_folder.hpp"
#include "runtime/thread_hints.hpp"

namespace vantora {
namespace {

constexpr std::size_t readSize = 65'536;
constexpr Seconds graceLeeway{0.5};
constexpr Seconds groupCheckInterval{0.1};
constexpr int groupChecks = 20;  // they span the grace

Fault startFault(int status) {
  const bool isMissing = status == UV_ENOENT || status == UV_ENOTDIR;
  return {isMissing ? Fault::Kind::absent : Fault::Kind::failed, uv_err_name(status)};
}

}  // namespace

// What all children of a launcher share.
struct UvChildProcessLauncher::Family {
  uv_loop_t& loop;
  TaskQueue& queue;
  std::vector<Child*> children;
  std::vector<char> readBuffer;  // kept only while there are children
};

// One child from its start until it was reaped and libuv has closed its handles. It
// holds itself until then, because libuv uses its memory.
struct UvChildProcessLauncher::Child {
  explicit Child(std::shared_ptr<Family> itsFamily, ChildProcessEvents itsEvents)
      : family(std::move(itsFamily)), events(std::move(itsEvents)) {
    process.data = this;
    output.data = this;
    error.data = this;
  }

  std::shared_ptr<Family> family;
  ChildProcessEvents events;
  uv_process_t process{};
  uv_pipe_t output{};
  uv_pipe_t error{};
  UvChildInput input;
  ChildGuard guard;  // of the group, until that is seen empty
  int openHandles = 0;
  bool isLetGo = false;      // terminated: the owner hears nothing any more
  bool hasExited = false;    // and is reaped
  bool isGroupLeft = false;  // its process group was not empty when it exited
  int groupChecksLeft = groupChecks;
  TimerHandle escalation;
  std::shared_ptr<Child> self;

  [[nodiscard]] int spawn(const ChildProcessOptions& options, ChildStreams& streams);
  [[nodiscard]] int openStreams(ChildStreams& streams);
  [[nodiscard]] int openPipe(uv_pipe_t& pipe, UniqueFd& end);
  void closePipe(uv_pipe_t& pipe);
  void closeStreams();
  void terminate();
  void abandon();
  void watchGroup();
  void onRead(const uv_stream_t& stream, ssize_t count, const char* bytes);
  void onExit(ChildExit exit);
  void onHandleClosed();
  void leaveWhenDone();

  void signalGroup(int signal) const {
    if (process.pid > 0) {
      kill(-process.pid, signal);
    }
  }
  // A number is not given to a new process while a group still goes by it.
  [[nodiscard]] bool isGroupAlive() const { return kill(-process.pid, 0) == 0; }

  static Child& of(void* data) { return *static_cast<Child*>(data); }
  static void closed(uv_handle_t* handle) { of(handle->data).onHandleClosed(); }
};

int UvChildProcessLauncher::Child::spawn(const ChildProcessOptions& options,
                                         ChildStreams& streams) {
  ExecStrings arguments;
  arguments.add(options.name.empty() ? options.executable : options.name);
  for (const std::string& argument : options.arguments) {
    arguments.add(argument);
  }
  ExecStrings environment = environmentWith(options.environmentChanges);
  std::array<uv_stdio_container_t, 3> streamsOfChild{};
  const std::array ends{streams.itsInput.get(), streams.itsOutput.get(), streams.itsError.get()};
  for (std::size_t index = 0; index < ends.size(); ++index) {
    streamsOfChild[index].flags = UV_INHERIT_FD;
    streamsOfChild[index].data.fd = ends[index];
  }
  uv_process_options_t settings{};
  settings.exit_cb = [](uv_process_t* ended, std::int64_t status, int signal) {
    of(ended->data).onExit({signal == 0 ? status : 0, signal});
  };
  settings.file = options.executable.c_str();
  settings.args = arguments.get();
  settings.env = environment.get();
  settings.cwd = options.workingDirectory.empty() ? nullptr : options.workingDirectory.c_str();
  settings.stdio_count = static_cast<int>(streamsOfChild.size());
  settings.stdio = streamsOfChild.data();

  const int status = spawnProgram(family->loop, process, settings);
  ++openHandles;  // also after a failure
  if (status != 0) {
    uv_close(reinterpret_cast<uv_handle_t*>(&process), closed);
  }
  return status;
}

int UvChildProcessLauncher::Child::openStreams(ChildStreams& streams) {
  const bool isInputOpen = input.open(
      family->loop, streams.ourInput.release(),
      [this] {
        if (events.onInputLost) {
          events.onInputLost();
        }
      },
      [this] { onHandleClosed(); });
  if (!isInputOpen) {
    return UV_ENOMEM;
  }
  ++openHandles;
  const int status = openPipe(output, streams.ourOutput);
  return status != 0 ? status : openPipe(error, streams.ourError);
}

int UvChildProcessLauncher::Child::openPipe(uv_pipe_t& pipe, UniqueFd& end) {
  uv_pipe_init(&family->loop, &pipe, 0);
  ++openHandles;
  int status = uv_pipe_open(&pipe, end.get());
  if (status != 0) {
    return status;
  }
  (void)end.release();
  status = uv_read_start(
      reinterpret_cast<uv_stream_t*>(&pipe),
      [](uv_handle_t* handle, std::size_t, uv_buf_t* buffer) {
        std::vector<char>& memory = of(handle->data).family->readBuffer;
        memory.resize(readSize);
        *buffer = uv_buf_init(memory.data(), static_cast<unsigned>(memory.size()));
      },
      [](uv_stream_t* stream, ssize_t count, const uv_buf_t* buffer) {
        of(stream->data).onRead(*stream, count, buffer->base);
      });
  return status;
}

void UvChildProcessLauncher::Child::onRead(const uv_stream_t& stream, ssize_t count,
                                           const char* bytes) {
  const bool isOutput = &stream == reinterpret_cast<const uv_stream_t*>(&output);
  if (count > 0) {
    const auto& event = isOutput ? events.onOutput : events.onErrorOutput;
    if (event) {
      event({bytes, static_cast<std::size_t>(count)});
    }
  } else if (count < 0) {  // the end, or an error, after which nothing can come either
    closePipe(isOutput ? output : error);
    if (isOutput && events.onOutputEnd) {
      events.onOutputEnd();
    }
  }
}

// libuv reads what is readable before it reaps, within one turn of the loop: the output
// that a child leaves behind has been delivered when this is called.
void UvChildProcessLauncher::Child::onExit(ChildExit exit) {
  hasExited = true;
  isGroupLeft = isGroupAlive();
  if (!isGroupLeft) {
    guard.dismiss();
  }
  uv_close(reinterpret_cast<uv_handle_t*>(&process), closed);
  if (!isLetGo) {
    if (events.onExit) {
      events.onExit(exit);
    }
    return;
  }
  escalation.reset();
  if (isGroupLeft) {
    watchGroup();
  }
}

void UvChildProcessLauncher::Child::closePipe(uv_pipe_t& pipe) {
  auto* handle = reinterpret_cast<uv_handle_t*>(&pipe);
  if (pipe.loop != nullptr && uv_is_closing(handle) == 0) {
    uv_close(handle, closed);
  }
}

void UvChildProcessLauncher::Child::closeStreams() {
  input.close();
  closePipe(output);
  closePipe(error);
}

void UvChildProcessLauncher::Child::terminate() {
  if (isLetGo) {
    return;
  }
  isLetGo = true;
  closeStreams();
  if (!hasExited) {
    signalGroup(SIGTERM);
    escalation = family->queue.runAfter(terminationGrace, graceLeeway, [this] {
      signalGroup(SIGKILL);
      escalation.reset();
      leaveWhenDone();
    });
  } else if (isGroupLeft && isGroupAlive()) {
    signalGroup(SIGTERM);
    watchGroup();
  } else {
    guard.dismiss();
  }
}

// The child is reaped, but its group is not empty. Only the group keeps its number from
// being given away, so it is looked at often, and not at all once it was seen empty.
void UvChildProcessLauncher::Child::watchGroup() {
  escalation = family->queue.runEvery(groupCheckInterval, groupCheckInterval, [this] {
    const bool isLast = --groupChecksLeft <= 0;
    if (isGroupAlive()) {
      if (!isLast) {
        return;
      }
      signalGroup(SIGKILL);
    }
    guard.dismiss();
    escalation.reset();
    leaveWhenDone();
  });
}

void UvChildProcessLauncher::Child::onHandleClosed() {
  --openHandles;
  leaveWhenDone();
}

void UvChildProcessLauncher::Child::leaveWhenDone() {
  if (openHandles > 0 || escalation != nullptr) {
    return;
  }
  std::erase(family->children, this);
  if (family->children.empty()) {
    family->readBuffer = std::vector<char>();  // "= {}" would keep the memory
  }
  const std::shared_ptr<Child> last = std::move(self);
}

// Nothing of the queue is used any more. Handles that are still open close while the loop runs,
// at the latest when it ends; a child whose handles are closed already waited for its group only.
void UvChildProcessLauncher::Child::abandon() {
  escalation.reset();
  guard.dismiss();
  auto* handle = reinterpret_cast<uv_handle_t*>(&process);
  if (uv_is_closing(handle) == 0) {
    uv_close(handle, closed);
  }
  leaveWhenDone();
}

class UvChildProcessLauncher::Handle final : public ChildProcess {
 public:
  explicit Handle(std::shared_ptr<Child> child) : child_(std::move(child)) {}
  ~Handle() override { child_->terminate(); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  [[nodiscard]] std::int32_t id() const override { return child_->process.pid; }
  [[nodiscard]] bool write(std::string_view bytes) override { return child_->input.write(bytes); }
  void closeInput() override { child_->input.closeAfterFlush(); }
  void terminate() override { child_->terminate(); }

 private:
  std::shared_ptr<Child> child_;
};

UvChildProcessLauncher::UvChildProcessLauncher(uv_loop_t& loop, TaskQueue& queue)
    : family_(std::make_shared<Family>(Family{loop, queue, {}, {}})) {}

UvChildProcessLauncher::~UvChildProcessLauncher() {
  constexpr int waitMilliseconds = 5;
  constexpr int politeWaits = 50;
  constexpr int killedWaits = 10;
  const DefaultTimerSlack punctualWaits;
  const auto children = family_->children;
  const auto reapAll = [&children](int waits) {
    bool isAnyLeft = true;
    for (int wait = 0; wait < waits && isAnyLeft; ++wait) {
      if (wait > 0) {
        poll(nullptr, 0, waitMilliseconds);
      }
      isAnyLeft = false;
      for (Child* child : children) {
        if (!child->hasExited && waitpid(child->process.pid, nullptr, WNOHANG) != 0) {
          child->hasExited = true;
          child->isGroupLeft = child->isGroupAlive();
        }
        isAnyLeft = isAnyLeft || !child->hasExited || (child->isGroupLeft && child->isGroupAlive());
      }
    }
    return !isAnyLeft;
  };

  for (Child* child : children) {
    child->terminate();
  }
  if (!reapAll(politeWaits)) {
    for (const Child* child : children) {
      if (!child->hasExited || (child->isGroupLeft && child->isGroupAlive())) {
        child->signalGroup(SIGKILL);
      }
    }
    reapAll(killedWaits);
  }
  for (Child* child : children) {
    child->abandon();
  }
}

Result<std::unique_ptr<ChildProcess>> UvChildProcessLauncher::start(
    const ChildProcessOptions& options, ChildProcessEvents events) {
  if (!options.workingDirectory.empty()) {
    (void)makePrivateFolder(options.workingDirectory);
  }
  if (needsShell(options.executable)) {
    return Fault::failed("ENOEXEC");
  }
  auto child = std::make_shared<Child>(family_, std::move(events));
  ChildStreams streams;
  // The guard first: it is to hold none of the streams.
  int status = child->guard.start();
  if (status == 0) {
    status = streams.open();
  }
  if (status != 0) {
    return startFault(status);
  }
  child->self = child;
  family_->children.push_back(child.get());
  status = child->spawn(options, streams);
  if (status != 0) {
    child->isLetGo = true;
    child->hasExited = true;
    return startFault(status);
  }
  child->guard.watch(child->process.pid);
  auto handle = std::make_unique<Handle>(child);
  status = child->openStreams(streams);
  if (status != 0) {
    return startFault(status);
  }
  return std::unique_ptr<ChildProcess>(std::move(handle));
}

}  // namespace vantora
