#pragma once

#include <string>

class connection_t;

// The hub's state (and its decoders') as one JSON object on one line.
std::string snapshot_json(const connection_t& hub);
