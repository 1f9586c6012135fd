// SPDX-License-Identifier: MIT
#include "app/linux/own_programs.hpp"

#include <gtest/gtest.h>

#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

TEST(OwnPrograms, AreBesideEachOther) {
  const OwnPrograms programs("/opt/vantora/bin/vantora-print");
  EXPECT_EQ(programs.agent(), "/opt/vantora/bin/vantora");
  EXPECT_EQ(programs.settings(), "/opt/vantora/bin/vantora-settings");
}

TEST(OwnPrograms, KeepTheOneForCharactersInLibexecWhereItIsInstalled) {
  const test::TemporaryFolder folder;
  const OwnPrograms programs(folder / "bin" / "vantora");
  EXPECT_EQ(programs.glyphs(), folder.path() / "libexec/vantora/vantora-glyphs");
  std::filesystem::create_directory(folder / "bin");
  test::writeBytes(folder / "bin" / "vantora-glyphs", "");
  EXPECT_EQ(programs.glyphs(), folder.path() / "bin/vantora-glyphs");
}

}  // namespace
}  // namespace vantora
