#pragma once

#include <QCache>
#include <QElapsedTimer>
#include <QHash>
#include <QImage>
#include <QNetworkAccessManager>
#include <QObject>
#include <QUrl>
#include <functional>
#include <vector>

// One tile of one layer at one zoom level.
struct tile_key_t {
  int layer = 0;
  int z = 0;
  int x = 0;
  int y = 0;
  bool operator==(const tile_key_t&) const = default;
};
size_t qHash(const tile_key_t& k, size_t seed = 0);

// Fetches tiles over HTTP into an on-disk cache and keeps the decoded ones in memory. Only the
// tiles the last paint asked for are fetched, a few at a time; a tile that failed is not asked
// for again before retry_delay, so an unreachable server costs nothing while the map repaints.
class tile_loader_t final : public QObject {
public:
  static constexpr int max_in_flight = 4;          // requests at once, as tile servers ask
  static constexpr qint64 retry_delay_ms = 30000;  // before a failed tile is tried again
  static constexpr int memory_kib = 128 * 1024;    // decoded tiles kept, by their size in KiB
  static constexpr int max_tile_side = 1024;       // pixels; larger or non-square images are refused
  static constexpr qint64 disk_cache_bytes = 256LL * 1024 * 1024;

  // cache_dir: the on-disk cache; ready: called on the main thread when a tile has arrived.
  tile_loader_t(const QString& cache_dir, std::function<void()> ready, QObject* parent = nullptr);

  // A decoded tile, or null.
  const QImage* find(const tile_key_t& key) const { return memory_.object(key); }

  // One paint's wishes: begin, want every missing tile (most important first), end. Queued tiles
  // that the paint no longer wants are dropped.
  void begin_wanted();
  void want(const tile_key_t& key, const QUrl& url);
  void end_wanted();

  int in_flight() const { return in_flight_; }
  int failures() const { return failures_; }

private:
  struct wish_t {
    tile_key_t key;
    QUrl url;
  };
  void start_next();
  void finished(const tile_key_t& key, class QNetworkReply* reply);

  QNetworkAccessManager network_;
  std::function<void()> ready_;
  QCache<tile_key_t, QImage> memory_{memory_kib};
  QHash<tile_key_t, qint64> failed_at_;  // ms on clock_
  QHash<tile_key_t, bool> loading_;
  std::vector<wish_t> queue_;
  std::vector<wish_t> next_queue_;
  QElapsedTimer clock_;
  int in_flight_ = 0;
  int failures_ = 0;
};
