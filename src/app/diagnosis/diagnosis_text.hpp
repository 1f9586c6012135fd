// SPDX-License-Identifier: MIT
//
// The diagnosis for people: what was found and, for what is missing, why. Pure.
#pragma once

#include <cstddef>
#include <string>

#include "app/diagnosis/concealer.hpp"
#include "app/diagnosis/diagnosis.hpp"

namespace vantora {

/// Lines of at most this many cells.
inline constexpr std::size_t diagnosisColumns = 100;

/// Groups of rows in aligned columns; ends with a line feed.
[[nodiscard, gnu::cold]] std::string diagnosisText(const Diagnosis& diagnosis,
                                                   const Concealer& conceal);

/// The metrics by their titles, those of one thing together: "Bateria · porcentagem, tempo
/// estimado; CPU · uso total".
[[nodiscard]] std::string titlesOf(MetricSet metrics);

/// A span in words, the larger unit alone: "agora", "12 min", "3 h", "5 dias".
[[nodiscard]] std::string spanText(Seconds span);

}  // namespace vantora
