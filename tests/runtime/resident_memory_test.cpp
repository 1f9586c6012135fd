// SPDX-License-Identifier: MIT
#include "runtime/resident_memory.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>

namespace vantora {
namespace {

std::string range(const std::string& head, const std::string& anonymous) {
  return head +
         "\nSize:                  4 kB\nRss:                   4 kB\nAnonymous:  " + anonymous +
         " kB\nVmFlags: rd ex mr mw me\n";
}

TEST(UnwrittenFileRanges, AreThoseOfFilesThatNobodyWroteTo) {
  const std::string smaps =
      range("1000-3000 r-xp 00000000 fe:00 11                 /usr/lib/libc.so.6", "0") +
      range("3000-4000 r--p 00002000 fe:00 11                 /usr/lib/libc.so.6", "4") +
      range("4000-5000 rw-p 00003000 fe:00 11                 /usr/lib/libc.so.6", "0") +
      range("5000-6000 r--s 00000000 fe:00 12                 /usr/lib/cache", "0") +
      range("6000-7000 r-xp 00000000 00:00 0                  [vdso]", "0") +
      range("7000-8000 r--p 00000000 00:00 0 ", "0") +
      range("8000-9000 r--p 00000000 fe:00 13                 /a path with blanks", "0");
  EXPECT_THAT(unwrittenFileRanges(smaps),
              testing::ElementsAre(MemoryRange{0x1000, 0x2000}, MemoryRange{0x8000, 0x1000}));
}

TEST(UnwrittenFileRanges, LeaveOutWhatDoesNotReadAsARange) {
  for (const char* text :
       {"", "\n\n", "Anonymous: 0 kB\n", "zz-yy r-xp 0 0 0 /x\nAnonymous: 0 kB\n",
        "3000-1000 r-xp 0 0 0 /x\nAnonymous: 0 kB\n", "1000-3000 r-xp 0 0 0 /x\n",
        "1000-3000 r-xp\nAnonymous: 0 kB\n", "10003000 r-xp 0 0 0 /x\nAnonymous: 0 kB\n"}) {
    EXPECT_THAT(unwrittenFileRanges(text), testing::IsEmpty()) << text;
  }
}

TEST(ReleaseUnusedCode, LeavesCodeConstantsAndVariablesAsTheyWere) {
  static std::array<int, 5000> variables{1, 2, 3};
  static const std::array<int, 5000> constants{4, 5, 6};
  variables[4999] = 7;
  releaseUnusedCode();
  EXPECT_EQ(variables[1], 2);
  EXPECT_EQ(variables[4999], 7);
  EXPECT_EQ(constants[2], 6);
  EXPECT_EQ(std::to_string(12345), "12345");
}

}  // namespace
}  // namespace vantora
