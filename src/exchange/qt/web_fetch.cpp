#include "exchange/qt/web_fetch.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>

namespace plectaro {

WebFetch::WebFetch(QObject* parent) : QObject(parent), net_(new QNetworkAccessManager(this)) {}

WebFetch::~WebFetch() { abort(); }

void WebFetch::abort() {
  if (!reply_) return;
  QNetworkReply* r = reply_;
  reply_ = nullptr;
  r->disconnect(this);
  r->abort();
  r->deleteLater();
}

void WebFetch::start(const QString& address, int timeoutMs, qint64 maxBytes) {
  abort();
  // A bare "example.org/tab.txt" is what people paste from the address bar.
  QUrl url = QUrl::fromUserInput(address.trimmed());
  const QString scheme = url.scheme().toLower();
  if (!url.isValid() || (scheme != "http" && scheme != "https")) {
    emit failed(QString("\"%1\" is not a web address (http:// or https://)").arg(address));
    return;
  }
  maxBytes_ = maxBytes;
  QNetworkRequest req(url);
  req.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
  req.setTransferTimeout(timeoutMs);
  req.setHeader(QNetworkRequest::UserAgentHeader, "Plectaro");
  reply_ = net_->get(req);
  connect(reply_, &QNetworkReply::downloadProgress, this, [this](qint64 got, qint64 total) {
    if (got > maxBytes_) {
      abort();
      emit failed("the page is too large to be tab");
      return;
    }
    emit progress(got, total);
  });
  connect(reply_, &QNetworkReply::finished, this, &WebFetch::done);
}

void WebFetch::done() {
  QNetworkReply* r = reply_;
  if (!r) return;
  reply_ = nullptr;
  r->deleteLater();
  const int status = r->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
  if (r->error() == QNetworkReply::OperationCanceledError) {
    emit failed(QString("%1 did not answer in time").arg(r->url().host()));
  } else if (r->error() != QNetworkReply::NoError) {
    emit failed(status >= 400 ? QString("the server answered %1 %2")
                                    .arg(status)
                                    .arg(r->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString())
                              : r->errorString());
  } else {
    emit finished(r->readAll());
  }
}

bool FetchWebPage(const QString& address, QByteArray& bytes, QString& error, int timeoutMs) {
  WebFetch fetch;
  QEventLoop loop;
  bool ok = false;
  QObject::connect(&fetch, &WebFetch::finished, &loop, [&](const QByteArray& b) {
    bytes = b;
    ok = true;
    loop.quit();
  });
  QObject::connect(&fetch, &WebFetch::failed, &loop, [&](const QString& m) {
    error = m;
    loop.quit();
  });
  fetch.start(address, timeoutMs);
  if (fetch.running()) loop.exec();
  return ok;
}

}  // namespace plectaro
