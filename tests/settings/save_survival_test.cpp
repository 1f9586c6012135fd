// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <random>
#include <string>

#include "model/configuration_codec.hpp"
#include "settings/configuration_store.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;

// The number that the helper gave to the document; nothing for one that is not whole.
std::optional<long> numberOf(const fs::path& file) {
  const auto configuration = ConfigurationCodec::decode(test::readBytes(file));
  if (!configuration || !configuration->validated() || !configuration->networkInterface) {
    return std::nullopt;
  }
  return std::strtol(configuration->networkInterface->c_str(), nullptr, 10);
}

struct Helper {
  pid_t id = -1;
  int output = -1;
};

Helper startSaving(const fs::path& folder, long firstNumber) {
  int ends[2];
  if (::pipe(ends) != 0) {
    return {};
  }
  const std::string number = std::to_string(firstNumber);
  const pid_t id = ::fork();
  if (id == 0) {
    ::dup2(ends[1], STDOUT_FILENO);
    ::close(ends[0]);
    ::close(ends[1]);
    ::execl(VANTORA_SAVE_FOREVER, VANTORA_SAVE_FOREVER, folder.c_str(), number.c_str(), nullptr);
    ::_exit(127);
  }
  ::close(ends[1]);
  return {id, ends[0]};
}

// Lets the helper save about `saves` documents, kills it wherever it is then, and answers
// how many it had reported.
long saveAndKill(const Helper& helper, long saves) {
  long reported = 0;
  char buffer[64];
  while (reported < saves) {
    const ssize_t count = ::read(helper.output, buffer, sizeof buffer);
    if (count <= 0) {
      ADD_FAILURE() << "the helper ended by itself";
      break;
    }
    reported += count;
  }
  ::kill(helper.id, SIGKILL);
  ssize_t count = 0;
  while ((count = ::read(helper.output, buffer, sizeof buffer)) > 0) {
    reported += count;
  }
  ::close(helper.output);
  ::waitpid(helper.id, nullptr, 0);
  return reported;
}

// Ten thousand saves in memory-backed storage where there is any: it is the process that
// dies here, not the machine, and a disk's flushes would only make the test long.
TEST(ConfigurationStore, IsFoundWholeWhereverTheProcessWasKilled) {
  const auto seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  if (::access("/dev/shm", W_OK) == 0) {
    ::setenv("TMPDIR", "/dev/shm", 1);
  }
  const test::TemporaryFolder folder;
  const ConfigurationStore store(folder.path());
  long saved = 0;
  int kills = 0;
  while (saved < 10'000) {
    const Helper helper = startSaving(folder.path(), saved);
    ASSERT_GE(helper.id, 0);
    const long before = saved;
    // From none, in the midst of the first save, to a hundred.
    saved += saveAndKill(helper, std::uniform_int_distribution<long>(0, 100)(random));
    ++kills;
    if (saved == 0) {
      continue;  // Killed before the first document was there.
    }
    const auto number = numberOf(store.fileURL());
    ASSERT_TRUE(number) << "after save " << saved << ": " << test::readBytes(store.fileURL());
    // The last that was reported, or the next one, whose report the kill cut off.
    const long last = std::max(before, saved) - 1;
    ASSERT_TRUE(*number == last || *number == last + 1) << *number << " after " << last;
    saved = *number + 1;
    if (saved > 2) {
      const auto backup = numberOf(store.backupURL());
      ASSERT_TRUE(backup) << test::readBytes(store.backupURL());
      ASSERT_LE(*backup, *number);
      ASSERT_GE(*backup, *number - 2);
    }
  }
  ASSERT_EQ(store.save(AppConfiguration{}), std::nullopt);
  for (const auto& entry : fs::directory_iterator(store.fileURL().parent_path())) {
    EXPECT_FALSE(entry.path().filename().string().starts_with('.')) << entry.path();
  }
  RecordProperty("seed", std::to_string(seed));
  RecordProperty("kills", kills);
  std::printf("seed %u: %ld saves, %d kills\n", seed, saved, kills);
}

}  // namespace
}  // namespace vantora
