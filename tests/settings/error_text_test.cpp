// SPDX-License-Identifier: MIT
#include "settings/error_text.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

// Sets a variable of the environment until the test ends.
class Variable {
 public:
  Variable(const char* name, const std::string& value) : name_(name) {
    if (const char* before = std::getenv(name)) {
      before_ = before;
    }
    ::setenv(name, value.c_str(), 1);
  }
  ~Variable() {
    if (before_.empty()) {
      ::unsetenv(name_);
    } else {
      ::setenv(name_, before_.c_str(), 1);
    }
  }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  const char* name_;
  std::string before_;
};

TEST(SystemErrorText, DescribesAnErrorAndLeavesErrnoAlone) {
  const Variable locale("LC_ALL", "C");
  errno = EPERM;
  EXPECT_EQ(systemErrorText(ENOENT), "Arquivo ou pasta inexistente");
  EXPECT_EQ(errno, EPERM);
}

TEST(SystemErrorText, FallsBackWhereTheUsersLocaleIsNotInstalled) {
  const Variable locale("LC_ALL", "xx_YY.UTF-8");
  EXPECT_EQ(systemErrorText(ENOSPC), "Não há espaço no dispositivo");
}

TEST(SystemErrorText, SpeaksPortugueseOfEveryErrorOfAFileWhereTheSystemHasNoTranslation) {
  const Variable locale("LC_ALL", "C.UTF-8");
  for (const int error :
       {EPERM,  ENOENT,  EIO,          ENXIO,  EAGAIN,    ENOMEM,       EACCES,  EBUSY, EEXIST,
        ENODEV, ENOTDIR, EISDIR,       EINVAL, ENFILE,    EMFILE,       ETXTBSY, EFBIG, ENOSPC,
        EROFS,  EPIPE,   ENAMETOOLONG, ELOOP,  ETIMEDOUT, ECONNREFUSED, EDQUOT,  ESTALE}) {
    EXPECT_NE(systemErrorText(error), std::strerror(error));
  }
}

TEST(SystemErrorText, KeepsTheSystemsTextOfAnErrorThatHasNoWordsHere) {
  const Variable locale("LC_ALL", "C");
  EXPECT_EQ(systemErrorText(ENOTTY), std::strerror(ENOTTY));
}

TEST(SystemErrorText, SpeaksTheUsersLanguageInUTF8) {
  const test::TemporaryFolder folder;
  // A character set other than UTF-8 on purpose: the text must come as UTF-8 all the same.
  const std::string make =
      "localedef -i pt_BR -f ISO-8859-1 '" + (folder / "pt_BR").string() + "' > /dev/null 2>&1";
  if (std::system(make.c_str()) != 0 ||
      !std::filesystem::exists("/usr/share/locale/pt_BR/LC_MESSAGES/libc.mo")) {
    GTEST_SKIP() << "needs localedef and the C library's translations (package locales)";
  }
  const Variable path("LOCPATH", folder.path().string());
  const Variable locale("LC_ALL", "pt_BR");
  // In a process of its own: with LOCPATH the C library loses the few bytes of that path,
  // which the leak sanitizer would count as ours.
  const auto speak = [] {
    const bool isRight = systemErrorText(ENOSPC) == "Não há espaço disponível no dispositivo" &&
                         std::string_view(std::setlocale(LC_ALL, nullptr)) == "C";
    ::_exit(isRight ? 0 : 1);
  };
  EXPECT_EXIT(speak(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace vantora
