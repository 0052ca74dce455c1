#include "stats/CounterHash.h"

#include <array>
#include <cstring>
#include <utility>

namespace Ip {

namespace {

constexpr unsigned int minWordLength = 10;
constexpr unsigned int maxWordLength = 19;
constexpr unsigned int maxHashValue = 48;

// 49 for every character that no keyword has at position 7 or 8, which sends its name past the table.
constexpr std::array<unsigned char, 256> assoValues = [] {
  std::array<unsigned char, 256> values{};
  values.fill(49);
  constexpr std::pair<char, unsigned char> keyCharacters[] = {
      {'C', 25}, {'E', 20}, {'F', 10}, {'K', 15}, {'O', 5}, {'R', 5}, {'T', 0},  {'a', 0},
      {'c', 0},  {'d', 0},  {'e', 10}, {'i', 20}, {'k', 20}, {'l', 10}, {'m', 10}, {'n', 10},
      {'o', 0},  {'q', 5},  {'r', 5},  {'s', 0},  {'t', 0},  {'u', 10},
  };
  for (auto [c, value] : keyCharacters)
    values[static_cast<unsigned char>(c)] = value;
  return values;
}();

constexpr CounterHash::Entry empty{"", nullptr};

const CounterHash::Entry wordlist[maxHashValue + 1] = {
    empty, empty, empty, empty, empty, empty, empty, empty, empty, empty, empty, empty,  // 0 to 11
    {"Ip6OutOctets", &outOctetsCounter},                                                  // 12
    {"Ip6InDiscards", &inDiscardsCounter},
    {"Ip6InMcastPkts", &inMcastPktsCounter},
    {"Ip6OutMcastPkts", &outMcastPktsCounter},
    {"Ip6InMcastOctets", &inMcastOctetsCounter},
    {"Ip6OutMcastOctets", &outMcastOctetsCounter},
    {"Ip6InNoRoutes", &inNoRoutesCounter},
    {"Ip6OutNoRoutes", &outNoRoutesCounter},
    {"Ip6InAddrErrors", &inAddrErrorsCounter},  // 20
    {"Ip6InOctets", &inOctetsCounter},
    {"Ip6FragFails", &fragFailsCounter},
    {"Ip6InReceives", &inReceivesCounter},
    {"Ip6OutForwDatagrams", &forwDatagramsCounter},
    {"Ip6ReasmTimeout", &reasmTimeoutCounter},
    {"Ip6ReasmOKs", &reasmOKsCounter},
    empty,
    {"Ip6ReasmReqds", &reasmReqdsCounter},
    {"Ip6OutRequests", &outRequestsCounter},
    {"Ip6FragOKs", &fragOKsCounter},  // 30
    empty,
    empty,
    {"Ip6ReasmFails", &reasmFailsCounter},
    {"Ip6OutDiscards", &outDiscardsCounter},
    empty,
    empty,
    empty,
    {"Ip6InTruncatedPkts", &inTruncatedPktsCounter},
    {"Ip6InHdrErrors", &inHdrErrorsCounter},
    empty,  // 40
    empty,
    empty,
    {"Ip6InDelivers", &inDeliversCounter},
    {"Ip6FragCreates", &fragCreatesCounter},
    empty,
    empty,
    empty,
    {"Ip6InUnknownProtos", &inUnknownProtosCounter},  // 48
};

}  // namespace

unsigned int CounterHash::hash(const char* str, unsigned int len) {
  return len + assoValues[static_cast<unsigned char>(str[8])] + assoValues[static_cast<unsigned char>(str[7])];
}

const CounterHash::Entry* CounterHash::in_word_set(const char* str, unsigned int len) {
  if (len < minWordLength || len > maxWordLength) return nullptr;
  unsigned int key = hash(str, len);
  if (key > maxHashValue) return nullptr;
  const Entry& entry = wordlist[key];
  if (*str != *entry.name || std::strcmp(str + 1, entry.name + 1) != 0) return nullptr;
  return &entry;
}

}  // namespace Ip
