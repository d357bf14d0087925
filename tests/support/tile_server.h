#pragma once

#include <QBuffer>
#include <QHostAddress>
#include <QImage>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <functional>

// An HTTP tile server on 127.0.0.1 for widget tests: answers GET /Z/X/Y.png with a PNG of one
// colour, tile_colour(z, x, y), 256 x 256 unless the test sets another size, or 404 while it is
// "offline". Runs on the test's event loop.
class tile_server_t {
public:
  static QColor tile_colour(int z, int x, int y) { return QColor((x * 37) % 256, (y * 59) % 256, (z * 23) % 256); }

  tile_server_t() {
    server_.listen(QHostAddress::LocalHost, 0);
    QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] {
      while (QTcpSocket* s = server_.nextPendingConnection()) {
        QObject::connect(s, &QTcpSocket::readyRead, s, [this, s] { answer(s); });
        QObject::connect(s, &QTcpSocket::disconnected, s, &QObject::deleteLater);
      }
    });
  }

  QString url_template() const { return QString("http://127.0.0.1:%1/{z}/{x}/{y}.png").arg(server_.serverPort()); }

  bool offline = false;
  QSize tile_size{256, 256};
  int requests = 0;

private:
  void answer(QTcpSocket* s) {
    // A request may arrive in parts, or several in one read: each ends with an empty line.
    QByteArray buffer = s->property("request").toByteArray() + s->readAll();
    for (int end; (end = buffer.indexOf("\r\n\r\n")) >= 0; buffer.remove(0, end + 4)) {
      ++requests;
      static const QRegularExpression path("^GET /(\\d+)/(\\d+)/(\\d+)\\.png");
      const auto m = path.match(QString::fromLatin1(buffer.left(end)));
      if (offline || !m.hasMatch()) {
        s->write("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n");
        continue;
      }
      QImage tile(tile_size, QImage::Format_RGB32);
      tile.fill(tile_colour(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt()));
      QByteArray png;
      QBuffer out(&png);
      out.open(QIODevice::WriteOnly);
      tile.save(&out, "PNG");
      s->write("HTTP/1.1 200 OK\r\nContent-Type: image/png\r\nCache-Control: max-age=60\r\nContent-Length: " +
               QByteArray::number(png.size()) + "\r\n\r\n" + png);
    }
    s->setProperty("request", buffer);
  }

  QTcpServer server_;
};
