// Copy-on-write value box.
//
// The Score is copied whole for undo snapshots and for the command guard that restores a
// document after a failed command. Copying must therefore be cheap and memory must grow with
// what changed, not with the size of the document. A Cow<T> behaves like a T value (copy,
// compare) but copies share one immutable instance until one of them is written through mut().
//
// The box is one pointer wide, and a blank box holds no pointer at all: it reads as one shared
// blank T. Beats and note slots carry several boxes each (bend curve, grace note, chord), and
// nearly all of them are blank, so making, copying and dropping a blank box must cost nothing:
// no allocation and no atomic reference count.
#pragma once

#include <atomic>
#include <utility>

namespace plectaro {

template <class T>
class Cow {
 public:
  Cow() noexcept = default;
  Cow(T value) : p_(new Node(std::move(value))) {}  // NOLINT: implicit by design
  Cow(const Cow& o) noexcept : p_(o.p_) {
    if (p_) p_->refs.fetch_add(1, std::memory_order_relaxed);
  }
  Cow(Cow&& o) noexcept : p_(std::exchange(o.p_, nullptr)) {}
  Cow& operator=(const Cow& o) noexcept {
    Cow(o).swap(*this);
    return *this;
  }
  Cow& operator=(Cow&& o) noexcept {
    Cow(std::move(o)).swap(*this);
    return *this;
  }
  ~Cow() { release(); }

  const T& operator*() const { return get(); }
  const T* operator->() const { return &get(); }
  const T& get() const { return p_ ? p_->value : blank(); }

  // Writable access; detaches from every other copy first.
  T& mut() {
    if (!p_) {
      p_ = new Node(T());
    } else if (p_->refs.load(std::memory_order_acquire) != 1) {
      Node* own = new Node(p_->value);
      release();
      p_ = own;
    }
    return p_->value;
  }

  // True when both boxes hold the very same instance (no comparison of contents needed).
  // Two blank boxes share the blank.
  bool sharesWith(const Cow& other) const { return p_ == other.p_; }

  void swap(Cow& o) noexcept { std::swap(p_, o.p_); }

  friend bool operator==(const Cow& a, const Cow& b) { return a.p_ == b.p_ || a.get() == b.get(); }

 private:
  struct Node {
    explicit Node(T v) : value(std::move(v)) {}
    std::atomic<long> refs{1};
    T value;
  };

  static const T& blank() {
    static const T instance{};
    return instance;
  }

  void release() noexcept {
    if (p_ && p_->refs.fetch_sub(1, std::memory_order_acq_rel) == 1) delete p_;
    p_ = nullptr;
  }

  Node* p_ = nullptr;
};

}  // namespace plectaro
