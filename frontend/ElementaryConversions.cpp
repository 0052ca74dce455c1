#include "frontend/ElementaryConversions.h"

#include <cstring>

int S32ToAsnIntegerF::operator()(int value, unsigned char* buffer, int size) const {
  if (!buffer || size < static_cast<int>(sizeof value)) return -1;
  std::memcpy(buffer, &value, sizeof value);
  return sizeof value;
}
