#include "sources/linux/GrowingTable.h"

namespace Sources::Linux {

U32 existingMaxMembers(const std::string& path, std::string_view type, U32 keySize, U32 recordSize) {
  try {
    auto reader = Tarn::TableReader::open(path, type, keySize, recordSize);
    return reader ? reader->geometry().maxMembers : 0;
  } catch (const Tarn::CorruptionDetectedException&) {
    return 0;  // the writer builds a fresh file
  }
}

}  // namespace Sources::Linux
