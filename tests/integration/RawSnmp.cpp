#include "RawSnmp.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <sstream>
#include <stdexcept>
#include <string_view>

namespace IntegrationTest::RawSnmp {

namespace {

std::string lengthOf(std::size_t length) {
  if (length < 0x80) return std::string(1, static_cast<char>(length));
  std::string bytes;
  for (; length; length >>= 8) bytes.insert(bytes.begin(), static_cast<char>(length & 0xff));
  return static_cast<char>(0x80 | bytes.size()) + bytes;
}

std::string tlv(std::uint8_t tag, const std::string& content) {
  return static_cast<char>(tag) + lengthOf(content.size()) + content;
}

// Base 128, high bit set on all but the last byte.
std::string subidentifier(std::uint64_t value) {
  std::string bytes(1, static_cast<char>(value & 0x7f));
  for (value >>= 7; value; value >>= 7) bytes.insert(bytes.begin(), static_cast<char>(0x80 | (value & 0x7f)));
  return bytes;
}

std::string oidContent(const Oid& oid) {
  if (oid.size() < 2) throw std::invalid_argument("an OID has at least two sub-identifiers");
  std::string content = subidentifier(oid[0] * 40 + oid[1]);
  for (std::size_t i = 2; i < oid.size(); ++i) content += subidentifier(oid[i]);
  return content;
}

// Reads the TLVs of a message front to back; a malformed one ends the reading.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}
  bool atEnd() const { return at_ >= bytes_.size(); }
  // The next TLV's tag and content.
  std::optional<std::pair<std::uint8_t, std::string_view>> next() {
    if (bytes_.size() - at_ < 2) return std::nullopt;
    const auto tag = static_cast<std::uint8_t>(bytes_[at_++]);
    std::size_t length = static_cast<std::uint8_t>(bytes_[at_++]);
    if (length & 0x80) {
      const std::size_t octets = length & 0x7f;
      if (octets > 4 || bytes_.size() - at_ < octets) return std::nullopt;
      length = 0;
      for (std::size_t i = 0; i < octets; ++i) length = length << 8 | static_cast<std::uint8_t>(bytes_[at_++]);
    }
    if (bytes_.size() - at_ < length) return std::nullopt;
    const std::string_view content = bytes_.substr(at_, length);
    at_ += length;
    return std::pair{tag, content};
  }

 private:
  std::string_view bytes_;
  std::size_t at_ = 0;
};

std::optional<std::int64_t> integerOf(const std::optional<std::pair<std::uint8_t, std::string_view>>& field) {
  if (!field || field->first != asnInteger || field->second.empty() || field->second.size() > 8) return std::nullopt;
  std::int64_t value = static_cast<std::int8_t>(field->second[0]);
  for (std::size_t i = 1; i < field->second.size(); ++i)
    value = value * 256 + static_cast<std::uint8_t>(field->second[i]);
  return value;
}

Oid oidOf(std::string_view content) {
  Oid oid;
  std::uint64_t value = 0;
  for (char c : content) {
    value = value << 7 | (static_cast<std::uint8_t>(c) & 0x7f);
    if (static_cast<std::uint8_t>(c) & 0x80) continue;
    if (oid.empty()) {
      const std::uint64_t first = value < 80 ? value / 40 : 2;
      oid = {first, value - 40 * first};
    } else {
      oid.push_back(value);
    }
    value = 0;
  }
  return oid;
}

}  // namespace

std::string encode(const Request& request) {
  std::string varbinds;
  for (const auto& [oid, value] : request.varbinds)
    varbinds += tlv(0x30, tlv(asnObjectId, oidContent(oid)) + tlv(value.tag, value.content));
  const auto field = [](std::int64_t value) { return tlv(asnInteger, integer(value).content); };
  const std::string pdu = tlv(request.pdu, field(request.requestId) + field(request.first) +
                                               field(request.second) + tlv(0x30, varbinds));
  return tlv(0x30, field(request.version) + tlv(asnOctetString, request.community) + pdu);
}

std::optional<Response> decode(const std::string& message) {
  Reader outer(message);
  const auto whole = outer.next();
  if (!whole || whole->first != 0x30) return std::nullopt;
  Reader fields(whole->second);
  if (!integerOf(fields.next())) return std::nullopt;
  const auto community = fields.next();
  const auto pdu = fields.next();
  if (!community || !pdu || pdu->first != 0xa2) return std::nullopt;
  Reader pduFields(pdu->second);
  const auto requestId = integerOf(pduFields.next());
  const auto errorStatus = integerOf(pduFields.next());
  const auto errorIndex = integerOf(pduFields.next());
  const auto list = pduFields.next();
  if (!requestId || !errorStatus || !errorIndex || !list || list->first != 0x30) return std::nullopt;
  Response response{static_cast<std::int32_t>(*requestId), static_cast<long>(*errorStatus),
                    static_cast<long>(*errorIndex), {}, message.size()};
  Reader varbinds(list->second);
  while (!varbinds.atEnd()) {
    const auto varbind = varbinds.next();
    if (!varbind || varbind->first != 0x30) return std::nullopt;
    Reader parts(varbind->second);
    const auto name = parts.next();
    const auto value = parts.next();
    if (!name || name->first != asnObjectId || !value) return std::nullopt;
    response.varbinds.push_back({oidOf(name->second), Value{value->first, std::string(value->second)}});
  }
  return response;
}

Value integer(std::int64_t value) {
  // Two's complement in the fewest bytes that keep the sign.
  std::string bytes;
  do {
    bytes.insert(bytes.begin(), static_cast<char>(value & 0xff));
    value >>= 8;
  } while (!((value == 0 && !(bytes[0] & 0x80)) || (value == -1 && (bytes[0] & 0x80))));
  return {asnInteger, bytes};
}

Value octets(std::string value) { return {asnOctetString, std::move(value)}; }

Value objectId(const Oid& value) { return {asnObjectId, oidContent(value)}; }

Oid parseOid(const std::string& oid) {
  Oid numbers;
  std::istringstream in(oid);
  for (std::string part; std::getline(in, part, '.');)
    if (!part.empty()) numbers.push_back(std::stoull(part));
  return numbers;
}

Client::Client(const std::string& address) {
  const auto colon = address.rfind(':');
  sockaddr_in agent{};
  agent.sin_family = AF_INET;
  if (colon == std::string::npos || ::inet_pton(AF_INET, address.substr(0, colon).c_str(), &agent.sin_addr) != 1)
    throw std::invalid_argument("not an IPv4 address and port: " + address);
  agent.sin_port = htons(static_cast<std::uint16_t>(std::stoi(address.substr(colon + 1))));
  socket_ = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  // Connected, so that only the agent's datagrams arrive.
  if (socket_ < 0 || ::connect(socket_, reinterpret_cast<const sockaddr*>(&agent), sizeof agent) != 0)
    throw std::runtime_error("cannot open a UDP socket towards " + address);
}

Client::~Client() { ::close(socket_); }

void Client::send(const std::string& message) {
  if (::send(socket_, message.data(), message.size(), 0) != static_cast<ssize_t>(message.size()))
    throw std::runtime_error("cannot send a request of " + std::to_string(message.size()) + " bytes");
}

std::optional<Response> Client::receive(double timeoutSeconds) {
  pollfd ready{socket_, POLLIN, 0};
  if (::poll(&ready, 1, static_cast<int>(timeoutSeconds * 1000)) != 1) return std::nullopt;
  std::string buffer(65536, '\0');
  const ssize_t got = ::recv(socket_, buffer.data(), buffer.size(), 0);
  if (got < 0) return std::nullopt;
  buffer.resize(static_cast<std::size_t>(got));
  return decode(buffer);
}

std::optional<Response> Client::exchange(const Request& request, double timeoutSeconds) {
  send(encode(request));
  for (;;) {
    std::optional<Response> response = receive(timeoutSeconds);
    if (!response || response->requestId == request.requestId) return response;
  }
}

}  // namespace IntegrationTest::RawSnmp
