#pragma once
// A fixed-size array of plain values (trivially copied and destroyed, all zero bytes a valid value)
// that starts as all zero bytes without writing them: a large
// one is an anonymous mapping of its own, whose pages the kernel provides on first touch, so memory
// is spent only on the parts that are ever written. For per-slot state of tables of millions of slots.
// A large one goes back to the kernel through the reaper (Quor::reapMapping), a few megabytes per
// slice, so that dropping the state of a table of millions of slots never holds up the event loop.
#include <sys/mman.h>

#include <cstdlib>
#include <new>
#include <type_traits>
#include <utility>

#include "platform/quor/Reaper.h"

namespace Tarn {

template <class T>
class ZeroedArray {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);
  // Below this, calloc (which may write the zeros): the array is a few pages at most.
  static constexpr std::size_t mappedFrom = 64 * 1024;

 public:
  ZeroedArray() = default;
  explicit ZeroedArray(std::size_t size) : size_(size) {
    if (size == 0) return;
    void* p = bytes() >= mappedFrom ? ::mmap(nullptr, bytes(), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)
                                    : std::calloc(size, sizeof(T));
    if (p == nullptr || p == MAP_FAILED) throw std::bad_alloc();
    data_ = static_cast<T*>(p);
  }
  ZeroedArray(ZeroedArray&& o) noexcept : data_(std::exchange(o.data_, nullptr)), size_(std::exchange(o.size_, 0)) {}
  ZeroedArray& operator=(ZeroedArray o) noexcept {
    std::swap(data_, o.data_);
    std::swap(size_, o.size_);
    return *this;
  }
  ~ZeroedArray() {
    if (!data_) return;
    if (bytes() >= mappedFrom)
      Quor::reapMapping(data_, bytes());
    else
      std::free(data_);
  }

  std::size_t size() const noexcept { return size_; }
  T& operator[](std::size_t i) noexcept { return data_[i]; }
  const T& operator[](std::size_t i) const noexcept { return data_[i]; }

 private:
  std::size_t bytes() const noexcept { return size_ * sizeof(T); }
  T* data_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace Tarn
