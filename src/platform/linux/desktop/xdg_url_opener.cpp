// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/xdg_url_opener.hpp"

namespace vantora {

void XdgUrlOpener::open(const std::string& url) {
  // A first character of an option would be taken for one.
  if (!url.empty() && url.front() != '-') {
    // A desktop without xdg-open leaves the user where they are.
    (void)programs_.start({program_, url});
  }
}

}  // namespace vantora
