#pragma once

#include <QWidget>
#include <functional>

// A modal panel over the main window: the window dims behind it, and Escape or a click beside
// the panel closes it through the same closing action as its own buttons.
class sheet_t final : public QWidget {
public:
  // content: the panel's widget (the sheet takes it); closing: sets the model's flag back.
  sheet_t(QWidget* content, std::function<void()> closing, QWidget* parent);

  QWidget* content() const { return content_; }
  // Follows the model's flag: shown over everything while true.
  void set_shown(bool shown);

protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void place();

  QWidget* panel_;
  QWidget* content_;
  std::function<void()> closing_;
};
