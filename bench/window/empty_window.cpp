// SPDX-License-Identifier: MIT
//
// The least that the toolkit can show: what the settings window's opening is compared with.
#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QWidget window;
  window.resize(640, 520);
  window.show();
  return QApplication::exec();
}
