/// \file
/// The block of data of a page, which docs/formats/page.md describes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "veq/agents/internal/recorded_walk.hpp"
#include "veq/base/result.hpp"
#include "veq/drawing/internal/page_columns.hpp"
#include "veq/natural/network.hpp"

namespace veq::internal {

inline constexpr std::uint64_t kMostPageVertices = 200'000;
inline constexpr std::uint64_t kMostPageEdges = 1'000'000;
inline constexpr std::uint64_t kMostPageAgents = 100'000;
inline constexpr std::uint64_t kMostPageColumns = 64;
inline constexpr std::uint64_t kMostPageMoveBytes = 4'000'000;
inline constexpr std::uint64_t kMostPageSlots = 1'000'000;

/// A point of the square on which a page draws, from its lower left corner.
struct PagePoint {
  std::uint16_t x = 0;
  std::uint16_t y = 0;
};

/// By what a page colours or sizes at first: a word, or else a column by its place among them.
struct PageRole {
  std::string_view word;
  std::uint64_t column = 0;
};

struct PageContent {
  const Network& network;
  std::vector<PagePoint> points;
  std::string_view layout;
  std::string_view title;
  std::string_view call;
  std::vector<PageColumn> columns;
  std::optional<PageRole> color;
  std::optional<PageRole> size;
  const RecordedWalk* walk = nullptr;
  std::optional<std::uint64_t> seed;
  std::optional<std::uint64_t> substream;
  std::string_view starts;
};

/// Why there can be no page of it: too much of something, and what to do; or a walk that was on
/// another network.
[[nodiscard]] std::optional<Error> pageError(const Network& network, const RecordedWalk* walk);

/// An error where the moves of agents with memory take too many bytes.
[[nodiscard]] Result<std::string> pageBlock(const PageContent& content);

}  // namespace veq::internal
