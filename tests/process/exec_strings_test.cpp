// SPDX-License-Identifier: MIT
#include "process/exec_strings.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <string>

namespace vantora {
namespace {

std::multiset<std::string> entries(ExecStrings strings) {
  std::multiset<std::string> result;
  for (char** entry = strings.get(); *entry != nullptr; ++entry) {
    result.insert(*entry);
  }
  return result;
}

TEST(ExecStrings, EndsWithANull) {
  ExecStrings strings;
  EXPECT_EQ(*strings.get(), nullptr);
  strings.add("-p");
  EXPECT_STREQ(strings.get()[0], "-p");
  EXPECT_EQ(strings.get()[1], nullptr);
}

TEST(ExecStrings, HandsTheEnvironmentOnUnchanged) {
  setenv("VANTORA_TEST_VARIABLE", "a=b", 1);
  EXPECT_EQ(entries(environmentWith({})).count("VANTORA_TEST_VARIABLE=a=b"), 1U);
  unsetenv("VANTORA_TEST_VARIABLE");
}

TEST(ExecStrings, AddsAndReplacesVariables) {
  setenv("VANTORA_TEST_VARIABLE", "old", 1);
  setenv("VANTORA_TEST_VARIABLE_TOO", "kept", 1);
  const auto found =
      entries(environmentWith({{"VANTORA_TEST_VARIABLE", "1"}, {"VANTORA_NEW", ""}}));
  EXPECT_EQ(found.count("VANTORA_TEST_VARIABLE=old"), 0U);
  EXPECT_EQ(found.count("VANTORA_TEST_VARIABLE=1"), 1U);
  EXPECT_EQ(found.count("VANTORA_TEST_VARIABLE_TOO=kept"), 1U);
  EXPECT_EQ(found.count("VANTORA_NEW="), 1U);
  EXPECT_STREQ(std::getenv("VANTORA_TEST_VARIABLE"), "old");
  unsetenv("VANTORA_TEST_VARIABLE");
  unsetenv("VANTORA_TEST_VARIABLE_TOO");
}

}  // namespace
}  // namespace vantora
