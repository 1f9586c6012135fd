// SPDX-License-Identifier: MIT
#include "process/run_program.hpp"

#include <signal.h>
#include <uv.h>

#include <array>
#include <cstdint>
#include <utility>

#include "process/exec_strings.hpp"
#include "process/spawn_program.hpp"

namespace vantora {
namespace {

constexpr std::size_t maxOutput = std::size_t{64} << 20U;

/// One run on a loop of its own, which ends with the last of the three handles.
struct Run {
  uv_loop_t loop{};
  uv_process_t process{};
  uv_pipe_t output{};
  uv_timer_t timer{};
  std::array<char, 16384> buffer{};
  std::string bytes;
  bool isSound = true;
  bool hasExited = false;

  template <typename Handle>
  void close(Handle& handle) {
    auto* any = reinterpret_cast<uv_handle_t*>(&handle);
    if (uv_is_closing(any) == 0) {
      uv_close(any, nullptr);
    }
  }
  /// Ends with a failure.
  void giveUp() {
    isSound = false;
    close(output);
    if (!hasExited) {
      ::kill(-process.pid, SIGKILL);  // its group, which it leads
    }
  }

  static Run& of(void* handle) {
    return *static_cast<Run*>(static_cast<uv_handle_t*>(handle)->data);
  }
  static void exited(uv_process_t* process, std::int64_t status, int signal) {
    Run& run = of(process);
    run.hasExited = true;
    run.isSound = run.isSound && status == 0 && signal == 0;
    run.close(run.process);
    run.close(run.timer);
  }
  static void read(uv_stream_t* stream, ssize_t length, const uv_buf_t* buffer) {
    Run& run = of(stream);
    if (length < 0) {
      run.isSound = run.isSound && length == UV_EOF;
      run.close(run.output);
    } else if (run.bytes.size() + static_cast<std::size_t>(length) > maxOutput) {
      run.giveUp();
    } else {
      run.bytes.append(buffer->base, static_cast<std::size_t>(length));
    }
  }

  bool start(const std::vector<std::string>& command, std::chrono::milliseconds timeout) {
    ExecStrings arguments;
    for (const std::string& argument : command) {
      arguments.add(argument);
    }
    std::array<uv_stdio_container_t, 3> streams{};
    streams[0].flags = UV_IGNORE;
    streams[1].flags = static_cast<uv_stdio_flags>(UV_CREATE_PIPE | UV_WRITABLE_PIPE);
    streams[1].data.stream = reinterpret_cast<uv_stream_t*>(&output);
    streams[2].flags = UV_INHERIT_FD;
    streams[2].data.fd = 2;
    uv_process_options_t options{};
    options.file = command.front().c_str();
    options.args = arguments.get();
    options.stdio = streams.data();
    options.stdio_count = static_cast<int>(streams.size());
    options.exit_cb = exited;
    uv_pipe_init(&loop, &output, 0);
    uv_timer_init(&loop, &timer);
    process.data = output.data = timer.data = this;
    if (spawnProgram(loop, process, options) != 0) {
      close(process);
      close(output);
      close(timer);
      return false;
    }
    const auto provideBuffer = [](uv_handle_t* handle, std::size_t, uv_buf_t* provided) {
      Run& run = of(handle);
      *provided = uv_buf_init(run.buffer.data(), static_cast<unsigned>(run.buffer.size()));
    };
    uv_read_start(reinterpret_cast<uv_stream_t*>(&output), provideBuffer, read);
    uv_timer_start(
        &timer, [](uv_timer_t* expired) { of(expired).giveUp(); },
        static_cast<std::uint64_t>(timeout.count()), 0);
    return true;
  }
};

}  // namespace

std::optional<std::string> runProgram(const std::vector<std::string>& command,
                                      std::chrono::milliseconds timeout) {
  Run run;
  if (uv_loop_init(&run.loop) != 0) {
    return std::nullopt;
  }
  const bool wasStarted = run.start(command, timeout);
  uv_run(&run.loop, UV_RUN_DEFAULT);
  uv_loop_close(&run.loop);
  return wasStarted && run.isSound ? std::optional(std::move(run.bytes)) : std::nullopt;
}

}  // namespace vantora
