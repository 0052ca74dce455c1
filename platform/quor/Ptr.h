#pragma once
// Reference-counted objects and the strong pointers that hold them.
//
// Every shared object derives from PtrInterface, whose one word holds the reference count and the
// non-destructing flag. The count changes by atomic add only when
// VFPtrInterface::enableThreadSafePointers is set; the agent itself runs on one thread.
#include <atomic>
#include <cstddef>
#include <functional>
#include <utility>

#include "platform/quor/Exception.h"
#include "platform/quor/Types.h"

namespace Quor {

class VFPtrInterface {
 public:
  // Read on every count change; set only by code that lets another thread touch counts.
  static inline bool enableThreadSafePointers = false;
  static void* operator new(std::size_t size);
  static void operator delete(void* p, std::size_t size) noexcept;
};

class PtrInterface : public VFPtrInterface {
 public:
  PtrInterface() = default;
  // Copying an object never copies the references held on it.
  PtrInterface(const PtrInterface&) {}
  PtrInterface& operator=(const PtrInterface&) { return *this; }
  virtual ~PtrInterface() = default;

  void newRef() const noexcept;
  void deleteRef() const noexcept;
  U32 references() const noexcept { return word_.load(std::memory_order_relaxed) & countMask; }

  virtual void hasNotificationActiveIs(bool) {}
  bool isNondestructing() const noexcept { return word_.load(std::memory_order_relaxed) & nondestructingBit; }
  // A non-destructing object survives zero references and is told through zeroReferencesIs.
  virtual void isNondestructingIs(bool flag);
  virtual void zeroReferencesIs(bool) {}
  virtual const char* fwkType() const { return "Quor::PtrInterface"; }

 protected:
  virtual void handleZeroRef() const;

 private:
  static constexpr U32 nondestructingBit = 1u << 31;
  static constexpr U32 countMask = ~nondestructingBit;
  U32 addToWord(U32 delta) const noexcept;
  mutable std::atomic<U32> word_{0};
};

inline U32 PtrInterface::addToWord(U32 delta) const noexcept {
  if (enableThreadSafePointers) return word_.fetch_add(delta, std::memory_order_acq_rel) + delta;
  U32 w = word_.load(std::memory_order_relaxed) + delta;
  word_.store(w, std::memory_order_relaxed);
  return w;
}

inline void PtrInterface::newRef() const noexcept {
  U32 w = addToWord(1);
  if ((w & countMask) == 1 && (w & nondestructingBit)) const_cast<PtrInterface*>(this)->zeroReferencesIs(false);
}

inline void PtrInterface::deleteRef() const noexcept {
  if ((addToWord(~0u) & countMask) == 0) handleZeroRef();
}

template <class T>
class Ptr {
 public:
  Ptr() noexcept = default;
  Ptr(std::nullptr_t) noexcept {}
  Ptr(T* p) noexcept : p_(p) { if (p_) p_->newRef(); }
  Ptr(const Ptr& o) noexcept : Ptr(o.p_) {}
  Ptr(Ptr&& o) noexcept : p_(std::exchange(o.p_, nullptr)) {}
  template <class U>
  Ptr(const Ptr<U>& o) noexcept : Ptr(o.ptr()) {}
  ~Ptr() { if (p_) p_->deleteRef(); }

  Ptr& operator=(Ptr o) noexcept {
    std::swap(p_, o.p_);
    return *this;
  }

  T* ptr() const noexcept { return p_; }
  T* operator->() const noexcept { return p_; }
  T& operator*() const noexcept { return *p_; }
  explicit operator bool() const noexcept { return p_ != nullptr; }
  bool operator!() const noexcept { return p_ == nullptr; }
  template <class U>
  bool operator==(const Ptr<U>& o) const noexcept { return p_ == o.ptr(); }
  bool operator==(std::nullptr_t) const noexcept { return p_ == nullptr; }

 private:
  T* p_ = nullptr;
};

template <class T, class U>
Ptr<T> dynamicPtrCast(const Ptr<U>& p) {
  return Ptr<T>(dynamic_cast<T*>(p.ptr()));
}

template <class T, class... Args>
Ptr<T> makePtr(Args&&... args) {
  return Ptr<T>(new T(std::forward<Args>(args)...));
}

// A strong pointer that is never null: making or reading one from null is a range failure.
template <class T>
class ValidPtr {
 public:
  template <class U>
  ValidPtr(const Ptr<U>& p) : p_(p) { check(); }
  ValidPtr(T* p) : p_(p) { check(); }
  template <class U>
  ValidPtr(const ValidPtr<U>& o) : p_(o.ptr()) {}

  T* ptr() const noexcept { return p_.ptr(); }
  T* operator->() const noexcept { return p_.ptr(); }
  T& operator*() const noexcept { return *p_; }
  operator const Ptr<T>&() const noexcept { return p_; }
  template <class U>
  bool operator==(const ValidPtr<U>& o) const noexcept { return ptr() == o.ptr(); }

 private:
  void check() const {
    if (!p_) throwRangeException("null ValidPtr");
  }
  Ptr<T> p_;
};

}  // namespace Quor

template <class T>
struct std::hash<Quor::Ptr<T>> {
  std::size_t operator()(const Quor::Ptr<T>& p) const noexcept { return std::hash<T*>()(p.ptr()); }
};
