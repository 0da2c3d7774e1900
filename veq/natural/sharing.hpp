/// \file
/// One network in memory for several processes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "veq/base/export.hpp"
#include "veq/base/ownership.hpp"
#include "veq/base/progress.hpp"
#include "veq/base/result.hpp"
#include "veq/natural/network.hpp"

namespace veq {

namespace internal {
class MemoryFile;
}  // namespace internal

/// How a network is made of an image.
/// \ingroup build
struct AttachOptions {
  /// Leaves out the look at every index, as in OverOptions: for images that nobody can have changed
  /// since this library wrote them.
  bool trusted = false;
  /// Of that look.
  Progress progress{};
};

/// \name Images
/// \ingroup build
/// A network with all its weights and columns as one block of bytes, for processes of one machine
/// and release of this library; it is no format for files that are kept. Topology, weights and
/// columns of numbers are read where they lie, and copied by the first change of them; columns of
/// other kinds are copied at once, and an object in one is replaced by its archived form. Nobody
/// may change the network while its image is measured or written.
/// @{

/// The bytes that it takes. An error, "column Shape: value 3 has no archived form", where a value
/// means nothing to another process. O(1), and as much as its columns hold that are not of numbers.
[[nodiscard]] VEQ_EXPORT Result<std::uint64_t> imageSize(const Network& network);
/// Writes it to the beginning of memory that is aligned to 8 bytes; a further error, "64 bytes for
/// an image of 4096", is room for less. O(n + m).
[[nodiscard]] VEQ_EXPORT Outcome writeImage(const Network& network, std::span<std::byte> memory,
                                            const Progress& progress = {});
/// The network of an image, which stays as it is until the owner is let go of, as in Network::over.
/// Errors of kind kFormat: "not the image of a network", "an image of another release", "a damaged
/// image"; and those of Network::over. O(n + m), and O(1) where it is trusted, but for columns that
/// are copied.
[[nodiscard]] VEQ_EXPORT Result<Network> attachImage(std::span<const std::byte> image,
                                                     Shared<const void> owner,
                                                     const AttachOptions& options = {});
/// @}

/// A network in a memory file that is sealed, so that nobody can write to it or shorten it any
/// more: whoever has its descriptor attaches the network, and all processes together hold it once.
/// The file lives as long as this, a descriptor, or a network that is attached. Copies are the same
/// file. On Linux alone.
/// \ingroup build
class VEQ_EXPORT SharedNetwork {
 public:
  /// Of a network as it is now. Errors as those of imageSize and writeImage; of kind kUnsupported,
  /// "this system has no memory files that can be sealed"; of kind kFile, what the system says,
  /// such as "Too many open files". std::bad_alloc where memory cannot hold it.
  [[nodiscard]] static Result<SharedNetwork> of(const Network& network,
                                                const Progress& progress = {});

  /// The file's descriptor, for attachNetwork in this process, in a child that was forked, or, sent
  /// through a socket, in any other. It is closed with the last copy, and when another program is
  /// executed; who starts one that is to inherit it gives it a duplicate.
  [[nodiscard]] int descriptor() const;
  /// The size of the file.
  [[nodiscard]] std::uint64_t bytes() const;

 private:
  explicit SharedNetwork(Shared<const internal::MemoryFile> file) : file_(std::move(file)) {}

  Shared<const internal::MemoryFile> file_;
};

/// The network in such a file, whose descriptor may be closed afterwards. Errors as those of
/// attachImage; of kind kFile, what the system says, "Bad file descriptor"; of kind kArgument, "not
/// a sealed memory file", for one that somebody could still change.
/// \ingroup build
[[nodiscard]] VEQ_EXPORT Result<Network> attachNetwork(int descriptor,
                                                       const AttachOptions& options = {});

}  // namespace veq
