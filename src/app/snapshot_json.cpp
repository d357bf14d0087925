#include "app/snapshot_json.h"

#include "app/json_writer.h"
#include "link/connection.h"

namespace {

void write_hub(json_writer_t& w, const connection_t& hub) {
  w.key("hub");
  w.begin_object();
  w.key("status_tcp");
  w.value(hub.status_tcp.get());
  w.key("status_ble");
  w.value(hub.status_ble.get());
  w.key("msg_count");
  w.value(hub.msg_count);
  w.key("msg_good");
  w.value(hub.msg_good);
  w.key("msg_ack");
  w.value(hub.msg_ack);
  w.key("msg_ack_count");
  w.value(hub.msg_ack_count);
  w.key("binary");
  w.value(hub.binary);
  w.key("show_all");
  w.value(hub.show_all.get());
  w.key("crc_error_text");
  w.value(hub.crc_error_text());
  w.key("arr_rx");
  w.begin_array();
  for (std::size_t i = 0; i < hub.arr_rx->size(); ++i) w.value((*hub.arr_rx)[i]);
  w.end_array();
  w.end_object();
}

}  // namespace

std::string snapshot_json(const connection_t& hub) {
  json_writer_t w;
  w.begin_object();
  write_hub(w, hub);
  w.end_object();
  return w.text();
}
