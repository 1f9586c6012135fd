// SPDX-License-Identifier: MIT
#include "settings/window/qt_file_panels.hpp"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <utility>

#include "settings/window/controls/qt_text.hpp"

namespace vantora {

void QtFilePanels::chooseExport(const std::string& proposedName, Done done) {
  QFileDialog* dialog = makeDialog(qtText("Exportar JSON"));
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setMimeTypeFilters({QStringLiteral("application/json")});
  dialog->setDefaultSuffix(QStringLiteral("json"));
  dialog->selectFile(qtText(proposedName));
  open(dialog, std::move(done));
}

void QtFilePanels::chooseImport(Done done) {
  QFileDialog* dialog = makeDialog(qtText("Importar JSON"));
  dialog->setFileMode(QFileDialog::ExistingFile);
  dialog->setMimeTypeFilters({QStringLiteral("application/json")});
  open(dialog, std::move(done));
}

void QtFilePanels::chooseExecutable(const std::string& message, Done done) {
  QFileDialog* dialog = makeDialog(qtText(message));
  dialog->setFileMode(QFileDialog::ExistingFile);
  open(dialog, std::move(done));
}

QFileDialog* QtFilePanels::makeDialog(const QString& title) const {
  auto* dialog = new QFileDialog(parent_, title);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  const QString folder = memory_.folder();
  dialog->setDirectory(QFileInfo(folder).isDir() ? folder : QDir::homePath());
  return dialog;
}

void QtFilePanels::open(QFileDialog* dialog, Done done) {
  QObject::connect(dialog, &QFileDialog::finished, dialog,
                   [this, dialog, done = std::move(done)](int result) {
                     const QStringList files = dialog->selectedFiles();
                     if (result != QDialog::Accepted || files.isEmpty()) {
                       done(std::nullopt);
                       return;
                     }
                     memory_.setFolder(QFileInfo(files.first()).absolutePath());
                     done(std::filesystem::path(QFile::encodeName(files.first()).toStdString()));
                   });
  dialog->open();
}

}  // namespace vantora
