// Fetching a web page (or any http/https address) for the text tab import: one request on
// the event loop, with a timeout, progress reports, redirects followed, and a plain message
// when the page cannot be had.
#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <functional>

class QNetworkAccessManager;
class QNetworkReply;

namespace plectaro {

class WebFetch : public QObject {
  Q_OBJECT
 public:
  explicit WebFetch(QObject* parent = nullptr);
  ~WebFetch() override;

  // Starts a download; a running one is abandoned. Addresses other than http and https fail
  // at once. The page must arrive within timeoutMs, and may be at most maxBytes long.
  void start(const QString& address, int timeoutMs = 20000, qint64 maxBytes = 16 << 20);
  void abort();
  bool running() const { return reply_ != nullptr; }

 signals:
  void progress(qint64 received, qint64 total);  // total is -1 while unknown
  void finished(const QByteArray& bytes);
  void failed(const QString& message);

 private:
  QNetworkAccessManager* net_;
  QNetworkReply* reply_ = nullptr;
  qint64 maxBytes_ = 0;
  void done();
};

// Blocks on a local event loop until the page is in: for the command line and tests.
// Returns false with the message in `error`.
bool FetchWebPage(const QString& address, QByteArray& bytes, QString& error, int timeoutMs = 20000);

}  // namespace plectaro
