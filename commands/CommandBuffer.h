// Commands as they are collected, one page's or one job's.
#pragma once

#include <cstdlib>
#include <span>

#include "CommandBuilders.h"

namespace velka {

class CommandBuffer {
 public:
  CommandBuffer() = default;
  ~CommandBuffer() { std::free(bytes_); }
  CommandBuffer(const CommandBuffer&) = delete;
  CommandBuffer& operator=(const CommandBuffer&) = delete;

  /// Where builders append. The three arguments are the buffer's own.
  [[nodiscard]] CommandSink sink() noexcept { return {&bytes_, &length_, &writePosition_}; }
  [[nodiscard]] std::span<const uint8_t> commands() const noexcept { return {bytes_, length_}; }
  [[nodiscard]] unsigned int length() const noexcept { return length_; }
  /// Starts anew in the memory that is there.
  void clear() noexcept { length_ = writePosition_ = 0; }

 private:
  unsigned char* bytes_ = nullptr;
  unsigned int length_ = 0;
  unsigned int writePosition_ = 0;
};

}  // namespace velka
