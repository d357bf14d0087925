#pragma once

#include <string>

#include "ubx/records.h"

// The multi-line display text of a record, as the log shows it: a header line with class, id,
// label, length, iTOW and the GPS weekday and time, then the record's values in fixed columns.
// Each line ends in a newline. The text is appended to a buffer the caller reuses.
void append_text(std::string& out, const gps_posllh_t& record);
void append_text(std::string& out, const gps_pvt_t& record);
// The sky records: NAV-DOP's values on one line, NAV-SAT and NAV-SIG with a line per entry.
void append_text(std::string& out, const gps_dop_t& record);
void append_text(std::string& out, const gps_sat_t& record);
void append_text(std::string& out, const gps_sig_t& record);
