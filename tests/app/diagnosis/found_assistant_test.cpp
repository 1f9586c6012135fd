// SPDX-License-Identifier: MIT
#include "app/diagnosis/found_assistant.hpp"

#include <gtest/gtest.h>

#include <memory>

#include "support/scripted_process.hpp"
#include "support/temporary_folder.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

TEST(FoundAssistant, ReadsAVersionOutOfWhatAssistantsSay) {
  EXPECT_EQ(versionIn("codex-cli 0.63.0\n"), "0.63.0");
  EXPECT_EQ(versionIn("2.0.50 (Claude Code)\n"), "2.0.50");
  EXPECT_EQ(versionIn("versão 1.2.3-alpha.4, de hoje"), "1.2.3-alpha.4");
  EXPECT_EQ(versionIn("é a 1.2."), "1.2");
  for (const char* text : {"", "codex", "12", "1.", "v", "2026"}) {
    EXPECT_EQ(versionIn(text), std::nullopt) << text;
  }
  EXPECT_EQ(versionIn("1." + std::string(60, '1')), std::nullopt) << "no version is so long";
}

TEST(FoundAssistant, TakesTheVersionFromThePackageAroundIt) {
  const test::TemporaryFolder folder;
  const auto package = folder / "node_modules/@openai/codex";
  std::filesystem::create_directories(package / "bin");
  test::writeBytes(package / "package.json", R"({"name":"@openai/codex","version":"0.63.0"})");
  test::writeBytes(folder / "package.json", R"({"version":"9.9.9"})");
  EXPECT_EQ(packagedVersion((package / "bin/codex.js").string()), "0.63.0");
  std::filesystem::remove(package / "package.json");
  EXPECT_EQ(packagedVersion((package / "bin/codex.js").string()), std::nullopt)
      << "what holds the modules is no package of it";
}

TEST(FoundAssistant, TakesTheVersionFromAFolderOrAFileNamedAfterIt) {
  EXPECT_EQ(packagedVersion("/opt/none/claude/versions/2.0.50"), "2.0.50");
  EXPECT_EQ(packagedVersion("/opt/none/Caskroom/codex/0.63.0/codex"), "0.63.0");
  EXPECT_EQ(packagedVersion("/opt/none/bin/codex"), std::nullopt);
}

TEST(FoundAssistant, KnowsAChoiceThatIsNoProgram) {
  const AssistantReport report = findAssistant("Codex CLI", "/no/such/codex", {});
  EXPECT_EQ(report.chosen, "/no/such/codex");
  EXPECT_FALSE(report.path);
}

class VersionQuestionTest : public testing::Test {
 protected:
  void ask() {
    question_ = std::make_unique<VersionQuestion>(launcher_, *queue_,
                                                  AssistantExecutable{"/real/codex", "/bin/codex"},
                                                  [this](std::optional<std::string> version) {
                                                    ++answers_;
                                                    version_ = std::move(version);
                                                  });
  }

  test::VirtualTime time_;
  std::unique_ptr<test::VirtualQueue> queue_ = time_.makeQueue();
  test::ScriptedLauncher launcher_{*queue_};
  std::unique_ptr<VersionQuestion> question_;
  int answers_ = 0;
  std::optional<std::string> version_;
};

TEST_F(VersionQuestionTest, AsksForTheVersionAndForNothingElse) {
  ask();
  ASSERT_EQ(launcher_.started().size(), 1U);
  test::ScriptedProcess& child = *launcher_.started()[0];
  EXPECT_EQ(child.options().arguments, std::vector<std::string>{"--version"});
  EXPECT_EQ(child.options().executable, "/real/codex");
  EXPECT_TRUE(child.options().environmentChanges.at("PATH").starts_with("/bin:/real:"));
  EXPECT_TRUE(child.isInputClosed());
  child.output("codex-cli 0.6");
  child.output("3.0\n");
  child.exit();
  time_.runPosted();
  EXPECT_EQ(answers_, 1);
  EXPECT_EQ(version_, "0.63.0");
}

TEST_F(VersionQuestionTest, EndsAChildThatSaysNothingForThreeSeconds) {
  ask();
  launcher_.started()[0]->output("codex-cli 0.63.0\n");
  time_.advance(VersionQuestion::timeout - Seconds{0.001});
  EXPECT_EQ(answers_, 0);
  time_.advance(Seconds{0.001});
  EXPECT_EQ(answers_, 1);
  EXPECT_EQ(version_, std::nullopt);
  EXPECT_TRUE(launcher_.started()[0]->isTerminated());
}

TEST_F(VersionQuestionTest, AnswersWhereNothingCanBeStarted) {
  launcher_.failStarts(Fault::failed("x"));
  ask();
  EXPECT_EQ(answers_, 0) << "not inside of the call";
  time_.advance(Seconds{0.001});
  EXPECT_EQ(answers_, 1);
  EXPECT_EQ(version_, std::nullopt);
}

}  // namespace
}  // namespace vantora
