// SPDX-License-Identifier: MIT
//
// Everything that a file can be at import.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <string>

#include "model/configuration_codec.hpp"
#include "settings/configuration_store.hpp"
#include "settings/error_text.hpp"
#include "settings/padded_configuration.hpp"
#include "settings/settings_model.hpp"
#include "settings/unprivileged.hpp"
#include "support/fake_settings_ports.hpp"
#include "support/temporary_folder.hpp"
#include "support/virtual_time.hpp"
#include "support/virtual_worker.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;
using test::paddedBy;
using test::writeBytes;
using testing::StartsWith;

std::string inUTF16(std::string_view text, bool isBigEndian) {
  std::string wide = isBigEndian ? "\xfe\xff" : "\xff\xfe";
  for (const char letter : text) {
    wide += isBigEndian ? std::string{'\0', letter} : std::string{letter, '\0'};
  }
  return wide;
}

// The document with one value put in another's place; it must be there.
std::string with(std::string document, std::string_view what, std::string_view other) {
  const auto at = document.find(what);
  EXPECT_NE(at, std::string::npos) << what;
  return document.replace(at, what.size(), other);
}

class ConfigurationImportTest : public testing::Test {
 protected:
  // The notice of a refusal, without its beginning.
  static std::string refusal(const fs::path& path) {
    const ConfigurationStore::Imported imported = ConfigurationStore::importJSON(path);
    EXPECT_FALSE(imported.configuration);
    const std::string_view beginning = "Arquivo inválido ou não suportado: ";
    EXPECT_THAT(imported.notice, StartsWith(std::string(beginning)));
    return imported.notice.substr(std::min(beginning.size(), imported.notice.size()));
  }
  std::string refusalOf(std::string_view bytes) {
    writeBytes(file_, bytes);
    return refusal(file_);
  }

  test::TemporaryFolder folder_;
  const std::string limits_ = "Verifique a versão e os limites dos campos.";
  const std::string format_ = "O conteúdo não é uma configuração do Vantora em JSON.";
  fs::path file_ = folder_ / "layout.json";
};

TEST_F(ConfigurationImportTest, TakesAnExportedConfiguration) {
  const AppConfiguration configuration = paddedBy(7);
  ASSERT_EQ(ConfigurationStore::exportJSON(configuration, file_), "Configuração exportada.");
  const ConfigurationStore::Imported imported = ConfigurationStore::importJSON(file_);
  EXPECT_EQ(imported.configuration, configuration);
  EXPECT_EQ(imported.notice, "Configuração importada.");
}

TEST_F(ConfigurationImportTest, TakesExactlyTheLimitAndNotOneByteMore) {
  std::string document = *ConfigurationCodec::encode({});
  document.resize(ConfigurationStore::importLimit, ' ');
  writeBytes(file_, document);
  EXPECT_TRUE(ConfigurationStore::importJSON(file_).configuration);
  EXPECT_EQ(refusalOf(document + ' '), limits_);
}

TEST_F(ConfigurationImportTest, ChecksTheLimitBeforeReading) {
  writeBytes(file_, std::string(ConfigurationStore::importLimit + 1, ' '));
  // Unreadable: an attempt to read would answer with the missing permission.
  fs::permissions(file_, fs::perms::none);
  const test::Unprivileged user(folder_.path());
  EXPECT_EQ(refusal(file_), limits_);
}

TEST_F(ConfigurationImportTest, RefusesWhatHasNoSize) {
  ASSERT_EQ(::mkfifo((folder_ / "fifo").c_str(), 0600), 0);
  EXPECT_EQ(refusal(folder_ / "fifo"), limits_);
  EXPECT_EQ(refusal("/dev/zero"), limits_);
  EXPECT_EQ(refusal("/dev/tty"), limits_);
  EXPECT_EQ(refusal(folder_.path()), limits_);
}

TEST_F(ConfigurationImportTest, RefusesAFileOfTheKernelThatSaysItIsEmptyAndNeverEnds) {
  EXPECT_FALSE(ConfigurationStore::importJSON("/proc/self/smaps").configuration);
}

TEST_F(ConfigurationImportTest, DescribesWhatTheSystemRefuses) {
  EXPECT_EQ(refusal(folder_ / "missing.json"), systemErrorText(ENOENT));
  fs::create_symlink("loop.json", folder_ / "loop.json");
  EXPECT_EQ(refusal(folder_ / "loop.json"), systemErrorText(ELOOP));
  writeBytes(file_, *ConfigurationCodec::encode({}));
  fs::permissions(file_, fs::perms::none);
  const test::Unprivileged user(folder_.path());
  EXPECT_EQ(refusal(file_), systemErrorText(EACCES));
}

TEST_F(ConfigurationImportTest, RefusesWhatIsNoConfigurationDocument) {
  std::string utf16 = "\xff\xfe";
  const std::string document = *ConfigurationCodec::encode({});
  for (const char letter : document) {
    utf16 += letter;
    utf16 += '\0';
  }
  const std::string valid = *ConfigurationCodec::encode({});
  for (const std::string& bytes :
       {std::string(), std::string("nota"), std::string("[]"), std::string("{}"),
        std::string("{\"schemaVersion\":\"1\"}"), valid.substr(0, valid.size() - 1), valid + valid,
        utf16, std::string("\xc3\x28"), std::string(120'000, '['),
        "{\"x\":" + std::string(50'000, '[') + std::string(50'000, ']') + "}"}) {
    EXPECT_EQ(refusalOf(bytes), format_);
  }
}

TEST_F(ConfigurationImportTest, RefusesWhatIsOutOfBounds) {
  EXPECT_EQ(refusalOf(*ConfigurationCodec::encode(paddedBy(16.5))), limits_);
  AppConfiguration later;
  later.schemaVersion = 2;
  EXPECT_EQ(refusalOf(*ConfigurationCodec::encode(later)), limits_);
}

// The model before and after an import that is refused, whatever was chosen.
TEST_F(ConfigurationImportTest, LeavesTheConfigurationInForceWhateverTheFileIs) {
  test::VirtualTime time;
  const auto queue = time.makeQueue();
  test::FakeLoginItem loginItem;
  test::FakeUserDefaults defaults;
  test::VirtualWorker worker(*queue);
  SettingsModel model(*queue, worker, ConfigurationStore(folder_.path()), loginItem, defaults);
  int changes = 0;
  model.onConfigurationChange = [&](const AppConfiguration&) { ++changes; };
  const AppConfiguration before = model.configuration();

  const std::string valid = *ConfigurationCodec::encode(paddedBy(7));
  const auto file = [&](const std::string& bytes) {
    return [this, bytes] { writeBytes(file_, bytes); };
  };
  const auto link = [&](const fs::path& target) {
    return [this, target] { fs::create_symlink(target, file_); };
  };
  const std::pair<const char*, std::function<void()>> cases[] = {
      {"nothing", [] {}},
      {"empty", file("")},
      {"128,001 bytes", file(valid + std::string(128'001 - valid.size(), ' '))},
      {"128,000 bytes of no document", file(std::string(128'000, ' '))},
      {"UTF-16, little endian", file(inUTF16(valid, false))},
      {"UTF-16, big endian", file(inUTF16(valid, true))},
      {"not UTF-8", file(with(valid, "cpuUsage", "cpu\xffsage"))},
      {"a device that never ends", link("/dev/zero")},
      {"a device that is always empty", link("/dev/null")},
      {"a terminal", link("/dev/tty")},
      {"a FIFO", [this] { ASSERT_EQ(::mkfifo(file_.c_str(), 0600), 0); }},
      {"a socket",
       [this] {
         sockaddr_un address{};
         address.sun_family = AF_UNIX;
         ASSERT_LT(file_.native().size(), sizeof address.sun_path);
         std::strncpy(address.sun_path, file_.c_str(), sizeof address.sun_path - 1);
         const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
         EXPECT_EQ(::bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
         ::close(socket);
       }},
      {"a directory", [this] { fs::create_directory(file_); }},
      {"a link to itself", link("layout.json")},
      {"a link to nothing", link("missing.json")},
      {"a file of the kernel", link("/proc/self/smaps")},
      {"not JSON", file("schemaVersion: 1\n")},
      {"half a document", file(valid.substr(0, valid.size() / 2))},
      {"two documents", file(valid + valid)},
      {"another type for a number", file(with(valid, "\"gap\":4.0", "\"gap\":\"4\""))},
      {"another type for a switch", file(with(valid, "\"paused\":false", "\"paused\":0"))},
      {"another type for a list", file("{\"modules\":{}}")},
      {"a fraction for an integer",
       file(with(valid, "\"intervalSeconds\":2", "\"intervalSeconds\":1.5"))},
      {"an unknown metric", file(with(valid, "cpuUsage", "gpuUsage"))},
      {"out of bounds", file(*ConfigurationCodec::encode(paddedBy(16.5)))},
      {"far out of bounds", file(with(valid, "\"gap\":4.0", "\"gap\":1e999"))},
      {"deep lists", file(std::string(128'000, '['))},
      {"deep objects within the document", [this, valid] {
         std::string deep;
         for (int depth = 0; depth < 20'000; ++depth) {
           deep += "{\"x\":";
         }
         writeBytes(file_, with(valid, "{", "{\"x\":" + deep));
       }}};
  for (const auto& [name, make] : cases) {
    fs::remove_all(file_);
    make();
    model.importJSON(file_);
    time.runPosted();
    EXPECT_THAT(model.notice().value_or(""), StartsWith("Arquivo inválido ou não suportado: "))
        << name;
    EXPECT_EQ(model.configuration(), before) << name;
    EXPECT_EQ(time.pendingCount(), 0U) << name;
  }
  EXPECT_EQ(changes, 0);
}

}  // namespace
}  // namespace vantora
