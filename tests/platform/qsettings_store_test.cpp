#include "platform/qsettings_store.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QTemporaryDir>
#include <fstream>
#include <string>

namespace {

// What a first start restores.
const char* const defaults =
    "enable_bridge=0\nenable_ble=1\nble_name=Thingy:91 UART\nhost=127.0.0.1\nport=81\nhistory_host=6\nhistory_port=1\n"
    "enable_source=0\nsource=\n";

// Runs the probe in a process of its own and returns what it printed.
std::string probe(const QString& mode, const QString& file) {
  QProcess process;
  process.start(SETTINGS_PROBE, {mode, file});
  EXPECT_TRUE(process.waitForFinished(10000) && process.exitCode() == 0) << mode.toStdString();
  return process.readAllStandardOutput().toStdString();
}

TEST(qsettings_store, values_written_by_one_process_are_read_by_the_next) {
  QTemporaryDir dir;
  const auto file = dir.filePath("korvid.ini");
  EXPECT_EQ(probe("show", file), defaults);
  probe("save", file);
  EXPECT_EQ(probe("show", file),
            "enable_bridge=1\nenable_ble=0\nble_name=nrf52840dk UART\nhost=192.168.4.1\nport=10110\nhistory_host=6\n"
            "history_port=2\nenable_source=1\nsource=serial:///dev/serial/by-id/usb-u-blox_AG_GNSS_receiver-if00\n")
      << "a history of one address is still a list";
}

TEST(qsettings_store, a_file_that_cannot_hold_the_settings_is_named) {
  QTemporaryDir dir;
  std::ofstream(dir.filePath("plain").toStdString()) << "x";
  const struct {
    const char* path;
    const char* problem;
  } cases[] = {
      {"new.ini", ""},
      {"plain", ""},
      {"", "'*/' is a folder, not a settings file"},
      {"missing/k.ini", "cannot create '*/missing/k.ini': there is no folder '*/missing'"},
      {"plain/k.ini", "cannot create '*/plain/k.ini': there is no folder '*/plain'"},
  };
  for (const auto& c : cases) {
    const auto path = dir.path() + "/" + c.path;
    const auto expected = QString(c.problem).replace("*", dir.path()).toStdString();
    EXPECT_EQ(qsettings_store_t::ini_file_problem(path), expected) << c.path;
  }
}

TEST(qsettings_store, types_survive_the_file) {
  QTemporaryDir dir;
  const auto file = dir.filePath("types.ini");
  {
    qsettings_store_t store(file);
    store.set_bool("b", false);
    store.set_strings("one", {"only"});
    store.set_integers("ports", {81});
  }
  // A new process would read the file afresh; so does a store on a copy of it.
  const auto copy = dir.filePath("copy.ini");
  ASSERT_TRUE(QFile::copy(file, copy));
  qsettings_store_t store(copy);
  using kind = kv_value_t::kind_t;
  const kv_value_t b = store.get("b"), one = store.get("one"), ports = store.get("ports");
  EXPECT_EQ(std::tuple(b.kind, b.boolean, one.kind, one.list.size(), ports.list.size(), store.get("missing").kind),
            std::tuple(kind::boolean, false, kind::list, 1u, 1u, kind::absent));
  ASSERT_FALSE(one.list.empty() || ports.list.empty());
  EXPECT_EQ(std::pair(one.list[0].text, ports.list[0].kind), std::pair(std::string("only"), kind::integer));
}

TEST(qsettings_store, a_hand_corrupted_file_leaves_the_defaults) {
  QTemporaryDir dir;
  const auto file = dir.filePath("broken.ini");
  std::ofstream(file.toStdString()) << "[General]\nenable_ble=yes please\nenable_bridge=\"[true\"\n"
                                       "history_host=192.168.1.1, 10.0.0.1, 5\nhistory_port=\"[\\\"81\\\"]\"\n"
                                       "history_ble_name=[1,2]\n\x01\xff garbage ===\n";
  EXPECT_EQ(probe("show", file), defaults);
}

}  // namespace
