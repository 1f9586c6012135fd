// SPDX-License-Identifier: MIT
#include <sys/socket.h>

#include "process/no_sigpipe_socket.hpp"

namespace vantora {

// Linux takes the wish with each send(2).
void preventSigpipe(int) {}

ssize_t sendWithoutSigpipe(int socket, std::string_view bytes) {
  return send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

}  // namespace vantora
