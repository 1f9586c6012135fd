// SPDX-License-Identifier: MIT
#include "settings/configuration_store.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <limits>

#include "model/configuration_codec.hpp"
#include "settings/error_text.hpp"
#include "settings/padded_configuration.hpp"
#include "settings/unprivileged.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;
using test::paddedBy;
using test::readBytes;
using test::writeBytes;
using testing::ElementsAre;
using testing::StartsWith;

constexpr const char* preserved = "Configuração inválida preservada em disco; padrão carregado.";

mode_t modeOf(const fs::path& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

std::vector<std::string> namesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

class ConfigurationStoreTest : public testing::Test {
 protected:
  void writeStored(std::string_view bytes) {
    fs::create_directories(store_.fileURL().parent_path());
    writeBytes(store_.fileURL(), bytes);
  }
  // Everything the default configuration has but its modules' random identities.
  static void expectDefault(const AppConfiguration& configuration) {
    AppConfiguration plain;
    ASSERT_EQ(configuration.modules.size(), plain.modules.size());
    for (std::size_t index = 0; index < plain.modules.size(); ++index) {
      plain.modules[index].id = configuration.modules[index].id;
    }
    EXPECT_EQ(configuration, plain);
  }
  void expectPreserved() {
    const ConfigurationStore::Loaded loaded = store_.load();
    expectDefault(loaded.configuration);
    EXPECT_EQ(loaded.notice, preserved);
  }

  test::TemporaryFolder folder_;
  ConfigurationStore store_{folder_.path()};
};

TEST_F(ConfigurationStoreTest, LoadsTheDefaultWithoutANoticeWhereNoFileIs) {
  const ConfigurationStore::Loaded loaded = store_.load();
  expectDefault(loaded.configuration);
  EXPECT_EQ(loaded.notice, std::nullopt);
  EXPECT_TRUE(namesIn(folder_.path()).empty());
}

TEST_F(ConfigurationStoreTest, LoadsTheInitialConfigurationOnlyWhereNoFileIs) {
  const test::TemporaryFolder folder;
  const ConfigurationStore store(folder.path(), [] { return paddedBy(7); });
  EXPECT_EQ(store.load().configuration.horizontalPadding, 7);
  EXPECT_TRUE(fs::is_empty(folder.path()));
  fs::create_directories(store.fileURL().parent_path());
  writeBytes(store.fileURL(), "no JSON");
  expectDefault(store.load().configuration);
}

TEST_F(ConfigurationStoreTest, LoadsWhatItSaved) {
  const AppConfiguration configuration = paddedBy(7);
  EXPECT_EQ(store_.save(configuration), std::nullopt);
  const ConfigurationStore::Loaded loaded = store_.load();
  EXPECT_EQ(loaded.configuration, configuration);
  EXPECT_EQ(loaded.notice, std::nullopt);
}

TEST_F(ConfigurationStoreTest, SaysThatAnUnusableFileIsKeptAndLeavesItsBytes) {
  const std::string outOfBounds = *ConfigurationCodec::encode(paddedBy(17));
  for (const std::string& bytes :
       {std::string("not JSON"), std::string(), std::string("[1]"), outOfBounds,
        std::string("\xff\xfe{\0}\0", 6), std::string(100'000, '[')}) {
    writeStored(bytes);
    expectPreserved();
    EXPECT_EQ(readBytes(store_.fileURL()), bytes);
  }
}

TEST_F(ConfigurationStoreTest, NeverReadsAFileThatNoConfigurationCouldFill) {
  writeStored("");
  fs::resize_file(store_.fileURL(), std::uintmax_t{1} << 40);  // Sparse: it fits any disk.
  expectPreserved();
}

TEST_F(ConfigurationStoreTest, NeverWaitsForWhatIsNoFile) {
  fs::create_directories(store_.fileURL());
  expectPreserved();
  fs::remove(store_.fileURL());
  ASSERT_EQ(::mkfifo(store_.fileURL().c_str(), 0600), 0);
  expectPreserved();
  fs::remove(store_.fileURL());
  fs::create_symlink("/dev/zero", store_.fileURL());
  expectPreserved();
  fs::remove(store_.fileURL());
  fs::create_symlink(store_.fileURL(), store_.fileURL());
  expectPreserved();
}

TEST_F(ConfigurationStoreTest, SaysThatAFileWithoutPermissionIsKept) {
  writeStored(*ConfigurationCodec::encode(paddedBy(5)));
  fs::permissions(store_.fileURL(), fs::perms::none);
  const test::Unprivileged user(folder_.path());
  expectPreserved();
}

TEST_F(ConfigurationStoreTest, KeepsThePreviousBytesAsTheBackup) {
  const std::string odd = "{ \"left\" : \"by\0hand\" }\n\n";
  writeStored(odd);
  ASSERT_EQ(store_.save(paddedBy(1)), std::nullopt);
  EXPECT_EQ(readBytes(store_.backupURL()), odd);
  const std::string first = readBytes(store_.fileURL());
  ASSERT_EQ(store_.save(paddedBy(2)), std::nullopt);
  EXPECT_EQ(readBytes(store_.backupURL()), first);
  EXPECT_THAT(namesIn(store_.fileURL().parent_path()),
              ElementsAre("configuration.backup.json", "configuration.json"));
}

TEST_F(ConfigurationStoreTest, MakesNoBackupOnTheFirstSave) {
  ASSERT_EQ(store_.save(AppConfiguration{}), std::nullopt);
  EXPECT_FALSE(fs::exists(store_.backupURL()));
}

TEST_F(ConfigurationStoreTest, LeavesTheBackupAloneWhenThePreviousFileChangesInPlace) {
  ASSERT_EQ(store_.save(paddedBy(1)), std::nullopt);
  ASSERT_EQ(store_.save(paddedBy(2)), std::nullopt);
  const std::string backup = readBytes(store_.backupURL());
  writeBytes(store_.fileURL(), "an editor that writes in place");
  EXPECT_EQ(readBytes(store_.backupURL()), backup);
}

TEST_F(ConfigurationStoreTest, KeepsTheFilesToTheUserAlone) {
  writeStored("{}");
  fs::permissions(store_.fileURL(), fs::perms(0644));
  fs::remove_all(store_.fileURL().parent_path());
  ASSERT_EQ(store_.save(paddedBy(1)), std::nullopt);
  ASSERT_EQ(store_.save(paddedBy(2)), std::nullopt);
  EXPECT_EQ(modeOf(store_.fileURL().parent_path()), 0700U);
  EXPECT_EQ(modeOf(store_.fileURL()), 0600U);
  EXPECT_EQ(modeOf(store_.backupURL()), 0600U);
}

TEST_F(ConfigurationStoreTest, TakesThePermissionsOfOthersFromTheBackupOfAnOpenFile) {
  writeStored("{}");
  fs::permissions(store_.fileURL(), fs::perms(0644));
  ASSERT_EQ(store_.save(paddedBy(1)), std::nullopt);
  EXPECT_EQ(modeOf(store_.backupURL()), 0600U);
}

TEST_F(ConfigurationStoreTest, RefusesToSaveWhatIsOutOfBounds) {
  ASSERT_EQ(store_.save(paddedBy(1)), std::nullopt);
  const std::string before = readBytes(store_.fileURL());
  EXPECT_EQ(store_.save(paddedBy(17)),
            "Configuração fora dos limites; alterações ainda não foram salvas.");
  EXPECT_EQ(readBytes(store_.fileURL()), before);
  EXPECT_FALSE(fs::exists(store_.backupURL()));
}

TEST_F(ConfigurationStoreTest, SaysWhyAReadOnlyFolderTakesNoSave) {
  ASSERT_EQ(store_.save(paddedBy(1)), std::nullopt);
  const std::string before = readBytes(store_.fileURL());
  fs::permissions(store_.fileURL().parent_path(), fs::perms(0500));
  {
    const test::Unprivileged user(folder_.path());
    EXPECT_EQ(store_.save(paddedBy(2)), "Falha ao salvar: " + systemErrorText(EACCES));
  }
  fs::permissions(store_.fileURL().parent_path(), fs::perms(0700));
  EXPECT_EQ(readBytes(store_.fileURL()), before);
}

// A write that the system cuts short: what a full disk does, without a disk to fill.
TEST_F(ConfigurationStoreTest, LosesNothingWhereTheDocumentDoesNotFit) {
  ASSERT_EQ(store_.save(paddedBy(1)), std::nullopt);
  ASSERT_EQ(store_.save(paddedBy(2)), std::nullopt);
  const std::string before = readBytes(store_.fileURL());
  const std::string backup = readBytes(store_.backupURL());
  struct rlimit usual {};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &usual), 0);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  struct rlimit small = usual;
  small.rlim_cur = 100;
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  const auto notice = store_.save(paddedBy(3));
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &usual), 0);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(notice, "Falha ao salvar: " + systemErrorText(EFBIG));
  EXPECT_EQ(readBytes(store_.fileURL()), before);
  EXPECT_EQ(readBytes(store_.backupURL()), backup);
  EXPECT_THAT(namesIn(store_.fileURL().parent_path()),
              ElementsAre("configuration.backup.json", "configuration.json"));
}

TEST_F(ConfigurationStoreTest, ReportsAFolderInThePlaceOfTheFile) {
  fs::create_directories(store_.fileURL() / "inside");
  EXPECT_EQ(store_.save(paddedBy(1)), "Falha ao salvar: " + systemErrorText(EISDIR));
  EXPECT_TRUE(fs::exists(store_.fileURL() / "inside"));
}

TEST_F(ConfigurationStoreTest, ReportsAFileInThePlaceOfTheFolder) {
  writeBytes(folder_ / "Vantora", "in the way");
  EXPECT_EQ(store_.save(paddedBy(1)), "Falha ao salvar: " + systemErrorText(ENOTDIR));
  EXPECT_EQ(readBytes(folder_ / "Vantora"), "in the way");
}

TEST_F(ConfigurationStoreTest, MakesTheWholePathOfAHomeThatVanished) {
  const ConfigurationStore deep(folder_ / "home" / ".config");
  EXPECT_EQ(deep.save(paddedBy(1)), std::nullopt);
  fs::remove_all(folder_ / "home");
  EXPECT_EQ(deep.save(paddedBy(2)), std::nullopt);
  EXPECT_EQ(deep.load().configuration.horizontalPadding, 2);
}

TEST_F(ConfigurationStoreTest, SaysThatAVanishedHomeMayNotBeMade) {
  const ConfigurationStore nowhere("/proc/no-such-home/.config");
  EXPECT_EQ(nowhere.load().notice, std::nullopt);
  const auto notice = nowhere.save(paddedBy(1));
  ASSERT_TRUE(notice);
  EXPECT_THAT(*notice, StartsWith("Falha ao salvar: "));
}

TEST_F(ConfigurationStoreTest, SavesThroughASymbolicLinkAndKeepsIt) {
  fs::create_directories(folder_ / "dotfiles");
  fs::create_directories(store_.fileURL().parent_path());
  writeBytes(folder_ / "dotfiles/vantora.json", "old");
  fs::create_symlink("../dotfiles/vantora.json", store_.fileURL());
  ASSERT_EQ(store_.save(paddedBy(3)), std::nullopt);
  EXPECT_TRUE(fs::is_symlink(store_.fileURL()));
  EXPECT_EQ(readBytes(folder_ / "dotfiles/vantora.json"),
            *ConfigurationCodec::encode(store_.load().configuration));
  EXPECT_EQ(readBytes(store_.backupURL()), "old");
}

TEST_F(ConfigurationStoreTest, SavesAllTheSameWhereNoBackupCanBeMade) {
  ASSERT_EQ(store_.save(paddedBy(1)), std::nullopt);
  fs::create_directories(store_.backupURL() / "in the way");
  EXPECT_EQ(store_.save(paddedBy(2)), std::nullopt);
  EXPECT_EQ(store_.load().configuration.horizontalPadding, 2);
}

TEST_F(ConfigurationStoreTest, ClearsAwayWhatADeadProcessLeft) {
  ASSERT_EQ(store_.save(paddedBy(1)), std::nullopt);
  const fs::path vantora = store_.fileURL().parent_path();
  // The largest process number that Linux gives is 2^22 (proc(5), pid_max).
  writeBytes(vantora / ".configuration.json.4194305.0badcafe.tmp", "half a doc");
  writeBytes(vantora / ".configuration.json.1.0badcafe.tmp", "a live process");
  writeBytes(vantora / ".configuration.json.notes.tmp", "somebody else's");
  ASSERT_EQ(store_.save(paddedBy(2)), std::nullopt);
  EXPECT_FALSE(fs::exists(vantora / ".configuration.json.4194305.0badcafe.tmp"));
  EXPECT_TRUE(fs::exists(vantora / ".configuration.json.1.0badcafe.tmp"));
  EXPECT_TRUE(fs::exists(vantora / ".configuration.json.notes.tmp"));
}

TEST_F(ConfigurationStoreTest, ExportsWhatIsInForceEvenOutOfBounds) {
  const AppConfiguration configuration = paddedBy(99);
  const fs::path target = folder_ / "Vantora-layout.json";
  EXPECT_EQ(ConfigurationStore::exportJSON(configuration, target), "Configuração exportada.");
  EXPECT_EQ(ConfigurationCodec::decode(readBytes(target)), configuration);
}

TEST_F(ConfigurationStoreTest, ExportsWithThePermissionsThatTheReplacedFileHad) {
  const fs::path target = folder_ / "shared.json";
  writeBytes(target, "old");
  fs::permissions(target, fs::perms(0664));
  ASSERT_EQ(ConfigurationStore::exportJSON({}, target), "Configuração exportada.");
  EXPECT_EQ(modeOf(target), 0664U);
}

TEST_F(ConfigurationStoreTest, ExportsUnderTheLongestNameThatAFileMayHave) {
  const fs::path target = folder_ / (std::string(250, 'n') + ".json");
  EXPECT_EQ(ConfigurationStore::exportJSON({}, target), "Configuração exportada.");
}

TEST_F(ConfigurationStoreTest, SaysWhyAnExportFailed) {
  EXPECT_EQ(ConfigurationStore::exportJSON({}, folder_ / "none" / "x.json"),
            "Falha ao exportar: " + systemErrorText(ENOENT));
  EXPECT_EQ(ConfigurationStore::exportJSON({}, folder_.path()),
            "Falha ao exportar: " + systemErrorText(EISDIR));
  EXPECT_EQ(ConfigurationStore::exportJSON({}, "/dev/null"),
            "Falha ao exportar: " + systemErrorText(EINVAL));
}

TEST_F(ConfigurationStoreTest, SaysThatATextCannotBeWritten) {
  AppConfiguration configuration;
  configuration.networkInterface = "\xff";
  EXPECT_THAT(*store_.save(configuration), StartsWith("Falha ao salvar: "));
  configuration.networkInterface.reset();
  configuration.gap = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THAT(ConfigurationStore::exportJSON(configuration, folder_ / "x.json"),
              StartsWith("Falha ao exportar: "));
  EXPECT_FALSE(fs::exists(folder_ / "x.json"));
}

}  // namespace
}  // namespace vantora
