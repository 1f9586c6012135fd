// SPDX-License-Identifier: MIT
#include "quota/codex/rate_limits.hpp"

#include <utility>

#include "model/json.hpp"

namespace vantora::CodexRateLimits {
namespace {

// Reads an optional member with `convert`; false when it is there with another type.
template <typename T, typename Convert>
bool readMember(const Json& object, std::string_view key, Convert convert, std::optional<T>& to) {
  const Json* found = presentMember(object, key);
  if (found == nullptr) {
    return true;
  }
  to = convert(*found);
  return to.has_value();
}

std::optional<Window> windowFrom(const Json& value) {
  Window window;
  std::optional<double> usedPercent;
  if (!value.isObject() || !readMember(value, "usedPercent", asDouble, usedPercent) ||
      !usedPercent ||
      !readMember(value, "windowDurationMins", asInteger, window.windowDurationMins) ||
      !readMember(value, "resetsAt", asInteger, window.resetsAt)) {
    return std::nullopt;
  }
  window.usedPercent = *usedPercent;
  return window;
}

std::optional<Bucket> bucketFrom(const Json& value) {
  Bucket bucket;
  if (!value.isObject() || !readMember(value, "limitId", asText, bucket.limitId) ||
      !readMember(value, "limitName", asText, bucket.limitName) ||
      !readMember(value, "primary", windowFrom, bucket.primary) ||
      !readMember(value, "secondary", windowFrom, bucket.secondary)) {
    return std::nullopt;
  }
  return bucket;
}

std::optional<std::map<std::string, Bucket>> bucketsFrom(const Json& value) {
  if (!value.isObject()) {
    return std::nullopt;
  }
  std::map<std::string, Bucket> buckets;
  for (const auto& [limitId, content] : value.members()) {
    std::optional<Bucket> bucket = bucketFrom(content);
    if (!bucket) {
      return std::nullopt;
    }
    buckets.emplace_hint(buckets.end(), limitId, *std::move(bucket));
  }
  return buckets;
}

}  // namespace

std::optional<Envelope> decode(std::string_view data) {
  const std::optional<Json> json = parseJson(data);
  Envelope envelope;
  if (!json || !json->isObject() || !readMember(*json, "accountId", asText, envelope.accountId) ||
      !readMember(*json, "ordinaryUsageAllowed", asBool, envelope.ordinaryUsageAllowed) ||
      !readMember(*json, "rateLimits", bucketFrom, envelope.rateLimits) ||
      !readMember(*json, "rateLimitsByLimitId", bucketsFrom, envelope.rateLimitsByLimitId)) {
    return std::nullopt;
  }
  return envelope;
}

}  // namespace vantora::CodexRateLimits
