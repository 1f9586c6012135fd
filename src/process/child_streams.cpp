// SPDX-License-Identifier: MIT
#include "process/child_streams.hpp"

#include <sys/socket.h>
#include <uv.h>

#include <array>

namespace vantora {
namespace {

int openPipe(UniqueFd& readEnd, UniqueFd& writeEnd) {
  std::array<uv_file, 2> ends{};
  const int status = uv_pipe(ends.data(), UV_NONBLOCK_PIPE, 0);
  if (status == 0) {
    readEnd.reset(ends[0]);
    writeEnd.reset(ends[1]);
  }
  return status;
}

}  // namespace

int ChildStreams::open() {
  std::array<uv_os_sock_t, 2> sockets{};
  int status = uv_socketpair(SOCK_STREAM, 0, sockets.data(), UV_NONBLOCK_PIPE, 0);
  if (status != 0) {
    return status;
  }
  ourInput.reset(sockets[0]);
  itsInput.reset(sockets[1]);
  status = openPipe(ourOutput, itsOutput);
  return status != 0 ? status : openPipe(ourError, itsError);
}

}  // namespace vantora
