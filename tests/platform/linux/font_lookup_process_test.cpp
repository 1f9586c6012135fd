// SPDX-License-Identifier: MIT
#include "platform/linux/font_lookup_process.hpp"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>

namespace vantora {
namespace {

TEST(LookUpApart, BringsTheSelectionBack) {
  const FontSelection selection{
      {{"/fonts/A B\n.ttf", 0, {}, 20}, {"/fonts/variable.ttf", 0x30001, "wght=500,wdth=100", 0}},
      {{"/fonts/m.ttc", 3, {}, -1}}};
  EXPECT_EQ(lookUpApart([&] { return FontSelection(selection); }), selection);
  EXPECT_EQ(lookUpApart([] { return FontSelection(); }), FontSelection());
}

TEST(LookUpApart, BringsMoreThanAPipeHoldsBack) {
  FontSelection selection;
  selection.text.assign(3000, {std::string(100, 'x'), 1, {}, 2});
  EXPECT_EQ(lookUpApart([&] { return selection; }), selection);
}

TEST(LookUpApart, LeavesThisProcessAsItWas) {
  int calls = 0;
  EXPECT_EQ(lookUpApart([&] {
              ++calls;
              return FontSelection{{{"/fonts/a.ttf", 0, {}, 0}}, {}};
            }).text.size(),
            1U);
  EXPECT_EQ(calls, 0);
}

TEST(LookUpApart, FindsNothingWhenTheLookupCrashes) {
  EXPECT_EQ(lookUpApart([]() -> FontSelection {
              ::raise(SIGKILL);
              return {{{"/fonts/a.ttf", 0, {}, 0}}, {}};
            }),
            FontSelection());
}

TEST(LookUpApart, FindsNothingWhenTheLookupBlocks) {
  EXPECT_EQ(lookUpApart(
                []() -> FontSelection {
                  for (;;) {
                    ::pause();
                  }
                },
                std::chrono::milliseconds{0}),
            FontSelection());
}

TEST(LookUpApart, NeedsNoWordOfTheChildsEnd) {
  const auto before = ::signal(SIGCHLD, SIG_IGN);
  EXPECT_EQ(lookUpApart([] {
              return FontSelection{{{"/fonts/a.ttf", 0, {}, 0}}, {}};
            }).text.size(),
            1U);
  ::signal(SIGCHLD, before);
}

TEST(LookUpApart, LeavesNoChildBehind) {
  [[maybe_unused]] const FontSelection selection = lookUpApart([] { return FontSelection(); });
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

}  // namespace
}  // namespace vantora
