#pragma once
// How large a writer makes a table. A writer of another size rebuilds the file, so every writer (the
// scenario source, ipsnmp-tarn) makes a new table at the same usual size and opens one already there
// at that table's own size when it is large enough: each takes the others' files over as they are.
#include <string>
#include <string_view>

#include "platform/tarn/TableFormat.h"

namespace Tarn {

inline constexpr U32 usualRoutes = 65536;
inline constexpr U32 usualArpEntries = 16384;
inline constexpr U32 usualVrfIds = 1024;

// The most members the table file at `path` holds, 0 when there is no usable file of that type.
U32 presentMaxMembers(const std::string& path, std::string_view type, U32 keySize, U32 recordSize);

template <class Codec>
U32 presentMaxMembers(const std::string& path) {
  return presentMaxMembers(path, Codec::type, Codec::keySize, sizeof(typename Codec::Record));
}

}  // namespace Tarn
