#include "veq/models/random_generator.hpp"

#include <memory>
#include <mutex>
#include <span>
#include <utility>

#include "veq/models/internal/random_engine.hpp"
#include "veq/models/internal/random_range.hpp"
#include "veq/models/internal/random_source.hpp"
#include "veq/numeric/internal/element_storage.hpp"

namespace veq {
namespace {

using internal::RawVector;
using internal::SharedRandomSequence;

constinit VEQRandomGenerator* instance = nullptr;

// There for whoever asks before this file's own objects would be. Not every library has mutexes
// that need no code for that.
std::mutex& creation() {
  static std::mutex mutex;
  return mutex;
}

template <class T>
RawVector<T> roomFor(std::uint64_t count) {
  return RawVector<T>(internal::sizeOf<T>(count));
}

// The whole array exists before the first draw, so that a failed allocation leaves the sequence
// where it was. `array` is an Owned or a Shared.
template <class T, class Array>
Array drawnInto(Array array) {
  const std::span<T> values = array->template values<T>();
  SharedRandomSequence::instance().fill(values.data(), values.size());
  return array;
}

template <class Array>
Array drawnIntoRange(Array array, std::int64_t a, std::int64_t b) {
  array = drawnInto<std::int64_t>(std::move(array));
  for (std::int64_t& value : array->template values<std::int64_t>()) {
    value = internal::integerInRange(static_cast<std::uint32_t>(value), a, b);
  }
  return array;
}

}  // namespace

VEQRandomGenerator* VEQRandomGenerator::sharedRandomGenerator() {
  VEQRandomGenerator* const made = allocWithZone(nullptr);
  return made != nullptr ? made : instance;
}

VEQRandomGenerator* VEQRandomGenerator::allocWithZone(void*) {
  const std::lock_guard guard(creation());
  if (instance != nullptr) return nullptr;
  auto* const made = new VEQRandomGenerator;
  SharedRandomSequence::instance().seedFromSystem();
  return instance = made;
}

void VEQRandomGenerator::setRandomSeed(std::uint32_t seed) {
  SharedRandomSequence::instance().seed(seed);
}

RandomState VEQRandomGenerator::state() const {
  return internal::StateAccess::make(SharedRandomSequence::instance().stream());
}

void VEQRandomGenerator::setState(const RandomState& state) {
  SharedRandomSequence::instance().setStream(internal::StateAccess::stream(state));
}

void VEQRandomGenerator::skip(DrawCount draws) {
  (void)SharedRandomSequence::instance().take(draws.all());
}

double VEQRandomGenerator::randomDouble() {
  return internal::fromDraw<double>(SharedRandomSequence::instance().next());
}

float VEQRandomGenerator::randomFloat() {
  return internal::fromDraw<float>(SharedRandomSequence::instance().next());
}

std::int64_t VEQRandomGenerator::randomInteger() { return SharedRandomSequence::instance().next(); }

std::int64_t VEQRandomGenerator::randomIntegerFrom_to(std::int64_t a, std::int64_t b) {
  return internal::integerInRange(SharedRandomSequence::instance().next(), a, b);
}

Owned<VEQNumberArray> VEQRandomGenerator::newRandomDoubleArrayWithCount(std::uint64_t count) {
  return drawnInto<double>(std::make_unique<VEQNumberArray>(roomFor<double>(count)));
}

Shared<VEQNumberArray> VEQRandomGenerator::randomDoubleArrayWithCount(std::uint64_t count) {
  return drawnInto<double>(std::make_shared<VEQNumberArray>(roomFor<double>(count)));
}

Owned<VEQNumberArray> VEQRandomGenerator::newRandomFloatArrayWithCount(std::uint64_t count) {
  return drawnInto<float>(std::make_unique<VEQNumberArray>(roomFor<float>(count)));
}

Shared<VEQNumberArray> VEQRandomGenerator::randomFloatArrayWithCount(std::uint64_t count) {
  return drawnInto<float>(std::make_shared<VEQNumberArray>(roomFor<float>(count)));
}

Owned<VEQNumberArray> VEQRandomGenerator::newRandomIntegerArrayWithCount(std::uint64_t count) {
  return drawnInto<std::int64_t>(std::make_unique<VEQNumberArray>(roomFor<std::int64_t>(count)));
}

Shared<VEQNumberArray> VEQRandomGenerator::randomIntegerArrayWithCount(std::uint64_t count) {
  return drawnInto<std::int64_t>(std::make_shared<VEQNumberArray>(roomFor<std::int64_t>(count)));
}

Owned<VEQNumberArray> VEQRandomGenerator::newRandomIntegerArrayFrom_to_withCount(
    std::int64_t a, std::int64_t b, std::uint64_t count) {
  return drawnIntoRange(std::make_unique<VEQNumberArray>(roomFor<std::int64_t>(count)), a, b);
}

Shared<VEQNumberArray> VEQRandomGenerator::randomIntegerArrayFrom_to_withCount(
    std::int64_t a, std::int64_t b, std::uint64_t count) {
  return drawnIntoRange(std::make_shared<VEQNumberArray>(roomFor<std::int64_t>(count)), a, b);
}

}  // namespace veq
