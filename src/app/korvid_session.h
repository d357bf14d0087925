#pragma once

#include <cstdint>
#include <memory>

#include "app/demo_sim.h"
#include "app/window_options.h"
#include "link/config_connection.h"
#include "link/connection.h"
#include "link/memory_kv_store.h"
#include "platform/qsettings_store.h"

// What the window and the headless mode share: the settings store, in memory for a demo so that
// the user's settings stay untouched, and the demo's simulator.
class korvid_session_t {
public:
  // False, with a message, when the demo's simulator finds no port.
  bool start(const window_options_t& options);
  kv_store_t& store();
  // Connects as the settings say; a demo connects to its simulator, as a user would set it up.
  void connect(config_connection_t& cfg, connection_t& hub);

private:
  memory_kv_store_t demo_store_;
  std::unique_ptr<qsettings_store_t> user_store_;
  std::unique_ptr<demo_sim_t> sim_;
};

// No display: the hub alone, a summary line each second, until Ctrl-C or SIGTERM.
int run_headless(int argc, char** argv, const window_options_t& options);
