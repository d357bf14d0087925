#pragma once

class corrections_settings_t;
class corrections_t;
class corrections_view_t;
class main_window_t;

// Puts a corrections source into the window: its section in the connection settings, a
// Connection menu entry that opens it, and the RTK indicator in the status bar.
corrections_view_t& add_corrections(main_window_t& window, corrections_t& corrections,
                                    corrections_settings_t& settings);
