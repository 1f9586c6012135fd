// SPDX-License-Identifier: MIT
#include "settings/settings_model.hpp"

#include <unistd.h>

#include <utility>

#include "settings/file_io.hpp"

namespace vantora {
namespace {

// What the file manager would start, under the one name that the program has.
bool isCodexExecutable(const std::filesystem::path& path) {
  if (!path.is_absolute() || path.filename() != "codex") {
    return false;
  }
  const auto size = FileIO::fileSize(path);
  return size && *size && ::access(path.c_str(), X_OK) == 0;
}

std::string loginNotice(LoginItemStatus status, bool asked) {
  switch (status) {
    case LoginItemStatus::requiresApproval:
      return "Aprovação pendente em Ajustes do Sistema → Itens de Início.";
    case LoginItemStatus::enabled:
      return "Vantora iniciará ao entrar na sessão do Mac.";
    case LoginItemStatus::notRegistered:
    case LoginItemStatus::notFound:
      break;
  }
  return asked ? "O item de início ainda não foi habilitado." : "Início automático desativado.";
}

}  // namespace

SettingsModel::SettingsModel(TaskQueue& queue, ConfigurationStore store, LoginItem& loginItem,
                             UserDefaults& defaults)
    : queue_(queue), store_(std::move(store)), loginItem_(loginItem), defaults_(defaults) {
  ConfigurationStore::Loaded loaded = store_.load();
  configuration_ = std::move(loaded.configuration);
  notice_ = std::move(loaded.notice);
}

void SettingsModel::setConfiguration(AppConfiguration configuration) {
  if (configuration == configuration_) {
    return;
  }
  configuration_ = std::move(configuration);
  if (onConfigurationChange) {
    onConfigurationChange(configuration_);
  }
  changed(Field::configuration);
  saveWork_ = queue_.runAfter(saveDelay, Seconds{0}, [this] { save(); });
}

void SettingsModel::setSnapshot(MetricSnapshot snapshot) {
  if (snapshot == snapshot_) {
    return;
  }
  snapshot_ = std::move(snapshot);
  changed(Field::snapshot);
}

void SettingsModel::refreshLoginStatus() {
  const LoginItemStatus status = loginItem_.status();
  if (status != loginItemStatus_) {
    loginItemStatus_ = status;
    changed(Field::loginItemStatus);
  }
}

void SettingsModel::setStartAtLogin(bool enabled) {
  const std::optional<Fault> fault = loginItem_.setRegistered(enabled);
  refreshLoginStatus();
  setNotice(fault ? "Falha ao ajustar início automático: " + fault->detail
                  : loginNotice(loginItemStatus_, enabled));
}

void SettingsModel::setPendingScrollID(std::optional<UUID> id) {
  if (id != pendingScrollID_) {
    pendingScrollID_ = id;
    changed(Field::pendingScrollID);
  }
}

void SettingsModel::exportJSON(const std::optional<std::filesystem::path>& chosen) {
  if (chosen) {
    setNotice(ConfigurationStore::exportJSON(configuration_, *chosen));
  }
}

void SettingsModel::importJSON(const std::optional<std::filesystem::path>& chosen) {
  if (!chosen) {
    return;
  }
  ConfigurationStore::Imported imported = ConfigurationStore::importJSON(*chosen);
  if (imported.configuration) {
    setConfiguration(*std::move(imported.configuration));
  }
  setNotice(std::move(imported.notice));
}

void SettingsModel::selectCodexExecutable(const std::optional<std::filesystem::path>& chosen) {
  if (!chosen) {
    return;
  }
  if (!isCodexExecutable(*chosen)) {
    setNotice("Selecione um executável codex válido.");
    return;
  }
  if (const auto fault = defaults_.setText(codexExecutablePathKey, chosen->string())) {
    setNotice("Falha ao salvar: " + fault->detail);
    return;
  }
  if (onCodexExecutableChange) {
    onCodexExecutableChange();
  }
  setNotice("Executável Codex selecionado para este Mac.");
}

void SettingsModel::save() {
  setNotice(store_.save(configuration_));
}

void SettingsModel::setNotice(std::optional<std::string> notice) {
  if (notice != notice_) {
    notice_ = std::move(notice);
    changed(Field::notice);
  }
}

void SettingsModel::changed(Field field) const {
  if (onFieldChange) {
    onFieldChange(field);
  }
}

}  // namespace vantora
