// SPDX-License-Identifier: MIT
#include "app/linux/start_program.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <system_error>

namespace vantora {
namespace {

TEST(StartProgram, ReturnsTheStatusOfTheProgram) {
  EXPECT_EQ(startProgram("program", [] { return 7; }), 7);
}

TEST(StartProgram, SaysWhatTheSystemRefuses) {
  testing::internal::CaptureStderr();
  const int status = startProgram(
      "program", []() -> int { throw std::system_error(EAGAIN, std::generic_category()); });
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "program: não é possível iniciar: Recurso temporariamente indisponível\n");
  EXPECT_EQ(status, 1);
}

}  // namespace
}  // namespace vantora
