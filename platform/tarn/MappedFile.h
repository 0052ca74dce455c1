#pragma once
// Owners of a file descriptor and of a shared mapping, closed and unmapped when they go.
#include <cstddef>
#include <string>
#include <utility>

namespace Tarn {

class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int fd) : fd_(fd) {}
  FileDescriptor(FileDescriptor&& o) noexcept : fd_(std::exchange(o.fd_, -1)) {}
  FileDescriptor& operator=(FileDescriptor o) noexcept {
    std::swap(fd_, o.fd_);
    return *this;
  }
  ~FileDescriptor();
  int get() const noexcept { return fd_; }
  explicit operator bool() const noexcept { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

class Mapping {
 public:
  Mapping() = default;
  // Maps `size` bytes of `fd` shared, read-only or read-write; raises std::system_error on failure.
  Mapping(int fd, std::size_t size, bool writable);
  Mapping(Mapping&& o) noexcept
      : base_(std::exchange(o.base_, nullptr)), size_(std::exchange(o.size_, 0)), writable_(o.writable_) {}
  Mapping& operator=(Mapping o) noexcept {
    std::swap(base_, o.base_);
    std::swap(size_, o.size_);
    std::swap(writable_, o.writable_);
    return *this;
  }
  // A reader's mapping of a large table goes back in pieces, through the reaper (Quor::reapMapping):
  // unmapping a table of a million routes whose pages have all been read takes milliseconds. A
  // writer's goes at once.
  ~Mapping();
  std::byte* base() const noexcept { return static_cast<std::byte*>(base_); }
  std::size_t size() const noexcept { return size_; }

 private:
  void* base_ = nullptr;
  std::size_t size_ = 0;
  bool writable_ = false;
};

// Raises std::system_error for the errno of a failed call on `path`.
[[noreturn]] void throwSystemError(const char* call, const std::string& path);

}  // namespace Tarn
