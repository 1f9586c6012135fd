// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/desktop_entry.hpp"

#include <algorithm>

#include "platform/linux/desktop/xdg_folders.hpp"

namespace vantora::DesktopEntry {
namespace {

constexpr std::string_view blanks = " \t\r\f\v";

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view valueOf(const Keys& keys, std::string_view key) {
  const auto found = keys.find(key);
  return found != keys.end() ? std::string_view(found->second) : std::string_view();
}

bool isTrue(std::string_view value) {
  return value == "true" || value == "1";  // 1 and 0 stood in older files.
}
bool isFalse(std::string_view value) {
  return value == "false" || value == "0";
}

// Undoes the escapes that every value of type string may hold.
std::string unescaped(std::string_view value) {
  std::string text;
  for (std::size_t at = 0; at < value.size(); ++at) {
    if (value[at] != '\\' || at + 1 == value.size()) {
      text += value[at];
      continue;
    }
    switch (const char next = value[++at]) {
      case 's':
        text += ' ';
        break;
      case 'n':
        text += '\n';
        break;
      case 't':
        text += '\t';
        break;
      case 'r':
        text += '\r';
        break;
      default:
        text += next == '\\' || next == ';' ? std::string(1, next) : std::string{'\\', next};
    }
  }
  return text;
}

// The program of an Exec value: its first argument, quoted or not.
std::string programOf(std::string_view exec) {
  const std::string line = unescaped(exec);
  std::string program;
  bool isQuoted = false;
  for (std::size_t at = 0; at < line.size(); ++at) {
    const char letter = line[at];
    const char next = at + 1 < line.size() ? line[at + 1] : '\0';
    if (letter == '"') {
      isQuoted = !isQuoted;
    } else if ((isQuoted && letter == '\\' && next != '\0') || (letter == '%' && next == '%')) {
      program += next;
      ++at;
    } else if (!isQuoted && (letter == ' ' || letter == '\t')) {
      if (!program.empty()) {
        break;
      }
    } else {
      program += letter;
    }
  }
  return program;
}

std::string escaped(std::string_view text) {
  std::string value;
  for (const char letter : text) {
    switch (letter) {
      case '\\':
        value += "\\\\";
        break;
      case '\n':
        value += "\\n";
        break;
      case '\t':
        value += "\\t";
        break;
      case '\r':
        value += "\\r";
        break;
      default:
        value += letter;
    }
  }
  return value;
}

std::string quotedArgument(std::string_view text) {
  std::string argument = "\"";
  for (const char letter : text) {
    if (letter == '"' || letter == '`' || letter == '$' || letter == '\\') {
      argument += '\\';
    }
    argument += letter;
    if (letter == '%') {
      argument += '%';
    }
  }
  return argument + '"';
}

bool intersects(std::string_view list, const std::vector<std::string>& names) {
  const auto wanted = splitList(list, ';');
  return std::any_of(wanted.begin(), wanted.end(), [&](const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
  });
}

}  // namespace

std::optional<Keys> parse(std::string_view text) {
  Keys keys;
  bool hasHead = false;
  bool isInHead = false;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    const std::string_view line = trimmed(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.empty() || line.front() == '#') {
      continue;
    }
    if (line.front() == '[') {
      if (line.back() != ']' || (!hasHead && line != "[Desktop Entry]")) {
        return std::nullopt;
      }
      isInHead = line == "[Desktop Entry]";
      hasHead = true;
      continue;
    }
    const std::size_t equals = line.find('=');
    const std::string_view key = trimmed(line.substr(0, equals));
    if (!hasHead || equals == std::string_view::npos || key.empty()) {
      return std::nullopt;
    }
    if (isInHead) {
      keys.insert_or_assign(std::string(key), std::string(trimmed(line.substr(equals + 1))));
    }
  }
  return hasHead ? std::optional(std::move(keys)) : std::nullopt;
}

Start startOf(const Keys& keys, const std::vector<std::string>& currentDesktops,
              const std::function<bool(const std::string&)>& isExecutable) {
  // A hidden entry counts as absent, whatever else it holds or lacks.
  if (isTrue(valueOf(keys, "Hidden")) || isFalse(valueOf(keys, "X-GNOME-Autostart-enabled"))) {
    return Start::off;
  }
  const std::string program = programOf(valueOf(keys, "Exec"));
  if (valueOf(keys, "Type") != "Application" || program.empty()) {
    return Start::malformed;
  }
  if ((keys.contains("OnlyShowIn") && !intersects(valueOf(keys, "OnlyShowIn"), currentDesktops)) ||
      intersects(valueOf(keys, "NotShowIn"), currentDesktops)) {
    return Start::off;
  }
  const std::string tried = unescaped(valueOf(keys, "TryExec"));
  return (tried.empty() || isExecutable(tried)) && isExecutable(program) ? Start::starts
                                                                         : Start::notFound;
}

std::string autostartFile(std::string_view executable) {
  return "[Desktop Entry]\n"
         "Type=Application\n"
         "Name=Vantora\n"
         "Comment=Monitor do sistema no painel\n"
         "Exec=" +
         escaped(quotedArgument(executable)) +
         "\n"
         "TryExec=" +
         escaped(executable) +
         "\n"
         "Icon=vantora\n"
         "Terminal=false\n"
         "StartupNotify=false\n"
         "X-GNOME-Autostart-enabled=true\n";
}

std::string hidingFile() {
  return "[Desktop Entry]\nType=Application\nName=Vantora\nHidden=true\n";
}

}  // namespace vantora::DesktopEntry
