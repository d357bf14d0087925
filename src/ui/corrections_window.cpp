#include "ui/corrections_window.h"

#include <QKeySequence>
#include <QLineEdit>
#include <QMenu>

#include "ui/config_connection_view.h"
#include "ui/corrections_view.h"
#include "ui/link_status_bar.h"
#include "ui/main_window.h"

corrections_view_t& add_corrections(main_window_t& window, corrections_t& corrections,
                                    corrections_settings_t& settings) {
  auto* view = new corrections_view_t(corrections, settings);
  window.settings_view().add_section(view);
  window.status().show_corrections(corrections);
  window.connection_menu().addAction(QObject::tr("Co&rrections (NTRIP)..."),
                                     QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_K), &window, [&window, view] {
                                       window.sheets().show(sheet_id_t::settings, true);
                                       view->address_field()->setFocus();
                                     });
  return *view;
}
