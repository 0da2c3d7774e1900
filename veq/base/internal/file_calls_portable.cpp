#if !(defined(__unix__) || defined(__APPLE__)) || defined(VEQ_PORTABLE_FILES)

#include <filesystem>
#include <fstream>
#include <ios>
#include <random>
#include <stdexcept>
#include <system_error>

#include "veq/base/internal/file_calls.hpp"

// What the standard library offers: nothing is synced to the disk, and owners are not kept.

namespace veq::internal {

namespace fs = std::filesystem;

struct ReadableFile::State {
  std::ifstream file;
  bool isDirectory = false;
  std::uint64_t size = 0;
};

ReadableFile::ReadableFile(const std::string& path) : state_(std::make_unique<State>()) {
  std::error_code error;
  state_->isDirectory = fs::is_directory(path, error);
  if (state_->isDirectory) return;
  const std::uintmax_t size = fs::file_size(path, error);
  state_->size = error ? 0 : size;
  state_->file.open(path, std::ios::binary);
}

ReadableFile::~ReadableFile() = default;

bool ReadableFile::isOpen() const { return state_->isDirectory || state_->file.is_open(); }
bool ReadableFile::isDirectory() const { return state_->isDirectory; }
std::uint64_t ReadableFile::expectedSize() const { return state_->size; }

std::ptrdiff_t ReadableFile::read(char* into, std::size_t capacity) {
  state_->file.read(into, static_cast<std::streamsize>(capacity));
  return state_->file.bad() ? -1 : static_cast<std::ptrdiff_t>(state_->file.gcount());
}

namespace {

bool writeTo(const fs::path& path, const ByteSource& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  const bool arrived = bytes([&file](std::string_view piece) {
    file.write(piece.data(), static_cast<std::streamsize>(piece.size()));
    return file.good();
  });
  file.close();
  return arrived && !file.fail();
}

/// A name beside `target` that nobody else uses.
std::optional<fs::path> temporaryBeside(const fs::path& target) try {
  std::random_device device;
  fs::path path = target.parent_path() /
                  (".veq-" + std::to_string(device()) + std::to_string(device()) + ".tmp");
  std::error_code error;
  if (fs::exists(path, error)) return std::nullopt;
  return path;
} catch (const std::runtime_error&) {
  return std::nullopt;
}

bool replaceFile(const fs::path& target, const ByteSource& bytes, bool exists) {
  // Renaming would not ask for the permission to write to the old file.
  if (exists && !std::ofstream(target, std::ios::app)) return false;
  const std::optional<fs::path> temporary = temporaryBeside(target);
  if (!temporary || !target.has_filename()) return false;
  std::error_code error;
  bool isReplaced = writeTo(*temporary, bytes);
  if (isReplaced && exists) {
    fs::permissions(*temporary, fs::status(target, error).permissions(), error);
    isReplaced = !error;
  }
  if (isReplaced) {
    fs::rename(*temporary, target, error);
    isReplaced = !error;
  }
  if (!isReplaced) fs::remove(*temporary, error);
  return isReplaced;
}

}  // namespace

bool writeFile(const std::string& path, const ByteSource& bytes, bool atomically) {
  std::error_code error;
  if (fs::is_directory(path, error)) return false;
  const bool exists = fs::exists(path, error);
  const std::optional<fs::path> target = behindLinks(path);
  if (!target) return false;
  if (atomically && (!exists || fs::is_regular_file(*target, error))) {
    return replaceFile(*target, bytes, exists);
  }
  const bool isWritten = writeTo(path, bytes);
  if (!isWritten && !exists) fs::remove(*target, error);
  return isWritten;
}

}  // namespace veq::internal

#endif
