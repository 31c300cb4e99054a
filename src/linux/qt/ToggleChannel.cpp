#include "linux/qt/ToggleChannel.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QLocalSocket>
#include <cstdlib>

namespace orlet::linux_qt {
namespace {

// Generous: the running ORLET answers from its main thread, which a loaded machine may keep busy.
constexpr int answerTimeoutMs = 5000;
constexpr char requestLine[] = "toggle\n";
constexpr char answerLine[] = "ok\n";

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

// ":0.0" and "wayland-1" as parts of a file name.
std::string sessionName() {
  auto name = environment("WAYLAND_DISPLAY");
  if (name.empty()) name = environment("DISPLAY");
  for (auto& c : name) {
    if (c == '/' || c == ':') c = '_';
  }
  return name.empty() ? "default" : name;
}

// Without a runtime directory, one of our own under /tmp, which no other user may enter.
std::string runtimeDirectory() {
  auto dir = environment("XDG_RUNTIME_DIR");
  if (!dir.empty()) return dir;
  dir = "/tmp/orlet-" + std::to_string(::getuid());
  ::mkdir(dir.c_str(), 0700);
  return dir;
}

}  // namespace

std::string ToggleChannel::socketPath() {
  return runtimeDirectory() + "/orlet-" + sessionName() + ".socket";
}

std::unique_ptr<ToggleChannel> ToggleChannel::listen(std::function<void()> toggle,
                                                     std::string& error) {
  std::unique_ptr<ToggleChannel> channel(new ToggleChannel(std::move(toggle)));
  const auto path = QString::fromStdString(socketPath());
  channel->server_.setSocketOptions(QLocalServer::UserAccessOption);
  QLocalServer::removeServer(path);
  if (!channel->server_.listen(path)) {
    error = channel->server_.errorString().toStdString();
    return nullptr;
  }
  QObject::connect(&channel->server_, &QLocalServer::newConnection,
                   [raw = channel.get()] { raw->accept(); });
  return channel;
}

void ToggleChannel::accept() {
  while (auto* socket = server_.nextPendingConnection()) {
    QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    QObject::connect(socket, &QLocalSocket::readyRead, socket, [this, socket] {
      if (!socket->canReadLine()) return;
      if (socket->readLine() == requestLine) {
        toggle_();
        socket->write(answerLine);
        socket->flush();
      }
      socket->disconnectFromServer();
    });
  }
}

bool ToggleChannel::request(std::string& error) {
  QLocalSocket socket;
  socket.connectToServer(QString::fromStdString(socketPath()));
  if (!socket.waitForConnected(answerTimeoutMs)) {
    error = "ORLET n'est pas lancé dans cette session";
    return false;
  }
  socket.write(requestLine);
  if (!socket.waitForBytesWritten(answerTimeoutMs) || !socket.waitForReadyRead(answerTimeoutMs) ||
      socket.readLine() != answerLine) {
    error = "ORLET n'a pas répondu";
    return false;
  }
  return true;
}

}  // namespace orlet::linux_qt
