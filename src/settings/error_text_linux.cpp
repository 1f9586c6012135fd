// SPDX-License-Identifier: MIT
#include <cerrno>
#include <clocale>
#include <cstring>

#include "settings/error_text.hpp"
#include "settings/error_words.hpp"

namespace vantora {

namespace {

// What the C library itself says, which is English.
std::string untranslated(int errorNumber) {
  const locale_t c = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
  if (c == static_cast<locale_t>(nullptr)) {
    return {};
  }
  std::string text = strerror_l(errorNumber, c);
  freelocale(c);
  return text;
}

std::string textInUsersLanguage(int errorNumber) {
  // The messages follow the user's environment, the bytes are UTF-8 whatever its
  // character set: the process itself stays in the C locale (locale(7)).
  const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(nullptr));
  locale_t user = newlocale(LC_MESSAGES_MASK, "", utf8);
  if (user == static_cast<locale_t>(nullptr)) {
    user = utf8;  // The user's locale is not installed.
  }
  std::string text;
  if (user != static_cast<locale_t>(nullptr)) {
    text = strerror_l(errorNumber, user);
    freelocale(user);
  } else {
    char buffer[128];
    text = strerror_r(errorNumber, buffer, sizeof buffer);
  }
  return text;
}

}  // namespace

std::string systemErrorText(int errorNumber) {
  const int savedErrno = errno;
  std::string text = textInUsersLanguage(errorNumber);
  // A system without translations would put English into the middle of our sentences.
  if (const auto words = portugueseErrorText(errorNumber);
      !words.empty() && text == untranslated(errorNumber)) {
    text = words;
  }
  errno = savedErrno;
  return text;
}

}  // namespace vantora
