// SPDX-License-Identifier: MIT
#include "app/diagnosis/found_assistant.hpp"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <utility>

#include "model/json.hpp"
#include "settings/file_io.hpp"

namespace vantora {
namespace {

constexpr std::size_t maxVersion = 40;
constexpr std::size_t maxOutput = 4096;

bool isNumeral(char byte) {
  return byte >= '0' && byte <= '9';
}
bool isVersionByte(char byte) {
  return isNumeral(byte) || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         byte == '.' || byte == '-' || byte == '+';
}

std::optional<std::string> versionOfPackage(const std::filesystem::path& folder) {
  constexpr std::size_t maxPackageFile = 1'000'000;
  const auto text = FileIO::readFile(folder / "package.json", maxPackageFile);
  const auto document = text ? parseJson(*text) : std::nullopt;
  const Json* version = document ? member(*document, "version") : nullptr;
  const auto value = version != nullptr ? asText(*version) : std::nullopt;
  return value ? versionIn(*value) : std::nullopt;
}

}  // namespace

std::optional<std::string> versionIn(std::string_view text) {
  for (std::size_t start = 0; start < text.size(); ++start) {
    if (!isNumeral(text[start]) ||
        (start > 0 && isVersionByte(text[start - 1]) && text[start - 1] != '-')) {
      continue;
    }
    const auto end = std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(),
                                      isVersionByte);
    std::string_view found =
        text.substr(start, static_cast<std::size_t>(end - text.begin()) - start);
    const std::size_t dot = found.find('.');
    if (found.size() <= maxVersion && dot != std::string_view::npos && dot + 1 < found.size() &&
        isNumeral(found[dot + 1])) {
      while (!isNumeral(found.back()) && found.back() < 'A') {
        found.remove_suffix(1);  // the sentence's
      }
      return std::string(found);
    }
  }
  return std::nullopt;
}

std::optional<std::string> packagedVersion(const std::string& path) {
  // node_modules/PACKAGE/bin/program and node_modules/@SCOPE/PACKAGE/program lie at most so deep.
  constexpr int maxLevels = 4;
  std::filesystem::path folder = std::filesystem::path(path).parent_path();
  for (int level = 0; level < maxLevels && folder.has_relative_path(); ++level) {
    if (folder.filename() == "node_modules") {
      break;
    }
    if (auto version = versionOfPackage(folder)) {
      return version;
    }
    folder = folder.parent_path();
  }
  // versions/2.0.50, and Caskroom/codex/0.63.0/codex.
  const std::filesystem::path file(path);
  for (const std::string& name :
       {file.filename().string(), file.parent_path().filename().string()}) {
    if (!name.empty() && isNumeral(name.front()) && versionIn(name) == name) {
      return name;
    }
  }
  return std::nullopt;
}

AssistantReport findAssistant(std::string name, const std::optional<std::string>& selected,
                              std::span<const std::string> places) {
  AssistantReport report;
  report.name = std::move(name);
  report.chosen = selected;
  if (auto found = resolveAssistant(selected, places)) {
    report.version = packagedVersion(found->path);
    report.foundPath = std::move(found->foundPath);
    report.path = std::move(found->path);
  }
  return report;
}

VersionQuestion::VersionQuestion(ChildProcessLauncher& launcher, TaskQueue& queue,
                                 const AssistantExecutable& executable,
                                 std::function<void(std::optional<std::string>)> done)
    : done_(std::move(done)) {
  const char* path = std::getenv("PATH");
  ChildProcessOptions options;
  options.executable = executable.path;
  options.arguments = {"--version"};
  options.environmentChanges["PATH"] = searchPathFor(executable, path != nullptr ? path : "");
  options.workingDirectory = "/";
  options.name = executable.foundPath;
  ChildProcessEvents events;
  events.onOutput = [this](std::string_view bytes) {
    output_.append(bytes.substr(0, maxOutput - std::min(maxOutput, output_.size())));
  };
  events.onExit = [this](ChildExit) { finish(); };
  auto child = launcher.start(options, std::move(events));
  limit_ = queue.runAfter(child ? timeout : Seconds{0}, Seconds{0}, [this] {
    output_.clear();
    finish();
  });
  if (child) {
    child_ = std::move(child).value();
    child_->closeInput();
  }
}

void VersionQuestion::finish() {
  limit_.reset();
  if (const auto done = std::exchange(done_, nullptr)) {
    child_.reset();
    done(versionIn(output_));
  }
}

}  // namespace vantora
