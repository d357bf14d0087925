#include "platform/tile_loader.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QHostAddress>
#include <QImageReader>
#include <QNetworkDiskCache>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <algorithm>

size_t qHash(const tile_key_t& k, size_t seed) {
  return ::qHash((static_cast<quint64>(k.layer) << 56) ^ (static_cast<quint64>(k.z) << 48) ^
                     (static_cast<quint64>(static_cast<quint32>(k.x)) << 24) ^ static_cast<quint32>(k.y),
                 seed);
}

namespace {

// The system's proxy settings, except that a tile server on this machine is reached directly, as
// browsers do.
class tile_proxy_factory_t final : public QNetworkProxyFactory {
public:
  QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery& query) override {
    const QString host = query.peerHostName();
    if (host == "localhost" || QHostAddress(host).isLoopback()) return {QNetworkProxy::NoProxy};
    return systemProxyForQuery(query);
  }
};

// A tile is a square image of at most max_tile_side pixels a side. What a server sends is decoded
// only when its header says so (where the format tells the size up front), and checked again
// after: an odd or huge image would otherwise take the memory of hundreds of tiles.
bool decode_tile(QByteArray data, QImage& image) {
  auto fits = [](QSize size) {
    return size.width() == size.height() && size.width() > 0 && size.width() <= tile_loader_t::max_tile_side;
  };
  QBuffer buffer(&data);
  QImageReader reader(&buffer);
  if (const QSize announced = reader.size(); announced.isValid() && !fits(announced)) return false;
  return reader.read(&image) && fits(image.size());
}

}  // namespace

tile_loader_t::tile_loader_t(const QString& cache_dir, std::function<void()> ready, QObject* parent)
    : QObject(parent), ready_(std::move(ready)) {
  auto* cache = new QNetworkDiskCache(&network_);
  cache->setCacheDirectory(cache_dir);
  cache->setMaximumCacheSize(disk_cache_bytes);
  network_.setCache(cache);
  network_.setProxyFactory(new tile_proxy_factory_t);
  clock_.start();
}

void tile_loader_t::begin_wanted() { next_queue_.clear(); }

void tile_loader_t::want(const tile_key_t& key, const QUrl& url) {
  if (memory_.contains(key) || loading_.contains(key)) return;
  const auto failed = failed_at_.constFind(key);
  if (failed != failed_at_.cend() && clock_.elapsed() - *failed < retry_delay_ms) return;
  next_queue_.push_back({key, url});
}

void tile_loader_t::end_wanted() {
  queue_.swap(next_queue_);
  next_queue_.clear();
  start_next();
}

void tile_loader_t::start_next() {
  // The queue is in order of importance; take from its front.
  std::size_t taken = 0;
  while (in_flight_ < max_in_flight && taken < queue_.size()) {
    const wish_t wish = queue_[taken++];
    if (memory_.contains(wish.key) || loading_.contains(wish.key)) continue;
    QNetworkRequest request(wish.url);
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QStringLiteral("Korvid/%1 (desktop GNSS receiver monitor)").arg(QCoreApplication::applicationVersion()));
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::PreferCache);
    request.setTransferTimeout(15000);
    QNetworkReply* reply = network_.get(request);
    loading_.insert(wish.key, true);
    ++in_flight_;
    const tile_key_t key = wish.key;
    QObject::connect(reply, &QNetworkReply::finished, this, [this, key, reply] { finished(key, reply); });
  }
  queue_.erase(queue_.begin(), queue_.begin() + static_cast<std::ptrdiff_t>(taken));
}

void tile_loader_t::finished(const tile_key_t& key, QNetworkReply* reply) {
  reply->deleteLater();
  --in_flight_;
  loading_.remove(key);
  auto image = std::make_unique<QImage>();
  if (reply->error() == QNetworkReply::NoError && decode_tile(reply->readAll(), *image)) {
    failed_at_.remove(key);
    const auto kib = std::max<qsizetype>(1, image->sizeInBytes() / 1024);
    memory_.insert(key, image.release(), kib);
    if (ready_) ready_();
  } else {
    failed_at_.insert(key, clock_.elapsed());
    ++failures_;
  }
  start_next();
}
