#pragma once

#include <string>

class connection_t;
class corrections_t;

// The hub's state (and its decoders') as one JSON object on one line, with a corrections section
// when a corrections source was asked for.
std::string snapshot_json(const connection_t& hub, const corrections_t* corrections = nullptr);
