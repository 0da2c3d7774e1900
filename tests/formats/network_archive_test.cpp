// The archive that keeps everything, and what the natural reader makes of archives of both kinds.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/formats/reading_support.hpp"
#include "tests/support/archives.hpp"
#include "veq/formats/archive_file.hpp"
#include "veq/formats/writing.hpp"

namespace veq::network_archive_test {
namespace {

using namespace test;

std::string keyed(std::string_view key) {
  const auto length = static_cast<unsigned char>(key.size());
  const std::string head = length < 24 ? std::string{static_cast<char>(0x60 + length)}
                                       : std::string{'\x78', static_cast<char>(length)};
  return head + std::string(key);
}

/// A map of entries, each a key and the hexadecimal digits of its value.
struct Entry {
  std::string_view key;
  std::string value;
};
std::string mapOf(const std::vector<Entry>& entries) {
  std::string bytes{static_cast<char>(0xA0 + entries.size())};
  for (const Entry& entry : entries) bytes += keyed(entry.key) + fromHex(entry.value);
  return bytes;
}

/// 0 -> 1 of weight 0.5, and a third vertex; the entry of the key, if any, has another value.
std::vector<Entry> smallEntries() {
  return {{"VEQ.network.version", "02"},
          {"VEQ.network.directed", "f5"},
          {"VEQ.network.vertices", "03"},
          {"VEQ.network.from", "d847 48 0000000000000000"},
          {"VEQ.network.to", "d847 48 0100000000000000"},
          {"VEQ.network.edgeWeights", "d855 44 0000003f"},
          {"VEQ.network.vertexProperties", "a0"},
          {"VEQ.network.edgeProperties", "a0"}};
}
std::string smallArchive(std::string_view key = "", const std::string& value = "") {
  std::vector<Entry> entries = smallEntries();
  for (Entry& entry : entries) {
    if (entry.key == key) entry.value = value;
  }
  return mapOf(entries);
}

Reading readBytes(const std::string& bytes, const ReadOptions& options = {}) {
  return readNetworkText(bytes, options);
}

std::string bytesOf(const Shared<VEQNetwork>& network) {
  Result<std::string> bytes = networkText(Network(network), FileFormat::kArchive);
  return std::move(bytes).value();
}

/// 0 -> 1, 2 -> 0, 1 -> 1 and two more vertices.
Shared<VEQNetwork> fiveVertices(bool directed, Weighted weighted) {
  const auto vector = [](std::initializer_list<std::uint64_t> ends) {
    internal::RawVector<std::uint64_t> all(ends.size());
    std::copy(ends.begin(), ends.end(), all.begin());
    return all;
  };
  const auto weights = [](std::initializer_list<float> each) {
    internal::Weights all(each.size());
    std::copy(each.begin(), each.end(), all.begin());
    return all;
  };
  internal::NetworkDraft draft;
  draft.vertexCount = 5;
  draft.from = vector({0, 2, 1});
  draft.to = vector({1, 0, 1});
  draft.directed = directed;
  if (weighted != Weighted::kNot && weighted != Weighted::kEdges) {
    draft.verticesWeights = weights({1.5F, 2.5F, 3.5F, 4.5F, 5.5F});
  }
  if (weighted != Weighted::kNot && weighted != Weighted::kVertices) {
    draft.edgesWeights = weights({-1.0F, 0.1F, 1e-30F});
  }
  return internal::CoreAccess::buildShared(std::move(draft));
}

std::string errorOf(const std::string& bytes) {
  const Reading reading = readBytes(bytes);
  return reading ? "" : reading.error().text();
}

TEST(NetworkArchive, HoldsItsEntriesInTheirOrder) {
  const Reading reading = readNetworkText("*Vertices 3\n*Arcs\n1 2 0.5\n");
  EXPECT_EQ(toHex(bytesOf(reading.value().published())), toHex(smallArchive()));
}

TEST(NetworkArchive, IsReadByItsHandWrittenBytes) {
  const Reading reading = readBytes(smallArchive());
  EXPECT_EQ(summaryOf(reading), "directed 3: 0>1 w(0.5)");
  EXPECT_EQ(reading.format(), FileFormat::kArchive);
  EXPECT_THAT(notesOf(reading), IsEmpty());
  EXPECT_FALSE(reading.value().published()->isVertexWeighted());
  EXPECT_TRUE(reading.value().published()->isEditable());
}

TEST(NetworkArchive, KeepsEverything) {
  for (const Weighted weighted :
       {Weighted::kNot, Weighted::kVertices, Weighted::kEdges, Weighted::kBoth}) {
    for (const bool directed : {false, true}) {
      const auto network = fiveVertices(directed, weighted);
      setAllKindsOfColumns(*network);
      // Nothing but the table itself lets such a key in.
      auto& core = internal::CoreAccess::of(*network);
      core.properties->vertices.set("Vertex Weight", generic({"a", {}, 3}));
      core.properties->edges.set("Edge From", generic({1.5}));
      const Reading reading = readBytes(bytesOf(network));
      ASSERT_TRUE(reading) << reading.error().text();
      EXPECT_THAT(notesOf(reading), IsEmpty());
      const VEQNetwork& back = *reading.value().published();
      EXPECT_EQ(back.countVertices(), 5U);
      EXPECT_EQ(back.isDirected(), directed);
      EXPECT_EQ(back.isVertexWeighted(), network->isVertexWeighted());
      EXPECT_EQ(back.isEdgeWeighted(), network->isEdgeWeighted());
      EXPECT_EQ(floatsOf(*back.verticesWeightValues()), floatsOf(*network->verticesWeightValues()));
      EXPECT_EQ(floatsOf(*back.edgesWeightValues()), floatsOf(*network->edgesWeightValues()));
      EXPECT_EQ(edgesOf(back), "0>1 2>0 1>1");
      expectSameTable(*network->propertiesOfVertices(), *back.propertiesOfVertices());
      expectSameTable(*network->propertiesOfEdges(), *back.propertiesOfEdges());
      EXPECT_EQ(vertexTexts(back, "Vertex Weight"), (Texts{"a", "<null>", "3"}));
      EXPECT_EQ(edgeTexts(back, "Edge From"), Texts{"1.5"});
      EXPECT_EQ(bytesOf(reading.value().published()), bytesOf(network));
    }
  }
}

TEST(NetworkArchive, KeepsThatThereIsNothing) {
  const Shared<VEQNetwork> network = VEQNetwork::initWithVertexCapacity_edgeCapacity(0, 0);
  EXPECT_EQ(summaryOf(readBytes(bytesOf(network))), "undirected 0:");
}

TEST(NetworkArchive, ColumnsComeBackEditable) {
  const auto network = fiveVertices(true, Weighted::kNot);
  setAllKindsOfColumns(*network);
  const Reading reading = readBytes(bytesOf(network));
  for (const auto& [key, column] : *reading.value().published()->propertiesOfVertices()) {
    EXPECT_TRUE(column->isEditable()) << key;
  }
}

TEST(NetworkArchive, RefusesObjectsWithoutAnArchivedForm) {
  const auto network = fiveVertices(true, Weighted::kNot);
  network->setPropertyValue_forKey_atVertexIndex(
      PropertyValue(Shared<const PropertyObject>(std::make_shared<Stranger>())), "Guest", 1);
  const Result<std::string> bytes = networkText(Network(network), FileFormat::kArchive);
  ASSERT_FALSE(bytes);
  EXPECT_EQ(bytes.error().kind(), ErrorKind::kUnsupported);
  EXPECT_EQ(bytes.error().text(), "A property cannot be archived.");
}

TEST(NetworkArchive, EachEntryButWeightsMustBeThereAndOfItsType) {
  const std::vector<Entry> entries = smallEntries();
  for (std::size_t missing = 1; missing < entries.size(); ++missing) {
    std::vector<Entry> others = entries;
    const std::string key(others[missing].key);
    const std::string complaint =
        "the archive's entry \"" + key + "\" is missing or not what it should be";
    others.erase(others.begin() + static_cast<std::ptrdiff_t>(missing));
    if (key == "VEQ.network.edgeWeights") {
      EXPECT_EQ(summaryOf(readBytes(mapOf(others))), "directed 3: 0>1");
    } else {
      EXPECT_EQ(errorOf(mapOf(others)), complaint);
    }
    // A bignum is a value of a column, and nothing that an archive consists of.
    EXPECT_EQ(errorOf(smallArchive(key, "c2 41 02")), complaint);
  }
  EXPECT_EQ(errorOf(smallArchive("VEQ.network.version", "f4")),
            "the archive's entry \"VEQ.network.version\" is missing or not what it should be");
  // Ends are unsigned integers, weights 32-bit floats.
  EXPECT_EQ(errorOf(smallArchive("VEQ.network.from", "d84f 48 0000000000000000")),
            "the archive's entry \"VEQ.network.from\" is missing or not what it should be");
  EXPECT_EQ(errorOf(smallArchive("VEQ.network.edgeWeights", "d856 48 0000000000000000")),
            "the archive's entry \"VEQ.network.edgeWeights\" is missing or not what it should be");
}

TEST(NetworkArchive, RefusesWhatDoesNotGoTogether) {
  EXPECT_EQ(errorOf(smallArchive("VEQ.network.version", "03")),
            "an archive of version 3, where 2 is the newest known");
  EXPECT_EQ(errorOf(smallArchive("VEQ.network.vertices", "01")),
            "an edge of the archive ends at vertex 1, and there are 1");
  EXPECT_EQ(errorOf(smallArchive("VEQ.network.from", "d847 48 ffffffffffffffff")),
            "an edge of the archive ends at vertex 18446744073709551615, and there are 3");
  EXPECT_EQ(errorOf(smallArchive("VEQ.network.to", "d847 40")),
            "the archive has 1 sources of edges and 0 targets");
  EXPECT_EQ(errorOf(smallArchive("VEQ.network.edgeWeights", "d855 48 0000003f 0000003f")),
            "the archive has 2 weights for 1 edges");
}

// The map's head is one byte, and so is that of each key; a number is one, an array of ends eleven.
TEST(NetworkArchive, SaysWhichByteIsWrong) {
  const auto place = [](const std::string& bytes) {
    ReadOptions options;
    options.format = FileFormat::kArchive;
    return summaryOf(readBytes(bytes, options)).substr(0, 13);
  };
  EXPECT_EQ(place(smallArchive("VEQ.network.version", "03")), "error 1:3 an ");
  EXPECT_EQ(place(smallArchive("VEQ.network.vertices", "1b 4000000000000000")), "error 1:46 46");
  EXPECT_EQ(place(smallArchive("VEQ.network.from", "d847 48 0700000000000000")), "error 1:68 an");
  EXPECT_EQ(place(smallArchive("VEQ.network.to", "d847 40")), "error 1:96 th");
  EXPECT_EQ(place(smallArchive("VEQ.network.edgeWeights", "d855 48 0000003f 0000003f")),
            "error 1:122 t");
  // The key that would follow ends with the file.
  EXPECT_EQ(place(smallArchive().substr(0, 100)), "error 1:96 no");
  EXPECT_EQ(place(""), "error 1:1 not");
}

TEST(NetworkArchive, FewBytesCannotAskForManyVertices) {
  // 2^62 and 2 000 000 vertices; the texts are of 259 and 255 bytes.
  const std::string huge = smallArchive("VEQ.network.vertices", "1b 4000000000000000");
  EXPECT_EQ(errorOf(huge), "4611686018427387904 vertices, more than the " +
                               std::to_string(64 * huge.size() + 1000000) + " that a text of " +
                               std::to_string(huge.size()) + " bytes may have");
  const std::string large = smallArchive("VEQ.network.vertices", "1a 001e8480");
  EXPECT_NE(errorOf(large), "");
  ReadOptions options;
  options.mostVertices = 2'000'000;
  const Reading reading = readBytes(large, options);
  ASSERT_TRUE(reading);
  EXPECT_EQ(reading.value().countVertices(), 2'000'000U);
}

TEST(NetworkArchive, EntriesOfOthersAreSkipped) {
  std::vector<Entry> entries = smallEntries();
  entries.push_back({"Somebody's", "83 01 02 a0"});
  EXPECT_EQ(summaryOf(readBytes(mapOf(entries))), "directed 3: 0>1 w(0.5)");
}

TEST(NetworkArchive, NoTruncationIsANetwork) {
  const auto network = fiveVertices(true, Weighted::kBoth);
  setAllKindsOfColumns(*network);
  for (const std::string& bytes : {smallArchive(), bytesOf(network)}) {
    ReadOptions options;
    options.format = FileFormat::kArchive;
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      const Reading reading = readBytes(bytes.substr(0, length), options);
      ASSERT_FALSE(reading) << length;
      EXPECT_EQ(reading.error().text(), "not a whole archive");
    }
    EXPECT_EQ(errorOf(bytes + '\0'), "not a whole archive");
  }
}

TEST(NetworkArchive, CorruptedBytesGiveAnErrorOrASoundNetwork) {
  const auto network = fiveVertices(true, Weighted::kBoth);
  setAllKindsOfColumns(*network);
  const std::string whole = bytesOf(network);
  ReadOptions options;
  options.format = FileFormat::kArchive;
  options.mostVertices = 1000;
  std::size_t networks = 0;
  std::size_t refused = 0;
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const int change : {0x01, 0x20, 0x80, 0xff}) {
      std::string bytes = whole;
      bytes[at] = static_cast<char>(bytes[at] ^ change);
      const Reading reading = readBytes(bytes, options);
      ++(reading ? networks : refused);
      if (!reading) continue;
      const VEQNetwork& back = *reading.value().published();
      for (const auto& [from, to] : endsOf(back))
        EXPECT_LT(std::max(from, to), back.countVertices());
      EXPECT_TRUE(readBytes(bytesOf(reading.value().published()), options));
    }
  }
  // Some bytes are data, and some are structure.
  EXPECT_GT(networks, 100U);
  EXPECT_GT(refused, 100U);
}

TEST(NetworkArchive, PublishedOperationsTakeItForNone) {
  const std::string bytes = smallArchive();
  VEQKeyedUnarchiver unarchiver(bytes);
  EXPECT_FALSE(VEQNetwork::initWithCoder(unarchiver));
}

TEST(NetworkArchive, FilesOfEitherKindAreRead) {
  const TemporaryFolder folder;
  const std::string newer = folder.write("a.veqa", smallArchive());
  const Owned<VEQNetwork> network = networkWithArchiveFile(newer);
  ASSERT_TRUE(network);
  EXPECT_EQ(network->countVertices(), 3U);
  EXPECT_FALSE(
      networkWithArchiveFile(folder.write("b.veqa", smallArchive("VEQ.network.vertices", "01"))));
  const std::string older = folder.write("c.veqa", archived(*threeEdges(true, Weighted::kBoth)));
  EXPECT_EQ(networkWithArchiveFile(older)->countVertices(), 3U);
}

// Published archives have the weights of either kind under their own name, and a weight for each of
// all vertices, so that nothing is lost as long as nobody crosses the flags.
TEST(PublishedArchive, IsReadForWhatWasWrittenIntoIt) {
  for (const Weighted weighted :
       {Weighted::kNot, Weighted::kVertices, Weighted::kEdges, Weighted::kBoth}) {
    const auto network = fiveVertices(true, weighted);
    const Reading reading = readBytes(archived(*network));
    ASSERT_TRUE(reading) << reading.error().text();
    const VEQNetwork& back = *reading.value().published();
    EXPECT_EQ(back.countVertices(), 5U);
    EXPECT_EQ(back.isVertexWeighted(), network->isVertexWeighted());
    EXPECT_EQ(back.isEdgeWeighted(), network->isEdgeWeighted());
    EXPECT_EQ(floatsOf(*back.verticesWeightValues()), floatsOf(*network->verticesWeightValues()));
    EXPECT_EQ(floatsOf(*back.edgesWeightValues()), floatsOf(*network->edgesWeightValues()));
  }
  const auto nothing = VEQNetwork::initWithVertexCapacity_edgeCapacity(0, 0);
  EXPECT_EQ(summaryOf(readBytes(archived(*nothing))), "undirected 0:");
}

TEST(PublishedArchive, CannotAskForManyVerticesEither) {
  const std::string bytes = mapOf({{"VEQ.xnet.directed", "f5"},
                                   {"VEQ.xnet.edgeWeighted", "f4"},
                                   {"VEQ.xnet.vertexWeighted", "f4"},
                                   {"VEQ.xnet.edgesProperties", "a0"},
                                   {"VEQ.xnet.verticesProperties", "a0"},
                                   {"VEQ.xnet.fromList", "d847 48 0000000000000000"},
                                   {"VEQ.xnet.toList", "d847 48 ffffffffffff0000"}});
  EXPECT_EQ(errorOf(bytes), "281474976710656 vertices, more than the " +
                                std::to_string(64 * bytes.size() + 1000000) + " that a text of " +
                                std::to_string(bytes.size()) + " bytes may have");
}

}  // namespace
}  // namespace veq::network_archive_test
