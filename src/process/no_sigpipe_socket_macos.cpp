// SPDX-License-Identifier: MIT
#include <sys/socket.h>

#include "process/no_sigpipe_socket.hpp"

namespace vantora {

// macOS takes the wish once for the socket: setsockopt(2), SO_NOSIGPIPE.
void preventSigpipe(int socket) {
  const int on = 1;
  setsockopt(socket, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
}

ssize_t sendWithoutSigpipe(int socket, std::string_view bytes) {
  return send(socket, bytes.data(), bytes.size(), 0);
}

}  // namespace vantora
