// Copy-on-write value box.
//
// The Score is copied whole for undo snapshots and for the command guard that restores a
// document after a failed command. Copying must therefore be cheap and memory must grow with
// what changed, not with the size of the document. A Cow<T> behaves like a T value (copy,
// compare) but copies share one immutable instance until one of them is written through mut().
#pragma once

#include <memory>
#include <utility>

namespace plectaro {

template <class T>
class Cow {
 public:
  Cow() : p_(sharedDefault()) {}
  Cow(T value) : p_(std::make_shared<T>(std::move(value))) {}  // NOLINT: implicit by design

  const T& operator*() const { return *p_; }
  const T* operator->() const { return p_.get(); }
  const T& get() const { return *p_; }

  // Writable access; detaches from every other copy first.
  T& mut() {
    if (p_.use_count() != 1) p_ = std::make_shared<T>(*p_);
    return *p_;
  }

  // True when both boxes hold the very same instance (no comparison of contents needed).
  bool sharesWith(const Cow& other) const { return p_ == other.p_; }

  friend bool operator==(const Cow& a, const Cow& b) { return a.p_ == b.p_ || *a.p_ == *b.p_; }

 private:
  // Every default-constructed box points at one shared blank instance, so that a blank
  // record costs a pointer, not an allocation.
  static const std::shared_ptr<T>& sharedDefault() {
    static const std::shared_ptr<T> blank = std::make_shared<T>();
    return blank;
  }

  std::shared_ptr<T> p_;
};

}  // namespace plectaro
