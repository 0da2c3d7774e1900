#include "parts.hpp"

#include <charconv>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "failure.hpp"
#include "format.hpp"
#include "network_files.hpp"
#include "streams.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrefix = "component-";

/// The number in "component-12.xnet"; nothing for other names.
std::optional<std::uint64_t> numberOf(const std::string& name, std::string_view suffix) {
  if (name.size() <= kPrefix.size() + suffix.size() || !name.starts_with(kPrefix) ||
      !name.ends_with(suffix)) {
    return std::nullopt;
  }
  std::uint64_t number = 0;
  const char* const end = name.data() + name.size() - suffix.size();
  const auto [rest, error] = std::from_chars(name.data() + kPrefix.size(), end, number);
  return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

void makeDirectory(const std::string& directory) {
  std::error_code error;
  fs::create_directories(directory, error);
  if (error) throw Failure(directory, error.message());
  if (!fs::is_directory(directory, error)) {
    throw Failure(directory, std::make_error_code(std::errc::not_a_directory).message());
  }
}

/// Whether the file is one of so many parts in the directory.
bool isPart(const std::string& file, const std::string& directory, std::string_view suffix,
            std::uint64_t count) {
  if (file.empty() || isStandardStream(file)) return false;
  std::error_code none;
  const fs::path path = fs::weakly_canonical(file, none);
  const auto number = numberOf(path.filename().string(), suffix);
  return number && *number < count && fs::equivalent(path.parent_path(), directory, none);
}

/// Says how many parts of an earlier split are replaced, and how many stay.
void noteOldParts(const std::string& directory, std::string_view suffix, std::uint64_t count) {
  std::uint64_t replaced = 0;
  std::uint64_t staying = 0;
  std::error_code error;
  for (fs::directory_iterator at(directory, error), end; !error && at != end; at.increment(error)) {
    const auto number = numberOf(at->path().filename().string(), suffix);
    if (number) ++(*number < count ? replaced : staying);
  }
  if (replaced + staying == 0) return;
  note(directory, "has parts of an earlier split: " + std::to_string(replaced) +
                      (replaced == 1 ? " is" : " are") + " replaced, " + std::to_string(staying) +
                      (staying == 1 ? " stays" : " stay"));
}

}  // namespace

void splitInto(const std::string& directory, std::optional<std::size_t> format,
               const std::vector<DerivedNetwork>& networks,
               const std::vector<std::string>& notToTouch) {
  const std::string_view suffix =
      suffixOf(format ? static_cast<FileFormat>(*format) : FileFormat::kXnet);
  makeDirectory(directory);
  for (const std::string& file : notToTouch) {
    if (!isPart(file, directory, suffix, networks.size())) continue;
    throw WrongUsage("--split would overwrite " + file);
  }
  noteOldParts(directory, suffix, networks.size());
  for (std::size_t i = 0; i < networks.size(); ++i) {
    std::string file = directory + "/" + std::string(kPrefix) + std::to_string(i);
    saveNetwork(networks[i].network.published(), {file.append(suffix), format});
  }
  note(directory, counted(networks.size(), "file", "files") + " written");
}

}  // namespace veq::tool
