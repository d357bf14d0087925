#pragma once

#include <QAbstractButton>
#include <QString>

#include "core/colour.h"
#include "ui/icons.h"

// A pictogram on a round background of the system background colour, for the controls that lie
// over the map.
class round_button_t final : public QAbstractButton {
public:
  // flat: the pictogram alone, for a control inside a row of text.
  round_button_t(const QString& icon, int icon_size, colour_t colour, bool flat = false, QWidget* parent = nullptr);

  void set_icon_name(const QString& icon);
  const QString& icon_name() const { return icon_name_; }

  QSize sizeHint() const override;

protected:
  void paintEvent(QPaintEvent* event) override;

private:
  QString icon_name_;
  icon_cache_t icon_;
  int icon_size_;
  colour_t colour_;
  bool flat_;
};
