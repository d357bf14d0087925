#pragma once

#include <string>
#include <string_view>

// What the simulated receiver does with the bytes a client sends it (commands to answer,
// corrections to count). Its answer, if any, goes to every client, as a receiver's output port
// carries its answers among its messages.
class sim_input_t {
public:
  virtual ~sim_input_t() = default;
  virtual std::string received(std::string_view bytes) = 0;
};
