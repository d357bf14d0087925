#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "command/ubx_message.h"

// What a command waits for: nothing (a sentence, a message without an answer), ACK-ACK or
// ACK-NAK (every CFG message), or the polled message itself (an empty UBX message outside CFG).
enum class answer_kind_t : std::uint8_t { none, ack, poll };

struct typed_command_t {
  std::vector<std::uint8_t> bytes;  // exactly what goes to the receiver
  std::string text;                 // how the log and the console show it
  ubx_id_t message;                 // the UBX message sent, for ack and poll
  answer_kind_t answer = answer_kind_t::none;
};

struct typed_parse_t {
  std::optional<typed_command_t> command;
  std::string error;  // one line for the user when command is empty
};

// Reads a command as the user types it:
//   $PUBX,41,1,0003,0003,115200,0     an NMEA sentence; "*hh" is added when missing
//   ubx:06,08,c80001000100            a UBX message from class, id and payload hex
//   hex:B5 62 0A 04 00 00 0E 34       raw bytes
//   set:CFG-RATE-MEAS=200,...         CFG-VALSET to RAM, by the key table's names or 0x ids
//   get:CFG-RATE-MEAS,...             CFG-VALGET from RAM
//   del:CFG-RATE-MEAS,...             CFG-VALDEL from battery-backed RAM and flash
//   rate:200[,1]                      CFG-RATE: measurement period in ms, navigation ratio
//   msg:01,07,1                       CFG-MSG: class, id and rate on the current port
typed_parse_t parse_typed_command(std::string_view text);

// A command for a UBX message, with the answer its class calls for.
typed_command_t ubx_command(ubx_id_t message, const std::vector<std::uint8_t>& payload, const std::string& detail);
