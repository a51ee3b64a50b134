// A text field that keeps short texts inside itself.
//
// Fret texts are "", one or two digits, "x" or a drum symbol, and a score holds seven of them
// (plus seven grace frets) in every beat. A SmallText is 16 bytes, half of a std::string, and
// holds up to 15 characters without touching the heap; longer texts (a beat's words, a
// damaged file's odd fret) move to the heap and behave the same. It reads as a
// std::string_view and converts to std::string wherever one is wanted, so code that treats the
// field as text does not change.
#pragma once

#include <concepts>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>
#include <string_view>

namespace plectaro {

class SmallText {
 public:
  static constexpr size_t kInline = 15;

  SmallText() noexcept { setBlank(); }
  SmallText(std::string_view s) { init(s.data(), s.size()); }       // NOLINT: implicit by design
  SmallText(const std::string& s) { init(s.data(), s.size()); }     // NOLINT
  SmallText(const char* s) { init(s, std::strlen(s)); }             // NOLINT
  SmallText(const SmallText& o) { init(o.data(), o.size()); }
  SmallText(SmallText&& o) noexcept {
    std::memcpy(b_, o.b_, sizeof b_);
    o.setBlank();
  }
  SmallText& operator=(const SmallText& o) {
    if (this != &o) SmallText(o).swap(*this);
    return *this;
  }
  SmallText& operator=(SmallText&& o) noexcept {
    SmallText(std::move(o)).swap(*this);
    return *this;
  }
  ~SmallText() {
    if (onHeap()) delete[] heapPtr();
  }

  size_t size() const noexcept {
    return onHeap() ? heapLen() : kInline - static_cast<unsigned char>(b_[kInline]);
  }
  size_t length() const noexcept { return size(); }
  bool empty() const noexcept { return size() == 0; }
  const char* data() const noexcept { return onHeap() ? heapPtr() : b_; }
  const char* c_str() const noexcept { return data(); }  // always ends in a NUL
  const char* begin() const noexcept { return data(); }
  const char* end() const noexcept { return data() + size(); }
  char front() const { return data()[0]; }
  char back() const { return data()[size() - 1]; }
  char operator[](size_t i) const { return data()[i]; }
  void clear() noexcept { SmallText().swap(*this); }

  std::string_view view() const noexcept { return {data(), size()}; }
  std::string str() const { return std::string(data(), size()); }
  operator std::string_view() const noexcept { return view(); }  // NOLINT: implicit by design
  operator std::string() const { return str(); }                 // NOLINT: implicit by design

  SmallText& operator+=(std::string_view s) {
    std::string joined = str();
    joined += s;
    return *this = SmallText(joined);
  }

  void swap(SmallText& o) noexcept {
    char t[sizeof b_];
    std::memcpy(t, b_, sizeof b_);
    std::memcpy(b_, o.b_, sizeof b_);
    std::memcpy(o.b_, t, sizeof b_);
  }

  // Templates rather than plain string_view overloads: with those, SmallText == SmallText could go
  // through the conversion either way round, which C++20's reversed candidates make ambiguous.
  template <class T>
    requires std::convertible_to<const T&, std::string_view>
  friend bool operator==(const SmallText& a, const T& b) noexcept {
    return a.view() == std::string_view(b);
  }
  template <class T>
    requires std::convertible_to<const T&, std::string_view>
  friend auto operator<=>(const SmallText& a, const T& b) noexcept {
    return a.view() <=> std::string_view(b);
  }
  friend std::string operator+(const SmallText& a, std::string_view b) { return a.str().append(b); }
  friend std::string operator+(const std::string& a, const SmallText& b) { return std::string(a).append(b.view()); }
  friend std::string operator+(std::string&& a, const SmallText& b) { return std::move(a.append(b.view())); }
  friend std::string operator+(const char* a, const SmallText& b) { return std::string(a).append(b.view()); }
  friend std::string operator+(const SmallText& a, const SmallText& b) { return a.str().append(b.view()); }
  friend std::string operator+(const SmallText& a, const std::string& b) { return a.str().append(b); }
  friend std::string operator+(const SmallText& a, const char* b) { return a.str().append(b); }
  friend std::ostream& operator<<(std::ostream& os, const SmallText& t) { return os << t.view(); }

 private:
  // Inline: the characters, then NULs, and in the last byte the room left (15 minus the
  // length), which is itself the NUL after a text of 15. On the heap: the pointer and the
  // length in the first twelve bytes, and 0xFF in the last byte.
  static constexpr unsigned char kHeapMark = 0xFF;

  void setBlank() noexcept {
    std::memset(b_, 0, sizeof b_);
    b_[kInline] = static_cast<char>(kInline);
  }
  bool onHeap() const noexcept { return static_cast<unsigned char>(b_[kInline]) == kHeapMark; }
  char* heapPtr() const noexcept {
    char* p;
    std::memcpy(&p, b_, sizeof p);
    return p;
  }
  size_t heapLen() const noexcept {
    uint32_t n;
    std::memcpy(&n, b_ + sizeof(char*), sizeof n);
    return n;
  }
  void init(const char* s, size_t n) {
    std::memset(b_, 0, sizeof b_);
    if (n <= kInline) {
      if (n) std::memcpy(b_, s, n);
      b_[kInline] = static_cast<char>(kInline - n);
      return;
    }
    const uint32_t len = static_cast<uint32_t>(n);
    char* p = new char[n + 1];
    std::memcpy(p, s, n);
    p[n] = '\0';
    std::memcpy(b_, &p, sizeof p);
    std::memcpy(b_ + sizeof(char*), &len, sizeof len);
    b_[kInline] = static_cast<char>(kHeapMark);
  }

  alignas(8) char b_[16];
};

}  // namespace plectaro
