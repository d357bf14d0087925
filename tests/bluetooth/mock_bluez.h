#pragma once

// A private D-Bus daemon that stands in for the system bus, the mock BlueZ on it (mock_bluez_nus.py
// on python3-dbusmock: one adapter, the UART peripheral and a second one whose name merely starts
// with the wanted one), and the calls by which a test drives and inspects the mock.

#include <sys/prctl.h>

#include <QByteArray>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "system_bus.h"

class mock_bluez_t {
public:
  using bytes_t = std::vector<std::uint8_t>;
  static constexpr int wait_ms = 3000;  // the most any single step may take
  static inline const QString device_path = "/org/bluez/hci0/dev_C0_FF_EE_00_00_01";
  static inline const QString other_path = "/org/bluez/hci0/dev_C0_FF_EE_00_00_02";
  static inline const QString tx_path = device_path + "/service0010/char0013";

  // Empty when the machine has what the mock needs, else why it cannot run.
  static std::string missing_tools() {
    if (qt_system_bus() == qt_system_bus_t::machine)
      return "Qt Bluetooth already uses the machine's system bus in this process; run this suite on its own";
    if (QStandardPaths::findExecutable("dbus-daemon").isEmpty()) return "dbus-daemon is not installed (package dbus)";
    QProcess probe;
    probe.start("/usr/bin/python3", {"-c", "import dbusmock"});
    if (!probe.waitForFinished(10000) || probe.exitStatus() != QProcess::NormalExit || probe.exitCode() != 0)
      return "python3-dbusmock is not installed for /usr/bin/python3";
    return {};
  }

  // Starts the daemon and the mock, advertising the peripheral as `name`, and points Qt Bluetooth
  // at them (the bus as the system bus, its D-Bus LE backend). Empty on success, else what failed.
  std::string start(const std::string& name) {
    bus_.process->start("dbus-daemon",
                        {"--session", "--nofork", "--print-address", "--address=unix:path=" + dir_.filePath("bus")});
    if (!bus_.process->waitForStarted(wait_ms) || !bus_.process->waitForReadyRead(wait_ms))
      return "dbus-daemon did not start: " + bus_.process->readAllStandardError().toStdString();
    const auto address = QString::fromUtf8(bus_.process->readLine().trimmed());
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", address.toUtf8());
    qt_system_bus() = qt_system_bus_t::mock;
    qputenv("BLUETOOTH_FORCE_DBUS_LE_VERSION", "5.66");

    auto env = QProcessEnvironment::systemEnvironment();
    env.insert("DBUS_SYSTEM_BUS_ADDRESS", address);
    mock_.process->setProcessEnvironment(env);
    mock_.process->setProcessChannelMode(QProcess::MergedChannels);
    mock_.process->start("/usr/bin/python3",
                         {"-m", "dbusmock", "--template", KORVID_MOCK_BLUEZ, "--logfile", dir_.filePath("mock.log"),
                          "--parameters", QString::fromStdString(R"({"name": ")" + name + R"("})")});
    control_ = std::make_unique<QDBusConnection>(QDBusConnection::connectToBus(address, control_name));
    const bool up = QTest::qWaitFor(
        [this] {
          return mock_.process->state() == QProcess::NotRunning ||
                 control_->interface()->isServiceRegistered("org.bluez").value();
        },
        10000);
    if (!up || mock_.process->state() == QProcess::NotRunning)
      return "the mock BlueZ did not come up: " + mock_.process->readAll().toStdString();
    return {};
  }

  ~mock_bluez_t() {
    if (!control_) return;
    control_.reset();
    QDBusConnection::disconnectFromBus(control_name);
  }

  QDBusMessage call(const QString& path, const QString& interface, const QString& method,
                    const QVariantList& args = {}) const {
    auto message = QDBusMessage::createMethodCall("org.bluez", path, interface, method);
    message.setArguments(args);
    return control_->call(message, QDBus::Block, wait_ms);
  }
  QVariant property(const QString& path, const QString& interface, const QString& name) const {
    const auto reply = call(path, "org.freedesktop.DBus.Properties", "Get", {interface, name});
    if (reply.type() != QDBusMessage::ReplyMessage) return {};
    return reply.arguments().value(0).value<QDBusVariant>().variant();
  }
  bool connected(const QString& path) const { return property(path, "org.bluez.Device1", "Connected").toBool(); }
  bool notifying() const { return property(tx_path, "org.bluez.GattCharacteristic1", "Notifying").toBool(); }
  bool discovering() const { return property("/org/bluez/hci0", "org.bluez.Adapter1", "Discovering").toBool(); }
  // A notification from the peripheral; false when notifications are not enabled.
  bool notify(const bytes_t& value) const {
    const auto reply =
        call("/", "org.bluez.Mock", "Notify",
             {QByteArray(reinterpret_cast<const char*>(value.data()), static_cast<qsizetype>(value.size()))});
    return reply.type() == QDBusMessage::ReplyMessage && reply.arguments().value(0).toBool();
  }
  // The peripheral goes away as if out of range.
  bool drop() const { return call("/", "org.bluez.Mock", "Drop").type() == QDBusMessage::ReplyMessage; }
  // Every byte written to the RX characteristic so far, and the type of each write.
  bytes_t written() const {
    const auto value = call("/", "org.bluez.Mock", "Written").arguments().value(0).toByteArray();
    return bytes_t(value.begin(), value.end());
  }
  QStringList write_types() const {
    return call("/", "org.bluez.Mock", "WriteTypes").arguments().value(0).toStringList();
  }
  // The next `count` writes ("write") or connects ("connect") fail.
  void fail_next(const QString& what, unsigned count) const { call("/", "org.bluez.Mock", "FailNext", {what, count}); }
  void set_adapter(bool present) const { call("/", "org.bluez.Mock", "SetAdapter", {present}); }
  void set_powered(bool on) const { call("/", "org.bluez.Mock", "SetPowered", {on}); }
  unsigned connects() const { return call("/", "org.bluez.Mock", "Connects").arguments().value(0).toUInt(); }
  // The end of the mock's log, for a failing test.
  std::string log() const {
    QFile file(dir_.filePath("mock.log"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().right(6000).toStdString() : std::string();
  }

private:
  static inline const QString control_name = "korvid_mock_control";

  // A child process that is killed and reaped with its owner, and that the kernel kills should the
  // test process die first.
  struct child_t {
    std::unique_ptr<QProcess> process = std::make_unique<QProcess>();
    child_t() {
      process->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    }
    ~child_t() {
      if (process->state() == QProcess::NotRunning) return;
      process->kill();
      process->waitForFinished(2000);
    }
  };

  QTemporaryDir dir_;
  child_t bus_;
  child_t mock_;
  std::unique_ptr<QDBusConnection> control_;
};
