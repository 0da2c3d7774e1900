#include "veq/models/random_state.hpp"

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include "gtest/gtest.h"
#include "tests/support/thrown_text.hpp"
#include "veq/models/internal/random_source.hpp"
#include "veq/models/random_generator.hpp"

namespace veq::random_state_test {
namespace {

constexpr std::uint64_t kSpacing = RandomState::kSubstreamSpacing;

RandomState seeded(std::uint64_t seed) { return RandomState::seeded(seed).value(); }

std::vector<std::uint32_t> draws(RandomState state, std::size_t count) {
  std::vector<std::uint32_t> all(count);
  for (std::uint32_t& draw : all) draw = state.nextDraw();
  return all;
}

using Draws = std::vector<std::uint32_t>;

// The draws after seed 42, and those far on, come from a generator of the same recurrence written
// in another language, whose jumps over 1,000 draws equal a thousand steps.

TEST(RandomState, DrawsWhatTheGeneratorDrawsAfterTheSeed) {
  EXPECT_EQ(draws(seeded(42), 4), (Draws{71876166, 708592740, 1483128881, 907283241}));
  EXPECT_EQ(draws(seeded(1), 3), (Draws{1804289383, 846930886, 1681692777}));
  VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(4294967295);
  EXPECT_EQ(draws(seeded(4294967295), 1)[0],
            VEQRandomGenerator::sharedRandomGenerator()->randomInteger());
}

TEST(RandomState, RefusesSeedsThatAreNone) {
  EXPECT_EQ(RandomState::seeded(0).error().text(),
            "seed 0: it would be the same as seed 1; give 1 to 4294967295");
  EXPECT_EQ(RandomState::seeded(4294967296).error().text(),
            "seed 4294967296: seeds have 32 bits; give 1 to 4294967295");
  EXPECT_EQ(RandomState::seeded(UINT64_MAX).error().kind(), ErrorKind::kArgument);
  EXPECT_TRUE(RandomState::seeded(4294967295).hasValue());
}

TEST(RandomState, IsAValue) {
  RandomState state = seeded(42);
  const RandomState copy = state;
  EXPECT_EQ(state.nextDraw(), 71876166u);
  EXPECT_NE(state, copy);
  EXPECT_EQ(state, copy.after(1));
  EXPECT_EQ(draws(copy, 1), (Draws{71876166}));
}

TEST(RandomState, JumpsAsFarAsTwoToThe128) {
  EXPECT_EQ(seeded(42).after(0), seeded(42));
  EXPECT_EQ(draws(seeded(42).after(2), 2), (Draws{1483128881, 907283241}));
  const DrawCount far(std::uint64_t{1} << 56, 0);  // 2^120
  EXPECT_EQ(draws(seeded(42).after(far), 3), (Draws{1055166854, 14994810, 1631163036}));
  const DrawCount farthest(UINT64_MAX, UINT64_MAX);
  EXPECT_EQ(draws(seeded(42).after(farthest), 3), (Draws{1809560626, 1998006212, 2113999960}));
}

TEST(RandomState, TwoJumpsAreTheirSum) {
  const RandomState start = seeded(9).after(5);
  for (const int bits : {0, 3, 12, 40, 63, 64, 90, 119, 126}) {
    const Uint128 a = Uint128{1} << bits;
    const Uint128 b = 12345 + (a >> 1);
    EXPECT_EQ(start.after(DrawCount::of(a)).after(DrawCount::of(b)),
              start.after(DrawCount::of(a + b)))
        << bits;
  }
}

TEST(RandomState, SubstreamsBeginAtThePrimeSpacing) {
  EXPECT_EQ(kSpacing, 1099511627689u);
  EXPECT_EQ(draws(seeded(42).substream(0), 3), (Draws{71876166, 708592740, 1483128881}));
  EXPECT_EQ(draws(seeded(42).substream(1), 3), (Draws{147908431, 577860584, 1347394097}));
  EXPECT_EQ(draws(seeded(42).substream(4194303), 3), (Draws{1157673291, 480034269, 191038388}));
  EXPECT_EQ(seeded(42).substream(3), seeded(42).after(3 * kSpacing));
  EXPECT_EQ(seeded(42).after(7).substream(3), seeded(42).after(3 * kSpacing + 7));
}

TEST(RandomState, ThereAreTwoToThe22Substreams) {
  EXPECT_EQ(test::thrownText<std::out_of_range>([] { (void)seeded(42).substream(4194304); }),
            "Substream 4194304 of 4194304.");
  EXPECT_THROW((void)seeded(42).substream(UINT64_MAX), std::out_of_range);
  EXPECT_EQ(test::thrownText<std::out_of_range>([] { (void)seeded(42).substream(0).substream(0); }),
            "A substream has no substreams.");
}

TEST(RandomState, ASubstreamEndsWhereTheNextBegins) {
  EXPECT_EQ(seeded(42).drawsLeft(), std::nullopt);
  EXPECT_EQ(seeded(42).substream(1).drawsLeft(), kSpacing);
  RandomState last = seeded(42).substream(1).after(kSpacing - 3);
  EXPECT_EQ(last.drawsLeft(), 3u);
  (void)last.nextDraw();
  EXPECT_EQ(test::thrownText<std::out_of_range>([&] { (void)last.after(3); }),
            "The substream has 2 draws left, not 3.");
  std::vector<std::uint32_t> room(3);
  EXPECT_THROW(last.nextDraws(room), std::out_of_range);
  EXPECT_EQ(last.drawsLeft(), 2u);
  EXPECT_LT(last.nextDouble(), 1.0);
  EXPECT_THROW((void)last.nextBelow(7), std::out_of_range);
  EXPECT_EQ(last.after(1), seeded(42).substream(2));
  (void)last.nextDraw();
  EXPECT_EQ(test::thrownText<std::out_of_range>([&] { (void)last.nextDraw(); }),
            "The substream has 0 draws left, not 1.");
  EXPECT_EQ(last, seeded(42).substream(2));
  EXPECT_EQ(test::thrownText<std::out_of_range>([&] {
              (void)last.after({UINT64_MAX, UINT64_MAX});
            }),
            "The substream has 0 draws left, not 340282366920938463463374607431768211455.");
}

TEST(RandomState, WordsGoOutAndIn) {
  const RandomState::Words words = seeded(42).substream(1).words();
  EXPECT_EQ(words[0], 0x2e30b433u);
  EXPECT_EQ(words[30], 0x145bf4deu);
  const RandomState back = RandomState::fromWords(words).value();
  EXPECT_EQ(back, seeded(42).substream(1));
  EXPECT_EQ(draws(back, 3), (Draws{147908431, 577860584, 1347394097}));
  EXPECT_EQ(back.drawsLeft(), std::nullopt);
  for (std::uint64_t drawn = 0; drawn < 70; ++drawn) {
    const RandomState state = seeded(5).after(drawn);
    EXPECT_EQ(RandomState::fromWords(state.words()).value(), state) << drawn;
  }
}

TEST(RandomState, RefusesWordsThatAreNoState) {
  const std::vector<std::uint32_t> zeros(31, 0);
  EXPECT_EQ(RandomState::fromWords(zeros).error().text(), "31 even words, which no seed leads to");
  std::vector<std::uint32_t> even(31, 0xfffffffe);
  EXPECT_EQ(RandomState::fromWords(even).error().kind(), ErrorKind::kArgument);
  even[17] = 1;
  EXPECT_TRUE(RandomState::fromWords(even).hasValue());
  EXPECT_EQ(RandomState::fromWords(std::vector<std::uint32_t>(30, 1)).error().text(),
            "30 words, not 31");
  EXPECT_EQ(RandomState::fromWords({}).error().text(), "0 words, not 31");
}

TEST(RandomState, NumbersFollowTheirLaws) {
  RandomState state = seeded(42);
  EXPECT_EQ(state.nextDouble(), 71876166 * 0x1p-31);
  state = seeded(42);
  // The quotients by 2^31 are 0.0335, 0.3300, 0.6906, 0.4225: each number takes two, of which the
  // first decides, as in 10 x 0.0335 and 10 x 0.6906.
  EXPECT_EQ(state.nextBelow(10), 0u);
  EXPECT_EQ(state.nextBelow(10), 6u);
  EXPECT_EQ(state, seeded(42).after(4));
  state = seeded(42);
  EXPECT_EQ(state.nextBelow(1), 0u);
  EXPECT_EQ(state, seeded(42).after(2));
  EXPECT_EQ(test::thrownText<std::out_of_range>([&] { (void)state.nextBelow(0); }),
            "No integer lies below 0.");
  EXPECT_EQ(state, seeded(42).after(2));
  // With n = 2^62 the number is u itself.
  state = seeded(42);
  constexpr std::uint64_t kU = (std::uint64_t{71876166} << 31) + 708592740;
  EXPECT_EQ(state.nextBelow(std::uint64_t{1} << 62), kU);
  state = seeded(42);
  EXPECT_EQ(state.nextBelow(std::uint64_t{1} << 63), 2 * kU);
  // The 64-bit product of n and u would wrap.
  state = seeded(42);
  EXPECT_EQ(state.nextBelow(UINT64_MAX), 4 * kU - 1);
}

TEST(RandomState, ManyDrawsAreTheSameAsSingleOnes) {
  RandomState state = seeded(11);
  std::vector<std::uint32_t> many(1000);
  state.nextDraws(many);
  EXPECT_EQ(many, draws(seeded(11), 1000));
  EXPECT_EQ(state, seeded(11).after(1000));
  state.nextDraws({});
  EXPECT_EQ(state, seeded(11).after(1000));
}

TEST(RandomGeneratorState, GoesOutAndIn) {
  VEQRandomGenerator& generator = *VEQRandomGenerator::sharedRandomGenerator();
  generator.setRandomSeed(42);
  EXPECT_EQ(generator.state(), seeded(42));
  (void)generator.randomInteger();
  const RandomState kept = generator.state();
  EXPECT_EQ(generator.randomInteger(), 708592740);
  generator.setState(kept);
  EXPECT_EQ(generator.randomInteger(), 708592740);
  EXPECT_EQ(kept, seeded(42).after(1));  // a value, which the generator does not move
  generator.setState(seeded(42).substream(1));
  EXPECT_EQ(generator.state().drawsLeft(), std::nullopt);
  EXPECT_EQ(generator.randomInteger(), 147908431);
}

TEST(RandomGeneratorState, Skips) {
  VEQRandomGenerator& generator = *VEQRandomGenerator::sharedRandomGenerator();
  generator.setRandomSeed(42);
  generator.skip(2);
  EXPECT_EQ(generator.randomInteger(), 1483128881);
  generator.setRandomSeed(42);
  generator.skip({std::uint64_t{1} << 56, 0});
  EXPECT_EQ(generator.randomInteger(), 1055166854);
}

TEST(DrawCount, HoldsProductsOfAnyTwoCounts) {
  // (2^64 - 1)^2 = 2^128 - 2^65 + 1
  EXPECT_EQ(DrawCount::product(UINT64_MAX, UINT64_MAX), DrawCount(UINT64_MAX - 1, 1));
  EXPECT_EQ(DrawCount::product(3, 5), DrawCount(15));
  EXPECT_LT(DrawCount(UINT64_MAX), DrawCount(1, 0));
  EXPECT_EQ(DrawCount::of(DrawCount(7, 9).all()), DrawCount(7, 9));
}

TEST(RandomSource, TakesFromAStateOrFromTheProcess) {
  VEQRandomGenerator& generator = *VEQRandomGenerator::sharedRandomGenerator();
  generator.setRandomSeed(1);
  RandomState state = seeded(42);
  internal::RandomStream own = internal::RandomSource(&state).take(3);
  EXPECT_EQ(own.next(), 71876166u);
  EXPECT_EQ(state, seeded(42).after(3));
  EXPECT_EQ(generator.state(), seeded(1));
  internal::RandomStream shared = internal::RandomSource(nullptr).take(3);
  EXPECT_EQ(shared.next(), 1804289383u);
  EXPECT_EQ(generator.state(), seeded(1).after(3));
  EXPECT_TRUE(internal::RandomSource(nullptr).has(~Uint128{0}));
  EXPECT_TRUE(internal::RandomSource(&state).has(~Uint128{0}));
  RandomState limited = seeded(42).substream(0);
  EXPECT_TRUE(internal::RandomSource(&limited).has(kSpacing));
  EXPECT_FALSE(internal::RandomSource(&limited).has(kSpacing + 1));
  EXPECT_THROW((void)internal::RandomSource(&limited).take(kSpacing + 1), std::out_of_range);
  EXPECT_EQ(limited.drawsLeft(), kSpacing);
}

}  // namespace
}  // namespace veq::random_state_test
