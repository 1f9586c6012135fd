// SPDX-License-Identifier: MIT
#pragma once

#include "support/temporary_folder.hpp"
