// SPDX-License-Identifier: MIT
#include "settings/window/qt_file_panels.hpp"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QTest>
#include <optional>
#include <string>

#include "settings/window/controls/qt_text.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;

class QtFilePanelsTest : public testing::Test {
 protected:
  QtFilePanelsTest() { panels_.setParent(&parent_); }
  // What a panel answered; the outer one is empty while it has not.
  FilePanels::Done done() {
    answer_.reset();
    return [this](const std::optional<fs::path>& chosen) { answer_ = chosen; };
  }
  QFileDialog* dialog() { return parent_.findChild<QFileDialog*>(); }
  void finish(bool isAccepted) {
    QDialog* open = dialog();
    if (isAccepted) {
      open->accept();
    } else {
      open->reject();
    }
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(dialog(), nullptr);
  }
  void choose(const fs::path& file) {
    dialog()->selectFile(qtText(file.string()));
    finish(true);
  }
  QString openedFolder() { return dialog()->directory().canonicalPath(); }

  test::TemporaryFolder folder_;
  WindowMemory memory_{qtText((folder_ / "memory.ini").string())};
  QtFilePanels panels_{memory_};
  QWidget parent_;
  std::optional<std::optional<fs::path>> answer_;
};

TEST_F(QtFilePanelsTest, ProposeANameForTheExportAndTakeJSONAlone) {
  panels_.chooseExport("Vantora-layout.json", done());
  EXPECT_EQ(dialog()->acceptMode(), QFileDialog::AcceptSave);
  EXPECT_EQ(QFileInfo(dialog()->selectedFiles().value(0)).fileName(),
            QStringLiteral("Vantora-layout.json"));
  EXPECT_EQ(dialog()->mimeTypeFilters(), QStringList(QStringLiteral("application/json")));
  EXPECT_EQ(dialog()->defaultSuffix(), QStringLiteral("json"));
  choose(folder_ / "minha configuração");
  EXPECT_EQ(answer_, folder_ / "minha configuração.json");
}

TEST_F(QtFilePanelsTest, TakeOneFileForTheImport) {
  test::writeBytes(folder_ / "a.json", "{}");
  panels_.chooseImport(done());
  EXPECT_EQ(dialog()->acceptMode(), QFileDialog::AcceptOpen);
  EXPECT_EQ(dialog()->fileMode(), QFileDialog::ExistingFile);
  EXPECT_EQ(dialog()->mimeTypeFilters(), QStringList(QStringLiteral("application/json")));
  choose(folder_ / "a.json");
  EXPECT_EQ(answer_, folder_ / "a.json");
}

TEST_F(QtFilePanelsTest, SayWhichExecutableIsWanted) {
  test::writeBytes(folder_ / "codex", "");
  panels_.chooseExecutable("Escolha o executável oficial codex desta instalação.", done());
  EXPECT_EQ(dialog()->windowTitle(),
            QStringLiteral("Escolha o executável oficial codex desta instalação."));
  EXPECT_EQ(dialog()->fileMode(), QFileDialog::ExistingFile);
  choose(folder_ / "codex");
  EXPECT_EQ(answer_, folder_ / "codex");
}

TEST_F(QtFilePanelsTest, BeginWhereTheLastOneEnded) {
  fs::create_directory(folder_ / "layouts");
  panels_.chooseExport("a.json", done());
  EXPECT_EQ(openedFolder(), QDir::home().canonicalPath());
  choose(folder_ / "layouts/a.json");
  panels_.chooseImport(done());
  EXPECT_EQ(openedFolder(), qtText((folder_ / "layouts").string()));
  finish(false);
  // Another window of ours remembers it, too, and one whose folder went begins at home.
  WindowMemory later(qtText((folder_ / "memory.ini").string()));
  EXPECT_EQ(later.folder(), qtText((folder_ / "layouts").string()));
  fs::remove_all(folder_ / "layouts");
  panels_.chooseImport(done());
  EXPECT_EQ(openedFolder(), QDir::home().canonicalPath());
}

TEST_F(QtFilePanelsTest, AnswerNothingAndRememberNothingWhenTheUserCancels) {
  panels_.chooseExport("a.json", done());
  dialog()->selectFile(qtText((folder_ / "a.json").string()));
  finish(false);
  ASSERT_TRUE(answer_);
  EXPECT_EQ(*answer_, std::nullopt);
  EXPECT_TRUE(memory_.folder().isEmpty());
}

}  // namespace
}  // namespace vantora
