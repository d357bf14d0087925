#include "ui/corrections_view.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>

#include "main_screen.h"
#include "ntrip/corrections.h"
#include "ntrip/corrections_settings.h"
#include "ui/corrections_window.h"
#include "ui/link_status_bar.h"

namespace {

// The window with a corrections source on fake caster links: [0] the stream's, [1] the table's.
struct corrections_view_test : ::testing::Test, main_screen_t {
  struct caster_t {
    fake_tcp_t* tcp;
    link_events_t* events;
  };
  void answer(caster_t& c, const std::string& text) {
    c.tcp->is_valid = true;
    c.events->link_up("127.0.0.1:2101");
    c.events->link_bytes({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    run();
  }

  std::vector<caster_t> casters;
  corrections_settings_t settings{store};
  corrections_t corrections{hub.hub, hub.queue, hub.console, [this](link_events_t& events) {
                              auto link = std::make_unique<fake_tcp_t>();
                              casters.push_back({link.get(), &events});
                              return link;
                            }};
  corrections_view_t& section = add_corrections(window, corrections, settings);
};

TEST_F(corrections_view_test, picks_a_mountpoint_from_the_table_and_streams_it) {
  window.action("Corrections (NTRIP)...")->trigger();
  run();
  EXPECT_TRUE(window.sheets().shown(sheet_id_t::settings));
  EXPECT_TRUE(section.isVisible());
  EXPECT_FALSE(window.status().rtk()->isVisible()) << "no source wanted yet";

  section.address_field()->setText("ntrip://127.0.0.1:2101");
  section.connect_button()->click();
  run();
  EXPECT_EQ(section.status_line()->text(),
            "The corrections source takes ntrip://[USER[:PASS]@]HOST[:PORT]/MOUNT with a mountpoint, not "
            "'ntrip://127.0.0.1:2101'");
  EXPECT_TRUE(casters[0].tcp->connects.empty());

  hub.receive("$GPGGA,120000.00,5333.0000,N,00959.4000,E,1,10,0.8,20.0,M,20.0,M,,");
  section.address_field()->setText("ntrip://me:pw@127.0.0.1:2101");
  section.table_button()->click();
  answer(casters[1],
         "SOURCETABLE 200 OK\r\n\r\nSTR;MUC;Munich;RTCM 3;;2;GPS;;DEU;48.1;11.5;0\r\n"
         "STR;HAM;Hamburg;RTCM 3;;2;GPS;;DEU;53.5;10.0;1\r\nENDSOURCETABLE\r\n");
  ASSERT_EQ(section.table()->topLevelItemCount(), 2);
  EXPECT_EQ(section.table()->topLevelItem(0)->text(0), "HAM");
  EXPECT_TRUE(section.details()->text().startsWith("2 mountpoints on 127.0.0.1:2101"));

  section.pick(0);
  EXPECT_EQ(section.address_field()->text(), "ntrip://me:pw@127.0.0.1:2101/HAM");
  EXPECT_TRUE(section.gga_box()->isChecked()) << "a network mountpoint wants the position";
  section.connect_button()->click();
  answer(casters[0], "ICY 200 OK\r\n");
  EXPECT_EQ(section.status_line()->text(), "corrections from 127.0.0.1:2101/HAM");
  EXPECT_EQ(settings.history->front().url(), "ntrip://me:pw@127.0.0.1:2101/HAM");
  EXPECT_TRUE(store.get(corrections_settings_t::key_send_gga).boolean);

  window.status().tick();
  EXPECT_TRUE(window.status().rtk()->isVisible());
  EXPECT_EQ(window.status().rtk()->text(), "no RTK  no corrections yet");
  section.disconnect_button()->click();
  run();
  EXPECT_FALSE(corrections.enabled());
  EXPECT_EQ(section.status_line()->text(), "offline");
}

}  // namespace
