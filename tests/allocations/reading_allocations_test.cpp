// The reader that takes any file, each of whose allocations is made to fail: the network, or the
// error that memory is lacking, and nothing leaked.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/support/failing_allocation.hpp"
#include "tests/support/network_dump.hpp"
#include "tests/support/shared_work.hpp"
#include "tests/support/small_pieces.hpp"
#include "veq/formats/reading.hpp"
#include "veq/formats/writing.hpp"

namespace veq::test::reading_allocations_test {
namespace {

const std::string kLongName = "a name that is too long to lie within the string";

std::string archive() {
  const Reading reading =
      readNetworkText("#vertices 3 weighted\n\"" + kLongName +
                      "\" 1\n\"b\" 2\n\"c\" 3\n#edges weighted directed\n0 1 0.5\n"
                      "#v \"size\" n\n1\n2\n3\n#v \"text\" s\n\"" +
                      kLongName + "\"\n\"x\"\n\"y\"\n");
  return networkText(reading.value(), FileFormat::kArchive).value();
}

void expectNetworkOrLackOfMemory(const std::string& text) {
  const Reading whole = readNetworkText(text);
  ASSERT_TRUE(whole);
  const std::string expected = dump(whole.value().published().get());
  const std::uint64_t failures = forEachFailingAllocation(
      [] { return std::optional<Reading>(); },
      [&text](std::optional<Reading>& reading) { reading.emplace(readNetworkText(text)); },
      [&expected](std::optional<Reading>& reading, bool failed) {
        if (failed) return;
        if (*reading) {
          EXPECT_EQ(dump(reading->value().published().get()), expected);
        } else {
          EXPECT_EQ(reading->error().kind(), ErrorKind::kMemory) << reading->error().text();
        }
      });
  EXPECT_GE(failures, 5U);
}

TEST(ReadingAllocations, EveryFormatGivesTheNetworkOrSaysThatMemoryIsLacking) {
  const std::vector<std::string> texts{
      archive(),
      kLongName.substr(0, 6) + "\tb\t0.5\nb\t\"c\td\"\t1\n",
      "1 2\n2 30\n",
      "*Vertices 3\n1 \"" + kLongName + "\" 0.1 0.2\n*Arcs :1 \"likes\"\n1 2 2\n*Edges\n2 3\n",
      "%%MatrixMarket matrix coordinate real general\n2 2 2\n1 2 0.5\n2 2 1\n",
      "#vertices 3\n#edges weighted\n0 1 0.5\n1 2 0.25\n2 0 4\n",
      "*Vertices 3\n*Edges\n1 2 0.5\n2 3 0.25\n3 1 4\n",
      "graph [ node [ id 1 label \"" + kLongName + "\" size 2 ] edge [ source 1 target 1 ] ]"};
  for (const std::string& text : texts) {
    SCOPED_TRACE(text);
    expectNetworkOrLackOfMemory(text);
    const SmallPieces pieces(1);
    {
      SCOPED_TRACE("on three threads");
      const SharedWork work(3);
      expectNetworkOrLackOfMemory(text);
    }
    SCOPED_TRACE("in reverse");
    const SharedWork work(2, SharedWork::InReverse());
    expectNetworkOrLackOfMemory(text);
  }
}

}  // namespace
}  // namespace veq::test::reading_allocations_test
