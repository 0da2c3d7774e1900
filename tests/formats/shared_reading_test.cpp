// Texts that several threads read, beside those that one has read line by line.
#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/formats/reading_support.hpp"
#include "tests/support/network_dump.hpp"
#include "tests/support/rounds.hpp"
#include "tests/support/shared_work.hpp"
#include "tests/support/small_pieces.hpp"
#include "veq/base/internal/encodings.hpp"
#include "veq/formats/internal/lines_ahead.hpp"
#include "veq/formats/internal/text_input.hpp"

namespace veq::shared_reading_test {
namespace {

using internal::TextPieces;
using test::SharedWork;
using test::SmallPieces;

struct Reader {
  std::string_view name;
  std::string (*read)(const std::string& text);
};

std::string readNaturally(const std::string& text, const ReadOptions& options) {
  const Reading reading = readNetworkText(text, options);
  std::string all =
      reading ? test::dump(reading.value().published().get()) : test::summaryOf(reading);
  for (const std::string& note : test::notesOf(reading)) all += "\n" + note;
  return all;
}

template <FileFormat kFormat>
std::string readAs(const std::string& text) {
  return readNaturally(text, {.format = kFormat});
}
template <FileFormat kFormat>
std::string readStrictly(const std::string& text) {
  return readNaturally(text, {.format = kFormat, .strict = true, .keepWeights = true});
}

constexpr Reader kPublishedXnet{
    "published xnet", [](const std::string& text) {
      return test::dump(VEQNetwork::initWithNetworkFormattedString(text).get());
    }};
constexpr Reader kPublishedPajek{
    "published Pajek", [](const std::string& text) {
      return test::dump(VEQNetwork::initWithNetworkPajekFormattedString(text).get());
    }};

const std::vector<Reader> kXnetReaders{kPublishedXnet, {"xnet", readAs<FileFormat::kXnet>}};
const std::vector<Reader> kListReaders{{"list", readAs<FileFormat::kList>},
                                       {"strict list", readStrictly<FileFormat::kList>}};
const std::vector<Reader> kPajekReaders{kPublishedPajek,
                                        {"Pajek", readAs<FileFormat::kPajek>},
                                        {"strict Pajek", readStrictly<FileFormat::kPajek>}};

/// That all readers make of a text what one thread does that reads line by line.
void expectTheSame(const std::vector<Reader>& readers, const std::string& text) {
  for (const Reader& reader : readers) {
    const std::string expected = reader.read(text);
    const auto look = [&](std::size_t size) {
      const SmallPieces pieces(size);
      EXPECT_EQ(reader.read(text), expected) << reader.name << " in pieces of " << size << " of\n"
                                             << text;
    };
    for (const unsigned threads : {1U, 2U, 3U, 7U, 16U, 64U}) {
      const SharedWork work(threads);
      look(threads % 3 == 0 ? 9 : 1);
    }
    for (const std::size_t size : {1U, 9U, 40U}) {
      const SharedWork work(7, SharedWork::InReverse());
      look(size);
    }
  }
}

/// Lines of which few are other than numbers, with ends of which few are other than line feeds.
class HostileText {
 public:
  explicit HostileText(unsigned seed) : random_(seed) {}

  std::string lines(const std::vector<std::string_view>& others) {
    std::string text;
    for (std::uint64_t line = 0; line < 60; ++line) {
      if (below(12) == 0) {
        text += others[below(others.size())];
      } else {
        text += std::to_string(1 + below(30)) + " " + std::to_string(1 + below(30));
        if (below(3) != 0) text += kWeights[below(kWeights.size())];
      }
      text += below(6) == 0 ? kEnds[below(kEnds.size())] : "\n";
    }
    // A text may end without a newline.
    return text + (below(2) == 0 ? "2 3" : "");
  }

  /// Of lines that all have a weight or none, and of ids that lie near each other or far apart.
  std::string list(const std::vector<std::string_view>& others, bool weighted) {
    std::string text = weighted ? "1 2 0.5\n" : "3 5\n";
    const std::string far = below(2) == 0 ? "000000000" : "";
    for (std::uint64_t line = 0; line < 60; ++line) {
      if (below(20) == 0) {
        text += others[below(others.size())];
      } else {
        text += std::to_string(1 + below(30)) + far + (below(9) == 0 ? "\t-" : " ");
        text += std::to_string(1 + below(30)) + far;
        if (weighted) text += kWeights[below(kWeights.size())];
      }
      text += below(6) == 0 ? kEnds[below(2)] : "\n";
    }
    return text + (below(2) == 0 ? "" : weighted ? "2 3 4" : "2 3");
  }

 private:
  static constexpr std::array<std::string_view, 6> kWeights{" 1.0",  " 2.5", "  0.1234567891",
                                                            " -3e2", "\t7",  " 16777217"};
  static constexpr std::array<std::string_view, 8> kEnds{
      "\r\n", "\n\n", "\n\v\f", "\r", "\n\xC2\x85", "\xE2\x80\xA8", " \n", "\n \n"};

  std::uint64_t below(std::uint64_t count) { return random_() % count; }

  std::mt19937 random_;
};

TEST(SharedReading, EndsThatAreMissingAreThoseBeforeWhereverPiecesEnd) {
  // The missing target of the third line is 5; the fourth has neither end; so has the first of the
  // second section. What is no number behind ends is passed over.
  const std::string text =
      "#vertices 9\n#edges\n1 2 0.5\n4 5\n6\n\n\nx\r\n7 8 2.5 and more\n"
      "#edges\n- -\n0 3 4\n3 1\n2 0 1.5";
  const SmallPieces pieces(1);
  for (int round = 0; round < 3; ++round) {
    const SharedWork work = SharedWork::inTurn(round);
    const auto network = VEQNetwork::initWithNetworkFormattedString(text);
    EXPECT_EQ(test::edgesOf(*network), "1>2 4>5 6>5 6>5 7>8 7>8 0>3 3>1 2>0");
  }
}

TEST(SharedReading, EdgesBehindArcsAreTwoArcsWhereverPiecesEnd) {
  const std::string text =
      "*Vertices 4\n*Arcs\n1 2 3\n% no edge\n2 3\n*Edges\n3 4\n\n4 1 2\n2 2 0.5\n";
  const SmallPieces pieces(1);
  for (int round = 0; round < 3; ++round) {
    const SharedWork work = SharedWork::inTurn(round);
    const auto network = VEQNetwork::initWithNetworkPajekFormattedString(text);
    // Weights of an earlier section are lost, and so there are too few.
    EXPECT_EQ(network, nullptr);
    const auto unweighted = VEQNetwork::initWithNetworkPajekFormattedString(
        "*Vertices 4\n*Arcs\n1 2\n% no edge\n2 3\n*Edges\n3 4\n\n4 1\n2 2\n");
    EXPECT_EQ(test::edgesOf(*unweighted), "0>1 1>2 2>3 3>2 3>0 0>3 1>1 1>1");
  }
}

TEST(SharedReading, Xnet) {
  const std::vector<std::string_view> others{"#edges",
                                             "#edges weighted",
                                             "# a comment",
                                             "#vertices 40",
                                             "",
                                             "7",
                                             " ",
                                             "x y",
                                             "1 2 # no comment",
                                             "-1 2",
                                             "#e \"key\" n",
                                             "#edges nonweighted",
                                             "  3 \xC2\xA0 4"};
  for (int round = 0; round < test::rounds(60); ++round) {
    HostileText lines(static_cast<unsigned>(round));
    const std::string weighted = round % 2 == 0 ? " weighted\n" : "\n";
    expectTheSame(kXnetReaders, "#vertices 31\n#edges" + weighted + lines.lines(others));
  }
}

TEST(SharedReading, Pajek) {
  const std::vector<std::string_view> others{
      "*Edges", "*Arcs",      "% a comment",   "*Edgeslist", "",           "7",
      " ",      "x y",        "1 2 1.0 c Red", "-1 2",       "*Arcs :2 b", "*Vertices 31",
      "# none", "/* none */", "40 1",          "0 1"};
  for (int round = 0; round < test::rounds(60); ++round) {
    HostileText lines(static_cast<unsigned>(round));
    const std::string vertices = round % 3 == 0 ? "" : "*Vertices 31\n";
    const std::string header = round % 2 == 0 ? "*Edges\n" : "*Arcs\n";
    expectTheSame(kPajekReaders, vertices + header + lines.lines(others));
  }
}

TEST(SharedReading, Lists) {
  const std::vector<std::string_view> comments{"# a comment", "% none", "", "// none"};
  const std::vector<std::string_view> others{"# a comment", "a b", "1", "", "1 2 3 4", "9 \"x\""};
  for (int round = 0; round < test::rounds(60); ++round) {
    HostileText lines(static_cast<unsigned>(round));
    expectTheSame(kListReaders, lines.list(round % 4 == 3 ? others : comments, round % 2 == 0));
  }
}

TEST(SharedReading, LongTextsAreSharedOnThreads) {
  std::string text = "#vertices 3\n#edges\n";
  for (int line = 0; line < 1000; ++line) text += "0 1\n";
  const SharedWork work(4);
  std::atomic<std::uint64_t> calls{0};
  setParallelRunner([&](std::size_t pieces, const std::function<void(std::size_t)>& piece) {
    calls += pieces;
    for (std::size_t i = 0; i < pieces; ++i) piece(i);
  });
  const SmallPieces pieces(1);
  EXPECT_TRUE(internal::isValidUtf8(text));
  EXPECT_EQ(calls, 0U);
  EXPECT_EQ(VEQNetwork::initWithNetworkFormattedString(text)->countEdges(), 1000U);
  EXPECT_GE(calls, 2000U);  // each line is read and taken
}

TEST(SharedReading, PiecesEndBehindLineFeeds) {
  const SmallPieces small(3);
  TextPieces pieces;
  pieces.cut("a\nbcdef\n\n\ngh\ni", 9);
  ASSERT_EQ(pieces.count(), 3U);
  EXPECT_EQ(pieces.at(0), "a\nbcdef\n");
  EXPECT_EQ(pieces.at(1), "\n\ngh\n");
  EXPECT_EQ(pieces.at(2), "i");
  pieces.cut("ab\ncd\nef\n", 2);
  EXPECT_EQ(pieces.count(), 2U);
  EXPECT_EQ(pieces.size(), 6U);
}

TEST(SharedReading, Utf8IsJudgedAlikeInPiecesOfAnySize) {
  // Characters of one to four bytes; overlong, cut off, a lone byte that goes on, five of them.
  for (const std::string_view text :
       {"", "abc", "a\xC3\xA9z", "\xE2\x82\xAC\xE2\x82\xAC", "\xF0\x9F\x98\x80\xF0\x9F\x98\x80",
        "\xC0\xAF", "a\xE2\x82", "\x80", "\x80\x80\x80\x80", "ab\x80\x80\x80\x80\x80",
        "\xC3\xA9\xA9", "\xF0\x9F\x98\x80\x80", "\xED\xA0\x80"}) {
    for (std::size_t size = 1; size < 8; ++size) {
      for (int round = 0; round < 3; ++round) {
        const SharedWork work = SharedWork::inTurn(round);
        internal::Team team(parallelism());
        EXPECT_EQ(internal::isValidUtf8(text, team, size), internal::isValidUtf8(text))
            << text << " in pieces of " << size;
      }
    }
  }
}

TEST(SharedReading, LoneReturnsAreFoundInPiecesOfAnySize) {
  for (const auto& [text, has] : {std::pair<std::string_view, bool>{"", false},
                                  {"a\r\nb\r\n", false},
                                  {"a\r\n\r\r\n", true},
                                  {"\r", true},
                                  {"abc\rd\n", true},
                                  {"\n\r\n\r\n", false}}) {
    for (std::size_t size = 1; size < 8; ++size) {
      const SharedWork work(3);
      internal::Team team(parallelism());
      EXPECT_EQ(internal::hasLoneReturn(text, team, size), has) << size;
    }
  }
}

}  // namespace
}  // namespace veq::shared_reading_test
