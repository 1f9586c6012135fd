// SPDX-License-Identifier: MIT
#pragma once

#include "ports/url_opener.hpp"

namespace vantora {

/// Opens the address with the user's default application for it.
class WorkspaceUrlOpener final : public UrlOpener {
 public:
  void open(const std::string& url) override;
};

}  // namespace vantora
