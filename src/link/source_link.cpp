#include "link/source_link.h"

#include <utility>

namespace {

std::int32_t open_at(serial_link_t& link, const source_address_t& a) {
  return link.open(a.path, a.baud);
}
std::int32_t open_at(udp_link_t& link, const source_address_t& a) {
  return link.listen(a.port);
}
std::int32_t open_at(gpsd_link_t& link, const source_address_t& a) {
  return link.connect(a.host, a.port, a.raw);
}

template <class link_type>
class bound_source_t final : public source_link_t {
public:
  bound_source_t(source_address_t address, std::unique_ptr<link_type> link)
      : address_(std::move(address)), link_(std::move(link)) {}

  std::int32_t open() override { return open_at(*link_, address_); }
  bool valid() const override { return link_->valid(); }
  const source_address_t& address() const override { return address_; }
  bool enabled() const override { return link_->enabled(); }
  void stop() override { link_->stop(); }
  void write(std::span<const std::uint8_t> bytes) override { link_->write(bytes); }

private:
  source_address_t address_;
  std::unique_ptr<link_type> link_;
};

template <class link_type>
std::unique_ptr<source_link_t> bind(const source_address_t& address, std::unique_ptr<link_type> link) {
  return std::make_unique<bound_source_t<link_type>>(address, std::move(link));
}

}  // namespace

std::unique_ptr<source_link_t> bind_source(const source_address_t& address, std::unique_ptr<serial_link_t> link) {
  return bind(address, std::move(link));
}
std::unique_ptr<source_link_t> bind_source(const source_address_t& address, std::unique_ptr<udp_link_t> link) {
  return bind(address, std::move(link));
}
std::unique_ptr<source_link_t> bind_source(const source_address_t& address, std::unique_ptr<gpsd_link_t> link) {
  return bind(address, std::move(link));
}
