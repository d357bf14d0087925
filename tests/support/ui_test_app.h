#pragma once

#include <QApplication>

// The one QApplication of a widget test binary, made on first use (offscreen platform).
inline QApplication& ui_test_app() {
  static int argc = 1;
  static char name[] = "korvid_tests";
  static char* argv[] = {name, nullptr};
  static QApplication* app = [] {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return new QApplication(argc, argv);
  }();
  return *app;
}
