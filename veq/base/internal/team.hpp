/// \file
/// Work that several threads share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>

#include "veq/base/export.hpp"

namespace veq::internal {

/// So many threads as somebody asked for, who may have meant as many as the process may use by 0.
[[nodiscard]] unsigned resolvedThreads(unsigned threads);

/// The threads of one operation: the one that makes the team, and helpers, which start when there
/// is something to share and end with the team. Only one thread may use a team, but several may use
/// alone().
class VEQ_EXPORT Team {
 public:
  /// Fewer units of work, each of some nanoseconds, are not worth waking a thread for. Tests set it
  /// to 0, so that small work is shared.
  static inline std::uint64_t worthSharing = std::uint64_t{1} << 17;

  /// Of at least one thread. No helper has started yet.
  explicit Team(unsigned threads) : threads_(threads == 0 ? 1 : threads) {}
  Team(const Team&) = delete;
  Team& operator=(const Team&) = delete;

  /// One that has no helpers.
  [[nodiscard]] static Team& alone();

  [[nodiscard]] unsigned threads() const { return threads_; }

  /// Calls piece(i) once for each i below `pieces`, on all threads where the work is worth it, and
  /// returns when these calls have. The exception of the lowest piece that threw is thrown on; the
  /// pieces below it have been done then, and of those above some.
  template <class Piece>
  void forEachPiece(std::uint64_t pieces, std::uint64_t work, Piece&& piece) {
    if (threads_ == 1 || pieces < 2 || work < worthSharing) {
      for (std::uint64_t i = 0; i < pieces; ++i) piece(i);
      return;
    }
    share(pieces, taskOf(piece), false);
  }
  /// The same, while this thread first does something else, whose exception comes before all.
  template <class Piece, class Meanwhile>
  void forEachPieceWhile(std::uint64_t pieces, std::uint64_t work, Piece&& piece,
                         Meanwhile&& meanwhile) {
    if (threads_ == 1 || pieces == 0 || work < worthSharing) {
      meanwhile();
      for (std::uint64_t i = 0; i < pieces; ++i) piece(i);
      return;
    }
    const auto both = [&](std::uint64_t i) {
      if (i == 0) return meanwhile();
      piece(i - 1);
    };
    share(pieces + 1, taskOf(both), true);
  }

 private:
  struct Crew;
  struct Dismissal {
    void operator()(Crew* crew) const;
  };
  struct Task {
    void (*call)(void* function, std::uint64_t piece) = nullptr;
    void* function = nullptr;
    std::uint64_t first = 0;

    void operator()(std::uint64_t piece) const { call(function, first + piece); }
  };

  template <class Piece>
  static Task taskOf(Piece& piece) {
    return {[](void* function, std::uint64_t i) { (*static_cast<Piece*>(function))(i); },
            const_cast<void*>(static_cast<const void*>(&piece))};
  }

  /// The first piece may be one for this thread alone.
  void share(std::uint64_t pieces, Task task, bool firstIsMine);

  unsigned threads_;
  std::unique_ptr<Crew, Dismissal> crew_;
};

}  // namespace veq::internal
