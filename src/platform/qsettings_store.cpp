#include "platform/qsettings_store.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>
#include <cmath>

namespace {

QString key_of(std::string_view key) {
  return QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
}

kv_value_t text_value(const QString& text) {
  kv_value_t v;
  v.kind = kv_value_t::kind_t::text;
  v.text = text.toStdString();
  return v;
}

kv_value_t from_json(const QJsonValue& json) {
  kv_value_t v;
  switch (json.type()) {
    case QJsonValue::Bool:
      v.kind = kv_value_t::kind_t::boolean;
      v.boolean = json.toBool();
      return v;
    case QJsonValue::Double: {
      const double d = json.toDouble();
      constexpr double int64_bound = 9.2e18;
      if (std::nearbyint(d) != d || std::fabs(d) > int64_bound) return text_value(QString::number(d));
      v.kind = kv_value_t::kind_t::integer;
      v.integer = static_cast<std::int64_t>(d);
      return v;
    }
    case QJsonValue::String:
      return text_value(json.toString());
    case QJsonValue::Array:
      v.kind = kv_value_t::kind_t::list;
      for (const auto element : json.toArray()) v.list.push_back(from_json(element));
      return v;
    default:
      return text_value(QJsonDocument(QJsonArray{json}).toJson(QJsonDocument::Compact));
  }
}

}  // namespace

qsettings_store_t::qsettings_store_t() : settings_(std::make_unique<QSettings>("Korvid", "korvid")) {}

qsettings_store_t::qsettings_store_t(const QString& ini_file)
    : settings_(std::make_unique<QSettings>(ini_file, QSettings::IniFormat)) {}

std::string qsettings_store_t::ini_file_problem(const QString& ini_file) {
  const QFileInfo file(ini_file);
  const auto quoted = [](const QString& path) { return "'" + path.toStdString() + "'"; };
  if (file.isDir()) return quoted(ini_file) + " is a folder, not a settings file";
  if (file.exists()) {
    if (!file.isReadable() || !file.isWritable()) return "cannot read and write " + quoted(ini_file);
    return {};
  }
  const QFileInfo folder(file.absolutePath());
  if (!folder.isDir()) return "cannot create " + quoted(ini_file) + ": there is no folder " + quoted(folder.filePath());
  if (!folder.isWritable()) return "cannot create " + quoted(ini_file) + ": the folder is not writable";
  return {};
}

void qsettings_store_t::write(std::string_view key, const QString& json) {
  settings_->setValue(key_of(key), json);
  settings_->sync();
}

void qsettings_store_t::set_bool(std::string_view key, bool value) {
  write(key, value ? "true" : "false");
}

void qsettings_store_t::set_strings(std::string_view key, const std::vector<std::string>& value) {
  QJsonArray array;
  for (const auto& s : value) array.append(QString::fromStdString(s));
  write(key, QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact)));
}

void qsettings_store_t::set_integers(std::string_view key, const std::vector<std::int64_t>& value) {
  QJsonArray array;
  for (const auto i : value) array.append(static_cast<qint64>(i));
  write(key, QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact)));
}

kv_value_t qsettings_store_t::get(std::string_view key) const {
  const auto stored = settings_->value(key_of(key));
  if (!stored.isValid()) return {};
  // An unquoted value with commas, typed by hand, reads as a string list: not this store's
  // encoding, so it reads as its text, which readers of lists ignore.
  const auto text = stored.typeId() == QMetaType::QStringList ? stored.toStringList().join(", ") : stored.toString();
  // Wrapped in an array, so that a bare true or 81 parses too.
  QJsonParseError error{};
  const auto document = QJsonDocument::fromJson(("[" + text + "]").toUtf8(), &error);
  if (error.error != QJsonParseError::NoError || !document.isArray() || document.array().size() != 1)
    return text_value(text);
  return from_json(document.array().at(0));
}

void qsettings_store_t::remove(std::string_view key) {
  settings_->remove(key_of(key));
  settings_->sync();
}
