// SPDX-License-Identifier: MIT
#include "platform/linux/panels/waybar_configuration.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "model/json.hpp"
#include "model/result.hpp"
#include "platform/linux/panels/plain_json.hpp"
#include "settings/file_io.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;

// Larger than any configuration, command line or environment in practice.
constexpr std::size_t maxFileSize = std::size_t{1024} * 1024;
constexpr std::int64_t maxIconHeight = 1024;  // points

/// The texts that zero bytes end.
std::vector<std::string_view> texts(std::string_view bytes) {
  std::vector<std::string_view> found;
  while (!bytes.empty()) {
    const std::size_t end = std::min(bytes.find('\0'), bytes.size());
    found.push_back(bytes.substr(0, end));
    bytes.remove_prefix(std::min(end + 1, bytes.size()));
  }
  return found;
}

/// What stands behind `prefix` in the first text that begins with it.
std::optional<std::string_view> after(std::string_view prefix,
                                      const std::vector<std::string_view>& texts) {
  const auto found = std::ranges::find_if(
      texts, [prefix](std::string_view text) { return text.starts_with(prefix); });
  return found == texts.end() ? std::nullopt : std::optional(found->substr(prefix.size()));
}

/// The file of the option -c or --config.
std::optional<std::string_view> namedFile(const std::vector<std::string_view>& arguments) {
  for (std::size_t index = 1; index < arguments.size(); ++index) {
    for (const std::string_view option : {"-c", "--config"}) {
      const std::string_view argument = arguments[index];
      if (argument == option) {
        return index + 1 < arguments.size() ? std::optional(arguments[index + 1]) : std::nullopt;
      }
      if (argument.starts_with(option) &&
          (argument[option.size()] == '=' || argument[option.size()] == ':')) {
        return argument.substr(option.size() + 1);
      }
    }
  }
  return std::nullopt;
}

bool isTray(std::string_view name) {
  return name == "tray" || name.starts_with("tray#");
}

bool holdsTray(const Json& modules) {
  return std::ranges::any_of(
      modules, [](const Json& module) { return isTray(asText(module).value_or("")); });
}

/// Among its modules, or those of a group of modules.
bool hasTray(const Json& bar) {
  return std::ranges::any_of(bar.members(), [](const auto& entry) {
    const auto& [key, value] = entry;
    return key.starts_with("group/") ? holdsTray(value["modules"])
                                     : key.starts_with("modules-") && holdsTray(value);
  });
}

bool isVertical(const Json& bar) {
  const std::string position = asText(bar["position"]).value_or("");
  return position == "left" || position == "right";
}

using IconHeight = std::optional<int>;

IconHeight iconHeightOf(const Json& tray) {
  const std::int64_t height = asInteger(tray["icon-size"]).value_or(0);
  return height < 1 || height > maxIconHeight ? std::nullopt : IconHeight(static_cast<int>(height));
}

/// Nothing where one of them is not known, or there is none.
IconHeight largest(const std::vector<IconHeight>& heights) {
  // Nothing is less than any height.
  const bool areKnown = !heights.empty() && std::ranges::min(heights);
  return areKnown ? std::ranges::max(heights) : std::nullopt;
}

/// Of all trays that the bar describes.
IconHeight iconHeight(const Json& bar) {
  std::vector<IconHeight> heights;
  for (const auto& [key, value] : bar.members()) {
    if (isTray(key)) {
      heights.push_back(iconHeightOf(value));
    }
  }
  return largest(heights);
}

}  // namespace

PanelLayout waybarLayout(std::string_view configuration) {
  const Json document = parseJson(plainJson(configuration)).value_or(Json());
  std::vector<Json> bars = document.isArray() ? document.elements() : std::vector{document};
  // Without a tray in sight it came with an included file, and may be any bar's.
  if (std::ranges::any_of(bars, hasTray)) {
    std::erase_if(bars, [](const Json& bar) { return !hasTray(bar); });
  }
  std::vector<IconHeight> heights(bars.size());
  std::ranges::transform(bars, heights.begin(), iconHeight);
  return {.isVertical = !bars.empty() && std::ranges::all_of(bars, isVertical),
          .iconHeight = largest(heights)};
}

std::vector<fs::path> waybarConfigurations(std::string_view commandLine,
                                           std::string_view environment) {
  if (const auto file = namedFile(texts(commandLine))) {
    return {fs::path(*file)};
  }
  const std::vector<std::string_view> variables = texts(environment);
  std::vector<fs::path> folders;
  if (const auto home = after("XDG_CONFIG_HOME=", variables); home && !home->empty()) {
    folders.emplace_back(fs::path(*home) / "waybar");
  }
  if (const auto home = after("HOME=", variables); home && !home->empty()) {
    folders.emplace_back(fs::path(*home) / ".config/waybar");
    folders.emplace_back(fs::path(*home) / "waybar");
  }
  folders.emplace_back("/etc/xdg/waybar");
  std::vector<fs::path> files;
  for (const fs::path& folder : folders) {
    files.push_back(folder / "config");
    files.push_back(folder / "config.jsonc");
  }
  return files;
}

PanelLayout readWaybarLayout(const std::string& process) {
  const auto read = [](const fs::path& path) { return FileIO::readFile(path, maxFileSize); };
  const auto commandLine = read(process + "/cmdline");
  const auto environment = read(process + "/environ");
  if (!commandLine || !environment) {
    return {};
  }
  for (const fs::path& file : waybarConfigurations(*commandLine, *environment)) {
    const auto configuration = read(fs::path(process) / "cwd" / file);
    if (configuration) {
      return waybarLayout(*configuration);
    }
    if (configuration.fault().kind != Fault::Kind::absent) {
      return {};
    }
  }
  return {};
}

}  // namespace vantora
