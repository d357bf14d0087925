#pragma once

#include <array>
#include <cstddef>

#include "core/observable.h"

class connection_t;

// The panels beside the map (docks) and the connection settings (a dialog).
enum class sheet_id_t { log, satellites, details, settings, sky, console };

// Which panels are open. Every change notifies first, as a published field does. The hub learns
// whether the log is open, because it keeps a longer log while someone reads it.
class open_sheets_t final : public observable_t {
public:
  explicit open_sheets_t(connection_t& cnc) : cnc_(cnc) {}

  bool shown(sheet_id_t sheet) const { return shown_[index(sheet)]; }
  void show(sheet_id_t sheet, bool shown);
  void toggle(sheet_id_t sheet) { show(sheet, !shown(sheet)); }
  // The fix details are the satellites and the details panels together: both open unless both
  // were open already.
  void toggle_fix_details();

private:
  static std::size_t index(sheet_id_t sheet) { return static_cast<std::size_t>(sheet); }

  connection_t& cnc_;
  std::array<bool, 6> shown_{};
};
