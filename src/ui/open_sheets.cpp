#include "ui/open_sheets.h"

#include "link/connection.h"

void open_sheets_t::show(sheet_id_t sheet, bool shown) {
  notify();
  shown_[index(sheet)] = shown;
  if (sheet == sheet_id_t::log) cnc_.set_log_shown(shown);
}
