#include "linux/capture/SharedMemory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace orlet::linux_capture {

bool SharedMemory::usable(const XcbConnection& connection, std::string& why) {
  why = "le serveur X n'a pas MIT-SHM 1.2";
  if (!connection.hasExtension(&xcb_shm_id)) return false;
  Reply<xcb_shm_query_version_reply_t> version(xcb_shm_query_version_reply(
      connection.get(), xcb_shm_query_version(connection.get()), nullptr));
  // Passing a file descriptor (AttachFd) came with 1.2.
  if (!version || (version->major_version == 1 && version->minor_version < 2)) return false;
  std::string error;
  const auto probe = create(connection, static_cast<std::size_t>(sysconf(_SC_PAGESIZE)), error);
  if (probe) return true;
  why = "MIT-SHM ne peut pas servir sur cette connexion (" + error + ")";
  return false;
}

std::optional<xcb_shm_seg_t> SharedMemory::attachNew(const XcbConnection& connection,
                                                     std::size_t size, void*& address,
                                                     std::string& error) {
  const int fd = memfd_create("orlet-capture", MFD_CLOEXEC);
  if (fd < 0) {
    error = std::string("memfd_create: ") + std::strerror(errno);
    return std::nullopt;
  }
  address = MAP_FAILED;
  if (ftruncate(fd, static_cast<off_t>(size)) == 0) {
    address = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  }
  if (address == MAP_FAILED) {
    error = std::string("shared memory: ") + std::strerror(errno);
    close(fd);
    return std::nullopt;
  }
  const xcb_shm_seg_t segment = xcb_generate_id(connection.get());
  // XCB sends the descriptor with the request and closes our copy.
  if (auto failure = connection.check(xcb_shm_attach_fd_checked(connection.get(), segment, fd, 0),
                                      "MIT-SHM AttachFd")) {
    error = *failure;
    munmap(address, size);
    return std::nullopt;
  }
  return segment;
}

std::unique_ptr<SharedMemory> SharedMemory::create(const XcbConnection& connection,
                                                   std::size_t size, std::string& error) {
  void* address = nullptr;
  const auto segment = attachNew(connection, size, address, error);
  if (!segment) return nullptr;
  std::shared_ptr<void> mapping(address, [size](void* p) { munmap(p, size); });
  return std::unique_ptr<SharedMemory>(
      new SharedMemory(&connection, *segment, std::move(mapping), size));
}

SharedMemory::~SharedMemory() {
  if (connection_ && !connection_->hasError()) xcb_shm_detach(connection_->get(), segment_);
}

}  // namespace orlet::linux_capture
