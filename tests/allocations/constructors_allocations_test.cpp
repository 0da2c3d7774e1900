// Every way to make a network, each of whose allocations is made to fail: no network, nothing
// thrown, nothing leaked.
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/formats/format_support.hpp"
#include "tests/support/archives.hpp"
#include "tests/support/failing_allocation.hpp"
#include "tests/support/network_drawing.hpp"
#include "tests/support/network_dump.hpp"
#include "veq/base/diagnostic_log.hpp"
#include "veq/formats/archive_file.hpp"
#include "veq/models/random_generator.hpp"
#include "veq/network/network.hpp"

namespace veq::test::constructors_allocations_test {
namespace {

using Network = Shared<VEQNetwork>;
using N = VEQNetwork;

const std::string kLongName = "a name that is too long to lie within the string";

// What the constructors are given.
const VEQNumberArray from = VEQNumberArray::ofIndices({0, 1, 2, 2});
const VEQNumberArray to = VEQNumberArray::ofDoubles({1, 2, 2, 0});
const VEQNumberArray ofVertices = VEQNumberArray::ofFloats({1, 2, 3});
const VEQNumberArray ofEdges = VEQNumberArray::ofFloats({1, 2, 3, 4});

Network makeSource() {
  Network network = N::networkWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
      from, to, true, &ofVertices, &ofEdges);
  network->setPropertyValue_forKey_atVertexIndex(kLongName, "Name", 1);
  network->setPropertyValue_forKey_atVertexIndex(4.5, "Age", 2);
  network->setPropertyValue_forKey_atVertexIndex(VEQVector2d(1, 2), "Plane", 0);
  network->setPropertyValue_forKey_atVertexIndex(VEQVector3d(1, 2, 3), "Space", 0);
  network->setPropertyValue_forKey_atEdgeIndex(kLongName, "Kind", 0);
  return network;
}

const Network source = makeSource();
const VEQVertexArray vertices = source->vertices();
const VEQEdgeArray edges = source->edges();

VEQVertexArray ends(bool target) {
  std::vector<Shared<VEQVertex>> handles;
  for (const VEQEdge& edge : edges) handles.push_back(target ? edge.toVertex() : edge.fromVertex());
  return handles;
}
const VEQVertexArray sources = ends(false);
const VEQVertexArray targets = ends(true);

const std::string verticesText = kLongName + "\nb\nc";
const std::string edgesText = "b c\nc " + kLongName.substr(0, 1) + "\nb b";
const std::string fromText = kLongName + "\nb\nc";
const std::string toText = "b\nc\n" + kLongName;
const VEQNumberArray three = VEQNumberArray::ofFloats({1, 2, 3});
const std::string edgeList = kLongName + " b 0.5\nb c 1.5\n" + kLongName + "2 c 1\n";

const std::string xnet =
    "#vertices 3 weighted\n\"" + kLongName + "\" 1.5\n\"tab\\t\" 2\n\"c\" 3\n" +
    "#edges weighted directed\n0 1 0.5\n1 2 1.5\n2 2 1\n" +
    "#v \"a key that is too long to lie within it\" n\n1\n2\n3\n#v \"Plane\" v2\n1 2\n3 4\n5 6\n"
    "#v \"Space\" v3\n1 2 3\n4 5 6\n7 8 9\n#v \"Text\" s\n\"" +
    kLongName +
    "\"\n\"x\"\n\"y\"\n#e \"Number\" n\n1\n2\n3\n#e \"Plane\" v2\n1 2\n3 4\n5 6\n"
    "#e \"Space\" v3\n1 2 3\n4 5 6\n7 8 9\n#e \"Text\" s\n\"\"\n\"" +
    kLongName + "\"\n\"y\"\n";

const std::string pajek = "*Vertices 4\r\n1 \"" + kLongName +
                          "\" 0.1 0.2 0.3\r\n2 \"gr\xC3\xBC\xC3\x9F\" 0.5 0.5 0.5\r\n3 \"c\"\r\n"
                          "*Arcs\r\n1 2 2.5\r\n2 3\r\n4 1 1\r\n";

std::string utf16(const std::string& utf8, bool bigEndian) {
  std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    unsigned code = static_cast<unsigned char>(utf8[i]);
    if (code >= 0xC0) code = (code & 3) << 6 | (static_cast<unsigned char>(utf8[++i]) & 0x3F);
    const char low = static_cast<char>(code);
    bytes += bigEndian ? std::string{'\0', low} : std::string{low, '\0'};
  }
  return bytes;
}

std::string latin1(const std::string& utf8) {
  std::string bytes;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    unsigned code = static_cast<unsigned char>(utf8[i]);
    if (code >= 0xC0) code = (code & 3) << 6 | (static_cast<unsigned char>(utf8[++i]) & 0x3F);
    bytes += static_cast<char>(code);
  }
  return bytes;
}

/// The files that are read, which stand while the program runs.
struct Files {
  TemporaryFolder folder;
  std::string xnetFile = folder.write("a.xnet", xnet);
  std::string xnetUrl = "file://" + xnetFile;
  std::string pajekUtf8 = folder.write("a.net", pajek);
  std::string pajekMarked = folder.write("b.net", "\xEF\xBB\xBF" + pajek);
  std::string pajekLatin1 = folder.write("c.net", latin1(pajek));
  std::string pajekLittle = folder.write("d.net", utf16(pajek, false));
  std::string pajekBig = folder.write("e.net", utf16(pajek, true));
  std::string archive = folder.write("a.veq", archived(*source));
};
const Files& files() {
  static const Files made;
  return made;
}

const std::string archiveBytes = archived(*source);

void seedWithOne() { VEQRandomGenerator::sharedRandomGenerator()->setRandomSeed(1); }

struct Way {
  const char* name;
  Network (*make)();
  std::uint64_t edges;
};

void PrintTo(const Way& way, std::ostream* out) { *out << way.name; }

class EveryConstructor : public testing::TestWithParam<Way> {};

TEST_P(EveryConstructor, MakesANetworkOrNone) {
  const Way& way = GetParam();
  // With a log that formats its lines and one that does not.
  for (const DiagnosticSink& sink : {DiagnosticSink(), DiagnosticSink([](std::string_view) {})}) {
    DiagnosticSink previous = setDiagnosticSink(sink);
    seedWithOne();
    const std::string whole = dump(way.make().get());
    Network made;
    std::uint64_t none = 0;
    const std::uint64_t failures =
        forEachFailingAllocation([] { return (seedWithOne(), 0); }, [&](int) { made = way.make(); },
                                 [&](int, bool failed) {
                                   EXPECT_FALSE(failed) << "It must not throw.";
                                   none += !made;
                                   if (made) {
                                     EXPECT_EQ(made->countEdges(), way.edges);
                                     EXPECT_EQ(dump(made.get()), whole);
                                   } else {
                                     EXPECT_TRUE(FailingAllocation::happened());
                                   }
                                   made.reset();
                                 });
    EXPECT_GE(failures, 4U);
    EXPECT_GE(none, failures);
    setDiagnosticSink(std::move(previous));
  }
  EXPECT_EQ(source->countEdges(), 4U);
}

const Way kIndexed[] = {
    {"links", [] { return N::networkWithLinksIndexedFrom_toIndices(from, to); }, 4},
    {"links_directed",
     [] { return N::networkWithLinksIndexedFrom_toIndices_directed(from, to, true); }, 4},
    {"links_weights",
     [] {
       return N::networkWithLinksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
           from, to, false, &ofVertices, &ofEdges);
     },
     4},
    {"count_links",
     [] { return N::networkWithVerticesCount_linksIndexedFrom_toIndices(5, from, to); }, 4},
    {"count_links_directed",
     [] {
       return N::networkWithVerticesCount_linksIndexedFrom_toIndices_directed(5, from, to, true);
     },
     4},
    {"count_links_weights",
     [] {
       return N::
           networkWithVerticesCount_linksIndexedFrom_toIndices_directed_verticesWeights_edgesWeights(
               3, from, to, true, &ofVertices, &ofEdges);
     },
     4},
    {"capacity", [] { return N::networkWithVertexCapacity_edgeCapacity(5, 5); }, 0},
    {"capacity_directed",
     [] { return N::networkWithVertexCapacity_edgeCapacity_directed(5, 5, true); }, 0},
    {"capacity_weighted",
     [] {
       return N::networkWithVertexCapacity_edgeCapacity_directed_verticesWeighted_edgesWeighted(
           5, 5, true, true, true);
     },
     0},
};

const Way kHandles[] = {
    {"vertices_edges", [] { return N::networkWithVertices_edges(vertices, edges); }, 4},
    {"vertices_edges_directed",
     [] { return N::networkWithVertices_edges_directed(vertices, edges, true); }, 4},
    {"vertices_edges_weights",
     [] {
       return N::networkWithVertices_edges_directed_verticesWeights_edgesWeights(
           vertices, edges, true, &ofVertices, &ofEdges);
     },
     4},
    {"ends",
     [] { return N::networkWithVertices_linkFromVertices_toVertices(vertices, sources, targets); },
     4},
    {"ends_directed",
     [] {
       return N::networkWithVertices_linkFromVertices_toVertices_directed(vertices, sources,
                                                                          targets, true);
     },
     4},
    {"ends_alone",
     [] {
       return N::networkWithVertices_linkFromVertices_toVertices(std::nullopt, sources, targets);
     },
     4},
    {"ends_weights",
     [] {
       return N::
           networkWithVertices_linkFromVertices_toVertices_directed_verticesWeights_edgesWeights(
               std::nullopt, sources, targets, true, &ofVertices, &ofEdges);
     },
     4},
    {"copy", [] { return N::networkWithNetwork(*source); }, 4},
    {"copy_directed", [] { return N::networkWithNetwork_directed(*source, false); }, 4},
    {"copy_weights",
     [] {
       return N::networkWithNetwork_directed_verticesWeights_edgesWeights(*source, true, nullptr,
                                                                          &ofEdges);
     },
     4},
    {"copy_expanding",
     [] {
       return N::networkWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith(*source, 9, 9);
     },
     4},
    {"copy_expanding_directed",
     [] {
       return N::networkWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith_directed(
           *source, 9, 9, true);
     },
     4},
    {"copy_expanding_weights",
     [] {
       return N::
           networkWithNetwork_byExpandingVertexCapacityWith_edgeCapacityWith_directed_verticesWeights_edgesWeights(
               *source, 9, 9, true, &ofVertices, nullptr);
     },
     4},
};

const Way kTexts[] = {
    {"edge_names", [] { return N::networkWithVerticesString_edgesString(verticesText, edgesText); },
     3},
    {"edge_names_directed",
     [] {
       return N::networkWithVerticesString_edgesString_directed(verticesText, edgesText, true);
     },
     3},
    {"edge_names_weights",
     [] {
       return N::networkWithVerticesString_edgesString_directed_verticesWeights_edgesWeights(
           verticesText, edgesText, true, &three, nullptr);
     },
     3},
    {"edge_names_weights_init",
     [] {
       return internal::sharedOrNull(
           N::initWithVerticesString_edgesString_directed_verticesWeights_edgesWeights(
               verticesText, edgesText, true, &three, &three));
     },
     3},
    {"link_names",
     [] {
       return N::networkWithVerticesString_fromLinksString_toLinksString(verticesText, fromText,
                                                                         toText);
     },
     3},
    {"link_names_alone",
     [] {
       return N::networkWithVerticesString_fromLinksString_toLinksString_directed(
           std::nullopt, fromText, toText, true);
     },
     3},
    {"link_names_weights",
     [] {
       return N::
           networkWithVerticesString_fromLinksString_toLinksString_directed_verticesWeights_edgesWeights(
               std::nullopt, fromText, toText, true, &three, &three);
     },
     3},
    {"edge_list", [] { return N::networkWithEdgesListString_directed(edgeList, true); }, 3},
    {"xnet_text", [] { return N::networkWithNetworkFormattedString(xnet); }, 3},
    {"pajek_text", [] { return N::networkWithNetworkPajekFormattedString(pajek); }, 3},
};

const Way kFiles[] = {
    {"xnet_file", [] { return N::networkWithContentsOfFile(files().xnetFile); }, 3},
    {"xnet_url", [] { return N::networkWithContentsOfURL(files().xnetUrl); }, 3},
    {"xnet_numbers", [] { return N::numberArrayWithContentsOfURL(files().xnetFile); }, 3},
    {"pajek_utf8", [] { return N::networkWithContentsOfPajekFile(files().pajekUtf8); }, 3},
    {"pajek_marked", [] { return N::networkWithContentsOfPajekFile(files().pajekMarked); }, 3},
    {"pajek_latin1", [] { return N::networkWithContentsOfPajekFile(files().pajekLatin1); }, 3},
    {"pajek_utf16_little", [] { return N::networkWithContentsOfPajekFile(files().pajekLittle); },
     3},
    {"pajek_utf16_big", [] { return N::networkWithContentsOfPajekFile(files().pajekBig); }, 3},
    {"pajek_url", [] { return N::networkWithContentsOfPajekURL(files().pajekUtf8); }, 3},
    {"pajek_numbers", [] { return N::numverArrayWithContentsOfPajekURL(files().pajekUtf8); }, 3},
    {"archive", [] { return internal::sharedOrNull(networkWithArchiveFile(files().archive)); }, 4},
};

const Way kModels[] = {
    {"barabasi",
     [] { return N::barabasiNetworkWithInitialVertices_degreeGrowth_iterations(3, 2, 6); }, 12},
    {"barabasi_degree",
     [] { return N::barabasiNetworkWitNumberOfVertices_approximateDegree(10, 4); }, 16},
    {"random_complete", [] { return N::randomNetworkWithNumberOfVertices_degree(5, 5.0); }, 10},
};

std::string nameOf(const testing::TestParamInfo<Way>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Indexed, EveryConstructor, testing::ValuesIn(kIndexed), nameOf);
INSTANTIATE_TEST_SUITE_P(Handles, EveryConstructor, testing::ValuesIn(kHandles), nameOf);
INSTANTIATE_TEST_SUITE_P(Texts, EveryConstructor, testing::ValuesIn(kTexts), nameOf);
INSTANTIATE_TEST_SUITE_P(Files, EveryConstructor, testing::ValuesIn(kFiles), nameOf);
INSTANTIATE_TEST_SUITE_P(Models, EveryConstructor, testing::ValuesIn(kModels), nameOf);

// The unarchiver itself throws, as it is no network; the network that it is asked for is none.
TEST(ArchiveAllocations, OfAnUnarchiverThrowAndOfItsNetworkGiveNone) {
  std::optional<VEQKeyedUnarchiver> unarchiver;
  EXPECT_GE(forEachFailingAllocation([&] { unarchiver.emplace(archiveBytes); },
                                     [&](bool failed) {
                                       EXPECT_EQ(!unarchiver, failed);
                                       unarchiver.reset();
                                     }),
            1U);
  VEQKeyedUnarchiver ready(archiveBytes);
  Network made;
  EXPECT_GE(forEachFailingAllocation([&] { made = N::networkWithCoder(ready); },
                                     [&](bool failed) {
                                       EXPECT_FALSE(failed) << "It must not throw.";
                                       EXPECT_EQ(!made, FailingAllocation::happened());
                                       EXPECT_TRUE(!made || made->countEdges() == 4);
                                       made.reset();
                                     }),
            20U);
}

}  // namespace
}  // namespace veq::test::constructors_allocations_test
