#include "linux/update/QtHttpClient.h"

#include <QNetworkReply>
#include <QPointer>
#include <QSslConfiguration>
#include <QUrl>

namespace orlet::linux_update {

namespace {

constexpr int transferTimeoutMs = 30000;
constexpr char tooLong[] = "orletTooLong";

std::string failure(QNetworkReply& reply) {
  const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
  if (reply.error() == QNetworkReply::NoError && (status < 200 || status > 299))
    return "réponse HTTP " + std::to_string(status);
  if (reply.error() == QNetworkReply::NoError) return {};
  if (status >= 400) return "réponse HTTP " + std::to_string(status);
  return reply.errorString().toStdString();
}

}  // namespace

QtHttpClient::QtHttpClient(QList<QSslCertificate> extraAuthorities)
    : extraAuthorities_(std::move(extraAuthorities)) {}

Subscription QtHttpClient::get(const std::string& url, Progress progress,
                               std::function<void(HttpResult)> done) {
  const QUrl target(QString::fromStdString(url), QUrl::StrictMode);
  QNetworkRequest request(target);
  request.setTransferTimeout(transferTimeoutMs);
  // Redirects may only stay on https.
  request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                       QNetworkRequest::NoLessSafeRedirectPolicy);
  if (!extraAuthorities_.isEmpty()) {
    auto ssl = QSslConfiguration::defaultConfiguration();
    ssl.addCaCertificates(extraAuthorities_);
    request.setSslConfiguration(ssl);
  }
  if (!target.isValid() || target.scheme() != QLatin1String("https")) {
    QMetaObject::invokeMethod(
        &manager_,
        [done] {
          done({{}, "adresse non https refusée"});
        },
        Qt::QueuedConnection);
    return {};
  }
  QPointer<QNetworkReply> reply = manager_.get(request);
  QObject::connect(reply, &QNetworkReply::downloadProgress, reply,
                   [reply, progress](qint64 received, qint64 total) {
                     if (received > maxBytes) {
                       reply->setProperty(tooLong, true);
                       return reply->abort();
                     }
                     if (progress)
                       progress(static_cast<std::uint64_t>(received),
                                static_cast<std::uint64_t>(std::max<qint64>(total, 0)));
                   });
  QObject::connect(reply, &QNetworkReply::finished, reply, [reply, done] {
    reply->deleteLater();
    HttpResult result;
    if (reply->property(tooLong).toBool()) return done({{}, "réponse trop longue"});
    if (reply->error() == QNetworkReply::OperationCanceledError) return;
    result.error = failure(*reply);
    if (result.error.empty()) {
      const QByteArray body = reply->readAll();
      result.body.assign(body.constData(), static_cast<std::size_t>(body.size()));
    }
    done(std::move(result));
  });
  return Subscription([reply] {
    if (reply && reply->isRunning()) reply->abort();
  });
}

}  // namespace orlet::linux_update
