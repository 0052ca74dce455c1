#include "platform/tarn/TarnBaseDummy.h"

#include "platform/quor/Trace.h"

namespace Tarn {

namespace {
const Quor::Tracer tracer("Tarn", "Tarn");
}

void TarnBaseDummy::stub(const char* operation) const { QTRACE(tracer, 5, operation << name_); }

}  // namespace Tarn

namespace Tarn {

void traceCorruption(const std::string& tableName, const std::string& message) {
  QTRACE(tracer, 1, "TarnMap::corruptionDetected() " << tableName << " " << message);
}

void traceDetach(const std::string& tableName) { QTRACE(tracer, 2, "TarnMap::detach() " << tableName); }

}  // namespace Tarn
