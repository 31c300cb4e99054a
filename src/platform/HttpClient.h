#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "foundation/Subscription.h"

namespace orlet {

struct HttpResult {
  std::string body;
  std::string error;  // empty on success (a 2xx answer received whole)
};

// HTTPS requests that never block the main thread.
class HttpClient {
 public:
  virtual ~HttpClient() = default;

  using Progress = std::function<void(std::uint64_t received, std::uint64_t total)>;

  // Fetches `url`, at most `maxBytes` of it: an answer that announces or sends more is stopped
  // there and fails. Progress (total 0 when unknown) and the single completion are called on the
  // main thread; a server that stops answering fails within a bounded time; dropping or
  // cancelling the subscription aborts the request without completion.
  virtual Subscription get(const std::string& url, std::uint64_t maxBytes, Progress progress,
                           std::function<void(HttpResult)> done) = 0;
};

}  // namespace orlet
