#pragma once

#include <QWidget>

class gnss_sky_t;
class gnss_sky_plot_view;
class signal_bars_view;
class sky_history_view;

// The satellites of every system in one column: the sky plot, the signal bars and the history
// charts, for a sheet; a dock takes the views one by one.
class gnss_sky_panel final : public QWidget {
public:
  explicit gnss_sky_panel(gnss_sky_t& sky, QWidget* parent = nullptr);

  gnss_sky_plot_view& plot() const { return *plot_; }
  signal_bars_view& bars() const { return *bars_; }
  sky_history_view& history() const { return *history_; }

private:
  gnss_sky_plot_view* plot_;
  signal_bars_view* bars_;
  sky_history_view* history_;
};
