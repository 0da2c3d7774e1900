#include "veq/natural/sharing.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/child_process.hpp"
#include "tests/support/network_drawing.hpp"
#include "tests/support/temporary_folder.hpp"
#include "veq/natural/network_builder.hpp"
#include "veq/numeric/generic_array.hpp"
#include "veq/numeric/vector_arrays.hpp"

namespace veq::test::sharing_test {
namespace {

using testing::ElementsAre;

// Aligned as memory that is mapped.
class Memory {
 public:
  explicit Memory(std::uint64_t size) : words_(size / 8 + 1), size_(size) {}
  [[nodiscard]] std::span<std::byte> bytes() {
    return {reinterpret_cast<std::byte*>(words_.data()), static_cast<std::size_t>(size_)};
  }

 private:
  std::vector<std::uint64_t> words_;
  std::uint64_t size_;
};

std::shared_ptr<Memory> imageOf(const Network& network) {
  const auto memory = std::make_shared<Memory>(imageSize(network).value());
  EXPECT_TRUE(writeImage(network, memory->bytes()));
  return memory;
}

Result<Network> attached(const std::shared_ptr<Memory>& image, bool trusted = false) {
  AttachOptions options;
  options.trusted = trusted;
  return attachImage(image->bytes(), image, options);
}

// Five vertices, the last one without edges; weights, and a column of every kind.
Network sample(bool directed) {
  BuildOptions options;
  options.vertices = 5;
  options.directed = directed;
  const std::vector<double> sizes{1, 2, 3, 4, 5};
  const std::vector<double> weights{0.5, 1.5, 2.5, 3.5};
  options.vertexWeights = NumberSpan(sizes);
  options.edgeWeights = NumberSpan(weights);
  options.vertexColumns.set("Age", std::make_shared<VEQNumberArray>(
                                       VEQNumberArray::ofIntegers({-1, 2, 3, 4, INT64_MIN})));
  auto mixed = GenericArray::nullFilled(5);
  mixed->replaceObjectAtIndex_withObject(0, "Ada");
  mixed->replaceObjectAtIndex_withObject(1, -7);
  mixed->replaceObjectAtIndex_withObject(2, VEQVector2d(1, 2, kSinglePrecision));
  mixed->replaceObjectAtIndex_withObject(3, 0.1F);
  options.vertexColumns.set("Anything", Shared<PropertyColumn>(std::move(mixed)));
  Shared<VEQVector2dArray> places = VEQVector2dArray::initWithSize_precision(5, kSinglePrecision);
  places->setVector_atIndex({3, 4}, 2);
  options.vertexColumns.set("Place", places);
  Shared<VEQVector3dArray> points = VEQVector3dArray::initWithSize_precision(4, kDoublePrecision);
  points->setVector_atIndex({7, 8, 9}, 3);
  options.edgeColumns.set("", points);
  options.edgeColumns.set(
      "Length", std::make_shared<VEQNumberArray>(VEQNumberArray::ofFloats({0.25F, 1, 2, 3})));
  return Network::build({{0, 1}, {1, 2}, {2, 2}, {0, 2}}, options).value();
}

void expectSample(const Network& network, bool directed) {
  EXPECT_EQ(network.countVertices(), 5U);
  EXPECT_EQ(network.isDirected(), directed);
  EXPECT_THAT(network.sources(), ElementsAre(0, 1, 2, 0));
  EXPECT_THAT(network.targets(), ElementsAre(1, 2, 2, 2));
  EXPECT_THAT(network.neighbours(0), ElementsAre(1, 2));
  EXPECT_THAT(network.edgesOf(2, Direction::kIn),
              directed ? ElementsAre(1, 2, 3)
                       : testing::Matcher<std::vector<std::uint64_t>>(ElementsAre(1, 2, 2, 3)));
  EXPECT_THAT(network.vertexWeights(), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_THAT(network.edgeWeights(), ElementsAre(0.5F, 1.5F, 2.5F, 3.5F));
  EXPECT_THAT(network.vertexKeys(), ElementsAre("Age", "Anything", "Place"));
  EXPECT_THAT(network.edgeKeys(), ElementsAre("", "Length"));
  const auto& ages = static_cast<const VEQNumberArray&>(*network.vertexColumn("Age"));
  EXPECT_EQ(ages.elementType(), ElementType::kInteger);
  EXPECT_EQ(ages.integerValueAtIndex(0), -1);
  EXPECT_EQ(ages.integerValueAtIndex(4), INT64_MIN);
  const auto anything = network.vertexColumn("Anything");
  EXPECT_EQ(anything->kind(), PropertyColumn::Kind::kGeneric);
  EXPECT_EQ(anything->objectAtIndex(0), PropertyValue("Ada"));
  EXPECT_EQ(anything->objectAtIndex(1), PropertyValue(-7));
  EXPECT_EQ(anything->objectAtIndex(2), PropertyValue(VEQVector2d(1, 2)));
  EXPECT_EQ(anything->objectAtIndex(2).vector2d()->precision(), kSinglePrecision);
  EXPECT_EQ(anything->objectAtIndex(3), PropertyValue(0.1F));
  EXPECT_TRUE(anything->objectAtIndex(4).isNull());
  const auto& places = static_cast<const VEQVector2dArray&>(*network.vertexColumn("Place"));
  EXPECT_EQ(places.kind(), PropertyColumn::Kind::kVector2d);
  EXPECT_EQ(places.precision(), kSinglePrecision);
  EXPECT_EQ(places.vectorAtIndex(2), VEQVector2d(3, 4));
  EXPECT_EQ(network.edgeColumn("")->objectAtIndex(3), PropertyValue(VEQVector3d(7, 8, 9)));
  EXPECT_EQ(network.edgeColumn("Length")->objectAtIndex(0), PropertyValue(0.25F));
}

TEST(NetworkImage, HoldsAllOfANetwork) {
  for (const bool directed : {false, true}) {
    for (const bool trusted : {false, true}) {
      const auto image = imageOf(sample(directed));
      expectSample(attached(image, trusted).value(), directed);
    }
  }
}

// Lists that have grown lie in no order and with gaps.
TEST(NetworkImage, PacksListsThatHaveGrown) {
  const Network network(drawDirected("0-1", 3));
  for (const char* edge : {"1-0", "0-2", "2-0", "0-0", "1-2"}) insert(*network.published(), edge);
  const auto image = imageOf(network);
  const Network copy = attached(image).value();
  EXPECT_THAT(copy.neighbours(0), ElementsAre(1, 2, 0));
  EXPECT_THAT(copy.neighbours(1), ElementsAre(0, 2));
  EXPECT_THAT(copy.edgesOf(0, Direction::kIn), ElementsAre(1, 3, 4));
  // The head, of 64 bytes; two lists of ends of 6 x 4; and for each direction 3 rows of 8 bytes and
  // two pools of 6 x 4, each from a multiple of 64 on. The last section is not filled up.
  EXPECT_EQ(image->bytes().size(), 64U + 8 * 64 - 40);
}

TEST(NetworkImage, OfANetworkWithoutAnythingIsOne) {
  EXPECT_EQ(attached(imageOf(Network(drawUndirected("")))).value().countEdges(), 0U);
  EXPECT_EQ(attached(imageOf(NetworkBuilder().build().value())).value().countVertices(), 0U);
}

TEST(NetworkImage, StaysAsItIsAndIsLetGoOf) {
  const auto image = imageOf(sample(true));
  const std::vector<std::byte> before(image->bytes().begin(), image->bytes().end());
  std::optional<Network> network = attached(image).value();
  network->addEdge(4, 0);
  const std::vector<float> nines(5, 9.0F);
  ASSERT_TRUE(network->setVertexWeights(nines));
  network->published()->vertexAtIndex(0)->setProperty_forKey(5, "Age");
  EXPECT_EQ(network->vertexNumbers("Age").value()[0], 5);
  EXPECT_EQ(network->edgeNumbers("Length").value().back(), 0);
  EXPECT_EQ(before, std::vector<std::byte>(image->bytes().begin(), image->bytes().end()));
  // Nothing of the network stands on the image any more.
  EXPECT_EQ(image.use_count(), 1);
}

TEST(NetworkImage, RefusesWhatIsNone) {
  const auto image = imageOf(sample(true));
  const auto text = [&](std::size_t size) {
    const auto result = attachImage(image->bytes().first(size), image);
    EXPECT_EQ(result.error().kind(), ErrorKind::kFormat);
    return result.error().text();
  };
  EXPECT_EQ(text(0), "not the image of a network");
  EXPECT_EQ(text(63), "not the image of a network");
  EXPECT_EQ(text(64), "a damaged image");
  EXPECT_EQ(text(image->bytes().size() - 1), "a damaged image");
  image->bytes()[8] = std::byte{9};
  EXPECT_EQ(text(image->bytes().size()), "an image of another release");
  image->bytes()[0] ^= std::byte{1};
  EXPECT_EQ(text(image->bytes().size()), "not the image of a network");
}

// Every byte of it is spoilt in turn: there is an error, or a network that can be asked and
// changed.
TEST(NetworkImage, SurvivesEveryChangedByte) {
  for (const bool directed : {false, true}) {
    const auto image = imageOf(sample(directed));
    std::uint64_t refused = 0;
    for (std::byte& byte : image->bytes()) {
      const std::byte right = std::exchange(byte, ~byte);
      if (const auto network = attached(image)) {
        for (std::uint64_t v = 0; v < network->countVertices(); ++v) {
          EXPECT_LE(network->neighbours(v, Direction::kAll).size(), 8U);
        }
        Network copy = network->copy().value();
        if (copy.countVertices() > 0) copy.addEdge(0, 0);
      } else {
        ++refused;
      }
      byte = right;
    }
    EXPECT_GT(refused, 300U);
    expectSample(attached(image).value(), directed);
  }
}

TEST(NetworkImage, NeedsRoomAndAlignment) {
  const Network network(drawDirected("0-1"));
  Memory memory(4096);
  const std::uint64_t size = imageSize(network).value();
  // As above, with 2 rows of 8 bytes and one edge.
  EXPECT_EQ(size, 64U + 8 * 64 - 60);
  EXPECT_EQ(writeImage(network, memory.bytes().first(size - 1)).error().text(),
            "515 bytes for an image of 516");
  ASSERT_TRUE(writeImage(network, memory.bytes().first(size)));
  std::memmove(memory.bytes().data() + 4, memory.bytes().data(), size);
  EXPECT_EQ(attachImage(memory.bytes().subspan(4), nullptr).error().text(),
            "an image that is not aligned to 8 bytes");
}

// An object that can be archived, and one that cannot.
class Shape : public PropertyObject {
 public:
  explicit Shape(std::string form) : form_(std::move(form)) {}
  [[nodiscard]] std::string description() const override { return "a shape"; }
  [[nodiscard]] PropertyValue archivedForm() const override {
    return form_.empty() ? PropertyValue() : PropertyValue(form_);
  }

 private:
  std::string form_;
};

TEST(NetworkImage, TakesObjectsInTheirArchivedForm) {
  Network network(drawDirected("0-1"));
  network.published()->vertexAtIndex(0)->setProperty_forKey(std::make_shared<Shape>("round"),
                                                            "Shape");
  EXPECT_EQ(attached(imageOf(network)).value().vertexColumn("Shape")->objectAtIndex(0),
            PropertyValue("round"));
  network.published()->vertexAtIndex(1)->setProperty_forKey(std::make_shared<Shape>(""), "Shape");
  EXPECT_EQ(imageSize(network).error().text(), "column Shape: value 1 has no archived form");
  EXPECT_FALSE(SharedNetwork::of(network));
}

TEST(NetworkImage, IsGivenUpAtAStop) {
  StopSource source;
  source.requestStop();
  Progress progress;
  progress.stop = source.token();
  const Network network(drawDirected("0-1"));
  Memory memory(4096);
  EXPECT_EQ(writeImage(network, memory.bytes(), progress).error().kind(), ErrorKind::kStopped);
  EXPECT_EQ(SharedNetwork::of(network, progress).error().kind(), ErrorKind::kStopped);
}

TEST(SharedNetwork, IsOneForProcesses) {
  std::optional<SharedNetwork> shared = SharedNetwork::of(sample(true)).value();
  EXPECT_EQ(shared->bytes(), imageSize(sample(true)).value());
  const auto child = [&] {
    return statusOfChild([&] {
      Network network = attachNetwork(shared->descriptor()).value();
      expectSample(network, true);
      network.addEdge(4, 4);
      network.published()->setWeightValue_atEdgeIndex(9, 0);
      EXPECT_THAT(network.neighbours(4), ElementsAre(4));
      return 0;
    });
  };
  EXPECT_EQ(child(), 0);
  EXPECT_EQ(child(), 0);
  const Network network = attachNetwork(shared->descriptor()).value();
  shared.reset();
  expectSample(network, true);
}

// Nobody can take from under it what a network stands on.
TEST(SharedNetwork, CannotBeChangedOrShortened) {
  const SharedNetwork shared = SharedNetwork::of(sample(false)).value();
  EXPECT_EQ(ftruncate(shared.descriptor(), 0), -1);
  EXPECT_EQ(errno, EPERM);
  EXPECT_EQ(pwrite(shared.descriptor(), "x", 1, 0), -1);
  EXPECT_EQ(errno, EPERM);
  EXPECT_EQ(mmap(nullptr, 64, PROT_READ | PROT_WRITE, MAP_SHARED, shared.descriptor(), 0),
            MAP_FAILED);
  EXPECT_NE(fcntl(shared.descriptor(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST(SharedNetwork, IsAttachedFromSealedFilesAlone) {
  EXPECT_EQ(attachNetwork(-1).error().text(), "Bad file descriptor");
  const TemporaryFolder folder;
  const int file = open(folder.path("plain").c_str(), O_CREAT | O_RDWR, 0600);
  EXPECT_EQ(attachNetwork(file).error().text(), "not a sealed memory file");
  close(file);
  const int open = memfd_create("open", MFD_ALLOW_SEALING);
  EXPECT_EQ(ftruncate(open, 4096), 0);
  EXPECT_EQ(attachNetwork(open).error().text(), "not a sealed memory file");
  EXPECT_EQ(fcntl(open, F_ADD_SEALS, F_SEAL_WRITE | F_SEAL_SHRINK), 0);
  EXPECT_EQ(attachNetwork(open).error().text(), "not the image of a network");
  close(open);
}

// An ordinary file that this process maps by itself.
TEST(NetworkImage, CanLieInAMappedFile) {
  const TemporaryFolder folder;
  const auto image = imageOf(sample(true));
  const int file = open(folder.path("image").c_str(), O_CREAT | O_RDWR, 0600);
  ASSERT_EQ(write(file, image->bytes().data(), image->bytes().size()),
            static_cast<ssize_t>(image->bytes().size()));
  const std::size_t size = image->bytes().size();
  void* const at = mmap(nullptr, size, PROT_READ, MAP_SHARED, file, 0);
  close(file);
  ASSERT_NE(at, MAP_FAILED);
  bool unmapped = false;
  {
    const Shared<const void> owner(at, [&unmapped, size](void* memory) {
      munmap(memory, size);
      unmapped = true;
    });
    std::optional<Network> network =
        attachImage({static_cast<const std::byte*>(at), size}, owner).value();
    const auto child = statusOfChild([&] {
      expectSample(*network, true);
      return 0;
    });
    EXPECT_EQ(child, 0);
    expectSample(*network, true);
  }
  EXPECT_TRUE(unmapped);
}

}  // namespace
}  // namespace veq::test::sharing_test
