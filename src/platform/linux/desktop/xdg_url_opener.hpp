// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <set>
#include <string>
#include <utility>

#include "ports/url_opener.hpp"

namespace vantora {

/// Hands pages to xdg-open, which knows every desktop's way. It may become the browser
/// itself, so it runs in a session of its own and outlives this program.
class XdgUrlOpener final : public UrlOpener {
 public:
  /// The main loop, which outlives the opener. `program` is looked up in $PATH.
  explicit XdgUrlOpener(uv_loop_t& loop, std::string program = "xdg-open")
      : loop_(loop), program_(std::move(program)) {}
  /// Lets go of programs that still run; they go on.
  ~XdgUrlOpener() override;
  XdgUrlOpener(const XdgUrlOpener&) = delete;
  XdgUrlOpener& operator=(const XdgUrlOpener&) = delete;

  void open(const std::string& url) override;

 private:
  uv_loop_t& loop_;
  std::string program_;
  std::set<uv_process_t*> running_;  // libuv's until it has closed them
};

}  // namespace vantora
