# -*- coding: utf-8 -*-
'''A BlueZ 5 mock with one adapter and a Nordic UART Service peripheral, for python3-dbusmock.

Loaded with: python3 -m dbusmock --template mock_bluez_nus.py [-p '{"name": "..."}']

What it offers on the system bus as org.bluez, through the ObjectManager on "/":
- /org/bluez/hci0: org.bluez.Adapter1, powered, with discovery.
- Two LE peripherals that both advertise the Nordic UART Service: "other" is in the adapter's
  cache from the start, "nus" (the one with the parameter "name", default "korvid-test-nus")
  appears through InterfacesAdded when discovery starts, as a peripheral in range does.
- Device1.Connect sets Connected, exports the GATT objects of the UART service, then sets
  ServicesResolved, each step announced by PropertiesChanged or InterfacesAdded:
    service0010                      6E400001-... primary
    service0010/char0011             6E400002-... RX, write and write-without-response
    service0010/char0013             6E400003-... TX, read and notify
    service0010/char0013/desc0015    00002902-... its client characteristic configuration
- org.bluez.Mock on "/", for the test:
    Notify(ay) -> b      a notification on the connected peripheral's TX characteristic
                         (PropertiesChanged of Value); false when nobody enabled notifications
    Written() -> ay      every byte written to RX so far, in order
    WriteTypes() -> as   the "type" option of each write ("request", "command", or "")
    FailNext(s, u)       the next u writes to RX ("write") or calls of Device1.Connect
                         ("connect") fail with org.bluez.Error.Failed
    Connects() -> u      how often Device1.Connect was called, on any peripheral
    SetAdapter(b)        the adapter is plugged in or pulled out (with its devices)
    SetPowered(b)        the adapter is switched on or off
    Drop()               the peripheral goes away: ServicesResolved and Connected become false
                         and the GATT objects are removed
'''

import dbus

from dbusmock import OBJECT_MANAGER_IFACE, mockobject

BUS_NAME = 'org.bluez'
MAIN_OBJ = '/'
SYSTEM_BUS = True
IS_OBJECT_MANAGER = True

MOCK_IFACE = 'org.bluez.Mock'
ADAPTER_IFACE = 'org.bluez.Adapter1'
DEVICE_IFACE = 'org.bluez.Device1'
SERVICE_IFACE = 'org.bluez.GattService1'
CHAR_IFACE = 'org.bluez.GattCharacteristic1'
DESC_IFACE = 'org.bluez.GattDescriptor1'

ADAPTER_PATH = '/org/bluez/hci0'
NUS_ADDRESS = 'C0:FF:EE:00:00:01'
OTHER_ADDRESS = 'C0:FF:EE:00:00:02'

UUID_NUS = '6e400001-b5a3-f393-e0a9-e50e24dcca9e'
UUID_RX = '6e400002-b5a3-f393-e0a9-e50e24dcca9e'
UUID_TX = '6e400003-b5a3-f393-e0a9-e50e24dcca9e'
UUID_CCCD = '00002902-0000-1000-8000-00805f9b34fb'


def device_path(address):
    return ADAPTER_PATH + '/dev_' + address.replace(':', '_')


def byte_array(value):
    return dbus.Array([dbus.Byte(b) for b in value], signature='y')


def set_props(obj, interface, changed):
    obj.props[interface].update(changed)
    obj.EmitSignal(dbus.PROPERTIES_IFACE, 'PropertiesChanged', 'sa{sv}as', [
        interface, dbus.Dictionary(changed, signature='sv'), dbus.Array([], signature='s')])


MANAGER = None  # the main object "/", which is the ObjectManager


def manager():
    return MANAGER


def fails(what):  # as the test asked with FailNext
    if manager().fail[what] == 0:
        return False
    manager().fail[what] -= 1
    return True


def add_object(path, interface, props, methods):
    manager().AddObject(path, interface, props, methods)
    manager().EmitSignal(OBJECT_MANAGER_IFACE, 'InterfacesAdded', 'oa{sa{sv}}', [
        dbus.ObjectPath(path), {interface: props}])
    return mockobject.objects[path]


def remove_object(path, interface):
    manager().RemoveObject(path)
    manager().EmitSignal(OBJECT_MANAGER_IFACE, 'InterfacesRemoved', 'oas', [
        dbus.ObjectPath(path), dbus.Array([interface], signature='s')])


# Adapter

def start_discovery(adapter):
    set_props(adapter, ADAPTER_IFACE, {'Discovering': dbus.Boolean(True, variant_level=1)})
    if device_path(NUS_ADDRESS) not in mockobject.objects:
        add_device(NUS_ADDRESS, manager().nus_name)


def stop_discovery(adapter):
    set_props(adapter, ADAPTER_IFACE, {'Discovering': dbus.Boolean(False, variant_level=1)})


# Device

def gatt_paths(device):
    service = device.path + '/service0010'
    return service, service + '/char0011', service + '/char0013', service + '/char0013/desc0015'


def export_gatt(device):
    service, rx, tx, cccd = gatt_paths(device)
    add_object(service, SERVICE_IFACE, {
        'UUID': dbus.String(UUID_NUS, variant_level=1),
        'Primary': dbus.Boolean(True, variant_level=1),
        'Device': dbus.ObjectPath(device.path, variant_level=1),
        'Includes': dbus.Array([], signature='o', variant_level=1),
    }, [])
    characteristic_methods = [
        ('ReadValue', 'a{sv}', 'ay', read_value),
        ('WriteValue', 'aya{sv}', '', write_value),
        ('StartNotify', '', '', start_notify),
        ('StopNotify', '', '', stop_notify),
    ]
    # TX is readable too, and holds a value from before: a read returns it, which is no new data.
    for path, uuid, flags, value in ((rx, UUID_RX, ['write-without-response', 'write'], b''),
                                     (tx, UUID_TX, ['read', 'notify'], b'$GPTXT,stale*00\r\n')):
        obj = add_object(path, CHAR_IFACE, {
            'UUID': dbus.String(uuid, variant_level=1),
            'Service': dbus.ObjectPath(service, variant_level=1),
            'Value': dbus.Array([dbus.Byte(b) for b in value], signature='y', variant_level=1),
            'Notifying': dbus.Boolean(False, variant_level=1),
            'Flags': dbus.Array(flags, signature='s', variant_level=1),
        }, characteristic_methods)
        obj.written = manager().written
    add_object(cccd, DESC_IFACE, {
        'UUID': dbus.String(UUID_CCCD, variant_level=1),
        'Characteristic': dbus.ObjectPath(tx, variant_level=1),
        'Value': dbus.Array([], signature='y', variant_level=1),
        'Flags': dbus.Array(['read', 'write'], signature='s', variant_level=1),
    }, [
        ('ReadValue', 'a{sv}', 'ay', read_descriptor),
        ('WriteValue', 'aya{sv}', '', write_descriptor),
    ])


def unexport_gatt(device):
    service, rx, tx, cccd = gatt_paths(device)
    for path, interface in ((cccd, DESC_IFACE), (tx, CHAR_IFACE), (rx, CHAR_IFACE), (service, SERVICE_IFACE)):
        if path in mockobject.objects:
            remove_object(path, interface)


def connect(device):
    manager().connects += 1
    if fails('connect'):
        raise dbus.exceptions.DBusException('le-connection-abort-by-local', name='org.bluez.Error.Failed')
    if device.props[DEVICE_IFACE]['Connected']:
        raise dbus.exceptions.DBusException('Already Connected', name='org.bluez.Error.AlreadyConnected')
    set_props(device, DEVICE_IFACE, {'Connected': dbus.Boolean(True, variant_level=1)})
    export_gatt(device)
    set_props(device, DEVICE_IFACE, {'ServicesResolved': dbus.Boolean(True, variant_level=1)})


def drop(device):
    if not device.props[DEVICE_IFACE]['Connected']:
        raise dbus.exceptions.DBusException('Not Connected', name='org.bluez.Error.NotConnected')
    set_props(device, DEVICE_IFACE, {'ServicesResolved': dbus.Boolean(False, variant_level=1)})
    unexport_gatt(device)
    set_props(device, DEVICE_IFACE, {'Connected': dbus.Boolean(False, variant_level=1)})


def add_device(address, name):
    path = device_path(address)
    add_object(path, DEVICE_IFACE, {
        'Address': dbus.String(address, variant_level=1),
        'AddressType': dbus.String('random', variant_level=1),
        'Name': dbus.String(name, variant_level=1),
        'Alias': dbus.String(name, variant_level=1),
        'Adapter': dbus.ObjectPath(ADAPTER_PATH, variant_level=1),
        'Class': dbus.UInt32(0, variant_level=1),
        'RSSI': dbus.Int16(-60, variant_level=1),
        'UUIDs': dbus.Array([UUID_NUS], signature='s', variant_level=1),
        'Connected': dbus.Boolean(False, variant_level=1),
        'ServicesResolved': dbus.Boolean(False, variant_level=1),
    }, [
        ('Connect', '', '', connect),
        ('Disconnect', '', '', drop_if_connected),
    ])


def drop_if_connected(device):
    if device.props[DEVICE_IFACE]['Connected']:
        drop(device)


# GATT

def read_value(characteristic, _options):
    return characteristic.props[CHAR_IFACE]['Value']


def write_value(characteristic, value, options):
    if 'write' not in characteristic.props[CHAR_IFACE]['Flags']:
        raise dbus.exceptions.DBusException('Write not permitted', name='org.bluez.Error.NotPermitted')
    if fails('write'):
        raise dbus.exceptions.DBusException('Operation failed', name='org.bluez.Error.Failed')
    characteristic.written['bytes'] += bytes(value)
    characteristic.written['types'].append(str(options.get('type', '')))


def start_notify(characteristic):
    if 'notify' not in characteristic.props[CHAR_IFACE]['Flags']:
        raise dbus.exceptions.DBusException('Notify not supported', name='org.bluez.Error.NotSupported')
    set_props(characteristic, CHAR_IFACE, {'Notifying': dbus.Boolean(True, variant_level=1)})


def stop_notify(characteristic):
    set_props(characteristic, CHAR_IFACE, {'Notifying': dbus.Boolean(False, variant_level=1)})


def read_descriptor(descriptor, _options):
    tx = mockobject.objects[descriptor.props[DESC_IFACE]['Characteristic']]
    return byte_array([1, 0] if tx.props[CHAR_IFACE]['Notifying'] else [0, 0])


def write_descriptor(_descriptor, _value, _options):
    # BlueZ keeps the configuration descriptor to itself: clients use StartNotify and StopNotify.
    raise dbus.exceptions.DBusException('Write not permitted', name='org.bluez.Error.NotPermitted')


# Test control

@dbus.service.method(MOCK_IFACE, in_signature='ay', out_signature='b')
def Notify(self, value):
    tx = mockobject.objects.get(gatt_paths(mockobject.objects[device_path(NUS_ADDRESS)])[2])
    if tx is None or not tx.props[CHAR_IFACE]['Notifying']:
        return False
    set_props(tx, CHAR_IFACE, {'Value': dbus.Array([dbus.Byte(b) for b in value], signature='y', variant_level=1)})
    return True


@dbus.service.method(MOCK_IFACE, in_signature='', out_signature='ay')
def Written(self):
    return byte_array(self.written['bytes'])


@dbus.service.method(MOCK_IFACE, in_signature='', out_signature='as')
def WriteTypes(self):
    return dbus.Array(self.written['types'], signature='s')


@dbus.service.method(MOCK_IFACE, in_signature='su', out_signature='')
def FailNext(self, what, count):
    self.fail[str(what)] = int(count)


@dbus.service.method(MOCK_IFACE, in_signature='', out_signature='u')
def Connects(self):
    return dbus.UInt32(self.connects)


@dbus.service.method(MOCK_IFACE, in_signature='', out_signature='')
def Drop(self):
    drop(mockobject.objects[device_path(NUS_ADDRESS)])


@dbus.service.method(MOCK_IFACE, in_signature='b', out_signature='')
def SetAdapter(self, present):
    if present:
        add_adapter()
        return
    for address in (NUS_ADDRESS, OTHER_ADDRESS):
        if device_path(address) in mockobject.objects:
            drop_if_connected(mockobject.objects[device_path(address)])
            remove_object(device_path(address), DEVICE_IFACE)
    remove_object(ADAPTER_PATH, ADAPTER_IFACE)


@dbus.service.method(MOCK_IFACE, in_signature='b', out_signature='')
def SetPowered(self, powered):
    adapter = mockobject.objects[ADAPTER_PATH]
    if not powered:
        if device_path(NUS_ADDRESS) in mockobject.objects:
            drop_if_connected(mockobject.objects[device_path(NUS_ADDRESS)])
        stop_discovery(adapter)
    set_props(adapter, ADAPTER_IFACE, {'Powered': dbus.Boolean(powered, variant_level=1)})


def add_adapter():
    add_object(ADAPTER_PATH, ADAPTER_IFACE, {
        'Address': dbus.String('00:11:22:33:44:55', variant_level=1),
        'AddressType': dbus.String('public', variant_level=1),
        'Name': dbus.String('korvid-mock', variant_level=1),
        'Alias': dbus.String('korvid-mock', variant_level=1),
        'Class': dbus.UInt32(0, variant_level=1),
        'Powered': dbus.Boolean(True, variant_level=1),
        'Discoverable': dbus.Boolean(False, variant_level=1),
        'Discovering': dbus.Boolean(False, variant_level=1),
        'UUIDs': dbus.Array([], signature='s', variant_level=1),
    }, [
        ('StartDiscovery', '', '', start_discovery),
        ('StopDiscovery', '', '', stop_discovery),
        ('SetDiscoveryFilter', 'a{sv}', '', ''),
        ('RemoveDevice', 'o', '', ''),
    ])
    add_device(OTHER_ADDRESS, manager().nus_name + ' 2')


def load(mock, parameters):
    global MANAGER  # pylint: disable=global-statement
    MANAGER = mock
    mock.nus_name = str(parameters.get('name', 'korvid-test-nus'))
    mock.written = {'bytes': b'', 'types': []}
    mock.fail = {'write': 0, 'connect': 0}
    mock.connects = 0
    add_adapter()
