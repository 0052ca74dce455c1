#pragma once
// The loop and data contexts of the iterated tables, recycled instead of taken from the heap each
// time: a walk makes and frees one of each for every varbind it answers, and the heap was a fifth of
// snmpd's time in a walk. A few freed blocks per type are kept for the next request; the agent runs
// one request at a time, so few are ever out at once.
#include <cstddef>
#include <new>
#include <utility>
#include <vector>

template <class T>
class ContextPool {
 public:
  template <class... Args>
  static T* make(Args&&... args) {
    std::vector<void*>& kept = blocks().kept;
    void* block = kept.empty() ? ::operator new(sizeof(T)) : kept.back();
    if (!kept.empty()) kept.pop_back();
    try {
      return new (block) T(std::forward<Args>(args)...);
    } catch (...) {
      ::operator delete(block);
      throw;
    }
  }
  static void free(T* context) noexcept {
    if (!context) return;
    context->~T();
    std::vector<void*>& kept = blocks().kept;
    if (kept.size() < keep)
      kept.push_back(context);
    else
      ::operator delete(context);
  }

 private:
  static constexpr std::size_t keep = 8;
  struct Blocks {
    Blocks() { kept.reserve(keep); }
    ~Blocks() {
      for (void* block : kept) ::operator delete(block);
    }
    std::vector<void*> kept;
  };
  static Blocks& blocks() {
    static Blocks blocks;
    return blocks;
  }
};
