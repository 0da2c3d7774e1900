// Writers and readers of one file.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tests/support/network_drawing.hpp"
#include "tests/support/temporary_folder.hpp"
#include "tests/support/threads.hpp"
#include "veq/formats/archive_file.hpp"
#include "veq/network/network.hpp"

namespace veq::test::concurrent_files_test {
namespace {

// Two networks are written over each other, one of them by two threads; whoever reads meanwhile
// gets the whole of one.
TEST(ConcurrentFiles, AlwaysHoldOneWholeNetwork) {
  const TemporaryFolder folder;
  const Owned<VEQNetwork> small = drawDirected("0-1");
  const Owned<VEQNetwork> large = drawUndirected("0-1 1-2 2-3 3-4", 2000);
  large->setPropertyValue_forKey_atVertexIndex("end", "Name", 1999);
  const std::string xnet = folder.path("n.xnet");
  const std::string archive = folder.path("n.veq");
  ASSERT_TRUE(small->writeToFile_atomically(xnet, true));
  ASSERT_TRUE(writeArchiveToFile(*small, archive, true));
  inThreads(4, [&](int number) {
    const VEQNetwork& own = number == 0 ? *small : *large;
    for (int i = 0; i < 25; ++i) {
      if (number < 3) {
        EXPECT_TRUE(own.writeToFile_atomically(xnet, true));
        EXPECT_TRUE(writeArchiveToFile(own, archive, true));
        continue;
      }
      const Owned<VEQNetwork> text = VEQNetwork::initWithContentsOfFile(xnet);
      const Owned<VEQNetwork> coded = networkWithArchiveFile(archive);
      ASSERT_TRUE(text && coded);
      EXPECT_EQ(text->countVertices(), text->countEdges() == 1 ? 2U : 2000U);
      // An archive keeps no vertices above the last edge.
      EXPECT_EQ(coded->countVertices(), coded->countEdges() == 1 ? 2U : 5U);
    }
  });
  EXPECT_EQ(folder.countFiles(), 2U);
}

}  // namespace
}  // namespace veq::test::concurrent_files_test
