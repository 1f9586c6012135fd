// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include "settings/conversation/window_model.hpp"
#include "settings/window/window_memory.hpp"

class QFileDialog;

namespace vantora {

/// The desktop's own file dialogs, above the window. They begin in the folder where the
/// last one ended.
class QtFilePanels final : public FilePanels {
 public:
  /// `memory` must outlive the panels.
  explicit QtFilePanels(WindowMemory& memory) : memory_(memory) {}

  /// The window that the dialogs belong to, once there is one.
  void setParent(QWidget* parent) { parent_ = parent; }

  void chooseExport(const std::string& proposedName, Done done) override;
  void chooseImport(Done done) override;
  void chooseExecutable(const std::string& message, Done done) override;

 private:
  [[nodiscard]] QFileDialog* makeDialog(const QString& title) const;
  void open(QFileDialog* dialog, Done done);

  WindowMemory& memory_;
  QWidget* parent_ = nullptr;
};

}  // namespace vantora
