// SPDX-License-Identifier: MIT
//
// Where the user's configuration lives: one JSON document with a backup of the previous
// one, and documents that the user exports and imports. It has no state of its own and
// holds no policy of when to save: the settings model decides that. Main thread.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "model/configuration.hpp"

namespace vantora {

class ConfigurationStore {
 public:
  /// A larger document is refused at import, unread.
  static constexpr std::size_t importLimit = 128'000;
  /// A larger document is refused at launch: no configuration comes near it, and a
  /// damaged file must not fill the memory at the start.
  static constexpr std::size_t loadLimit = 4'000'000;

  /// `applicationSupport` is the user's folder for configurations; the store keeps to
  /// the folder "Vantora" in it, which the first save makes. `initial` makes what load()
  /// answers where there is no document yet.
  explicit ConfigurationStore(
      const std::filesystem::path& applicationSupport,
      std::function<AppConfiguration()> initial = [] { return AppConfiguration(); });

  [[nodiscard]] const std::filesystem::path& fileURL() const { return file_; }
  [[nodiscard]] const std::filesystem::path& backupURL() const { return backup_; }

  struct Loaded {
    AppConfiguration configuration;
    std::optional<std::string> notice;
    /// With the notice: a free name beside the document, for the first save to keep it by.
    std::optional<std::filesystem::path> keepAs;
  };
  /// The stored configuration; the initial one where there is none, and the default one with
  /// a notice where it cannot be used. Changes nothing on the disk.
  [[nodiscard]] Loaded load() const;

  /// Writes a valid configuration, the previous file going to the backup and, where
  /// load() asked for it, to a name of its own. Returns what the user is to read, nothing
  /// when it was saved.
  [[nodiscard]] std::optional<std::string> save(
      const AppConfiguration& configuration,
      const std::optional<std::filesystem::path>& keepAs = std::nullopt) const;

  /// Writes the configuration as it is, valid or not, to `target`. Answers the notice.
  [[nodiscard]] static std::string exportJSON(const AppConfiguration& configuration,
                                              const std::filesystem::path& target);

  struct Imported {
    std::optional<AppConfiguration> configuration;  ///< Nothing when it was refused.
    std::string notice;
  };
  [[nodiscard]] static Imported importJSON(const std::filesystem::path& source);

 private:
  [[nodiscard]] std::filesystem::path nameForUnreadable() const;

  std::filesystem::path folder_;
  std::filesystem::path file_;
  std::filesystem::path backup_;
  std::function<AppConfiguration()> initial_;
};

}  // namespace vantora
