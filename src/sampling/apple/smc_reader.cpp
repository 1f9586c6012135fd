// SPDX-License-Identifier: MIT
#include "sampling/apple/smc_reader.hpp"

#include <cmath>
#include <cstring>

namespace vantora {
namespace {

// The record of the AppleSMC user client, input and output alike. Fields of several bytes
// are in the machine's own order, so plain copies read and write them.
constexpr std::size_t keyOffset = 0;
constexpr std::size_t dataSizeOffset = 28;
constexpr std::size_t dataTypeOffset = 32;
constexpr std::size_t resultOffset = 40;
constexpr std::size_t commandOffset = 42;
constexpr std::size_t bytesOffset = 48;
constexpr std::uint32_t maxBytes = smcRecordSize - bytesOffset;

constexpr std::uint8_t readBytesCommand = 5;
constexpr std::uint8_t readKeyInfoCommand = 9;
constexpr std::uint8_t success = 0;

constexpr std::size_t codeLength = 4;

constexpr std::uint32_t codeOf(std::string_view characters) {
  std::uint32_t code = 0;
  for (const char character : characters) {
    code = code << 8U | static_cast<unsigned char>(character);
  }
  return code;
}

constexpr std::uint32_t floatType = codeOf("flt ");
constexpr std::uint32_t uint8Type = codeOf("ui8 ");
static_assert(floatType == 0x666C7420);

template <typename T>
T fetch(const SMCRecord& record, std::size_t offset) {
  T value{};
  std::memcpy(&value, record.data() + offset, sizeof value);
  return value;
}

template <typename T>
void put(SMCRecord& record, std::size_t offset, T value) {
  std::memcpy(record.data() + offset, &value, sizeof value);
}

}  // namespace

std::unique_ptr<SMCReader> SMCReader::open(const SMCOpener& opener) {
  auto connection = opener();
  return connection ? std::make_unique<SMCReader>(std::move(connection)) : nullptr;
}

SMCReader::SMCReader(std::unique_ptr<SMCConnection> connection)
    : connection_(std::move(connection)) {}

std::optional<double> SMCReader::readFloat(std::string_view key) {
  const auto value = read(key);
  if (!value || value->info.size != sizeof(float) || value->info.type != floatType) {
    return std::nullopt;
  }
  const auto number = fetch<float>(value->record, bytesOffset);
  return std::isfinite(number) ? std::optional<double>(number) : std::nullopt;
}

std::optional<std::uint8_t> SMCReader::readUInt8(std::string_view key) {
  const auto value = read(key);
  if (!value || value->info.size != 1 || value->info.type != uint8Type) {
    return std::nullopt;
  }
  return value->record[bytesOffset];
}

std::optional<SMCReader::Value> SMCReader::read(std::string_view key) {
  if (key.size() != codeLength) {
    return std::nullopt;
  }
  const std::uint32_t code = codeOf(key);
  const auto info = describe(code);
  if (!info) {
    return std::nullopt;
  }
  // A read that failed says nothing about the key: the next pass tries again.
  const auto record = call(code, readBytesCommand, info->size);
  return record ? std::optional(Value{*info, *record}) : std::nullopt;
}

std::optional<SMCReader::KeyInfo> SMCReader::describe(std::uint32_t code) {
  if (missing_.contains(code)) {
    return std::nullopt;
  }
  if (const auto known = metadata_.find(code); known != metadata_.end()) {
    return known->second;
  }
  if (const auto record = call(code, readKeyInfoCommand, 0)) {
    const KeyInfo info{fetch<std::uint32_t>(*record, dataSizeOffset),
                       fetch<std::uint32_t>(*record, dataTypeOffset)};
    if (info.size >= 1 && info.size <= maxBytes) {
      metadata_.emplace(code, info);
      return info;
    }
  }
  missing_.insert(code);
  return std::nullopt;
}

std::optional<SMCRecord> SMCReader::call(std::uint32_t code, std::uint8_t command,
                                         std::uint32_t size) {
  SMCRecord input{};
  put(input, keyOffset, code);
  put(input, dataSizeOffset, size);
  put(input, commandOffset, command);
  SMCRecord output{};
  const auto outputSize = connection_->call(input, output);
  if (outputSize != smcRecordSize || output[resultOffset] != success) {
    return std::nullopt;
  }
  return output;
}

}  // namespace vantora
