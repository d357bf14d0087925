#pragma once

#include <QDBusServiceWatcher>
#include <QObject>
#include <functional>

class QDBusMessage;

// Tells when the system's Bluetooth adapters may have changed: BlueZ adds or removes an adapter
// (an adapter plugged in or pulled out), or the daemon itself starts or stops. Qt Bluetooth 6.4
// finds its adapter once: a local device made while there was none never sees one plugged in
// later, and one whose adapter goes away turns invalid without a signal. Where there is no BlueZ
// on the system bus, nothing is ever reported.
class bluez_adapters_t final : public QObject {
  Q_OBJECT

public:
  explicit bluez_adapters_t(std::function<void()> changed, QObject* parent = nullptr);

private slots:
  void interfaces_changed(const QDBusMessage& message);

private:
  std::function<void()> changed_;
  QDBusServiceWatcher daemon_;
};
