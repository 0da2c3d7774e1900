// What surrounds the moves of a walk, seen through a group whose moves the test controls.
#include "veq/agents/internal/walk_frame.hpp"

#include <atomic>
#include <cstdint>
#include <functional>
#include <future>
#include <new>
#include <thread>
#include <utility>

#include "gtest/gtest.h"
#include "tests/support/agents.hpp"
#include "veq/agents/internal/group_state.hpp"

namespace veq::test::walk_frame_test {
namespace {

/// Sends all agents to the next vertex of a cycle, and asks before each call of the frame.
template <class Word>
class CyclicMover {
 public:
  static constexpr bool kCanRewind = false;
  static constexpr internal::Meetings kMeetings = internal::Meetings::kSeldom;

  CyclicMover(std::uint64_t vertices, std::uint64_t agents,
              std::function<void(std::uint64_t)>& before)
      : vertices_(vertices), agents_(agents), before_(before) {}
  void draw(const internal::RandomSource&, std::uint64_t, bool) {}
  [[nodiscard]] std::uint64_t purposes() const { return 0; }
  [[nodiscard]] bool skip(std::uint64_t) const { return true; }
  void walk(Word* positions, Word* moves, std::uint64_t steps) {
    before_(done_);
    for (std::uint64_t s = 0; s < steps; ++s) {
      for (std::uint64_t a = 0; a < agents_; ++a) {
        positions[a] = static_cast<Word>((positions[a] + 1) % vertices_);
        moves[s * agents_ + a] = positions[a];
      }
    }
    done_ += steps;
  }

 private:
  std::uint64_t vertices_;
  std::uint64_t agents_;
  std::function<void(std::uint64_t)>& before_;
  std::uint64_t done_ = 0;
};

class CyclicGroup final : public VEQNetworkAgentsGroup {
 public:
  CyclicGroup(Shared<const VEQNetwork> network, std::vector<std::uint64_t> start)
      : VEQNetworkAgentsGroup(
            std::make_unique<internal::GroupState>(std::move(network), std::move(start))) {}

  std::optional<VEQVertexPaths> walkForSteps_returnPath_untilReach(std::uint64_t steps,
                                                                   bool returnPath,
                                                                   float untilReach) override {
    internal::WalkRequest request;
    request.steps = steps;
    request.returnPath = returnPath;
    request.untilReach = static_cast<double>(untilReach);
    return internal::runWalk(
               state(), request,
               [&]<class Word>(const auto&, const internal::WalkHistory<Word>&, internal::Team&) {
                 return CyclicMover<Word>(state().network->countVertices(), state().agents, before);
               })
        .paths;
  }

  /// Called with the steps made so far, before some more are made.
  std::function<void(std::uint64_t)> before = [](std::uint64_t) {};
};

Shared<VEQNetwork> fourVertices() { return networkOf(4, {{0, 1}}, true); }

// A target that is never met has a mover that cannot rewind walk one step at a time.
constexpr float kStepByStep = 2.0F;

TEST(WalkFrame, ShorterFormsReachTheOverriddenWalk) {
  CyclicGroup group(fourVertices(), {1, 2});
  EXPECT_EQ(indices(group.walkForSteps(3)), (std::vector<Indices>{{2, 3, 0}, {3, 0, 1}}));
  EXPECT_EQ(indices(group.tellAgentsToWalkToNextVertices()), (std::vector<Indices>{{1}, {2}}));
  EXPECT_EQ(integers(group.globalVisitFrequencyOfVertices()), (Integers{4, 3, 3, 4}));
}

TEST(WalkFrame, EndsBetweenTwoStepsWhenMemoryRunsOut) {
  CyclicGroup group(fourVertices(), {0, 1});
  group.before = [](std::uint64_t done) {
    if (done == 3) throw std::bad_alloc();
  };
  EXPECT_THROW(group.walkForSteps_returnPath_untilReach(10, true, kStepByStep), std::bad_alloc);
  EXPECT_FALSE(group.isWorking());
  EXPECT_EQ(group.currentProgress(), 3);
  EXPECT_EQ(group.currentWork(), 10);
  EXPECT_EQ(group.walkCount(), 3U);
  EXPECT_EQ(indices(group.agentsCurrentVerticesList()), (Indices{3, 0}));
  EXPECT_EQ(integers(group.visitFrequencyOfVerticesForAgent(0)), (Integers{0, 1, 1, 1}));
  EXPECT_EQ(integers(group.orderOfVisitedVerticesForAgent(0)), (Integers{0, 0, 1, 2}));
  EXPECT_EQ(integers(group.globalVisitFrequencyOfVertices()), (Integers{1, 1, 2, 2}));
  EXPECT_TRUE(group.flushWalkHistory());
}

/// A walk on another thread that stands still before step 2 until it is told to go on.
class WalkFrameUnderWay : public ::testing::Test {
 protected:
  WalkFrameUnderWay() {
    group_.before = [this](std::uint64_t done) {
      if (done == 2) {
        arrived_.set_value();
        go_.get_future().wait();
      }
    };
    walker_ = std::thread(
        [this] { paths_ = group_.walkForSteps_returnPath_untilReach(5, true, kStepByStep); });
    arrived_.get_future().wait();
  }
  void goOn() {
    go_.set_value();
    walker_.join();
  }

  CyclicGroup group_{fourVertices(), {0}};
  std::promise<void> arrived_;
  std::promise<void> go_;
  std::optional<VEQVertexPaths> paths_;
  std::thread walker_;
};

TEST_F(WalkFrameUnderWay, TellsItsProgress) {
  EXPECT_TRUE(group_.isWorking());
  EXPECT_FALSE(group_.isWaiting());
  EXPECT_EQ(group_.currentProgress(), 2);
  EXPECT_EQ(group_.currentWork(), 5);
  goOn();
  EXPECT_FALSE(group_.isWorking());
  EXPECT_EQ(group_.currentProgress(), 5);
  EXPECT_EQ(group_.currentWork(), 5);
}

TEST_F(WalkFrameUnderWay, IsNeitherPausedNorResumed) {
  group_.pauseWork();
  EXPECT_FALSE(group_.isWaiting());
  EXPECT_TRUE(group_.isWorking());
  group_.resumeWork();
  goOn();
  EXPECT_EQ(group_.currentProgress(), 5);
  EXPECT_FALSE(group_.isWaiting());
}

TEST_F(WalkFrameUnderWay, GoesOnWhenItsWorkIsCancelledAndKeepsItsPaths) {
  group_.cancelWork();
  EXPECT_FALSE(group_.isWorking());
  EXPECT_EQ(group_.currentProgress(), 0);
  EXPECT_EQ(group_.currentWork(), 0);
  goOn();
  EXPECT_FALSE(group_.isWorking());
  EXPECT_EQ(group_.currentProgress(), 5);
  EXPECT_EQ(group_.currentWork(), 5);
  EXPECT_EQ(indices(*paths_), (std::vector<Indices>{{1, 2, 3, 0, 1}}));
}

TEST_F(WalkFrameUnderWay, CannotBeFlushed) {
  EXPECT_FALSE(group_.flushWalkHistory());
  group_.cancelWork();
  EXPECT_FALSE(group_.flushWalkHistory());
  goOn();
  EXPECT_EQ(group_.walkCount(), 5U);
  EXPECT_EQ(integers(group_.visitFrequencyOfVerticesForAgent(0)), (Integers{1, 2, 1, 1}));
  EXPECT_TRUE(group_.flushWalkHistory());
}

TEST_F(WalkFrameUnderWay, ShowsTheHistoryOfEarlierWalksMeanwhile) {
  EXPECT_EQ(integers(group_.visitFrequencyOfVerticesForAgent(0)), (Integers{0, 0, 0, 0}));
  EXPECT_EQ(integers(group_.globalVisitFrequencyOfVertices()), (Integers{0, 0, 0, 0}));
  goOn();
  EXPECT_EQ(integers(group_.visitFrequencyOfVerticesForAgent(0)), (Integers{1, 2, 1, 1}));
  EXPECT_EQ(integers(group_.globalVisitFrequencyOfVertices()), (Integers{1, 2, 1, 1}));
}

TEST(WalkFrame, LateCancelDoesNotEmptyThePaths) {
  CyclicGroup group(fourVertices(), {0});
  group.before = [&](std::uint64_t done) {
    if (done == 4) group.cancelWork();
  };
  EXPECT_EQ(indices(*group.walkForSteps_returnPath_untilReach(5, true, kStepByStep)),
            (std::vector<Indices>{{1, 2, 3, 0, 1}}));
}

// Many watchers beside a real walk, for the thread sanitizer.
TEST(WalkThreads, WatchersSeeProgressClimbAndNothingElse) {
  const auto group = groupAt(networkOf(4, {{0, 1}, {1, 2}, {2, 3}, {3, 0}}, false), {0, 1, 2});
  constexpr std::int64_t kSteps = 300000;
  std::atomic<bool> begun{false};
  const auto watch = [&] {
    std::int64_t last = 0;
    while (!begun.load()) std::this_thread::yield();
    while (group->isWorking()) {
      const std::int64_t now = group->currentProgress();
      EXPECT_GE(now, last);
      EXPECT_LE(now, kSteps);
      EXPECT_EQ(group->currentWork(), kSteps);
      last = now;
      group->pauseWork();
      group->resumeWork();
      EXPECT_FALSE(group->isWaiting());
    }
    EXPECT_EQ(group->currentProgress(), kSteps);
    EXPECT_EQ(indices(group->agentsCurrentVerticesList()).size(), 3U);
  };
  std::thread first(watch);
  std::thread second(watch);
  std::thread walker([&] {
    std::thread starter([&] {
      while (!group->isWorking() && group->currentProgress() == 0) std::this_thread::yield();
      begun.store(true);
    });
    group->walkForSteps_returnPath_untilReach(kSteps, true, 2.0F);
    starter.join();
  });
  first.join();
  second.join();
  walker.join();
}

TEST(WalkThreads, SeveralMayAskAGroupForItsHistoryAtOnce) {
  const auto group = groupAt(networkOf(4, {{0, 1}, {1, 2}, {2, 3}, {3, 0}}, true), {0, 1});
  group->walkForSteps_returnPath(1000, false);
  const auto ask = [&] {
    EXPECT_EQ(integers(group->visitFrequencyOfVerticesForAgent(1)), (Integers{250, 250, 250, 250}));
    EXPECT_EQ(integers(group->globalVisitFrequencyOfVertices()), (Integers{500, 500, 500, 500}));
    EXPECT_EQ(integers(group->orderOfVisitedVerticesForAgent(0)), (Integers{999, 996, 997, 998}));
  };
  std::thread other(ask);
  ask();
  other.join();
}

}  // namespace
}  // namespace veq::test::walk_frame_test
