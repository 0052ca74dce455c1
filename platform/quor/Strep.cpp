#include "platform/quor/Strep.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace Quor {

namespace {

bool isBlank(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// What stands at `position`, shortened, for a failure message.
std::string foundText(const StrepIterator& position, const StrepIterator& end) {
  if (position == end) return "the end of the text";
  std::size_t left = static_cast<std::size_t>(end.ptr() - position.ptr());
  return "\"" + std::string(position.ptr(), std::min<std::size_t>(left, 20)) + (left > 20 ? "...\"" : "\"");
}

[[noreturn]] void expected(std::string_view what, const StrepIterator& position, const StrepIterator& end) {
  throwRangeException("expected \"" + std::string(what) + "\" at column " + std::to_string(position.column()) +
                      ", found " + foundText(position, end));
}

void skipBlanks(StrepIterator& position, const StrepIterator& end) {
  while (position != end && isBlank(*position)) ++position;
}

}  // namespace

String8 valueToStrep(U64 value) { return format("%llu", static_cast<unsigned long long>(value)); }

String8 valueToStrep(const ByteString& value) {
  std::string text = "'";
  for (unsigned char c : value.view()) {
    if (c == '\'' || c == '\\') {
      text += '\\';
      text += static_cast<char>(c);
    } else if (c < 0x20 || c >= 0x7f) {
      text += format("\\x%02x", c).view();
    } else {
      text += static_cast<char>(c);
    }
  }
  text += '\'';
  return String8(text);
}

String8 valueToStrepOfRawPtr(const void* p) { return p ? format("%p", p) : String8("None"); }

String8 valueFormStrep(std::string_view typeName, std::initializer_list<StrepAttr> attrs) {
  std::string text = "Value('" + std::string(typeName) + "', ** {";
  const char* separator = "";
  for (const StrepAttr& attr : attrs) {
    text.append(separator).append("'").append(attr.name).append("': ").append(attr.strep.view());
    separator = ", ";
  }
  return String8(text + "})");
}

void needString(StrepIterator& position, const StrepIterator& end, std::string_view text) {
  const StrepIterator start = position;
  for (char c : text) {
    if (c == ' ') {
      skipBlanks(position, end);
    } else if (position == end || *position != c) {
      std::string demanded(text);
      std::erase(demanded, ' ');
      expected(demanded, start, end);
    } else {
      ++position;
    }
  }
}

String8 readQuotedString(StrepIterator& position, const StrepIterator& end) {
  const StrepIterator start = position;
  needString(position, end, "'");
  std::string bytes;
  while (position != end && *position != '\'') {
    char c = *position;
    ++position;
    if (c != '\\') {
      bytes += c;
      continue;
    }
    if (position == end) break;
    char escaped = *position;
    ++position;
    if (escaped == '\\' || escaped == '\'') {
      bytes += escaped;
      continue;
    }
    int high = escaped == 'x' && end.ptr() - position.ptr() >= 2 ? hexDigit(position.ptr()[0]) : -1;
    int low = high < 0 ? -1 : hexDigit(position.ptr()[1]);
    if (low < 0) cannotConvert(start, end, "quoted string");
    bytes += static_cast<char>(high * 16 + low);
    position += 2;
  }
  if (position == end) throwRangeException("unterminated string at column " + std::to_string(start.column()));
  ++position;
  return String8(bytes);
}

void cannotConvert(const StrepIterator& position, const StrepIterator& end, std::string_view typeName) {
  throwRangeException("cannot convert " + foundText(position, end) + " at column " +
                      std::to_string(position.column()) + " to " + std::string(typeName));
}

void rethrowFromDeserializeAttr(const RangeException& failure, std::string_view attrName) {
  throwRangeException(failure.text() + " deserializing attribute " + std::string(attrName));
}

void readValueForm(StrepIterator& position, const StrepIterator& end, std::string_view quotedType,
                   std::string_view shortName, const std::function<bool(const String8& name)>& readAttr) {
  needString(position, end, " Value");
  needString(position, end, " (");
  needString(position, end, " " + std::string(quotedType));
  needString(position, end, " ,");
  needString(position, end, " **");
  needString(position, end, " {");
  for (bool first = true;; first = false) {
    needString(position, end, " ");
    if (position == end) throwRangeException("premature end of value type " + std::string(shortName));
    if (*position == '}') break;
    if (!first) needString(position, end, ", ");
    String8 name = readQuotedString(position, end);
    needString(position, end, " : ");
    if (!readAttr(name)) throwRangeException(std::string(shortName) + " has no such attribute: " + name.str());
  }
  needString(position, end, "} ");
  needString(position, end, ") ");
}

void needEndOfStrep(const StrepIterator& position, const StrepIterator& end, const String8& text) {
  if (position != end)
    throwRangeException(format("junk at column %lld deserializing %s", position.column(), text.str().c_str()).str());
}

}  // namespace Quor
