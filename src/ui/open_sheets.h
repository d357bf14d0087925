#pragma once

#include <array>
#include <cstddef>

#include "core/observable.h"

class connection_t;

// The sheets that the main screen opens over itself.
enum class sheet_id_t { log, details, settings, sky };

// Which sheets are open. Every change notifies first, as a published field does. The hub learns
// whether the log is open, because it keeps a longer log while someone reads it.
class open_sheets_t final : public observable_t {
public:
  explicit open_sheets_t(connection_t& cnc) : cnc_(cnc) {}

  bool shown(sheet_id_t sheet) const { return shown_[index(sheet)]; }
  void show(sheet_id_t sheet, bool shown);
  void toggle(sheet_id_t sheet) { show(sheet, !shown(sheet)); }

private:
  static std::size_t index(sheet_id_t sheet) { return static_cast<std::size_t>(sheet); }

  connection_t& cnc_;
  std::array<bool, 4> shown_{};
};
