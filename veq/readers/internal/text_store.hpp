#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace veq::readers {

/// Texts that outlive where they came from.
class TextStore {
 public:
  /// The same text, which lives as long as this. One that is empty has an address, too.
  std::string_view kept(std::string_view text) {
    if (text.empty()) return "";
    if (text.size() > left_) {
      left_ = std::max(kBlock, text.size());
      blocks_.emplace_back(new char[left_]);
      at_ = blocks_.back().get();
    }
    char* const begin = at_;
    std::memcpy(begin, text.data(), text.size());
    at_ += text.size();
    left_ -= text.size();
    return {begin, text.size()};
  }

 private:
  static constexpr std::size_t kBlock = std::size_t{1} << 16;

  std::vector<std::unique_ptr<char[]>> blocks_;
  char* at_ = nullptr;
  std::size_t left_ = 0;
};

}  // namespace veq::readers
