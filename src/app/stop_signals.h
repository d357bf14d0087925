#pragma once

#include <QCoreApplication>
#include <QTimer>
#include <atomic>
#include <csignal>

// Ends the program's event loop on SIGINT or SIGTERM. The handler only sets a flag; the event loop
// looks at it every 100 ms, since nothing else is safe to do inside a signal handler.
class stop_signal_watch_t {
public:
  explicit stop_signal_watch_t(QCoreApplication& app) {
    std::signal(SIGINT, request_stop);
    std::signal(SIGTERM, request_stop);
    QObject::connect(&timer_, &QTimer::timeout, &app, [&app] {
      if (requested) app.quit();
    });
    timer_.start(poll_ms);
  }

private:
  static constexpr int poll_ms = 100;
  static inline std::atomic<bool> requested{false};
  static void request_stop(int) { requested = true; }

  QTimer timer_;
};
