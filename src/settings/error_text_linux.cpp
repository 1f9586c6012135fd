// SPDX-License-Identifier: MIT
#include <cerrno>
#include <clocale>
#include <cstring>

#include "settings/error_text.hpp"

namespace vantora {

std::string systemErrorText(int errorNumber) {
  const int savedErrno = errno;
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
  errno = savedErrno;
  return text;
}

}  // namespace vantora
