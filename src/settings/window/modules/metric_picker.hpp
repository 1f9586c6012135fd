// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>

#include "model/metric.hpp"

namespace vantora::MetricPicker {

/// Makes a picker of metrics, as a form made it, one with a line between the families.
void dress(QComboBox* picker);

/// Marks the metrics that this machine was found not to have. Nothing moves where the marks
/// stay the same.
void mark(QComboBox* picker, MetricSet missing);

}  // namespace vantora::MetricPicker
