// SPDX-License-Identifier: MIT
//
// The store on a disk that has no room left.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

#include "model/configuration_codec.hpp"
#include "settings/configuration_store.hpp"
#include "settings/error_text.hpp"
#include "settings/padded_configuration.hpp"
#include "settings/small_disk.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;
using test::paddedBy;
using test::readBytes;
using testing::ElementsAre;

constexpr std::size_t diskSize = 65'536;
constexpr std::size_t page = 4096;  // What a tmpfs gives out at a time.

// A document of more than one page.
AppConfiguration longConfiguration() {
  AppConfiguration configuration;
  while (configuration.modules.size() < 24) {
    configuration.modules.push_back(configuration.modules[0]);
    configuration.modules.back().id = UUID::random();
  }
  return configuration;
}

class FullDiskTest : public testing::Test {
 protected:
  [[nodiscard]] std::vector<std::string> namesBesideTheDocument() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(store_.fileURL().parent_path())) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  // Saves `configuration` where only `left` bytes are free, and once there is room again.
  void expectNothingLost(const AppConfiguration& configuration, std::size_t left) const {
    EXPECT_EQ(store_.save(paddedBy(1)), std::nullopt);
    EXPECT_EQ(store_.save(paddedBy(2)), std::nullopt);
    const std::string document = readBytes(store_.fileURL());
    const std::string backup = readBytes(store_.backupURL());
    const fs::path ballast = test::fillDisk(folder_.path(), left);

    EXPECT_EQ(store_.save(configuration), "Falha ao salvar: " + systemErrorText(ENOSPC));
    EXPECT_EQ(readBytes(store_.fileURL()), document);
    EXPECT_EQ(readBytes(store_.backupURL()), backup);
    EXPECT_THAT(namesBesideTheDocument(),
                ElementsAre("configuration.backup.json", "configuration.json"));

    fs::remove(ballast);
    EXPECT_EQ(store_.save(configuration), std::nullopt);
    EXPECT_EQ(store_.load().configuration, configuration);
    EXPECT_EQ(readBytes(store_.backupURL()), document);
  }

  test::TemporaryFolder folder_;
  ConfigurationStore store_{folder_.path()};
};

TEST_F(FullDiskTest, LosesNothingAndSaysSoWhereNothingFitsAnyMore) {
  test::onASmallDisk(folder_.path(), diskSize, [this] { expectNothingLost(paddedBy(3), 0); });
}

TEST_F(FullDiskTest, LosesNothingAndSaysSoWhereHalfOfTheDocumentFits) {
  ASSERT_GT(ConfigurationCodec::encode(longConfiguration())->size(), page);
  test::onASmallDisk(folder_.path(), diskSize,
                     [this] { expectNothingLost(longConfiguration(), page); });
}

TEST_F(FullDiskTest, SaysWhyTheFirstDocumentCouldNotBeSaved) {
  test::onASmallDisk(folder_.path(), diskSize, [this] {
    (void)test::fillDisk(folder_.path(), 0);
    EXPECT_EQ(store_.save(paddedBy(1)), "Falha ao salvar: " + systemErrorText(ENOSPC));
    EXPECT_THAT(namesBesideTheDocument(), ElementsAre());
    EXPECT_EQ(store_.load().notice, std::nullopt);
  });
}

TEST_F(FullDiskTest, KeepsTheFileThatAnExportWouldHaveReplaced) {
  test::onASmallDisk(folder_.path(), diskSize, [this] {
    const fs::path target = folder_ / "Vantora-layout.json";
    test::writeBytes(target, "old");
    (void)test::fillDisk(folder_.path(), 0);
    EXPECT_EQ(ConfigurationStore::exportJSON(paddedBy(1), target),
              "Falha ao exportar: " + systemErrorText(ENOSPC));
    EXPECT_EQ(readBytes(target), "old");
  });
}

}  // namespace
}  // namespace vantora
