// SPDX-License-Identifier: MIT
#pragma once

#include "model/configuration.hpp"

namespace vantora::test {

/// A configuration that is told apart by its horizontal padding, in points.
inline AppConfiguration paddedBy(double padding) {
  AppConfiguration configuration;
  configuration.horizontalPadding = padding;
  return configuration;
}

}  // namespace vantora::test
