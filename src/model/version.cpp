// SPDX-License-Identifier: MIT
#include "model/version.hpp"

namespace vantora {

const char programVersion[] = VANTORA_VERSION;

}  // namespace vantora
