// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/json_user_defaults.hpp"

#include <cerrno>
#include <utility>

#include "model/json.hpp"
#include "settings/error_text.hpp"
#include "settings/file_io.hpp"

namespace vantora {
namespace {

constexpr std::size_t maxFileBytes = 1'000'000;

// The stored object; an empty one where there is none.
Json storedObject(const std::filesystem::path& file) {
  if (const auto content = FileIO::readFile(file, maxFileBytes)) {
    if (auto json = parseJson(*content); json && json->isObject()) {
      return *std::move(json);
    }
  }
  return Json::object();
}

}  // namespace

JsonUserDefaults::JsonUserDefaults(const std::filesystem::path& applicationSupport)
    : folder_(applicationSupport / "Vantora"), file_(folder_ / "preferences.json") {}

std::optional<std::string> JsonUserDefaults::text(std::string_view key) {
  const Json stored = storedObject(file_);
  const Json* value = member(stored, key);
  return value != nullptr ? asText(*value) : std::nullopt;
}

std::optional<Fault> JsonUserDefaults::setText(std::string_view key, std::string_view value) {
  Json stored = storedObject(file_);
  stored[std::string(key)] = std::string(value);
  const auto document = writeJson(stored);
  if (!document) {
    return Fault::failed(systemErrorText(EILSEQ));  // A path that is not UTF-8.
  }
  if (auto fault = FileIO::makeFolder(folder_)) {
    return fault;
  }
  FileIO::WriteOptions options;
  options.backup = folder_ / "preferences.backup.json";
  return FileIO::replaceFile(file_, *document, options);
}

}  // namespace vantora
