// SPDX-License-Identifier: MIT
#include "settings/window/tabs/general_tab.hpp"

#include <QMessageBox>
#include <QPushButton>

#include "model/words.hpp"

namespace vantora {
namespace {

using C = AppConfiguration;

constexpr SwitchField<C> pausedField = {"Pausar c&oleta", &Access<&C::paused>::get,
                                        &Access<&C::paused>::set};

}  // namespace

GeneralTab::GeneralTab(WindowModel& model)
    : SettingsTab(model),
      form_(configurationEdit()),
      startAtLogin_(new QCheckBox(qtText(Words::startAtLoginLabel))),
      notice_(Controls::makeText()) {
  QVBoxLayout* column = Controls::makeScrollingColumn(this);
  column->addWidget(form_.add(pausedField));
  startAtLogin_->setAccessibleName(spokenName(Words::startAtLoginLabel));
  column->addWidget(startAtLogin_);
  column->addWidget(
      Controls::makeNote("Leituras indisponíveis são mostradas como —. Nenhuma métrica usa valores "
                         "simulados no aplicativo."));
  Controls::addGroupGap(column);
  column->addWidget(Controls::makeButtonRow(
      {Controls::makeButton("&Exportar JSON…", [this] { this->model().exportJSON(); }),
       Controls::makeButton("Importar &JSON…", [this] { this->model().importJSON(); }),
       Controls::makeButton("&Restaurar padrão", [this] { askToRestore(); })}));
  Controls::addGroupGap(column);
  notice_->setObjectName(QStringLiteral("notice"));
  column->addWidget(notice_);
  column->addStretch();

  QObject::connect(startAtLogin_, &QCheckBox::toggled, startAtLogin_, [this](bool isOn) {
    this->model().setStartAtLogin(isOn);
    showLoginItem();  // What the system says, until it says something else.
  });
}

void GeneralTab::refresh(WindowFields fields) {
  if (fields.contains(WindowField::configuration)) {
    form_.load(state().configuration);
  }
  if (fields.contains(WindowField::loginItemStatus)) {
    showLoginItem();
  }
  if (fields.contains(WindowField::notice)) {
    notice_->setText(qtText(model().notice().value_or(std::string())));
    notice_->setVisible(model().notice().has_value());
  }
}

void GeneralTab::showLoginItem() {
  const QSignalBlocker quiet(startAtLogin_);
  startAtLogin_->setChecked(state().loginItemStatus == LoginItemStatus::enabled);
}

void GeneralTab::askToRestore() {
  auto* question =
      new QMessageBox(QMessageBox::Question, qtText("Restaurar padrão"),
                      qtText("Restaurar a configuração padrão?"), QMessageBox::NoButton, this);
  question->setInformativeText(
      qtText("Módulos, aparência, coleta e integrações voltam aos valores iniciais. Até a próxima "
             "alteração é possível desfazer, e a configuração atual fica na cópia de segurança:\n" +
             state().backupPath));
  question->setAttribute(Qt::WA_DeleteOnClose);
  QPushButton* restore = question->addButton(qtText("Restaurar"), QMessageBox::DestructiveRole);
  QPushButton* cancel = question->addButton(qtText("Cancelar"), QMessageBox::RejectRole);
  question->setDefaultButton(cancel);
  question->setEscapeButton(cancel);
  QObject::connect(restore, &QPushButton::clicked, this,
                   [this] { this->model().restoreDefaults(); });
  question->open();
}

}  // namespace vantora
