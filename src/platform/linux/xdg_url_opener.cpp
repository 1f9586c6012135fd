// SPDX-License-Identifier: MIT
#include "platform/linux/xdg_url_opener.hpp"

#include <array>

namespace vantora {

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
  options.flags = UV_PROCESS_DETACHED;
  options.stdio = streams.data();
  options.stdio_count = static_cast<int>(streams.size());
  options.exit_cb = [](uv_process_t* process, std::int64_t, int) {
    uv_close(reinterpret_cast<uv_handle_t*>(process),
             [](uv_handle_t* handle) { delete reinterpret_cast<uv_process_t*>(handle); });
  };
  auto* process = new uv_process_t;
  // A desktop without xdg-open leaves the user where they are. The handle must be closed
  // either way, and at the loop's end without waiting for the browser.
  if (uv_spawn(&loop_, process, &options) != 0) {
    options.exit_cb(process, 0, 0);
    return;
  }
  uv_unref(reinterpret_cast<uv_handle_t*>(process));
}

}  // namespace vantora
