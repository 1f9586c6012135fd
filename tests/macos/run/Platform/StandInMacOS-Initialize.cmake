# SPDX-License-Identifier: MIT
set(CMAKE_EFFECTIVE_SYSTEM_NAME Linux)
