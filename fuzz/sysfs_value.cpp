// SPDX-License-Identifier: MIT
//
// One attribute's value: a number is read where strtoll(3) reads the whole text as the same
// number, and nowhere else.
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/linux/sysfs/sysfs.hpp"

namespace {

void demandThat(bool holds) {
  if (!holds) {
    std::abort();
  }
}

// White space in front, which strtoll skips, makes no number.
bool isNumber(const std::string& text, std::int64_t& value) {
  if (text.empty() || std::string_view("+-0123456789").find(text.front()) == std::string::npos) {
    return false;
  }
  char* end = nullptr;
  errno = 0;
  value = std::strtoll(text.c_str(), &end, 10);
  return errno == 0 && end == text.c_str() + text.size() && end != text.c_str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vantora;
  const std::string input(reinterpret_cast<const char*>(data), size);
  std::int64_t expected = 0;
  const bool isValid = isNumber(input, expected);
  const Sysfs::Number parsed = Sysfs::parseNumber(input);
  demandThat((parsed.error == 0) == isValid);
  demandThat(!isValid || parsed.value == expected);

  // From a file, as drivers give it: with the end of a line.
  static const int file = ::memfd_create("value", MFD_CLOEXEC);
  demandThat(::ftruncate(file, 0) == 0);
  demandThat(::pwrite(file, data, size, 0) == static_cast<ssize_t>(size));
  Sysfs::Buffer buffer{};
  const Sysfs::Text text = Sysfs::readText(file, buffer);
  if (text.error == 0) {
    demandThat(std::string_view(input).starts_with(text.text));
    demandThat(text.text.empty() || (text.text.back() != '\n' && text.text.back() != ' '));
    const Sysfs::Number number = Sysfs::readNumber(file);
    demandThat(number.error == Sysfs::parseNumber(text.text).error);
  } else {
    demandThat(size >= buffer.size());
  }
  return 0;
}
