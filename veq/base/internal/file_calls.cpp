#include "veq/base/internal/file_calls.hpp"

namespace veq::internal {

namespace fs = std::filesystem;

std::optional<fs::path> behindLinks(fs::path path, bool (*isEnd)(const fs::path&)) {
  std::error_code error;
  for (int links = 0; links < 40; ++links) {
    if (isEnd(path) || !fs::is_symlink(fs::symlink_status(path, error))) return path;
    const fs::path next = fs::read_symlink(path, error);
    if (error) return std::nullopt;
    path = path.parent_path() / next;
  }
  return std::nullopt;
}

}  // namespace veq::internal
