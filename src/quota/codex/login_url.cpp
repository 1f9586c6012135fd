// SPDX-License-Identifier: MIT
#include "quota/codex/login_url.hpp"

#include <algorithm>

#include "model/ascii.hpp"

namespace vantora {
namespace {

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

bool isHexDigit(char character) {
  return isDigit(character) || (character >= 'a' && character <= 'f') ||
         (character >= 'A' && character <= 'F');
}

// RFC 3986, section 2: reserved and unreserved characters and percent-encoded bytes.
// What browsers and URL openers disagree about (backslash, blanks, tabs, quotes, bytes
// outside ASCII) is not among them.
bool isWellFormed(std::string_view text) {
  constexpr std::string_view marks = "-._~:/?#[]@!$&'()*+,;=";
  for (std::size_t index = 0; index < text.size(); ++index) {
    const char character = text[index];
    if (character == '%') {
      if (text.size() - index < 3 || !isHexDigit(text[index + 1]) || !isHexDigit(text[index + 2])) {
        return false;
      }
      continue;  // Both digits are looked at once more, as what they are.
    }
    const bool isLetter =
        (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
    if (!isLetter && !isDigit(character) && marks.find(character) == std::string_view::npos) {
      return false;
    }
  }
  return true;
}

}  // namespace

bool isOfficialLoginURL(std::string_view url) {
  constexpr std::string_view start = "https://";
  if (!url.starts_with(start) || !isWellFormed(url)) {
    return false;
  }
  url.remove_prefix(start.size());
  const std::string_view authority = url.substr(0, url.find_first_of("/?#"));
  const std::string_view rest = url.substr(authority.size());
  // Brackets stand for an address in the authority and for nothing elsewhere (section
  // 3.2.2); a number sign begins the fragment, once.
  if (rest.find_first_of("[]") != std::string_view::npos ||
      std::count(rest.begin(), rest.end(), '#') > 1) {
    return false;
  }
  // An at sign ends a user name, were it an empty one.
  if (authority.find('@') != std::string_view::npos) {
    return false;
  }
  const std::size_t colon = authority.find(':');
  if (colon != std::string_view::npos) {
    const std::string_view port = authority.substr(colon + 1);
    if (!std::all_of(port.begin(), port.end(), isDigit)) {
      return false;
    }
  }
  const std::string host = asciiLowerCased(authority.substr(0, colon));
  return std::find(officialLoginHosts.begin(), officialLoginHosts.end(), host) !=
         officialLoginHosts.end();
}

}  // namespace vantora
