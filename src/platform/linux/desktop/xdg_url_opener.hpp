// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <string>
#include <utility>

#include "platform/linux/desktop/detached_programs.hpp"
#include "ports/url_opener.hpp"

namespace vantora {

/// Hands pages to xdg-open, which knows every desktop's way. It may become the browser
/// itself, so it outlives this program.
class XdgUrlOpener final : public UrlOpener {
 public:
  /// The main loop, which outlives the opener. `program` is looked up in $PATH.
  explicit XdgUrlOpener(uv_loop_t& loop, std::string program = "xdg-open")
      : programs_(loop), program_(std::move(program)) {}

  void open(const std::string& url) override;

 private:
  DetachedPrograms programs_;
  std::string program_;
};

}  // namespace vantora
