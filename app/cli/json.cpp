#include "json.h"

#include <charconv>
#include <cmath>

namespace plectaro::cli {

void Json::separate() {
  if (afterKey_) {
    afterKey_ = false;
    return;
  }
  if (!first_.empty()) {
    if (!first_.back()) out_ << ',';
    first_.back() = false;
  }
}

Json& Json::open(char c) {
  separate();
  out_ << c;
  first_.push_back(true);
  return *this;
}

Json& Json::close(char c) {
  out_ << c;
  first_.pop_back();
  if (first_.empty()) out_ << '\n';
  return *this;
}

Json& Json::key(std::string_view k) {
  separate();
  writeString(k);
  out_ << ':';
  afterKey_ = true;
  return *this;
}

Json& Json::value(std::string_view v) {
  separate();
  writeString(v);
  return *this;
}

void Json::writeString(std::string_view v) {
  out_ << '"';
  for (char ch : v) {
    auto c = static_cast<unsigned char>(ch);
    switch (c) {
      case '"': out_ << "\\\""; break;
      case '\\': out_ << "\\\\"; break;
      case '\n': out_ << "\\n"; break;
      case '\r': out_ << "\\r"; break;
      case '\t': out_ << "\\t"; break;
      default:
        if (c < 0x20) {
          static const char* hex = "0123456789abcdef";
          out_ << "\\u00" << hex[c >> 4] << hex[c & 15];
        } else {
          out_ << ch;
        }
    }
  }
  out_ << '"';
}

Json& Json::value(long long v) {
  separate();
  out_ << v;
  return *this;
}

Json& Json::value(double v) {
  separate();
  if (!std::isfinite(v)) {
    out_ << "null";
    return *this;
  }
  char buf[32];
  auto r = std::to_chars(buf, buf + sizeof buf, v);
  out_.write(buf, r.ptr - buf);
  return *this;
}

Json& Json::value(bool v) {
  separate();
  out_ << (v ? "true" : "false");
  return *this;
}

Json& Json::null() {
  separate();
  out_ << "null";
  return *this;
}

}  // namespace plectaro::cli
