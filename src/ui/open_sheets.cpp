#include "ui/open_sheets.h"

#include "link/connection.h"

void open_sheets_t::show(sheet_id_t sheet, bool shown) {
  if (shown_[index(sheet)] == shown) return;
  notify();
  shown_[index(sheet)] = shown;
  if (sheet == sheet_id_t::log) cnc_.set_log_shown(shown);
}

void open_sheets_t::toggle_fix_details() {
  const bool open = !(shown(sheet_id_t::satellites) && shown(sheet_id_t::details));
  show(sheet_id_t::satellites, open);
  show(sheet_id_t::details, open);
}
