#include "ui/gnss_sky_panel.h"

#include <QVBoxLayout>

#include "ui/gnss_sky_plot_view.h"
#include "ui/signal_bars_view.h"
#include "ui/sky_history_view.h"

namespace {
constexpr int plot_height = 420;  // points
constexpr int bars_height = 250;
constexpr int history_height = 440;
}  // namespace

gnss_sky_panel::gnss_sky_panel(gnss_sky_t& sky, QWidget* parent)
    : QWidget(parent),
      plot_(new gnss_sky_plot_view(sky, this)),
      bars_(new signal_bars_view(sky, this)),
      history_(new sky_history_view(sky, this)) {
  plot_->setMinimumHeight(plot_height);
  bars_->setMinimumHeight(bars_height);
  history_->setMinimumHeight(history_height);
  auto* column = new QVBoxLayout(this);
  column->setSpacing(12);
  column->addWidget(plot_);
  column->addWidget(bars_);
  column->addWidget(history_);
}
