#include "ui/link_status_bar.h"

#include <QLabel>

#include "link/config_connection.h"
#include "link/connect_action.h"
#include "link/connection.h"
#include "ntrip/corrections.h"
#include "session/capture_player.h"
#include "session/recorder.h"
#include "ui/link_meter.h"
#include "ui/palette.h"

namespace {

QLabel* field(const QString& name) {
  auto* label = new QLabel;
  label->setAccessibleName(name);
  label->setTextFormat(Qt::PlainText);
  return label;
}

void show_text(QLabel& label, const QString& text) {
  if (label.text() != text) label.setText(text);
}

// "1.5 MB", "12.0 kB", "340 B".
QString size_text(std::uint64_t bytes) {
  constexpr double kilo = 1000.0, mega = kilo * kilo;
  const auto b = static_cast<double>(bytes);
  if (b >= mega) return QString::asprintf("%.1f MB", b / mega);
  return b >= kilo ? QString::asprintf("%.1f kB", b / kilo) : QString::asprintf("%.0f B", b);
}

QString rate_of_bytes(double per_s) {
  return per_s < 1000.0 ? QString::asprintf("%.0f B/s", per_s) : QString::asprintf("%.1f kB/s", per_s / 1000.0);
}

}  // namespace

link_status_bar_t::link_status_bar_t(config_connection_t& cfg, connection_t& cnc, const link_meter_t& meter,
                                     const time_source_t& clock, QWidget* parent)
    : QStatusBar(parent),
      cfg_(cfg),
      cnc_(cnc),
      meter_(meter),
      clock_(clock),
      state_(field(tr("Link"))),
      hint_(field(tr("Hint"))),
      rates_(field(tr("Data rate"))),
      errors_(field(tr("Checksum errors"))),
      age_(field(tr("Age of the last fix"))),
      sampled_at_(clock.now_s()) {
  addWidget(state_);
  addWidget(hint_, 1);
  for (QLabel* figure : {rates_, errors_, age_}) addPermanentWidget(figure);
  QObject::connect(&timer_, &QTimer::timeout, this, [this] { tick(); });
  timer_.start(tick_ms);
  tick();
}

void link_status_bar_t::tick() {
  const double now = clock_.now_s();
  const double elapsed = now - sampled_at_;
  const std::uint64_t bytes = meter_.bytes();
  // The hub restarts its counters when a link comes up or the log is cleared.
  const std::uint64_t good = cnc_.msg_good >= good_ ? cnc_.msg_good - good_ : cnc_.msg_good;
  const std::uint64_t received = bytes - bytes_;
  const bool enabled = any_link_enabled(cnc_);
  if (enabled && !enabled_) enabled_at_ = now;
  if (received > 0) data_at_ = now;
  if (good > 0) good_at_ = now;
  const auto& gga = cnc_.gga;
  const auto fix_time = std::tuple(gga.time.hh, gga.time.mm, gga.time.ss, gga.time.ms);
  if (gga.fix_i > 0 && fix_time != fix_time_) fix_at_ = now;
  fix_time_ = fix_time;
  enabled_ = enabled;
  bytes_ = bytes;
  good_ = cnc_.msg_good;
  sampled_at_ = now;

  show_text(*state_, state_text());
  show_text(*hint_, hint_text(enabled, now));
  const double per_s = elapsed > 0.0 ? 1.0 / elapsed : 0.0;
  show_text(*rates_, rate_of_bytes(static_cast<double>(received) * per_s) +
                         QString::asprintf("  %.0f %s", static_cast<double>(good) * per_s,
                                           cnc_.binary() ? "frames/s" : "sentences/s"));
  const std::uint64_t bad = cnc_.msg_count > cnc_.msg_good ? cnc_.msg_count - cnc_.msg_good : 0;
  show_text(*errors_, tr("checksum errors %1").arg(bad));
  show_text(*age_, fix_at_ < 0.0 ? tr("no fix") : tr("last fix %1 s ago").arg(static_cast<long long>(now - fix_at_)));
  show_rtk();
}

void link_status_bar_t::show_corrections(const corrections_t& corrections) {
  corrections_ = &corrections;
  rtk_ = field(tr("RTK state"));
  addPermanentWidget(rtk_);
  show_rtk();
}

// The receiver's RTK state and the age of the corrections, in their colour (orange once they
// stopped); hidden while no corrections source is wanted.
void link_status_bar_t::show_rtk() {
  if (!rtk_) return;
  rtk_->setVisible(corrections_->enabled());
  show_text(*rtk_, QString::fromStdString(corrections_->rtk_status()));
  set_text_colour(*rtk_, colour_of(corrections_->rtk_colour(), palette()));
}

void link_status_bar_t::show_session(recorder_t& recorder, const capture_player_t& player) {
  recorder_ = &recorder;
  player_ = &player;
  recording_ = new QLabel;
  recording_->setTextFormat(Qt::RichText);
  recording_->setAccessibleName(tr("Recording"));
  addPermanentWidget(recording_);
  // The recorder tells of each flush, once a second while it records.
  recording_changes_ = recorder.subscribe([this] {
    QMetaObject::invokeMethod(
        this, [this] { show_recording_text(); }, Qt::QueuedConnection);
  });
  show_recording_text();
}

void link_status_bar_t::show_recording_text() {
  recording_->setVisible(recorder_->recording());
  if (!recorder_->recording()) return;
  const auto name = QString::fromStdString(recorder_->file()).section('/', -1);
  const auto text = QString("<span style=\"color:#d32f2f\">\u25CF</span> %1 %2")
                        .arg(name.toHtmlEscaped(), size_text(recorder_->size()));
  if (recording_->text() != text) recording_->setText(text);
  recording_->setToolTip(tr("Recording to %1").arg(QString::fromStdString(recorder_->file())));
}

// "TCP connected to 127.0.0.1:10110", "TCP 192.168.4.1:81: Connection refused, retrying",
// "BLE scanning for Thingy:91 UART"; "offline" when no link is wanted.
QString link_status_bar_t::state_text() const {
  QStringList parts;
  if (cnc_.tcp_enabled()) {
    const QString address = QString::fromStdString(host_port(cfg_.host, cfg_.port));
    if (cnc_.tcp_client().valid())
      parts << tr("TCP connected to %1").arg(QString::fromStdString(cnc_.status_tcp));
    else if (cnc_.sta_fg_tcp == colour_t::red)
      parts << tr("TCP %1: %2, retrying").arg(address, QString::fromStdString(cnc_.status_tcp));
    else
      parts << tr("TCP connecting to %1").arg(address);
  }
  if (cnc_.ble_enabled()) {
    if (cnc_.status_ble.get() == "BLE scanning...")
      parts << tr("BLE scanning for %1").arg(QString::fromStdString(cfg_.ble_name));
    else
      parts << tr("BLE connected to %1").arg(QString::fromStdString(cnc_.status_ble));
  }
  if (cnc_.source_enabled() && cnc_.source())
    parts << QString::fromStdString(cnc_.source()->address().text() + ": " + cnc_.status_source.get());
  if (player_ && player_->is_open()) parts << QString::fromStdString(player_->status_text());
  return parts.isEmpty() ? tr("offline") : parts.join(", ");
}

// What to check when nothing shows: no bytes at all, bytes but no valid sentence, or sentences
// but no fix. A link gets quiet_s to show something before it is blamed.
QString link_status_bar_t::hint_text(bool enabled, double now) const {
  if (!enabled) return {};
  const bool waited = now - enabled_at_ >= quiet_s;
  if (now - data_at_ >= quiet_s) return waited ? tr("no data: check the address or baud rate") : QString();
  if (now - good_at_ >= quiet_s)
    return waited ? tr("data but no valid sentences: wrong baud rate or protocol?") : QString();
  if (cnc_.gga.fix_i == 0) return tr("no fix yet: %1 satellites in view").arg(cnc_.gsv.satellites_in_view.get());
  return {};
}

void link_status_bar_t::set_identity(const QString& identity) {
  state_->setToolTip(identity.isEmpty() ? QString() : tr("Receiver: %1").arg(identity));
}
