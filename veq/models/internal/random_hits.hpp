/// \file
/// The draws of a long run that fall below a threshold.
#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "veq/base/internal/team.hpp"
#include "veq/base/internal/wide_vectors.hpp"
#include "veq/models/internal/random_engine.hpp"

namespace veq::internal {

/// Receives some positions, at least one, in ascending order.
using HitSink = std::function<void(std::span<const std::uint64_t>)>;

/// Draws `total` numbers and names the positions, from 0, of those below `threshold`, in ascending
/// order and piece by piece. Costs about a tenth of a nanosecond a draw when hits are rare. What
/// the sink throws passes through and leaves the stream where it was. A caller that asks whether a
/// double lies below p takes the threshold ceil(p x 2^31).
void hitsBelow(RandomStream& stream, std::uint64_t total, std::uint32_t threshold,
               const HitSink& sink, bool wideVectors = wideVectorsRun());
/// The same by several threads, each of which draws stretches of the run. The sink is called by
/// this one alone.
void hitsBelow(RandomStream& stream, std::uint64_t total, std::uint32_t threshold,
               const HitSink& sink, Team& team);

}  // namespace veq::internal
