#include "veq/formats/internal/repeated_bytes.hpp"

#include <utility>
#include <vector>

#include "veq/base/internal/whole_files.hpp"

namespace veq::internal {

RepeatedBytes::RepeatedBytes(const std::string& path, const std::string& spoolFolder, Pace& pace)
    : path_(path) {
  ByteStream once = openedInput(path).value();
  size_ = once.expected();
  if (size_ != 0) return;
  spool_ = std::make_unique<SpoolFile>(spoolFolder);
  if (spool_->error()) failSpooling();
  std::vector<char> piece(ByteStream::kPiece);
  while (const std::size_t count = once.read(piece.data(), piece.size())) {
    if (!spool_->write({piece.data(), count})) failSpooling();
    size_ += count;
    pace.ask();
  }
}

void RepeatedBytes::failSpooling() const {
  throw Error(ErrorKind::kFile,
              "spooling to " + spool_->folder() + ": " + fileError(spool_->error()).text());
}

ByteStream RepeatedBytes::open() const {
  if (!spool_) return openedInput(path_).value();
  const auto fill = [spool = spool_.get(), place = std::uint64_t{0}](char* into,
                                                                     std::size_t capacity) mutable {
    const std::size_t count = spool->readAt(place, into, capacity);
    if (spool->error()) throw fileError(spool->error());
    place += count;
    return count;
  };
  return {fill, size_};
}

}  // namespace veq::internal
