#include <array>
#include <limits>

#include "fuzz/operations/world.hpp"
#include "fuzz/support/invariants.hpp"

namespace veq::fuzz {

float anyWeight(Input& input) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  constexpr std::array<float, 12> kWeights = {
      1.0F,  0.0F,       0.5F,        2.0F,  -1.5F,     -0.0F,
      1e-7F, 0.1234565F, 16777216.0F, 3e38F, kInfinity, std::numeric_limits<float>::quiet_NaN()};
  return kWeights[input.below(kWeights.size())];
}

PropertyValue anyValue(Input& input) {
  static const std::array<std::string, 10> kTexts = {
      "a", "", "b c", "<quote>", "\n", "\"", "\r", "\xC3\xA9", "<null>", "\xE2\x82\xAC"};
  const double number = static_cast<double>(anyWeight(input)) * 3.3;
  switch (input.below(8)) {
    case 0:
      return {};
    case 1:
      return static_cast<std::int64_t>(input.byte()) - 128;
    case 2:
      return std::uint64_t{0} - input.byte();
    case 3:
      return number;
    case 4:
      return static_cast<float>(number);
    case 5:
      return kTexts[input.below(kTexts.size())];
    case 6:
      return VEQVector2d(number, 1.0);
    default:
      return VEQVector3d(number, 2.0, static_cast<double>(anyWeight(input)));
  }
}

std::string anyKey(Input& input) {
  static const std::array<std::string, 8> kKeys = {"Name", "Position", "a",         "b",
                                                   "c d",  "",         "Edge From", "x\""};
  return kKeys[input.below(kKeys.size())];
}

std::uint64_t anyIndex(Input& input, std::uint64_t n) {
  const std::uint8_t byte = input.byte();
  if (byte < 0xF0 && n > 0) return byte % n;
  return byte & 1 ? std::numeric_limits<std::uint64_t>::max() - (byte & 6) : n;
}

namespace {

template <class T>
VEQNumberArray arrayOf(const std::vector<std::uint64_t>& indices) {
  internal::RawVector<T> values;
  for (const std::uint64_t index : indices) values.push_back(static_cast<T>(index));
  return VEQNumberArray(std::move(values));
}

}  // namespace

VEQNumberArray anyIndices(Input& input, std::uint64_t n) {
  std::vector<std::uint64_t> indices(input.below(6));
  for (std::uint64_t& index : indices) index = anyIndex(input, n);
  switch (input.below(4)) {
    case 0:
      return arrayOf<double>(indices);
    case 1:
      return arrayOf<float>(indices);
    case 2:
      return arrayOf<std::int64_t>(indices);
    default:
      return arrayOf<std::uint64_t>(indices);
  }
}

void adopt(World& world, Shared<VEQNetwork> network, Input& input) {
  if (!network) return;
  checkNetwork(*network);
  if (network->countVertices() > 64 || network->countEdges() > 256) return;
  NetworkImage model = imageOf(*network);
  keep(world.subjects, Subject{std::move(network), std::move(model)}, input);
}

}  // namespace veq::fuzz
