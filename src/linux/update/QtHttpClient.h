#pragma once

#include <QList>
#include <QNetworkAccessManager>
#include <QSslCertificate>

#include "platform/HttpClient.h"

namespace orlet::linux_update {

// HTTPS through Qt's network access manager, on the main thread's event loop. Plain http is
// refused. `extraAuthorities` are trusted beside the system's (empty in the product).
class QtHttpClient final : public HttpClient {
 public:
  explicit QtHttpClient(QList<QSslCertificate> extraAuthorities = {});

  Subscription get(const std::string& url, Progress progress,
                   std::function<void(HttpResult)> done) override;

  // Answers longer than this are aborted: nothing ORLET fetches is that large.
  static constexpr qint64 maxBytes = qint64{1} << 31;

 private:
  QNetworkAccessManager manager_;
  QList<QSslCertificate> extraAuthorities_;
};

}  // namespace orlet::linux_update
