#include <algorithm>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

#include "gtest/gtest.h"
#include "veq/models/internal/random_engine.hpp"

namespace veq::internal::shared_random_sequence_test {
namespace {

// The first `count` draws after a seed, sorted.
std::vector<std::uint32_t> sortedDraws(std::uint32_t seed, std::uint64_t count) {
  std::vector<std::uint32_t> draws(count);
  RandomStream::seeded(seed).fill(draws.data(), count);
  std::sort(draws.begin(), draws.end());
  return draws;
}

template <class Job>
void inFourThreads(const Job& job) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back(job);
  for (std::thread& thread : threads) thread.join();
}

TEST(SharedRandomSequence, IsOneForAllThreadsThatRaceForIt) {
  std::mutex lock;
  std::vector<SharedRandomSequence*> seen;
  inFourThreads([&] {
    SharedRandomSequence* const instance = &SharedRandomSequence::instance();
    const std::lock_guard guard(lock);
    seen.push_back(instance);
  });
  EXPECT_EQ(std::count(seen.begin(), seen.end(), &SharedRandomSequence::instance()), 4);
}

TEST(SharedRandomSequence, FollowsItsSeed) {
  SharedRandomSequence& sequence = SharedRandomSequence::instance();
  sequence.seed(42);
  EXPECT_EQ(sequence.next(), 71876166U);
  double value = 0;
  sequence.fill(&value, 1);
  EXPECT_EQ(value, 708592740 * 0x1p-31);
  sequence.seed(0);
  EXPECT_EQ(sequence.next(), 1804289383U);
}

TEST(SharedRandomSequence, MovesPastWhatIsTaken) {
  SharedRandomSequence& sequence = SharedRandomSequence::instance();
  for (const Uint128 count :
       {Uint128{0}, Uint128{1}, Uint128{100}, Uint128{70000}, (Uint128{1} << 64) + 3}) {
    sequence.seed(9);
    (void)sequence.next();
    RandomStream expected = RandomStream::seeded(9);
    (void)expected.next();
    EXPECT_EQ(sequence.take(count), expected);
    expected.advance(count);
    EXPECT_EQ(sequence.next(), expected.next());
  }
}

TEST(SharedRandomSequence, LongFillsGoOnWhereShortOnesEnd) {
  SharedRandomSequence& sequence = SharedRandomSequence::instance();
  sequence.seed(17);
  std::vector<std::uint32_t> draws(200001);
  sequence.fill(draws.data(), 65535);
  sequence.fill(draws.data() + 65535, 65536);
  sequence.fill(draws.data() + 131071, 68930);
  RandomStream stream = RandomStream::seeded(17);
  for (std::size_t i = 0; i < draws.size(); ++i) ASSERT_EQ(draws[i], stream.next()) << i;
}

TEST(SharedRandomSequence, EveryDrawAppearsOnceWhenThreadsRace) {
  SharedRandomSequence& sequence = SharedRandomSequence::instance();
  sequence.seed(1234);
  std::mutex lock;
  std::vector<std::uint32_t> seen;
  inFourThreads([&] {
    std::vector<std::uint32_t> mine(20 * (1 + 37 + 600 + 11));
    std::uint32_t* out = mine.data();
    for (int i = 0; i < 20; ++i) {
      *out++ = sequence.next();
      sequence.fill(out, 37);
      sequence.fill(out + 37, 600);
      RandomStream taken = sequence.take(11);
      taken.fill(out + 637, 11);
      out += 648;
    }
    const std::lock_guard guard(lock);
    seen.insert(seen.end(), mine.begin(), mine.end());
  });
  std::sort(seen.begin(), seen.end());
  EXPECT_EQ(seen, sortedDraws(1234, 4 * 20 * 649));
}

TEST(SharedRandomSequence, SeedsItselfFromTheSystem) {
  SharedRandomSequence& sequence = SharedRandomSequence::instance();
  sequence.seed(1);
  sequence.seedFromSystem();
  std::vector<std::uint32_t> draws(4);
  sequence.fill(draws.data(), 4);
  EXPECT_NE(draws, (std::vector<std::uint32_t>{1804289383, 846930886, 1681692777, 1714636915}));
}

}  // namespace
}  // namespace veq::internal::shared_random_sequence_test
