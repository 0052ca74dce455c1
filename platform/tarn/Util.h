#pragma once
// Where table files live and where corruption is recorded.
#include <string>
#include <string_view>

namespace Tarn {

// The directory under which table files live: $TARN_ROOT, else /dev/shm/tarn.
std::string RootPath();

namespace Util {

// Records that a reader found `tableName` corrupt: one file per case, named for the table, the
// process and the time, in $TARN_CORRUPTION_DIR (else /var/tmp/tarn-corruption). Returns its path,
// empty when it could not be written; a failure here never stops the reader.
std::string writeCorruptionFile(std::string_view tableName, std::string_view message);

}  // namespace Util
}  // namespace Tarn
