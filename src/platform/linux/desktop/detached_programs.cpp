// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/detached_programs.hpp"

#include <array>

#include "process/spawn_program.hpp"

namespace vantora {
namespace {

void close(uv_process_t* process) {
  uv_close(reinterpret_cast<uv_handle_t*>(process),
           [](uv_handle_t* handle) { delete reinterpret_cast<uv_process_t*>(handle); });
}

}  // namespace

DetachedPrograms::~DetachedPrograms() {
  for (uv_process_t* process : running_) {
    close(process);
  }
}

bool DetachedPrograms::start(std::vector<std::string> command) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (std::string& part : command) {
    arguments.push_back(part.data());
  }
  arguments.push_back(nullptr);
  std::array<uv_stdio_container_t, 3> streams{};
  for (uv_stdio_container_t& stream : streams) {
    stream.flags = UV_IGNORE;
  }
  uv_process_options_t options{};
  options.file = arguments.front();
  options.args = arguments.data();
  options.stdio = streams.data();
  options.stdio_count = static_cast<int>(streams.size());
  options.exit_cb = [](uv_process_t* process, std::int64_t, int) {
    static_cast<DetachedPrograms*>(process->data)->running_.erase(process);
    close(process);
  };
  auto* process = new uv_process_t;
  // The handle of a program that was not started is closed all the same.
  if (spawnProgram(loop_, *process, options) != 0) {
    close(process);
    return false;
  }
  process->data = this;
  running_.insert(process);
  uv_unref(reinterpret_cast<uv_handle_t*>(process));
  return true;
}

}  // namespace vantora
