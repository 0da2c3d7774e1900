#include "edge_list.hpp"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <system_error>

#include "failure.hpp"
#include "text.hpp"

namespace veq::tool {
namespace {

constexpr std::string_view kBlanks = " \t\v\f";

/// Takes the next column off the line; empty where there is none.
std::string_view nextColumn(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
  const std::string_view column = line.substr(0, line.find_first_of(kBlanks));
  line.remove_prefix(column.size());
  return column;
}

std::optional<float> weightIn(std::string_view text) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  float value = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || rest != end || !std::isfinite(value)) return std::nullopt;
  return value;
}

/// What the lines so far amount to.
class Columns {
 public:
  explicit Columns(const std::string& file) : file_(file) {}

  void addLine(std::string_view line) {
    ++lineNumber_;
    const std::string_view from = nextColumn(line);
    if (from.empty()) return;
    if (from[0] == '#' || from[0] == '%') {
      ++comments_;
      return;
    }
    const std::string_view to = nextColumn(line);
    if (to.empty()) fail("has one column where two vertices are needed");
    addWeight(nextColumn(line));
    if (!nextColumn(line).empty()) ++longLines_;
    append(from_, from);
    append(to_, to);
  }

  Shared<VEQNetwork> network(bool directed) const {
    if (!weighted_) throw Failure(file_, "not a valid edge list: it has no edges");
    const auto weights = VEQNumberArray::initWithFloatArray_count(weights_.data(), weights_.size());
    return VEQNetwork::
        networkWithVerticesString_fromLinksString_toLinksString_directed_verticesWeights_edgesWeights(
            std::nullopt, from_, to_, directed, nullptr, *weighted_ ? weights.get() : nullptr);
  }

  std::vector<std::string> notes() const {
    std::vector<std::string> notes;
    if (comments_ > 0) {
      notes.push_back(counted(comments_, "line that begins", "lines that begin") +
                      " with # or % skipped");
    }
    if (longLines_ > 0) {
      notes.push_back("columns after the third ignored in " + counted(longLines_, "line", "lines"));
    }
    return notes;
  }

 private:
  [[noreturn]] void fail(const std::string& reason) const {
    throw Failure(file_,
                  "not a valid edge list: line " + std::to_string(lineNumber_) + " " + reason);
  }

  void addWeight(std::string_view text) {
    if (!weighted_) weighted_ = !text.empty();
    if (*weighted_ && text.empty()) fail("has no weight, unlike the lines before");
    if (!*weighted_ && !text.empty()) fail("has a weight, unlike the lines before");
    if (!*weighted_) return;
    const auto weight = weightIn(text);
    if (!weight) fail("has a weight that is no number: " + std::string(text));
    weights_.push_back(*weight);
  }

  static void append(std::string& lines, std::string_view line) {
    if (!lines.empty()) lines += '\n';
    lines += line;
  }

  const std::string& file_;
  std::string from_;
  std::string to_;
  std::vector<float> weights_;
  std::optional<bool> weighted_;  // unknown before the first edge
  std::uint64_t lineNumber_ = 0;
  std::uint64_t comments_ = 0;
  std::uint64_t longLines_ = 0;
};

}  // namespace

Shared<VEQNetwork> networkWithEdgeList(const std::string& file, std::string_view bytes,
                                       bool directed, std::vector<std::string>& notes) {
  if (!isUtf8(bytes)) throw Failure(file, "not UTF-8");
  constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
  if (bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
    bytes.remove_prefix(kByteOrderMark.size());
  }
  Columns columns(file);
  while (!bytes.empty()) {
    const std::size_t length = std::min(bytes.find_first_of("\r\n"), bytes.size());
    columns.addLine(bytes.substr(0, length));
    bytes.remove_prefix(length);
    // CR LF is one line end, so that lines are counted as editors count them.
    if (bytes.substr(0, 2) == "\r\n") bytes.remove_prefix(1);
    if (!bytes.empty()) bytes.remove_prefix(1);
  }
  Shared<VEQNetwork> network = columns.network(directed);
  if (!network) throw std::bad_alloc();
  notes = columns.notes();
  return network;
}

}  // namespace veq::tool
