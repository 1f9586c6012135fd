// SPDX-License-Identifier: MIT
#include "settings/settings_model.hpp"

#include <unistd.h>

#include <algorithm>
#include <utility>

#include "model/words.hpp"
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

// Nothing on success, otherwise what the user is to read.
std::optional<std::string> storeCodex(const std::filesystem::path& path, UserDefaults& defaults) {
  if (!isCodexExecutable(path)) {
    return "Selecione um executável codex válido.";
  }
  if (const auto fault = defaults.setText(codexExecutablePathKey, path.string())) {
    return "Falha ao salvar: " + fault->detail;
  }
  return std::nullopt;
}

// The module of `after` that `before` does not have.
std::optional<UUID> firstNewModule(const AppConfiguration& after, const AppConfiguration& before) {
  for (const ModuleConfiguration& module : after.modules) {
    if (std::none_of(before.modules.begin(), before.modules.end(),
                     [&](const ModuleConfiguration& other) { return other.id == module.id; })) {
      return module.id;
    }
  }
  return std::nullopt;
}

std::string loginNotice(LoginItemStatus status, bool asked) {
  switch (status) {
    case LoginItemStatus::requiresApproval:
      return Words::loginItemNeedsApproval;
    case LoginItemStatus::enabled:
      return Words::loginItemEnabled;
    case LoginItemStatus::notRegistered:
    case LoginItemStatus::notFound:
      break;
  }
  return asked ? "O item de início ainda não foi habilitado." : "Início automático desativado.";
}

}  // namespace

SettingsModel::SettingsModel(TaskQueue& queue, Worker& worker, ConfigurationStore store,
                             LoginItem& loginItem, UserDefaults& defaults)
    : queue_(queue),
      worker_(worker),
      store_(std::move(store)),
      loginItem_(loginItem),
      defaults_(defaults) {
  ConfigurationStore::Loaded loaded = store_.load();
  configuration_ = std::move(loaded.configuration);
  notice_ = std::move(loaded.notice);
  keepAs_ = std::move(loaded.keepAs);
}

void SettingsModel::setConfiguration(AppConfiguration configuration,
                                     std::optional<UndoableEdit> undoable) {
  if (configuration == configuration_) {
    return;
  }
  beforeUndoable_ = undoable ? std::move(configuration_) : AppConfiguration{};
  configuration_ = std::move(configuration);
  const bool isUndoNew = std::exchange(undoable_, undoable) != undoable;
  if (onConfigurationChange) {
    onConfigurationChange(configuration_);
  }
  changed(Field::configuration);
  if (isUndoNew) {
    changed(Field::undoable);
  }
  saveWork_ = queue_.runAfter(saveDelay, Seconds{0}, [this] { save(); });
}

void SettingsModel::restoreDefaults() {
  setConfiguration(AppConfiguration{}, UndoableEdit::restoring);
}

void SettingsModel::undo() {
  if (!undoable_) {
    return;
  }
  const std::optional<UUID> removed = undoable_ == UndoableEdit::removal
                                          ? firstNewModule(beforeUndoable_, configuration_)
                                          : std::nullopt;
  setConfiguration(std::move(beforeUndoable_));
  if (removed) {
    setPendingScrollID(removed);
  }
}

void SettingsModel::setSnapshot(MetricSnapshot snapshot) {
  if (snapshot == snapshot_) {
    return;
  }
  snapshot_ = std::move(snapshot);
  changed(Field::snapshot);
}

void SettingsModel::setLinks(std::vector<NetworkLink> links) {
  if (links != links_) {
    links_ = std::move(links);
    changed(Field::links);
  }
}

void SettingsModel::setKeepsSquare(bool keepsSquare) {
  if (keepsSquare == keepsSquare_) {
    return;
  }
  keepsSquare_ = keepsSquare;
  changed(Field::square);
  if (keepsSquare && !isSquareModuleKnown_) {
    runInBackground([&defaults = defaults_] { return defaults.text(squareModuleKey); },
                    [this](const std::optional<std::string>& stored) {
                      if (!std::exchange(isSquareModuleKnown_, true) && stored) {
                        takeSquareModule(UUID::parse(*stored));
                      }
                    });
  }
}

void SettingsModel::setSquareModule(std::optional<UUID> module) {
  isSquareModuleKnown_ = true;
  if (module == squareModule_) {
    return;
  }
  takeSquareModule(module);
  runInBackground(
      [&defaults = defaults_, text = module ? module->text() : std::string()] {
        return defaults.setText(squareModuleKey, text);
      },
      [this](const std::optional<Fault>& fault) {
        if (fault) {
          setNotice("Falha ao guardar o módulo do quadrado: " + fault->detail);
        }
      });
}

void SettingsModel::takeSquareModule(const std::optional<UUID>& module) {
  if (module != squareModule_) {
    squareModule_ = module;
    if (onSquareModuleChange) {
      onSquareModuleChange(squareModule_);
    }
    changed(Field::square);
  }
}

void SettingsModel::refreshLoginStatus() {
  runInBackground([&item = loginItem_] { return item.status(); },
                  [this](LoginItemStatus status) { setLoginItemStatus(status); });
}

void SettingsModel::setStartAtLogin(bool enabled) {
  struct Answer {
    std::optional<Fault> fault;
    LoginItemStatus status;
  };
  runInBackground(
      [&item = loginItem_, enabled] {
        std::optional<Fault> fault = item.setRegistered(enabled);
        return Answer{std::move(fault), item.status()};
      },
      [this, enabled](const Answer& answer) {
        setLoginItemStatus(answer.status);
        setNotice(answer.fault ? "Falha ao ajustar início automático: " + answer.fault->detail
                               : loginNotice(answer.status, enabled));
      });
}

void SettingsModel::setPendingScrollID(std::optional<UUID> id) {
  if (id != pendingScrollID_) {
    pendingScrollID_ = id;
    changed(Field::pendingScrollID);
  }
}

void SettingsModel::exportJSON(const std::optional<std::filesystem::path>& chosen) {
  if (chosen) {
    runInBackground(
        [configuration = configuration_, target = *chosen] {
          return ConfigurationStore::exportJSON(configuration, target);
        },
        [this](std::string notice) { setNotice(std::move(notice)); });
  }
}

void SettingsModel::importJSON(const std::optional<std::filesystem::path>& chosen) {
  if (!chosen) {
    return;
  }
  runInBackground([source = *chosen] { return ConfigurationStore::importJSON(source); },
                  [this](ConfigurationStore::Imported imported) {
                    if (imported.configuration) {
                      setConfiguration(*std::move(imported.configuration), UndoableEdit::importing);
                    }
                    setNotice(std::move(imported.notice));
                  });
}

void SettingsModel::selectCodexExecutable(const std::optional<std::filesystem::path>& chosen) {
  if (!chosen) {
    return;
  }
  runInBackground([&defaults = defaults_, path = *chosen] { return storeCodex(path, defaults); },
                  [this](std::optional<std::string> refusal) {
                    if (refusal) {
                      setNotice(std::move(refusal));
                      return;
                    }
                    if (onCodexExecutableChange) {
                      onCodexExecutableChange();
                    }
                    changed(Field::codexExecutable);
                    setNotice(Words::codexExecutableSelected);
                  });
}

// One at a time: while a disk does not answer, only the latest configuration waits for it.
void SettingsModel::save() {
  saveWork_.reset();
  if (isSaving_) {
    isSaveDue_ = true;
    return;
  }
  isSaving_ = true;
  runInBackground([store = store_, configuration = configuration_,
                   keepAs = keepAs_] { return store.save(configuration, keepAs); },
                  [this, wasValid = configuration_.validated().has_value()](
                      std::optional<std::string> notice) { saved(std::move(notice), wasValid); });
}

void SettingsModel::saved(std::optional<std::string> notice, bool wasValid) {
  isSaving_ = false;
  setNotice(notice);
  if (!notice) {
    keepAs_.reset();
    hasToldFailure_ = false;
    retryInterval_ = minRetryInterval;
  } else if (wasValid) {
    saveFailed(*notice);
  }
  if (std::exchange(isSaveDue_, false)) {
    save();
  }
}

void SettingsModel::saveFailed(const std::string& message) {
  if (saveWork_ == nullptr && !isSaveDue_) {
    saveWork_ = queue_.runAfter(retryInterval_, retryInterval_ / 8, [this] { save(); });
    retryInterval_ = std::min(2 * retryInterval_, maxRetryInterval);
  }
  if (!std::exchange(hasToldFailure_, true) && onSaveFailure) {
    onSaveFailure(message);
  }
}

// Gives `done` what `work` returns, unless the model has ended by then.
template <typename Work, typename Done>
void SettingsModel::runInBackground(Work work, Done done) {
  const auto result = std::make_shared<std::optional<decltype(work())>>();
  worker_.run([result, work = std::move(work)] { result->emplace(work()); },
              [result, done = std::move(done), alive = std::weak_ptr(alive_)] {
                if (!alive.expired()) {
                  done(**std::move(result));
                }
              });
}

void SettingsModel::setNotice(std::optional<std::string> notice) {
  if (notice != notice_) {
    notice_ = std::move(notice);
    changed(Field::notice);
  }
}

void SettingsModel::setLoginItemStatus(LoginItemStatus status) {
  if (status != loginItemStatus_) {
    loginItemStatus_ = status;
    changed(Field::loginItemStatus);
  }
}

void SettingsModel::changed(Field field) const {
  if (onFieldChange) {
    onFieldChange(field);
  }
}

}  // namespace vantora
