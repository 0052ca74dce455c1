#include "bench/HeldRouteWriter.h"

#include <optional>
#include <stdexcept>

#include "platform/tarn/FibRoute.h"
#include "platform/tarn/Mount.h"
#include "platform/tarn/RecordWriter.h"
#include "platform/tarn/TableReader.h"

struct HeldRouteWriter::Table {
  explicit Table(const std::string& path, U32 size) : writer(path, size, 5.0) {}
  Tarn::RecordWriter<Tarn::Fib::RouteCodec> writer;
};

HeldRouteWriter::HeldRouteWriter(const std::string& root) {
  using Codec = Tarn::Fib::RouteCodec;
  const std::string path = root + "/" + Tarn::Fib::routePathOf(L3::VrfName("default")) + "/route";
  auto reader = Tarn::TableReader::open(path, Codec::type, Codec::keySize, sizeof(Codec::Record));
  if (!reader) throw std::runtime_error("no route table at " + path);
  table_ = std::make_unique<Table>(path, reader->geometry().maxMembers);
}

HeldRouteWriter::~HeldRouteWriter() = default;

void HeldRouteWriter::put(const std::string& prefix, std::uint64_t fecId) {
  std::optional<Pelt::Prefix> parsed = Pelt::Prefix::parse(prefix);
  if (!parsed) throw std::runtime_error("bad prefix " + prefix);
  Tarn::Fib::Route route;
  route.prefix = *parsed;
  route.fecId = Tarn::Fib::FecId(fecId);
  route.routeType = Routing::Fib::routeTypeConnected;
  table_->writer.put(route);
  table_->writer.commit();
}
