#include "ui/gps_log_view.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextDocument>
#include <QVBoxLayout>

#include "link/connection.h"
#include "ubx/record_text.h"
#include "ui/font_size.h"
#include "ui/open_sheets.h"
#include "ui/palette.h"
#include "ui/selection_feedback.h"

namespace {

QPushButton* text_button(QWidget* parent, const QString& text) {
  auto* button = new QPushButton(text, parent);
  button->setFlat(true);
  button->setCursor(Qt::PointingHandCursor);
  return button;
}

// With "All" in binary mode the latest sky records follow the log's own entries, joined as they are.
void append_sky_records(std::string& out, const sky_records_t& records) {
  const auto add = [&out](const auto& record) {
    if (!record) return;
    if (!out.empty()) out += '\n';
    append_text(out, *record);
  };
  add(records.dop);
  add(records.sat);
  add(records.sig);
}

}  // namespace

gps_log_view::gps_log_view(connection_t& cnc, open_sheets_t& sheets, QWidget* parent)
    : QWidget(parent), cnc_(cnc), sheets_(sheets) {
  const QFont header_font = relative_font(font(), header_font_size);

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, padding);
  column->setSpacing(0);

  auto* header = new QHBoxLayout;
  header->setContentsMargins(padding, padding, padding, padding);
  header->setSpacing(2 * padding);
  title_ = new QLabel(tr("Log"), this);
  binary_ = new QLabel(tr("binary"), this);
  filter_ = text_button(this, QString());
  clear_ = text_button(this, tr("Clear"));
  close_ = text_button(this, tr("Close"));
  filter_->setToolTip(tr("Log every valid sentence or only GGA"));
  clear_->setToolTip(tr("Empty the log and restart the message counters"));
  close_->setToolTip(tr("Close the log (` or Ctrl+L)"));
  for (QLabel* label : {title_, binary_}) {
    label->setFont(header_font);
    header->addWidget(label);
  }
  header->addStretch();
  for (QPushButton* button : {filter_, clear_, close_}) {
    button->setFont(header_font);
    header->addWidget(button);
  }
  column->addLayout(header);

  text_ = new QPlainTextEdit(this);
  text_->setReadOnly(true);
  text_->setFrameShape(QFrame::NoFrame);
  text_->setLineWrapMode(QPlainTextEdit::NoWrap);
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  text_->document()->setDocumentMargin(padding);
  column->addWidget(text_, 1);

  QObject::connect(filter_, &QPushButton::clicked, this, [this] { toggle_filter(); });
  QObject::connect(clear_, &QPushButton::clicked, this, [this] {
    selection_changed();
    cnc_.clear_log();
  });
  QObject::connect(close_, &QPushButton::clicked, this, [this] {
    selection_changed();
    sheets_.toggle(sheet_id_t::log);
  });

  redraw_.watch(cnc_);
  refresh();
}

// A closed log dock costs nothing: it is brought up to date when it shows again.
void gps_log_view::refresh() {
  if (!isVisible()) return;
  const QPalette& theme = palette();
  set_text_colour(*title_, colour_of(colour_t::primary, theme));
  set_text_colour(*binary_, colour_of(colour_t::secondary, theme));
  binary_->setVisible(cnc_.binary());
  filter_->setText(cnc_.show_all ? tr("All") : tr("GGA"));
  set_text_colour(*filter_, colour_of(colour_t::secondary, theme));
  set_text_colour(*clear_, colour_of(cnc_.arr_rx->empty() ? colour_t::tertiary : colour_t::secondary, theme));
  set_text_colour(*close_, colour_of(colour_t::secondary, theme));

  const QFont mono = relative_fixed_font(font(), cnc_.binary() ? binary_font_size : text_font_size);
  if (text_->font() != mono) text_->setFont(mono);
  show_lines();
}

// Replaces the text only when the log changed; a reader scrolled back keeps his place, one at
// the end follows the new lines.
void gps_log_view::show_lines() {
  const auto& lines = *cnc_.arr_rx;
  joined_.clear();
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (i > 0) joined_.push_back('\n');
    joined_ += lines[i];
  }
  if (cnc_.binary() && cnc_.show_all) append_sky_records(joined_, cnc_.sky.records());
  if (joined_ == shown_) return;
  shown_.swap(joined_);
  QScrollBar* bar = text_->verticalScrollBar();
  const bool at_end = bar->value() == bar->maximum();
  const int kept = bar->value();
  text_->setPlainText(QString::fromStdString(shown_));
  bar->setValue(at_end ? bar->maximum() : kept);
}

void gps_log_view::toggle_filter() {
  selection_changed();
  cnc_.show_all = !cnc_.show_all;
}

void gps_log_view::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  refresh();
}

void gps_log_view::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) redraw_.mark();
  QWidget::changeEvent(event);
}
