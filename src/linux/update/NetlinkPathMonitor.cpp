#include "linux/update/NetlinkPathMonitor.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <set>
#include <thread>

namespace orlet::linux_update {

namespace {

class Fd {
 public:
  explicit Fd(int fd) : fd_(fd) {}
  ~Fd() {
    if (fd_ >= 0) ::close(fd_);
  }
  Fd(const Fd&) = delete;
  Fd& operator=(const Fd&) = delete;
  int get() const { return fd_; }

 private:
  int fd_;
};

bool requestRoutes(int fd) {
  struct {
    nlmsghdr header;
    rtmsg route;
  } request{};
  request.header.nlmsg_len = NLMSG_LENGTH(sizeof(rtmsg));
  request.header.nlmsg_type = RTM_GETROUTE;
  request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
  request.route.rtm_family = AF_UNSPEC;
  sockaddr_nl kernel{};
  kernel.nl_family = AF_NETLINK;
  return ::sendto(fd, &request, request.header.nlmsg_len, 0,
                  reinterpret_cast<const sockaddr*>(&kernel), sizeof kernel) >= 0;
}

// The interfaces of the default routes in one route message.
void collectDefault(const nlmsghdr* message, std::set<int>& interfaces) {
  const auto* route = static_cast<const rtmsg*>(NLMSG_DATA(message));
  if (route->rtm_dst_len != 0 || route->rtm_type != RTN_UNICAST) return;
  unsigned table = route->rtm_table;
  int interface = 0;
  int length = static_cast<int>(RTM_PAYLOAD(message));
  for (auto* a = RTM_RTA(route); RTA_OK(a, length); a = RTA_NEXT(a, length)) {
    if (a->rta_type == RTA_TABLE) std::memcpy(&table, RTA_DATA(a), sizeof table);
    if (a->rta_type == RTA_OIF) std::memcpy(&interface, RTA_DATA(a), sizeof interface);
    if (a->rta_type == RTA_MULTIPATH) {
      auto* hop = static_cast<const rtnexthop*>(RTA_DATA(a));
      int left = static_cast<int>(RTA_PAYLOAD(a));
      for (; RTNH_OK(hop, left); left -= hop->rtnh_len, hop = RTNH_NEXT(hop))
        interfaces.insert(hop->rtnh_ifindex);
    }
  }
  if (table == RT_TABLE_MAIN && interface > 0) interfaces.insert(interface);
}

std::optional<std::set<int>> defaultRouteInterfaces() {
  Fd fd(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
  if (fd.get() < 0 || !requestRoutes(fd.get())) return std::nullopt;
  std::set<int> interfaces;
  std::array<char, 32768> buffer{};
  for (;;) {
    const ssize_t got = ::recv(fd.get(), buffer.data(), buffer.size(), 0);
    if (got <= 0) return std::nullopt;
    auto length = static_cast<unsigned>(got);
    for (auto* m = reinterpret_cast<const nlmsghdr*>(buffer.data()); NLMSG_OK(m, length);
         m = NLMSG_NEXT(m, length)) {
      if (m->nlmsg_type == NLMSG_DONE) return interfaces;
      if (m->nlmsg_type == NLMSG_ERROR) return std::nullopt;
      if (m->nlmsg_type == RTM_NEWROUTE) collectDefault(m, interfaces);
    }
  }
}

bool isUpAndRunning(int index) {
  ifreq request{};
  if (!::if_indextoname(static_cast<unsigned>(index), request.ifr_name)) return false;
  Fd fd(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  if (fd.get() < 0 || ::ioctl(fd.get(), SIOCGIFFLAGS, &request) < 0) return false;
  const auto flags = request.ifr_flags;
  return (flags & IFF_UP) && (flags & IFF_RUNNING) && !(flags & IFF_LOOPBACK);
}

}  // namespace

std::optional<bool> hasDefaultRoute() {
  const auto interfaces = defaultRouteInterfaces();
  if (!interfaces) return std::nullopt;
  for (int index : *interfaces)
    if (isUpAndRunning(index)) return true;
  return false;
}

void NetlinkPathMonitor::start(std::function<void(PathStatus)> pathUpdateHandler) {
  // Detached: the thread owns the handler (and through it, whatever the handler holds) and
  // lets it go when the report is made.
  std::thread([answer = desktopAnswer_, cancelled = cancelled_,
               handler = std::move(pathUpdateHandler)] {
    const PathStatus status = answer                              ? *answer
                              : hasDefaultRoute().value_or(false) ? PathStatus::satisfied
                                                                  : PathStatus::unsatisfied;
    if (!cancelled->load()) handler(status);
  }).detach();
}

}  // namespace orlet::linux_update
