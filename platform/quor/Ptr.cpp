#include "platform/quor/Ptr.h"

#include <new>

namespace Quor {

void* VFPtrInterface::operator new(std::size_t size) { return ::operator new(size); }

void VFPtrInterface::operator delete(void* p, std::size_t size) noexcept { ::operator delete(p, size); }

void PtrInterface::isNondestructingIs(bool flag) {
  U32 w = word_.load(std::memory_order_relaxed);
  word_.store(flag ? (w | nondestructingBit) : (w & countMask), std::memory_order_relaxed);
}

void PtrInterface::handleZeroRef() const {
  if (isNondestructing()) {
    const_cast<PtrInterface*>(this)->zeroReferencesIs(true);
    return;
  }
  delete this;
}

}  // namespace Quor
