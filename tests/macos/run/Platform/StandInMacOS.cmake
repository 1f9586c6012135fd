# SPDX-License-Identifier: MIT
#
# Linux for the tools, macOS for the build description.
include(Platform/Linux)
set(APPLE 1)
