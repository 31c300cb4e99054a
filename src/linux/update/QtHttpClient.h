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
  // A transfer that receives nothing for `transferTimeoutMs` fails.
  explicit QtHttpClient(QList<QSslCertificate> extraAuthorities = {},
                        int transferTimeoutMs = 30000);

  Subscription get(const std::string& url, std::uint64_t maxBytes, Progress progress,
                   std::function<void(HttpResult)> done) override;

 private:
  QNetworkAccessManager manager_;
  QList<QSslCertificate> extraAuthorities_;
  int transferTimeoutMs_;
};

}  // namespace orlet::linux_update
