// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/xdg_url_opener.hpp"

#include <array>

#include "process/spawn_program.hpp"

namespace vantora {
namespace {

void close(uv_process_t* process) {
  uv_close(reinterpret_cast<uv_handle_t*>(process),
           [](uv_handle_t* handle) { delete reinterpret_cast<uv_process_t*>(handle); });
}

}  // namespace

XdgUrlOpener::~XdgUrlOpener() {
  for (uv_process_t* process : running_) {
    close(process);
  }
}

void XdgUrlOpener::open(const std::string& url) {
  // A first character of an option would be taken for one.
  if (url.empty() || url.front() == '-') {
    return;
  }
  std::string argument = url;
  std::array<char*, 3> arguments{program_.data(), argument.data(), nullptr};
  std::array<uv_stdio_container_t, 3> streams{};
  for (uv_stdio_container_t& stream : streams) {
    stream.flags = UV_IGNORE;
  }
  uv_process_options_t options{};
  options.file = program_.c_str();
  options.args = arguments.data();
  options.stdio = streams.data();
  options.stdio_count = static_cast<int>(streams.size());
  options.exit_cb = [](uv_process_t* process, std::int64_t, int) {
    static_cast<XdgUrlOpener*>(process->data)->running_.erase(process);
    close(process);
  };
  auto* process = new uv_process_t;
  // A desktop without xdg-open leaves the user where they are; the handle is closed all
  // the same.
  if (spawnProgram(loop_, *process, options) != 0) {
    close(process);
    return;
  }
  process->data = this;
  running_.insert(process);
  // The end of the program does not wait for the browser's.
  uv_unref(reinterpret_cast<uv_handle_t*>(process));
}

}  // namespace vantora
