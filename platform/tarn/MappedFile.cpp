#include "platform/tarn/MappedFile.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "platform/quor/Reaper.h"

namespace Tarn {

FileDescriptor::~FileDescriptor() {
  if (fd_ >= 0) ::close(fd_);
}

Mapping::Mapping(int fd, std::size_t size, bool writable) : size_(size), writable_(writable) {
  base_ = ::mmap(nullptr, size, writable ? PROT_READ | PROT_WRITE : PROT_READ, MAP_SHARED, fd, 0);
  if (base_ == MAP_FAILED) {
    base_ = nullptr;
    throwSystemError("mmap", "fd " + std::to_string(fd));
  }
}

Mapping::~Mapping() {
  if (!base_) return;
  if (writable_)
    ::munmap(base_, size_);
  else
    Quor::reapMapping(base_, size_);
}

void throwSystemError(const char* call, const std::string& path) {
  throw std::system_error(errno, std::generic_category(), std::string(call) + " " + path);
}

}  // namespace Tarn
