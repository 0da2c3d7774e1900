#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include "tests/formats/reading_support.hpp"
#include "veq/base/internal/byte_stream.hpp"
#include "veq/formats/internal/guarded_reading.hpp"

namespace veq::test::reading_pieces_test {
namespace {

using internal::ByteStream;

constexpr std::size_t kMebibyte = std::size_t{1} << 20;

/// A text that arrives some bytes at a time, as through a pipe.
Reading readByPieces(std::string_view text, std::size_t piece, const ReadOptions& options = {}) {
  ByteStream stream(
      [text](char* into, std::size_t capacity) mutable {
        const std::size_t count = std::min(capacity, text.size());
        std::memcpy(into, text.data(), count);
        text.remove_prefix(count);
        return count;
      },
      0, piece);
  return internal::readStream(stream, options, "");
}

/// What there is to see of a reading in one text.
std::string allOf(const Reading& reading) {
  std::string all = summaryOf(reading);
  for (const std::string& note : notesOf(reading)) all += "\n" + note;
  if (!reading) return all;
  for (const char* const key : {"Name", "Id", "note"}) {
    for (const std::string& text : vertexTexts(reading, key)) all += "\n" + text;
  }
  return all;
}

void expectTheSame(const std::string& text) {
  const std::string whole = allOf(readNetworkText(text));
  for (const std::size_t piece : {1U, 2U, 3U, 7U, 16U, 64U}) {
    EXPECT_EQ(allOf(readByPieces(text, piece)), whole) << "pieces of " << piece << ":\n" << text;
  }
}

TEST(ReadingByPieces, GivesWhatTheWholeTextGives) {
  expectTheSame("# a comment\n1 2\n2 3\n\n3 1\n");
  expectTheSame("a b 1.5\nb c 0.123456789012\nlonely\n\"c d\" e\n");
  expectTheSame("Source,Target,note\na,b,\"x, \"\"y\"\"\"\nb,c,z\n");
  expectTheSame("Source,Target,note\n\"a\n\nb\",c,\"x\ny\"\nd,e,\"f\ng,h,i\n");
  expectTheSame("1 2\r\n2 3\r\n1 2 3\r\n");
  expectTheSame("1 2\r2 3\n3 4\r\n4 5\r");
  expectTheSame("1\t2\n2\tb\n");
  expectTheSame("*Vertices 3\n1 \"a b\" 0.5 0.5\n2 b\n3 \"c\"\n*Arcs\n1 2 2\n*Edges\n2 3 nine\n");
  expectTheSame("*Vertices 2\n*Edges\n1 2\n1 7\n");
  expectTheSame("%%MatrixMarket matrix coordinate real general\n% a\n3 3 2\n1 2 0.5\n3 1 -2\n");
  expectTheSame("%%MatrixMarket matrix coordinate real general\n3 3 2\n1 2 0.5\n4 1 -2\n");
  expectTheSame(
      "Creator \"x\"\ngraph [\n # no text\n node [ id 1 label \"two\nlines &amp; one\" ]\n node [ "
      "id 2 "
      "]\n edge [ source 1\n target 2 value 0.1 ]\n]\n");
  expectTheSame("graph [ node [ id 1 label \"open\n]\n]\n");
  expectTheSame(
      "#vertices 3 weighted\n\"a\" 1\n\"b\" 2\n\n\n\"c\" 3\n#edges nonweighted directed\n0 "
      "1\n\n\n1 2\n"
      "#v \"note\" s\n\"x\"\n\"y z\"\n\"\"\n");
  expectTheSame("#vertices 2\n\"a\"\n\"\"\n#edges\n0 1\n");
  expectTheSame("#vertices 2\n#edges\n0 1\n1 -1\n");
  expectTheSame("#vertices 2 weighted\n1\n#edges weighted\n0 1 1\n");
}

TEST(ReadingByPieces, IsSureOfTheEncodingInTheEnd) {
  expectTheSame("\xEF\xBB\xBF*Vertices 2\n1 \"K\xC3\xB6ln\"\n2 b\n*Edges\n1 2\n");
  expectTheSame("*Vertices 2\n1 \"K\xC3\xB6ln\"\n2 \"K\xF6ln\"\n*Edges\n1 2\n");
  expectTheSame("\xEF\xBB\xBF*Vertices 2\n1 \"K\xC3\xB6ln\"\n2 \"K\xF6ln\"\n*Edges\n1 2\n");
}

TEST(ReadingByPieces, HoldsTheLengthAgainstTheNumberOfVertices) {
  // 64 for each of the 31 bytes and a million are fewer; a longer text may have as many.
  expectTheSame("*Vertices 1002000\n*Edges\n1 2\n");
  const std::string text = "*Vertices 1100000\n*Edges\n" + std::string(4000, '\n') + "1 1100000\n";
  EXPECT_EQ(summaryOf(readByPieces(text, 64)), "undirected 1100000: 0>1099999");
  ReadOptions options;
  options.mostVertices = 10;
  EXPECT_EQ(summaryOf(readByPieces("*Vertices 11\n*Edges\n1 2\n*Nonsense\n", 8, options)),
            "error 1:1 11 vertices, more than the 10 that are allowed");
}

/// How many bytes of a text that begins so and goes on with this for ever are read.
std::size_t bytesRead(const std::string& begin, const std::string& further, std::string& summary) {
  std::size_t read = 0;
  ByteStream stream(
      [&](char* into, std::size_t capacity) {
        for (std::size_t i = 0; i < capacity; ++i, ++read) {
          into[i] =
              read < begin.size() ? begin[read] : further[(read - begin.size()) % further.size()];
        }
        if (read > 100 * kMebibyte) throw Error(ErrorKind::kFile, "read on and on");
        return capacity;
      },
      0);
  summary = summaryOf(internal::readStream(stream, {}, ""));
  return read;
}

TEST(ReadingByPieces, IsNeverFarAheadOfTheReader) {
  std::string summary;
  EXPECT_LE(bytesRead("*Vertices 2\n*Edges\n1 3\n", "1 2\n", summary), kMebibyte);
  EXPECT_EQ(summary, "error 3:3 vertex 3 of 2");
  EXPECT_LE(bytesRead("%%MatrixMarket matrix coordinate real general\n2 2 9\n3 1 1\n", "1 1 1\n",
                      summary),
            kMebibyte);
  EXPECT_EQ(summary, "error 3:1 3 in a matrix of 2 rows and 2 columns");
  EXPECT_LE(bytesRead("graph [ node [ id x ]\n", "node [ id 1 ]\n", summary), kMebibyte);
  EXPECT_EQ(summary, "error 1:19 no integer: \"x\"");
  EXPECT_LE(bytesRead("#vertices 2\n\"\"\n", "\"a\"\n", summary), kMebibyte);
  EXPECT_EQ(summary, "error 2:2 no number of vertices, or an empty name or key");
}

}  // namespace
}  // namespace veq::test::reading_pieces_test
