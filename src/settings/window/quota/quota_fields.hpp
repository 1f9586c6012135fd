// SPDX-License-Identifier: MIT
//
// What the tabs of the two quota integrations have in common.
#pragma once

#include <string_view>

#include "settings/window/controls/form.hpp"

namespace vantora {

/// The picker of the interval between queries.
template <typename Settings>
[[nodiscard]] ChoiceField<Settings> quotaIntervalField(std::string_view label) {
  return {label,
          {{"1 minuto", 1}, {"3 minutos", 3}, {"5 minutos", 5}, {"10 minutos", 10}},
          &Access<&Settings::intervalMinutes>::getChoice,
          &Access<&Settings::intervalMinutes>::setChoice};
}

template <auto Member, typename Settings>
[[nodiscard]] constexpr SwitchField<Settings> quotaSwitch(std::string_view label) {
  return {label, &Access<Member>::get, &Access<Member>::set};
}

}  // namespace vantora
