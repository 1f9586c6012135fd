// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session_marker.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

TEST(SessionMarker, IsSetOnceInASession) {
  const test::TemporaryFolder runtime;
  EXPECT_TRUE(markOncePerSession(runtime.path().c_str(), "vantora-a"));
  EXPECT_FALSE(markOncePerSession(runtime.path().c_str(), "vantora-a"));
  EXPECT_TRUE(markOncePerSession(runtime.path().c_str(), "vantora-b"));
}

TEST(SessionMarker, IsSetAgainInTheNextSession) {
  const test::TemporaryFolder first;
  const test::TemporaryFolder second;
  EXPECT_TRUE(markOncePerSession(first.path().c_str(), "vantora-a"));
  EXPECT_TRUE(markOncePerSession(second.path().c_str(), "vantora-a"));
}

TEST(SessionMarker, IsNotKeptWhereThereIsNoFolderForIt) {
  const test::TemporaryFolder parent;
  const std::string gone = (parent / "gone").string();
  for (const char* folder : {static_cast<const char*>(nullptr), "", "relative", gone.c_str()}) {
    EXPECT_TRUE(markOncePerSession(folder, "vantora-a"));
    EXPECT_TRUE(markOncePerSession(folder, "vantora-a"));
  }
}

}  // namespace
}  // namespace vantora
