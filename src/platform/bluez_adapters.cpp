#include "platform/bluez_adapters.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QMap>
#include <QStringList>
#include <QVariantMap>

namespace {

const QString bluez = "org.bluez";
const QString adapter_interface = "org.bluez.Adapter1";
const QString object_manager = "org.freedesktop.DBus.ObjectManager";

// Whether an InterfacesAdded (o a{sa{sv}}) or InterfacesRemoved (o as) signal names an adapter.
bool names_adapter(const QDBusMessage& message) {
  const QVariant interfaces = message.arguments().value(1);
  if (message.member() == "InterfacesRemoved") return interfaces.toStringList().contains(adapter_interface);
  QMap<QString, QVariantMap> added;
  interfaces.value<QDBusArgument>() >> added;
  return added.contains(adapter_interface);
}

}  // namespace

bluez_adapters_t::bluez_adapters_t(std::function<void()> changed, QObject* parent)
    : QObject(parent),
      changed_(std::move(changed)),
      daemon_(bluez, QDBusConnection::systemBus(),
              QDBusServiceWatcher::WatchForRegistration | QDBusServiceWatcher::WatchForUnregistration) {
  QObject::connect(&daemon_, &QDBusServiceWatcher::serviceRegistered, this, [this] { changed_(); });
  QObject::connect(&daemon_, &QDBusServiceWatcher::serviceUnregistered, this, [this] { changed_(); });
  auto bus = QDBusConnection::systemBus();
  for (const char* signal : {"InterfacesAdded", "InterfacesRemoved"})
    bus.connect(bluez, "/", object_manager, signal, this, SLOT(interfaces_changed(QDBusMessage)));
}

void bluez_adapters_t::interfaces_changed(const QDBusMessage& message) {
  if (names_adapter(message)) changed_();
}
