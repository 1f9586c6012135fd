// SPDX-License-Identifier: MIT
#include "settings/configuration_store.hpp"

#include <utility>

#include "model/configuration_codec.hpp"
#include "settings/file_io.hpp"

namespace vantora {
namespace {

// ConfigError.invalid, as the user reads it.
constexpr const char* invalidText = "Verifique a versão e os limites dos campos.";
// For a document that is no configuration at all. JSON libraries describe syntax, in
// English; this says what the user can act on.
constexpr const char* undecodableText = "O conteúdo não é uma configuração do Vantora em JSON.";
constexpr const char* unencodableText = "Um dos textos da configuração não pode ser escrito.";

ConfigurationStore::Imported refused(const std::string& description) {
  return {std::nullopt, "Arquivo inválido ou não suportado: " + description};
}

}  // namespace

ConfigurationStore::ConfigurationStore(const std::filesystem::path& applicationSupport,
                                       std::function<AppConfiguration()> initial)
    : folder_(applicationSupport / "Vantora"),
      file_(folder_ / "configuration.json"),
      backup_(folder_ / "configuration.backup.json"),
      initial_(std::move(initial)) {}

ConfigurationStore::Loaded ConfigurationStore::load() const {
  const Result<std::string> document = FileIO::readFile(file_, loadLimit);
  if (document) {
    if (const auto decoded = ConfigurationCodec::decode(*document)) {
      if (auto valid = decoded->validated()) {
        return {*std::move(valid), std::nullopt, std::nullopt};
      }
    }
  } else if (document.fault().kind == Fault::Kind::absent) {
    return {initial_(), std::nullopt, std::nullopt};
  }
  return {AppConfiguration{}, "Configuração inválida preservada em disco; padrão carregado.",
          nameForUnreadable()};
}

// The backup holds the document until the second save only.
std::filesystem::path ConfigurationStore::nameForUnreadable() const {
  std::filesystem::path name = folder_ / "configuration.unreadable.json";
  std::error_code error;
  for (int number = 2; std::filesystem::exists(std::filesystem::symlink_status(name, error));
       ++number) {
    name = folder_ / ("configuration.unreadable-" + std::to_string(number) + ".json");
  }
  return name;
}

std::optional<std::string> ConfigurationStore::save(
    const AppConfiguration& configuration,
    const std::optional<std::filesystem::path>& keepAs) const {
  if (!configuration.validated()) {
    return "Configuração fora dos limites; alterações ainda não foram salvas.";
  }
  const std::string failure = "Falha ao salvar: ";
  const auto document = ConfigurationCodec::encode(configuration);
  if (!document) {
    return failure + unencodableText;
  }
  if (const auto fault = FileIO::makeFolder(folder_)) {
    return failure + fault->detail;
  }
  FileIO::WriteOptions options;
  options.backup = backup_;
  options.keepAs = keepAs;
  if (const auto fault = FileIO::replaceFile(file_, *document, options)) {
    return failure + fault->detail;
  }
  return std::nullopt;
}

std::string ConfigurationStore::exportJSON(const AppConfiguration& configuration,
                                           const std::filesystem::path& target) {
  const std::string failure = "Falha ao exportar: ";
  const auto document = ConfigurationCodec::encode(configuration);
  if (!document) {
    return failure + unencodableText;
  }
  FileIO::WriteOptions options;
  options.permissions = FileIO::Permissions::kept;
  if (const auto fault = FileIO::replaceFile(target, *document, options)) {
    return failure + fault->detail;
  }
  return "Configuração exportada.";
}

ConfigurationStore::Imported ConfigurationStore::importJSON(const std::filesystem::path& source) {
  const auto size = FileIO::fileSize(source);
  if (!size) {
    return refused(size.fault().detail);
  }
  if (!*size || **size > importLimit) {
    return refused(invalidText);
  }
  const Result<std::string> document = FileIO::readFile(source, importLimit);
  if (!document) {
    return refused(document.fault().detail);
  }
  const auto decoded = ConfigurationCodec::decode(*document);
  if (!decoded) {
    return refused(undecodableText);
  }
  if (auto valid = decoded->validated()) {
    return {*std::move(valid), "Configuração importada."};
  }
  return refused(invalidText);
}

}  // namespace vantora
