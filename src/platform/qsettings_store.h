#pragma once

#include <QSettings>
#include <QString>
#include <memory>
#include <string>

#include "link/kv_store.h"

// The user's settings through QSettings: organisation "Korvid", application "korvid" in the
// platform's per-user location, or an INI file of the user's choice. On Linux QSettings writes INI,
// which keeps no types (a bool reads back as the string "true", a one-element list as a string),
// so every value is written as JSON text and read back with its type; a value edited by hand into
// something else reads as text and is ignored by readers that expect another type.
class qsettings_store_t final : public kv_store_t {
public:
  qsettings_store_t();
  explicit qsettings_store_t(const QString& ini_file);

  void set_bool(std::string_view key, bool value) override;
  void set_strings(std::string_view key, const std::vector<std::string>& value) override;
  void set_integers(std::string_view key, const std::vector<std::int64_t>& value) override;
  kv_value_t get(std::string_view key) const override;
  void remove(std::string_view key) override;

  QString file_name() const { return settings_->fileName(); }

  // Why an INI file of the user's choice cannot hold the settings ("'x' is a folder", ...), or
  // empty when it can. QSettings itself would run on the defaults without a word.
  static std::string ini_file_problem(const QString& ini_file);

private:
  void write(std::string_view key, const QString& json);

  std::unique_ptr<QSettings> settings_;
};
