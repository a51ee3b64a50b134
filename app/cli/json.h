// A small JSON writer for the CLI's machine-readable output: stable key order, UTF-8 text.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace plectaro::cli {

class Json {
 public:
  explicit Json(std::ostream& out) : out_(out) {}

  Json& beginObject() { return open('{'); }
  Json& endObject() { return close('}'); }
  Json& beginArray() { return open('['); }
  Json& endArray() { return close(']'); }
  Json& key(std::string_view k);
  Json& value(std::string_view v);
  Json& value(const char* v) { return value(std::string_view(v)); }
  Json& value(const std::string& v) { return value(std::string_view(v)); }
  Json& value(long long v);
  Json& value(int v) { return value(static_cast<long long>(v)); }
  Json& value(double v);
  Json& value(bool v);
  Json& null();
  template <class T>
  Json& field(std::string_view k, const T& v) {
    return key(k).value(v);
  }

 private:
  Json& open(char c);
  Json& close(char c);
  void separate();
  void writeString(std::string_view v);

  std::ostream& out_;
  std::vector<bool> first_;  // per open container: nothing written in it yet
  bool afterKey_ = false;
};

}  // namespace plectaro::cli
