// SPDX-License-Identifier: MIT
//
// Writing to a peer that is gone is an error to handle, not a reason to die of SIGPIPE.
// It is asked for per socket, so that the process's own handling of the signal, and what
// its children inherit of it, stay as they are. (A pipe cannot be asked on Linux; this
// is why a child's standard input is a socket.)
#pragma once

#include <sys/types.h>

#include <string_view>

namespace vantora {

/// Prepares a connected socket for sendWithoutSigpipe().
void preventSigpipe(int socket);

/// send(2) that never raises SIGPIPE: the number of bytes that were taken, or -1 and
/// errno (EPIPE when the peer is gone).
[[nodiscard]] ssize_t sendWithoutSigpipe(int socket, std::string_view bytes);

}  // namespace vantora
