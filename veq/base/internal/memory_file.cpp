#include "veq/base/internal/memory_file.hpp"

#if defined(__linux__)
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#endif

#include <new>
#include <utility>

#include "veq/base/internal/memory.hpp"

#if defined(__linux__) && defined(MFD_ALLOW_SEALING) && defined(F_SEAL_WRITE)
#define VEQ_MEMORY_FILES 1
#include "veq/base/internal/descriptor.hpp"
#include "veq/base/internal/whole_files.hpp"
#else
#define VEQ_MEMORY_FILES 0
#endif

namespace veq::internal {

#if VEQ_MEMORY_FILES

namespace {

constexpr int kSeals = F_SEAL_WRITE | F_SEAL_SHRINK;

Error systemError() { return {ErrorKind::kFile, lastError().message()}; }

// Bytes of a file, until this dies.
class Mapping {
 public:
  Mapping(int file, std::size_t size, int protection)
      : at_(::mmap(nullptr, size, protection, MAP_SHARED, file, 0)), size_(size) {}
  ~Mapping() {
    if (isThere()) ::munmap(at_, size_);
  }
  Mapping(const Mapping&) = delete;
  Mapping& operator=(const Mapping&) = delete;

  [[nodiscard]] bool isThere() const { return at_ != MAP_FAILED; }
  [[nodiscard]] std::span<std::byte> bytes() const { return {static_cast<std::byte*>(at_), size_}; }

 private:
  void* at_;
  std::size_t size_;
};

}  // namespace

struct MemoryFile::State {
  Descriptor file;
};

Result<Shared<const MemoryFile>> MemoryFile::written(
    std::uint64_t size, const std::function<Outcome(std::span<std::byte>)>& write) {
  requireMemory(size, 1);
  Descriptor file(::memfd_create("network", MFD_CLOEXEC | MFD_ALLOW_SEALING));
  if (!file.isOpen()) return systemError();
  if (uninterrupted([&] { return ::ftruncate(file.number(), static_cast<off_t>(size)); }) != 0) {
    return systemError();
  }
  {
    const Mapping mapping(file.number(), static_cast<std::size_t>(size), PROT_READ | PROT_WRITE);
    if (!mapping.isThere()) return systemError();
    adviseHugePages(mapping.bytes().data(), size);
    if (const Outcome outcome = write(mapping.bytes()); !outcome) return outcome.error();
  }
  if (::fcntl(file.number(), F_ADD_SEALS, kSeals | F_SEAL_GROW | F_SEAL_SEAL) != 0) {
    return systemError();
  }
  return Shared<const MemoryFile>(
      new MemoryFile(std::make_unique<State>(State{std::move(file)}), size));
}

int MemoryFile::descriptor() const { return state_->file.number(); }

Result<MappedBytes> MemoryFile::map(int descriptor) {
  struct stat status {};
  if (::fstat(descriptor, &status) != 0) return systemError();
  const int seals = ::fcntl(descriptor, F_GET_SEALS);
  if (seals == -1 || (seals & kSeals) != kSeals) {
    return Error(ErrorKind::kArgument, "not a sealed memory file");
  }
  const auto mapping = std::make_shared<const Mapping>(
      descriptor, static_cast<std::size_t>(status.st_size), PROT_READ);
  if (!mapping->isThere()) return systemError();
  return MappedBytes{mapping->bytes(), mapping};
}

#else

namespace {

Error noFiles() {
  return {ErrorKind::kUnsupported, "this system has no memory files that can be sealed"};
}

}  // namespace

struct MemoryFile::State {};

Result<Shared<const MemoryFile>> MemoryFile::written(
    std::uint64_t /*size*/, const std::function<Outcome(std::span<std::byte>)>& /*write*/) {
  return noFiles();
}

int MemoryFile::descriptor() const { return -1; }

Result<MappedBytes> MemoryFile::map(int /*descriptor*/) { return noFiles(); }

#endif

MemoryFile::MemoryFile(std::unique_ptr<State> state, std::uint64_t size)
    : state_(std::move(state)), size_(size) {}

MemoryFile::~MemoryFile() = default;

}  // namespace veq::internal
