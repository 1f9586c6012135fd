// SPDX-License-Identifier: MIT
#include "model/sample.hpp"

#include <utility>

#include "model/words.hpp"

namespace vantora {

std::string_view rawText(Quality quality) {
  switch (quality) {
    case Quality::valid:
      return "valid";
    case Quality::waiting:
      return "waiting";
    case Quality::unavailable:
      return "unavailable";
    case Quality::temporaryError:
      return "temporaryError";
    case Quality::stale:
      return "stale";
  }
  return "unavailable";
}

MetricSample MetricSample::valid(double value, std::string source, WallTime now) {
  return {value, Quality::valid, now, std::move(source)};
}

MetricSample MetricSample::waiting(std::string source) {
  return {std::nullopt, Quality::waiting, std::nullopt, std::move(source)};
}

MetricSample MetricSample::unavailable(std::string source) {
  return {std::nullopt, Quality::unavailable, std::nullopt, std::move(source)};
}

const MetricSample* SampleTable::find(MetricID metric) const {
  const auto& place = places_[static_cast<std::size_t>(metric)];
  return place ? &*place : nullptr;
}

void SampleTable::set(MetricID metric, MetricSample sample) {
  places_[static_cast<std::size_t>(metric)] = std::move(sample);
}

void SampleTable::erase(MetricID metric) {
  places_[static_cast<std::size_t>(metric)].reset();
}

void SampleTable::merge(SampleTable newer) {
  for (std::size_t place = 0; place < places_.size(); ++place) {
    if (newer.places_[place]) {
      places_[place] = std::move(newer.places_[place]);
    }
  }
}

MetricSet SampleTable::metrics() const {
  MetricSet present;
  for (const MetricID metric : allMetrics) {
    if (find(metric) != nullptr) {
      present.insert(metric);
    }
  }
  return present;
}

const MetricSample& MetricSnapshot::operator[](MetricID metric) const {
  static const MetricSample notValidated = MetricSample::unavailable(Words::sourceNotValidated);
  const MetricSample* stored = samples.find(metric);
  return stored != nullptr ? *stored : notValidated;
}

}  // namespace vantora
