#include "linux/update/QtHttpClient.h"

#include <QNetworkReply>
#include <QPointer>
#include <QSslConfiguration>
#include <QUrl>

namespace orlet::linux_update {

namespace {

// Why a reply was stopped by us, kept on the reply itself.
constexpr char stoppedBecause[] = "orletStoppedBecause";
constexpr char tooLong[] = "réponse plus longue que la taille annoncée";
constexpr char cancelled[] = "annulé";

std::string failure(QNetworkReply& reply) {
  const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
  if (reply.error() == QNetworkReply::NoError && (status < 200 || status > 299))
    return "réponse HTTP " + std::to_string(status);
  if (reply.error() == QNetworkReply::NoError) return {};
  if (status >= 400) return "réponse HTTP " + std::to_string(status);
  // Qt reports its own transfer timeout as a cancel: only ours carries a reason.
  if (reply.error() == QNetworkReply::OperationCanceledError) return "le serveur ne répond plus";
  return reply.errorString().toStdString();
}

void stop(QNetworkReply& reply, const char* why) {
  reply.setProperty(stoppedBecause, QString::fromUtf8(why));
  reply.abort();
}

}  // namespace

QtHttpClient::QtHttpClient(QList<QSslCertificate> extraAuthorities, int transferTimeoutMs)
    : extraAuthorities_(std::move(extraAuthorities)), transferTimeoutMs_(transferTimeoutMs) {}

Subscription QtHttpClient::get(const std::string& url, std::uint64_t maxBytes, Progress progress,
                               std::function<void(HttpResult)> done) {
  const QUrl target(QString::fromStdString(url), QUrl::StrictMode);
  QNetworkRequest request(target);
  request.setTransferTimeout(transferTimeoutMs_);
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
  const auto limit = static_cast<qint64>(std::min<std::uint64_t>(maxBytes, INT64_MAX));
  QObject::connect(reply, &QNetworkReply::metaDataChanged, reply, [reply, limit] {
    const QVariant announced = reply->header(QNetworkRequest::ContentLengthHeader);
    if (announced.isValid() && announced.toLongLong() > limit) stop(*reply, tooLong);
  });
  QObject::connect(reply, &QNetworkReply::downloadProgress, reply,
                   [reply, progress, limit](qint64 received, qint64 total) {
                     if (received > limit) return stop(*reply, tooLong);
                     if (progress)
                       progress(static_cast<std::uint64_t>(received),
                                static_cast<std::uint64_t>(std::max<qint64>(total, 0)));
                   });
  QObject::connect(reply, &QNetworkReply::finished, reply, [reply, done] {
    reply->deleteLater();
    const QString why = reply->property(stoppedBecause).toString();
    if (why == QString::fromUtf8(cancelled)) return;
    if (!why.isEmpty()) return done({{}, why.toStdString()});
    HttpResult result;
    result.error = failure(*reply);
    if (result.error.empty()) {
      const QByteArray body = reply->readAll();
      result.body.assign(body.constData(), static_cast<std::size_t>(body.size()));
    }
    done(std::move(result));
  });
  // A reply that has just finished may still have its completion queued: it is marked too.
  return Subscription([reply] {
    if (reply) stop(*reply, cancelled);
  });
}

}  // namespace orlet::linux_update
