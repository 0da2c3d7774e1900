#include "starts.hpp"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <new>
#include <optional>
#include <system_error>
#include <unordered_map>
#include <utility>

#include "failure.hpp"
#include "streams.hpp"
#include "text.hpp"
#include "vertex_names.hpp"

namespace veq::tool {
namespace {

/// Finds vertices by name or id, else by index.
class VertexFinder {
 public:
  explicit VertexFinder(const WalkNetwork& network) : count_(network.countVertices()) {}
  explicit VertexFinder(const Network& network) : count_(network.countVertices()) {
    const auto names = columnOfNames(*network.published());
    if (!names) return;
    for (std::uint64_t i = 0; i < std::min(count_, names->count()); ++i) {
      const PropertyValue name = names->objectAtIndex(i);
      if (!name.isNull()) indexOf_.emplace(name.text(), i);  // the first of that name
    }
  }

  [[nodiscard]] std::optional<std::uint64_t> find(const std::string& text) const {
    if (const auto named = indexOf_.find(text); named != indexOf_.end()) return named->second;
    std::uint64_t index = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, index);
    if (error != std::errc() || rest != end || index >= count_) return std::nullopt;
    return index;
  }

 private:
  std::uint64_t count_;
  std::unordered_map<std::string, std::uint64_t> indexOf_;
};

/// The fields of "a,b" and "\"a, b\",c"; all of it as one where a quote is not closed.
std::vector<std::string> fieldsOf(const std::string& text) {
  std::vector<std::string> fields(1);
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (quoted && text.compare(i, 2, "\"\"") == 0) {
      fields.back() += text[i++];
    } else if (text[i] == '"') {
      quoted = !quoted;
    } else if (text[i] == ',' && !quoted) {
      fields.emplace_back();
    } else {
      fields.back() += text[i];
    }
  }
  return quoted ? std::vector<std::string>{text} : fields;
}

/// The vertices of a file, one a line.
std::vector<std::uint64_t> startsInFile(const VertexFinder& finder, const std::string& network,
                                        const std::string& file) {
  const std::string name = inputName(file);
  std::vector<std::uint64_t> starts;
  for (const std::string& line : linesIn(file)) {
    const std::string place = "line " + std::to_string(starts.size() + 1);
    if (line.empty()) throw Failure(name, place + " is empty where a vertex is needed");
    const auto vertex = finder.find(line);
    if (!vertex) {
      throw Failure(name, place + ": " + network + " has no vertex \"" + line + "\"");
    }
    starts.push_back(*vertex);
  }
  if (starts.empty()) throw Failure(name, "has no vertices to start at");
  return starts;
}

std::vector<std::uint64_t> startsOf(const VertexFinder& finder, const std::string& network,
                                    const std::string& value) {
  if (const auto one = finder.find(value)) return {*one};
  std::vector<std::uint64_t> starts;
  std::optional<std::string> unknown;
  for (const std::string& field : fieldsOf(value)) {
    const auto vertex = finder.find(field);
    if (vertex) {
      starts.push_back(*vertex);
    } else if (!unknown) {
      unknown = field;
    }
  }
  if (!unknown) return starts;
  std::error_code none;
  if (isStandardStream(value) || std::filesystem::exists(value, none)) {
    return startsInFile(finder, network, value);
  }
  if (unknown->empty()) throw WrongUsage("--start lists an empty vertex");
  throw Failure(network, "has no vertex \"" + *unknown + "\"");
}

std::vector<std::uint64_t> drawn(Result<std::vector<std::uint64_t>> starts,
                                 const std::string& file) {
  if (starts) return std::move(starts).value();
  if (starts.error().kind() == ErrorKind::kMemory) throw std::bad_alloc();
  throw Failure(file, starts.error().text());
}

template <class AnyNetwork>
std::vector<std::uint64_t> startsOn(const AnyNetwork& network, const std::string& file,
                                    const std::string& value, std::uint64_t agents,
                                    RandomState* random) {
  const std::uint64_t n = network.countVertices();
  if (n == 0) throw Failure(file, "has no vertices to walk on");
  if (agents > std::vector<std::uint64_t>().max_size()) throw std::bad_alloc();
  if (value == "uniform") return drawn(Walkers::uniformStarts(network, agents, random), file);
  if (value == "degree") return drawn(Walkers::startsByDegree(network, agents, random), file);
  std::vector<std::uint64_t> listed;
  if (!value.empty()) listed = startsOf(VertexFinder(network), file, value);
  if (listed.size() > agents) {
    throw WrongUsage("--start has " + std::to_string(listed.size()) + " vertices for " +
                     counted(agents, "agent", "agents"));
  }
  std::vector<std::uint64_t> starts(agents);
  for (std::uint64_t i = 0; i < agents; ++i) {
    starts[i] = listed.empty() ? i % n : listed[i % listed.size()];
  }
  return starts;
}

}  // namespace

std::vector<std::uint64_t> startVertices(const Network& network, const std::string& file,
                                         const std::string& value, std::uint64_t agents,
                                         RandomState* random) {
  return startsOn(network, file, value, agents, random);
}

std::vector<std::uint64_t> startVertices(const WalkNetwork& network, const std::string& file,
                                         const std::string& value, std::uint64_t agents,
                                         RandomState* random) {
  return startsOn(network, file, value, agents, random);
}

}  // namespace veq::tool
