#include "veq/drawing/page.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <utility>

#include "veq/base/files.hpp"
#include "veq/drawing/internal/page_block.hpp"
#include "veq/drawing/internal/page_template.hpp"
#include "veq/drawing/internal/page_texts.hpp"
#include "veq/drawing/internal/placement.hpp"

namespace veq {
namespace {

using internal::PageColumn;
using internal::PageContent;
using internal::PagePoint;
using internal::PageRole;

constexpr std::array<std::string_view, 2> kColors{"degree", "visits"};
constexpr std::array<std::string_view, 4> kSizes{"constant", "degree", "strength", "visits"};
constexpr std::size_t kUsualColumns = 8;

Error wrong(std::string text) { return {ErrorKind::kArgument, std::move(text)}; }

bool isOne(std::span<const std::string_view> words, std::string_view word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

std::vector<std::string> keysToShow(const Network& network, const PageOptions& options) {
  std::vector<std::string> keys;
  if (options.columns) {
    keys = *options.columns;
  } else {
    for (const std::string& key : network.vertexKeys()) {
      if (key != "Name" && key != "Position" && keys.size() < kUsualColumns) keys.push_back(key);
    }
  }
  if (!options.color.empty() && !isOne(kColors, options.color)) keys.push_back(options.color);
  if (!options.size.empty() && !isOne(kSizes, options.size)) keys.push_back(options.size);
  std::vector<std::string> different;
  for (std::string& key : keys) {
    if (std::find(different.begin(), different.end(), key) == different.end()) {
      different.push_back(std::move(key));
    }
  }
  return different;
}

Result<std::vector<PageColumn>> columnsToShow(const Network& network, const PageOptions& options) {
  const std::vector<std::string> keys = keysToShow(network, options);
  if (keys.size() > internal::kMostPageColumns) {
    return wrong(std::to_string(keys.size()) + " columns are more than a page can show (" +
                 std::to_string(internal::kMostPageColumns) + "): choose some");
  }
  std::vector<PageColumn> columns;
  for (const std::string& key : keys) {
    std::optional<PageColumn> column = internal::pageColumn(network, key);
    if (!column) return wrong("no column " + key);
    columns.push_back(std::move(*column));
  }
  return columns;
}

std::optional<PageRole> roleOf(const std::string& name, std::span<const std::string_view> words,
                               const std::vector<PageColumn>& columns) {
  if (name.empty()) return std::nullopt;
  if (isOne(words, name)) return PageRole{name, 0};
  const auto column = std::find_if(columns.begin(), columns.end(),
                                   [&](const PageColumn& each) { return each.key == name; });
  return PageRole{{}, static_cast<std::uint64_t>(column - columns.begin())};
}

std::optional<Error> roleError(const PageContent& content, const PageOptions& options) {
  if (!content.walk && (options.color == "visits" || options.size == "visits")) {
    return wrong("no walk whose visits could be shown");
  }
  if (content.size && content.size->word.empty() &&
      !content.columns[content.size->column].isNumber) {
    return wrong("column " + options.size + ": sizes need numbers");
  }
  return std::nullopt;
}

std::vector<PagePoint> gridPoints(const std::vector<internal::Point>& points) {
  const auto place = [](double share) { return static_cast<std::uint16_t>(share * 65535.0 + 0.5); };
  std::vector<PagePoint> grid;
  grid.reserve(points.size());
  for (const internal::Point& point : points) grid.push_back({place(point.x), place(point.y)});
  return grid;
}

// All of the content but the points.
Result<PageContent> contentOf(const Network& network, const PageOptions& options,
                              const internal::RecordedWalk* walk) {
  if (auto error = internal::pageError(network, walk)) return *error;
  Result<std::vector<PageColumn>> columns = columnsToShow(network, options);
  if (!columns) return columns.error();
  PageContent content{network, {}, {}, options.title, options.call,      std::move(columns).value(),
                      {},      {}, {}, options.seed,  options.substream, options.starts};
  content.walk = walk;
  content.color = roleOf(options.color, kColors, content.columns);
  content.size = roleOf(options.size, kSizes, content.columns);
  if (auto error = internal::placementError(network, options.layout)) return *error;
  return content;
}

// The template with both slots filled. Base64 is no slot, and so the title, which may look like
// one, comes last.
std::string filled(const std::string& title, const std::string& block) {
  constexpr std::string_view kTitle = "@@VEQ-TITLE@@";
  constexpr std::string_view kData = "@@VEQ-DATA@@";
  std::string page;
  for (const std::string_view piece : internal::pageTemplatePieces()) page += piece;
  page.replace(page.find(kData), kData.size(), internal::base64(block));
  page.replace(page.find(kTitle), kTitle.size(), internal::markupText(title));
  return page;
}

}  // namespace

Result<std::string> pageOf(const Network& network, const PageOptions& options,
                           const WalkRecord* walk) {
  Result<PageContent> content = contentOf(network, options, walk ? &walk->parts() : nullptr);
  if (!content) return content.error();
  if (auto error = roleError(content.value(), options)) return *error;
  const auto placement = internal::placementOf(network, options.layout, options.progress);
  if (!placement) return placement.error();
  content->points = gridPoints(placement.value().points);
  content->layout = placement.value().layout;
  const Result<std::string> block = internal::pageBlock(content.value());
  if (!block) return block.error();
  return filled(options.title, block.value());
}

Outcome writePage(std::string_view path, const Network& network, const PageOptions& options,
                  const WalkRecord* walk) {
  const Result<std::string> page = pageOf(network, options, walk);
  if (!page) return page.error();
  return writeFile(path, page.value());
}

Outcome checkPage(const Network& network, const PageOptions& options) {
  const Result<PageContent> content = contentOf(network, options, nullptr);
  if (!content) return content.error();
  return std::monostate();
}

}  // namespace veq
