#include "platform/qt_ble_central.h"

#include <QLowEnergyDescriptor>
#include <QTimer>

namespace {

std::string uuid_text(const QBluetoothUuid& uuid) {
  return uuid.toString(QUuid::WithoutBraces).toUpper().toStdString();
}

}  // namespace

qt_ble_central_t::qt_ble_central_t()
    : adapters_([this] {
        watch_local_device();
        report_state();
      }) {
  watch_local_device();
  // Scan until stopped: the central stops it when it finds its peripheral.
  agent_.setLowEnergyDiscoveryTimeout(0);
  QObject::connect(&agent_, &QBluetoothDeviceDiscoveryAgent::deviceDiscovered, this,
                   [this](const QBluetoothDeviceInfo& info) {
                     if (!scanning_) return;
                     if (!(info.coreConfigurations() & QBluetoothDeviceInfo::LowEnergyCoreConfiguration)) return;
                     const auto p = peripheral_of(info);
                     seen_[p.id] = info;
                     if (events_) events_->peripheral_discovered(p);
                   });
}

// Qt's local device keeps the adapter it found when it was made, or none: after a change in the
// adapters a new one finds the current adapter.
void qt_ble_central_t::watch_local_device() {
  if (local_) local_->deleteLater();
  local_ = new QBluetoothLocalDevice(this);
  QObject::connect(local_, &QBluetoothLocalDevice::hostModeStateChanged, this, [this] { report_state(); });
}

// Until the first state has been reported the radio counts as unknown; that report reads the state
// of its moment. A radio that is no longer on ends the scan: its owner scans again once it is.
void qt_ble_central_t::report_state() {
  if (!state_reported_) return;
  const auto previous = state_;
  state_ = radio_state();
  if (state_ == previous) return;
  if (state_ != ble_manager_state_t::powered_on) stop_scan();
  if (events_) events_->manager_state_changed(state_);
}

qt_ble_central_t::~qt_ble_central_t() {
  events_ = nullptr;
  agent_.stop();
  if (controller_) controller_->disconnectFromDevice();
}

void qt_ble_central_t::set_events(ble_central_events_t* events) {
  events_ = events;
  // The first state arrives from the event loop, as a stack would report it; until then the
  // radio is "unknown", so that nothing scans before its owner has heard that the radio is on.
  QTimer::singleShot(0, this, [this] {
    state_ = radio_state();
    state_reported_ = true;
    if (events_) events_->manager_state_changed(state_);
  });
}

ble_manager_state_t qt_ble_central_t::radio_state() const {
  if (!local_->isValid()) return ble_manager_state_t::unsupported;
  return local_->hostMode() == QBluetoothLocalDevice::HostPoweredOff ? ble_manager_state_t::powered_off
                                                                     : ble_manager_state_t::powered_on;
}

ble_peripheral_t qt_ble_central_t::peripheral_of(const QBluetoothDeviceInfo& info) const {
  ble_peripheral_t p;
  p.id = info.address().isNull() ? qHash(info.deviceUuid()) : info.address().toUInt64();
  if (!info.name().isEmpty()) p.name = info.name().toStdString();
  p.description = "<" + info.name().toStdString() + " " + info.address().toString().toStdString() + ">";
  return p;
}

void qt_ble_central_t::scan() {
  scanning_ = true;
  // Started from the event loop: Qt reports the devices BlueZ already knows from inside start(),
  // and the central must hear of a peripheral only after its own scan() call has returned.
  QTimer::singleShot(0, this, [this] {
    if (scanning_ && !agent_.isActive()) agent_.start(QBluetoothDeviceDiscoveryAgent::LowEnergyMethod);
  });
}

void qt_ble_central_t::stop_scan() {
  scanning_ = false;
  agent_.stop();
}

void qt_ble_central_t::connect(const ble_peripheral_t& p) {
  const auto info = seen_.find(p.id);
  if (info == seen_.end()) return;
  // A second connect while this peripheral's connection is being set up leaves that attempt alone:
  // a new controller would tear down the one that is about to connect.
  if (controller_ && p == peripheral_ && controller_->state() == QLowEnergyController::ConnectingState) return;
  if (controller_) controller_->deleteLater();
  characteristics_.clear();
  writes_.clear();
  service_objects_.clear();
  services_.clear();
  peripheral_ = p;
  cancelling_ = false;
  connected_ = false;
  last_error_.clear();
  controller_ = QLowEnergyController::createCentral(info->second, this);
  QObject::connect(controller_, &QLowEnergyController::connected, this, [this, p] {
    connected_ = true;
    if (events_) events_->peripheral_connected(p);
  });
  // Qt reports a connect that never succeeded by an error alone, with no disconnect to follow.
  QObject::connect(controller_, &QLowEnergyController::errorOccurred, this, [this, p](QLowEnergyController::Error) {
    last_error_ = controller_->errorString();
    if (!connected_ && !cancelling_ && events_) events_->connect_failed(p, last_error_.toStdString());
  });
  QObject::connect(controller_, &QLowEnergyController::disconnected, this, [this, p] {
    std::optional<std::string> error;
    if (!cancelling_) error = last_error_.isEmpty() ? std::string("connection lost") : last_error_.toStdString();
    if (events_) events_->peripheral_disconnected(p, error);
  });
  QObject::connect(controller_, &QLowEnergyController::serviceDiscovered, this,
                   [this](const QBluetoothUuid& uuid) { services_.push_back(uuid); });
  QObject::connect(controller_, &QLowEnergyController::discoveryFinished, this, [this, p] {
    std::vector<std::uint64_t> ids;
    for (std::size_t i = 0; i < services_.size(); ++i) ids.push_back(i);
    if (events_) events_->services_discovered(p, ids);
  });
  controller_->connectToDevice();
}

void qt_ble_central_t::cancel_connection(const ble_peripheral_t&) {
  if (!controller_) return;
  cancelling_ = true;
  controller_->disconnectFromDevice();
}

void qt_ble_central_t::discover_services(const ble_peripheral_t&) {
  if (controller_) controller_->discoverServices();
}

ble_characteristic_t qt_ble_central_t::handle_of(QLowEnergyService* service, const QLowEnergyCharacteristic& c) {
  for (const auto& [id, entry] : characteristics_)
    if (entry.service == service && entry.characteristic.uuid() == c.uuid()) return {id, uuid_text(c.uuid())};
  const auto id = next_characteristic_++;
  characteristics_[id] = {service, c};
  return {id, uuid_text(c.uuid())};
}

const qt_ble_central_t::characteristic_entry_t* qt_ble_central_t::find(const ble_characteristic_t& c) const {
  const auto it = characteristics_.find(c.id);
  return it == characteristics_.end() ? nullptr : &it->second;
}

void qt_ble_central_t::discover_characteristics(const ble_peripheral_t& p, std::uint64_t service) {
  if (!controller_ || service >= services_.size()) return;
  QLowEnergyService* s = controller_->createServiceObject(services_[service], controller_);
  if (!s) return;
  service_objects_.push_back(s);
  QObject::connect(s, &QLowEnergyService::stateChanged, this, [this, s, p](QLowEnergyService::ServiceState state) {
    if (state != QLowEnergyService::RemoteServiceDiscovered) return;
    std::vector<ble_characteristic_t> found;
    for (const auto& c : s->characteristics()) found.push_back(handle_of(s, c));
    if (events_) events_->characteristics_discovered(p, found);
  });
  // Notifications only: a read's response (characteristicRead) repeats an old value.
  QObject::connect(s, &QLowEnergyService::characteristicChanged, this,
                   [this, s, p](const QLowEnergyCharacteristic& c, const QByteArray& value) {
                     const auto* bytes = reinterpret_cast<const std::uint8_t*>(value.constData());
                     if (events_)
                       events_->value_updated(
                           p, handle_of(s, c),
                           std::span<const std::uint8_t>(bytes, static_cast<std::size_t>(value.size())));
                   });
  QObject::connect(s, &QLowEnergyService::characteristicWritten, this,
                   [this, s, p](const QLowEnergyCharacteristic& c, const QByteArray&) {
                     if (!writes_.empty()) writes_.pop_front();
                     if (events_) events_->value_written(p, handle_of(s, c), std::nullopt);
                   });
  // A failed write names no characteristic; writes complete in order, so it is the oldest one.
  QObject::connect(s, &QLowEnergyService::errorOccurred, this, [this, p](QLowEnergyService::ServiceError error) {
    if (error != QLowEnergyService::CharacteristicWriteError || writes_.empty()) return;
    const auto c = writes_.front();
    writes_.pop_front();
    if (events_) events_->value_written(p, c, std::string("characteristic write failed"));
  });
  s->discoverDetails();
}

void qt_ble_central_t::read_value(const ble_peripheral_t&, const ble_characteristic_t& c) {
  const auto* e = find(c);
  if (e && (e->characteristic.properties() & QLowEnergyCharacteristic::Read))
    e->service->readCharacteristic(e->characteristic);
}

void qt_ble_central_t::set_notify(const ble_peripheral_t&, const ble_characteristic_t& c, bool on) {
  const auto* e = find(c);
  if (!e) return;
  const auto config = e->characteristic.clientCharacteristicConfiguration();
  if (config.isValid())
    e->service->writeDescriptor(
        config, on ? QLowEnergyCharacteristic::CCCDEnableNotification : QLowEnergyCharacteristic::CCCDDisable);
}

std::size_t qt_ble_central_t::max_write_size(const ble_peripheral_t&) const {
  const int mtu = controller_ ? controller_->mtu() : -1;
  if (mtu <= static_cast<int>(att_header)) return max_attribute_value;
  return std::min(max_attribute_value, static_cast<std::size_t>(mtu) - att_header);
}

void qt_ble_central_t::write_with_response(const ble_peripheral_t&, const ble_characteristic_t& c,
                                           std::span<const std::uint8_t> bytes) {
  const auto* e = find(c);
  if (!e) return;
  writes_.push_back(c);
  e->service->writeCharacteristic(
      e->characteristic, QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())),
      QLowEnergyService::WriteWithResponse);
}
