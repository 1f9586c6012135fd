// SPDX-License-Identifier: MIT
#include <sys/socket.h>

#include "runtime/quiet_socket.hpp"

namespace vantora {

// Linux takes the wish with each send(2).
void makeQuiet(int) {}

ssize_t sendQuietly(int socket, std::string_view bytes) {
  return send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

}  // namespace vantora
