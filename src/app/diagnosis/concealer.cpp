// SPDX-License-Identifier: MIT
#include "app/diagnosis/concealer.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace vantora {
namespace {

constexpr std::string_view ellipsis = "…";

bool isDigit(char byte) {
  return byte >= '0' && byte <= '9';
}
bool isHex(char byte) {
  return isDigit(byte) || (byte >= 'a' && byte <= 'f') || (byte >= 'A' && byte <= 'F');
}
bool isLetter(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}
// Of a name or a number: what must not go on where an address begins or ends.
bool isWord(char byte) {
  return isDigit(byte) || isLetter(byte);
}

template <typename Condition>
std::size_t run(std::string_view text, std::size_t start, Condition belongs) {
  std::size_t end = start;
  while (end < text.size() && belongs(text[end])) {
    ++end;
  }
  return end - start;
}

// Six pairs of hexadecimal digits with one separator between each two.
std::size_t hardwareAddress(std::string_view text, std::size_t start) {
  constexpr std::size_t length = 17;
  if (text.size() - start < length) {
    return 0;
  }
  const char separator = text[start + 2];
  if (separator != ':' && separator != '-' && separator != '_' && separator != '.') {
    return 0;
  }
  for (std::size_t index = 0; index < length; ++index) {
    const char byte = text[start + index];
    if (index % 3 == 2 ? byte != separator : !isHex(byte)) {
      return 0;
    }
  }
  return length;
}

// Twelve hexadecimal digits and no more.
std::size_t bareHardwareAddress(std::string_view text, std::size_t start) {
  constexpr std::size_t length = 12;
  return run(text, start, isHex) == length ? length : 0;
}

// Groups of hexadecimal digits with colons: four at least, or a gap. A time of day has three.
std::size_t addressWithColons(std::string_view text, std::size_t start) {
  const std::size_t length = run(text, start, [](char byte) { return isHex(byte) || byte == ':'; });
  const std::string_view found = text.substr(start, length);
  const bool hasGap = found.find("::") != std::string_view::npos && found.size() > 2;
  return hasGap || std::count(found.begin(), found.end(), ':') >= 3 ? length : 0;
}

// Four numbers below 256 with dots, and no fifth.
std::size_t addressWithDots(std::string_view text, std::size_t start) {
  std::size_t place = start;
  for (int part = 0; part < 4; ++part) {
    const std::size_t digits = run(text, place, isDigit);
    int value = 0;
    for (std::size_t index = 0; index < std::min<std::size_t>(digits, 3); ++index) {
      value = value * 10 + (text[place + index] - '0');
    }
    if (digits == 0 || digits > 3 || value > 255) {
      return 0;
    }
    place += digits;
    if (part < 3 && (place >= text.size() || text[place++] != '.')) {
      return 0;
    }
  }
  const bool goesOn = place + 1 < text.size() && text[place] == '.' && isDigit(text[place + 1]);
  return goesOn ? 0 : place - start;
}

// "name@host.tld".
std::size_t mailAddress(std::string_view text, std::size_t start) {
  const auto isLocal = [](char byte) {
    return isWord(byte) || byte == '.' || byte == '_' || byte == '-' || byte == '+';
  };
  const std::size_t local = run(text, start, isLocal);
  const std::size_t at = start + local;
  if (local == 0 || at >= text.size() || text[at] != '@') {
    return 0;
  }
  const std::size_t host =
      run(text, at + 1, [](char byte) { return isWord(byte) || byte == '.' || byte == '-'; });
  const std::string_view domain = text.substr(at + 1, host);
  const std::size_t dot = domain.rfind('.');
  return dot != std::string_view::npos && dot + 2 < domain.size() && isLetter(domain[dot + 1])
             ? local + 1 + host
             : 0;
}

std::string withoutAddresses(std::string_view text) {
  std::string result;
  for (std::size_t place = 0; place < text.size();) {
    // Not in the middle of a word, nor of a version.
    const bool isStart =
        place == 0 || (!isWord(text[place - 1]) &&
                       !(text[place - 1] == '.' && place >= 2 && isDigit(text[place - 2])));
    // A name that the system made of an adapter's address (systemd.net-naming-scheme(7)).
    const bool isAfterPrefix = place >= 3 && text[place - 1] == 'x' && isLetter(text[place - 2]) &&
                               isLetter(text[place - 3]);
    std::size_t length = 0;
    if (isStart) {
      for (const auto find : {hardwareAddress, bareHardwareAddress, addressWithColons,
                              addressWithDots, mailAddress}) {
        length = std::max(length, find(text, place));
      }
    } else if (isAfterPrefix) {
      length = bareHardwareAddress(text, place);
    }
    if (length > 0) {
      result += ellipsis;
      place += length;
    } else {
      result += text[place++];
    }
  }
  return result;
}

// The drivers of keyboards and mice call their batteries after the device's serial number.
std::string withoutSerialNumber(std::string text) {
  constexpr std::string_view prefix = "hid-";
  constexpr std::string_view suffix = "-battery";
  const std::size_t start = text.find(prefix);
  const std::size_t end = start == std::string::npos ? start : text.find(suffix, start);
  if (end != std::string::npos) {
    text.replace(start + prefix.size(), end - start - prefix.size(), ellipsis);
  }
  return text;
}

// "/home/name/x" of anyone: "/home/…/x".
std::string withoutOthersHomes(std::string text) {
  constexpr std::array<std::string_view, 2> roots{"/home/", "/Users/"};
  for (const std::string_view root : roots) {
    for (std::size_t place = text.find(root); place != std::string::npos;
         place = text.find(root, place + 1)) {
      const std::size_t name = place + root.size();
      const std::size_t length = run(text, name, [](char byte) {
        return byte != '/' && byte != ' ' && byte != ';' && byte != ',' && byte != '"';
      });
      if (length > 0 && text.compare(name, length, "linuxbrew") != 0) {
        text.replace(name, length, ellipsis);
      }
    }
  }
  return text;
}

}  // namespace

Concealer::Concealer(std::vector<std::string> homes) : homes_(std::move(homes)) {
  homes_.erase(std::remove_if(homes_.begin(), homes_.end(),
                              [](const std::string& home) { return home.size() < 2; }),
               homes_.end());
  std::sort(homes_.begin(), homes_.end(),
            [](const auto& left, const auto& right) { return left.size() > right.size(); });
}

std::string Concealer::operator()(std::string_view text) const {
  std::string result(text);
  for (char& byte : result) {
    if (static_cast<unsigned char>(byte) < ' ' || byte == '\x7f') {
      byte = '?';
    }
  }
  for (const std::string& home : homes_) {
    for (std::size_t place = result.find(home); place != std::string::npos;
         place = result.find(home, place + 1)) {
      const std::size_t end = place + home.size();
      const bool isWhole = end == result.size() || !isWord(result[end]);
      if (isWhole) {
        result.replace(place, home.size(), "~");
      }
    }
  }
  return withoutAddresses(withoutSerialNumber(withoutOthersHomes(std::move(result))));
}

Json Concealer::document(const Json& value) const {
  if (const auto text = asText(value)) {
    return Json((*this)(*text));
  }
  if (value.isArray()) {
    Json result = Json::array();
    for (const Json& element : value) {
      result.append(document(element));
    }
    return result;
  }
  if (value.isObject()) {
    Json result = Json::object();
    for (const auto& [name, member] : value.members()) {
      result[name] = document(member);
    }
    return result;
  }
  return value;
}

}  // namespace vantora
