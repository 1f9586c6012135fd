// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/diagnosis/concealer.hpp"
#include "app/diagnosis/diagnosis.hpp"

namespace vantora {

/// The diagnosis as one JSON object, for bug reports (docs/vantora-diagnose.schema.json): what is
/// not there is null. Instants in ISO 8601, UTC, whole seconds. Without a line feed. Pure.
[[nodiscard, gnu::cold]] std::string diagnosisJson(const Diagnosis& diagnosis,
                                                   const Concealer& conceal);

}  // namespace vantora
