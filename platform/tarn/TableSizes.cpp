#include "platform/tarn/TableSizes.h"

#include "platform/tarn/TableReader.h"

namespace Tarn {

U32 presentMaxMembers(const std::string& path, std::string_view type, U32 keySize, U32 recordSize) {
  try {
    if (auto reader = TableReader::open(path, type, keySize, recordSize)) return reader->geometry().maxMembers;
  } catch (const CorruptionDetectedException&) {
  }
  return 0;  // a damaged file is no table to take over: the writer builds a new one
}

}  // namespace Tarn
