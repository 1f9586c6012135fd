// SPDX-License-Identifier: MIT
//
// Qt's application must end before main does: at exit its libraries are already gone.
#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // The toolkit's own dialogs can be looked into.
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  const QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
