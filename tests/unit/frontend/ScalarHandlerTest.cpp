// The shape of every scalar: set phases are refused with notWritable, a GET reads the registration's
// entity, a missing entity and an unknown mode are general errors.
#include <gtest/gtest.h>

#include <cstring>

#include "frontend/ScalarHandler.h"
#include "platform/snmp/NetSnmp.h"

namespace {

const Quor::Tracer tracer{"Snmp", "ScalarHandlerTest"};
const ScalarText text{"handle_testScalar", "testScalar", "Morvane/test/config", "Test::Config", "value",
                      "TestConversion"};

struct Config {
  int value;
  bool failConversion = false;
};

int readValue(const void* entity, unsigned char* buffer, int size) {
  const auto* config = static_cast<const Config*>(entity);
  if (config->failConversion || size < static_cast<int>(sizeof config->value)) return -1;
  std::memcpy(buffer, &config->value, sizeof config->value);
  return sizeof config->value;
}

// One request of a scalar's handler, as the scalar helper hands it over.
class ScalarRequest {
 public:
  explicit ScalarRequest(int mode, const Config* config) {
    reqinfo_.mode = mode;
    request_.agent_req_info = &reqinfo_;
    request_.requestvb = &varbind_;
    varbind_.type = ASN_NULL;
    reg_.my_reg_void = const_cast<Config*>(config);
  }
  ~ScalarRequest() { snmp_free_var_internals(&varbind_); }

  int handle() { return handleScalar(tracer, text, readValue, &reg_, &reqinfo_, &request_); }
  int status() const { return request_.status; }
  const netsnmp_variable_list& varbind() const { return varbind_; }

 private:
  netsnmp_handler_registration reg_{};
  netsnmp_agent_request_info reqinfo_{};
  netsnmp_request_info request_{};
  netsnmp_variable_list varbind_{};
};

TEST(ScalarHandler, GetAnswersTheEntitysValue) {
  Config config{2};
  ScalarRequest request(MODE_GET, &config);
  EXPECT_EQ(request.handle(), SNMP_ERR_NOERROR);
  EXPECT_EQ(request.status(), SNMP_ERR_NOERROR);
  ASSERT_EQ(request.varbind().type, ASN_INTEGER);
  EXPECT_EQ(*request.varbind().val.integer, 2);
}

TEST(ScalarHandler, GetFollowsTheEntityWithoutCopy) {
  Config config{1};
  ScalarRequest first(MODE_GET, &config);
  first.handle();
  config.value = 2;
  ScalarRequest second(MODE_GET, &config);
  second.handle();
  EXPECT_EQ(*second.varbind().val.integer, 2);
}

TEST(ScalarHandler, EverySetPhaseIsRefusedAsNotWritable) {
  Config config{1};
  for (int mode : {MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION, MODE_SET_COMMIT, MODE_SET_FREE,
                   MODE_SET_UNDO}) {
    ScalarRequest request(mode, &config);
    EXPECT_EQ(request.handle(), SNMP_ERR_NOERROR) << "mode " << mode;
    EXPECT_EQ(request.status(), SNMP_ERR_NOTWRITABLE) << "mode " << mode;
    EXPECT_EQ(request.varbind().type, ASN_NULL) << "mode " << mode;
  }
  EXPECT_EQ(config.value, 1);
}

TEST(ScalarHandler, MissingEntityIsAGeneralError) {
  ScalarRequest request(MODE_GET, nullptr);
  EXPECT_EQ(request.handle(), SNMP_ERR_GENERR);
  EXPECT_EQ(request.status(), SNMP_ERR_GENERR);
}

TEST(ScalarHandler, FailedConversionIsAGeneralError) {
  Config config{1, true};
  ScalarRequest request(MODE_GET, &config);
  EXPECT_EQ(request.handle(), SNMP_ERR_GENERR);
  EXPECT_EQ(request.status(), SNMP_ERR_GENERR);
}

TEST(ScalarHandler, UnknownModesAreGeneralErrors) {
  Config config{1};
  for (int mode : {-1, 6, int{MODE_GETNEXT}, int{MODE_GETBULK}}) {
    ScalarRequest request(mode, &config);
    EXPECT_EQ(request.handle(), SNMP_ERR_GENERR) << "mode " << mode;
    EXPECT_EQ(request.status(), SNMP_ERR_GENERR) << "mode " << mode;
  }
}

}  // namespace
