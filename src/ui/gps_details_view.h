#pragma once

#include <QPointer>
#include <QWidget>
#include <memory>

class QHBoxLayout;
class QVBoxLayout;
class connection_t;
class gps_heading_t;
class qt_compass_t;
class gps_sat_list_view;
class gps_sky_view;

// The satellites panel: the sky plot and the satellite list. In a panel narrower than tall the sky
// plot stands above the list; in a wide one beside it. The arrangement follows the panel (the dock
// it stands in, else its window) as it is resized; each time the sky plot is built it gets a new
// heading source, which this view owns.
class gps_details_view final : public QWidget {
public:
  static constexpr int spacing = 16;  // points between the stacked parts

  explicit gps_details_view(connection_t& gps, QWidget* parent = nullptr);
  ~gps_details_view() override;

  // Whether the parts are arranged for a portrait panel.
  bool portrait() const { return portrait_; }
  gps_sky_view& sky_view() const { return *sky_; }
  gps_sat_list_view& sat_list() const { return *list_; }
  // The heading source of the current sky plot; it is replaced whenever the sky plot is rebuilt.
  gps_heading_t& compass() const { return *compass_; }

protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  QWidget* bounds() const;
  bool bounds_are_portrait() const;
  void follow_bounds();
  void arrange();

  connection_t& gps_;
  QVBoxLayout* column_;
  QHBoxLayout* row_;
  gps_sat_list_view* list_;
  std::unique_ptr<gps_heading_t> compass_;
  qt_compass_t* device_compass_ = nullptr;  // the platform's compass, where there is one
  gps_sky_view* sky_ = nullptr;
  bool portrait_ = true;
  bool arranged_ = false;
  QPointer<QWidget> watched_;
};
