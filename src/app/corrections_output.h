#pragma once

#include <string>
#include <vector>

#include "ntrip/corrections.h"
#include "ntrip/source_table.h"

class json_writer_t;

// The "corrections" section of a snapshot: the source, what its stream carried and the RTK state.
void write_corrections(json_writer_t& w, const corrections_t& corrections);

// A source table as korvid-cli prints it, one mountpoint a line, nearest first when a fix is known.
std::string source_table_text(const std::vector<source_entry_t>& entries);

// The corrections lines of korvid-cli's closing summary.
std::string corrections_summary(const corrections_t& corrections);
