// ScratchArray: a zeroed array owned for the length of one operation. Its
// allocation can fail without throwing, so that engines report a failed
// allocation as their result instead.
#pragma once

#include <cstddef>
#include <cstdlib>

namespace fancy {

template <class T>
class ScratchArray {
 public:
  ScratchArray() = default;
  ~ScratchArray() { std::free(data_); }
  ScratchArray(const ScratchArray&) = delete;
  ScratchArray& operator=(const ScratchArray&) = delete;

  // Makes room for n zeroed elements (at least one); the old contents are
  // dropped. False when memory fails.
  bool Allocate(size_t n) {
    std::free(data_);
    size_ = 0;
    data_ = static_cast<T*>(std::calloc(n ? n : 1, sizeof(T)));
    if (!data_) return false;
    size_ = n;
    return true;
  }
  void Release() {
    std::free(data_);
    data_ = nullptr;
    size_ = 0;
  }

  T* data() { return data_; }
  const T* data() const { return data_; }
  size_t size() const { return size_; }
  T& operator[](size_t i) { return data_[i]; }
  const T& operator[](size_t i) const { return data_[i]; }

 private:
  T* data_ = nullptr;
  size_t size_ = 0;
};

}  // namespace fancy
