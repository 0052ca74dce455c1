#pragma once
// SNMPv1/v2c messages encoded by hand, for the requests that the net-snmp tools refuse to build: OIDs
// of more than 128 sub-identifiers or with sub-identifiers beyond 32 bits, negative GETBULK counts,
// values of any type on any object. Sent over UDP from one socket, whose answers are read back with
// the little of their contents that a test looks at.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace IntegrationTest::RawSnmp {

using Oid = std::vector<std::uint64_t>;

// The PDU tags of the requests and the value tags used here.
enum : std::uint8_t {
  getRequest = 0xa0,
  getNextRequest = 0xa1,
  setRequest = 0xa3,
  getBulkRequest = 0xa5,
  asnInteger = 0x02,
  asnOctetString = 0x04,
  asnNull = 0x05,
  asnObjectId = 0x06,
  asnIpAddress = 0x40,
  asnCounter32 = 0x41,
  asnGauge32 = 0x42,
  asnTimeTicks = 0x43,
  asnCounter64 = 0x46,
  noSuchObject = 0x80,
  noSuchInstance = 0x81,
  endOfMibView = 0x82,
};

// Error statuses of a response.
enum : long { noError = 0, wrongType = 7, noCreation = 11, notWritable = 17 };

// A value as it goes on the wire: its tag and its content bytes.
struct Value {
  std::uint8_t tag = asnNull;
  std::string content;
};

struct Request {
  int version = 1;  // 0: SNMPv1, 1: SNMPv2c
  std::string community = "public";
  std::uint8_t pdu = getRequest;
  std::int32_t requestId = 1;
  // Error status and index; non-repeaters and max-repetitions for GETBULK.
  std::int64_t first = 0;
  std::int64_t second = 0;
  std::vector<std::pair<Oid, Value>> varbinds;
};

struct Response {
  std::int32_t requestId = 0;
  long errorStatus = 0;
  long errorIndex = 0;
  std::vector<std::pair<Oid, Value>> varbinds;
  std::size_t size = 0;  // bytes of the whole message
};

std::string encode(const Request& request);
// The response in `message`, or nothing when it is not one.
std::optional<Response> decode(const std::string& message);

// INTEGER, OCTET STRING, OBJECT IDENTIFIER and NULL values.
Value integer(std::int64_t value);
Value octets(std::string value);
Value objectId(const Oid& value);
// `oid` ("1.3.6.1" or ".1.3.6.1") as numbers.
Oid parseOid(const std::string& oid);

// One UDP socket towards the agent at "127.0.0.1:PORT".
class Client {
 public:
  explicit Client(const std::string& address);
  ~Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  void send(const std::string& message);
  // The next message that arrives within `timeoutSeconds`, decoded, or nothing.
  std::optional<Response> receive(double timeoutSeconds);
  // Sends `request` and waits for its response (the one with its request id).
  std::optional<Response> exchange(const Request& request, double timeoutSeconds = 3.0);

 private:
  int socket_ = -1;
};

}  // namespace IntegrationTest::RawSnmp
