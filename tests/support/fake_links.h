#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "link/link_factory.h"

// Transport doubles that record what the hub asks of them; a test sets their state.
struct fake_tcp_t final : tcp_link_t {
  std::int32_t connect(const std::string& host, std::uint16_t port) override {
    if (is_valid) return -1;
    connects.push_back(host + ":" + std::to_string(port));
    is_enabled = true;
    return 0;
  }
  bool enabled() const override { return is_enabled; }
  bool valid() const override { return is_valid; }
  void stop() override {
    is_enabled = false;
    is_valid = false;
    ++stops;
  }
  void write(std::span<const std::uint8_t> bytes) override {
    if (is_valid) sent.emplace_back(bytes.begin(), bytes.end());
  }

  bool is_enabled = false;
  bool is_valid = false;
  int stops = 0;
  std::vector<std::string> connects;
  std::vector<std::vector<std::uint8_t>> sent;
};

struct fake_ble_t final : ble_link_t {
  void connect(const std::string& name) override {
    name_connect = name;
    is_enabled = true;
  }
  bool enabled() const override { return is_enabled; }
  void stop() override {
    is_enabled = false;
    ++stops;
  }
  void write(std::span<const std::uint8_t> bytes) override {
    if (ready) written.emplace_back(bytes.begin(), bytes.end());
  }
  std::string radio_status() const override { return radio; }
  colour_t radio_colour() const override { return colour_t::red; }
  std::string radio_state() const override { return radio; }
  std::string radio = "BLE 2 unsupported";

  std::string name_connect;
  bool is_enabled = false;
  bool ready = false;
  int stops = 0;
  std::vector<std::vector<std::uint8_t>> written;
};

struct fake_source_t final : source_link_t {
  explicit fake_source_t(source_address_t a) : where(std::move(a)) {}
  std::int32_t open() override {
    ++opens;
    is_enabled = true;
    return is_valid ? -1 : 0;
  }
  bool valid() const override { return is_valid; }
  const source_address_t& address() const override { return where; }
  bool enabled() const override { return is_enabled; }
  void stop() override { is_enabled = is_valid = false; }
  void write(std::span<const std::uint8_t> bytes) override {
    if (is_valid) sent.emplace_back(bytes.begin(), bytes.end());
  }

  source_address_t where;
  bool is_enabled = false;
  bool is_valid = false;
  int opens = 0;
  std::vector<std::vector<std::uint8_t>> sent;
};

// Hands out the doubles and keeps a pointer to each, for the test to look at.
struct fake_links_t final : link_factory_t {
  std::unique_ptr<tcp_link_t> make_tcp(link_events_t& events) override {
    auto link = std::make_unique<fake_tcp_t>();
    tcp = link.get();
    tcp_events = &events;
    return link;
  }
  std::unique_ptr<ble_link_t> make_ble(link_events_t&) override {
    auto link = std::make_unique<fake_ble_t>();
    ble = link.get();
    return link;
  }
  std::unique_ptr<source_link_t> make_source(const source_address_t& address, link_status_events_t&) override {
    if (!sources) return nullptr;
    auto link = std::make_unique<fake_source_t>(address);
    source = link.get();
    return link;
  }
  bool sources = true;  // false: a program that opens no serial, UDP or gpsd link
  fake_source_t* source = nullptr;
  fake_tcp_t* tcp = nullptr;
  link_events_t* tcp_events = nullptr;  // where the TCP double's bytes would go
  fake_ble_t* ble = nullptr;
};
