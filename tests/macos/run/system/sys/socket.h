// SPDX-License-Identifier: MIT
//
// setsockopt(2) of macOS: a socket with SO_NOSIGPIPE raises no signal. Linux has that for
// each call of send(2) alone, and the programs ignore the signal anyway.
#pragma once

#include_next <sys/socket.h>

#define SO_NOSIGPIPE SO_DEBUG
