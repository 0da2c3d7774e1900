#include "veq/base/internal/file_calls.hpp"

#if VEQ_POSIX_FILES

#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>

#include "veq/base/internal/descriptor.hpp"
#include "veq/base/internal/entropy.hpp"
#include "veq/base/internal/temporary_names.hpp"

namespace veq::internal {
namespace {

constexpr std::size_t kLongestName = 40;

std::string hexadecimal(std::uint64_t bits) {
  std::string digits;
  for (int shift = 60; shift >= 0; shift -= 4) digits += "0123456789abcdef"[bits >> shift & 15];
  return digits;
}

/// FNV-1a: short, and the same in every process and version.
std::uint64_t hashOf(std::string_view name) {
  std::uint64_t hash = 0xcbf29ce484222325;
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
  return hash;
}

/// A file that this process has made, in the reach of a signal handler: nothing here takes a lock
/// or memory, and it is there before the first static object and after the last.
struct Slot {
  static constexpr int kFree = 0;
  static constexpr int kChanging = -1;

  std::atomic<int> owner{kFree};  ///< The process, so that a child does not remove its parent's.
  int directory = -1;
  std::array<char, kLongestName + 1> name{};
  struct stat file {};
};

std::array<Slot, 16> slots;
static_assert(std::atomic<int>::is_always_lock_free);

}  // namespace

TemporaryNames::TemporaryNames(std::string_view target) : hash_(hashOf(target)) {}

std::string TemporaryNames::operator[](unsigned number) const {
  if (number < kCount) return ".veq-" + hexadecimal(hash_) + "-" + std::to_string(number) + ".tmp";
  const std::uint64_t bits = std::uint64_t{systemEntropy()} << 32 | systemEntropy();
  return ".veq-" + hexadecimal(bits) + ".tmp";
}

void TemporaryNames::removeOrphans(int directory) const {
  for (unsigned number = 0; number < kCount; ++number) {
    const std::string name = (*this)[number];
    // Whatever somebody has put there, it is neither followed nor waited for.
    const Descriptor file = openedAt(directory, name.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK);
    struct stat status {};
    // Who has the lock is the only one to remove the file, and as long as its name stands there is
    // no other file under it.
    if (file.isOpen() && lockTemporary(file.number()) && ::fstat(file.number(), &status) == 0 &&
        S_ISREG(status.st_mode) && isNameOf(directory, name.c_str(), status)) {
      ::unlinkat(directory, name.c_str(), 0);
    }
  }
}

bool lockTemporary(int file) {
  return uninterrupted([file] { return ::flock(file, LOCK_EX | LOCK_NB); }) == 0;
}

void RegisteredTemporary::take(int directory, const std::string& name, const struct stat& file) {
  release();
  if (name.size() > kLongestName) return;
  for (std::size_t i = 0; i < slots.size() && slot_ < 0; ++i) {
    int free = Slot::kFree;
    if (!slots[i].owner.compare_exchange_strong(free, Slot::kChanging)) continue;
    slots[i].directory = directory;
    slots[i].file = file;
    *std::copy(name.begin(), name.end(), slots[i].name.begin()) = '\0';
    slots[i].owner.store(static_cast<int>(::getpid()));
    slot_ = static_cast<int>(i);
  }
}

void RegisteredTemporary::release() {
  if (slot_ >= 0) slots[static_cast<std::size_t>(slot_)].owner.store(Slot::kFree);
  slot_ = -1;
}

}  // namespace veq::internal

namespace veq {

void removeTemporaryFiles() noexcept {
  const int before = errno;
  for (const internal::Slot& slot : internal::slots) {
    if (slot.owner.load() != static_cast<int>(::getpid())) continue;
    // A name that is already another process's is left alone.
    if (internal::isNameOf(slot.directory, slot.name.data(), slot.file)) {
      ::unlinkat(slot.directory, slot.name.data(), 0);
    }
  }
  errno = before;
}

}  // namespace veq

#endif
