#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>
#include <zstd.h>

#include <string>
#include <string_view>
#include <utility>

#include "tests/formats/reading_support.hpp"
#include "tests/support/temporary_folder.hpp"
#include "veq/readers/reading.hpp"

namespace veq::test::compression_test {
namespace {

std::string zipped(std::string_view text) {
  std::string bytes(compressBound(static_cast<uLong>(text.size())) + 64, '\0');
  z_stream stream{};
  EXPECT_EQ(deflateInit2(&stream, 9, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY), Z_OK);
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
  stream.avail_out = static_cast<uInt>(bytes.size());
  EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
  bytes.resize(stream.total_out);
  deflateEnd(&stream);
  return bytes;
}

std::string zstded(std::string_view text) {
  std::string bytes(ZSTD_compressBound(text.size()), '\0');
  bytes.resize(ZSTD_compress(bytes.data(), bytes.size(), text.data(), text.size(), 3));
  return bytes;
}

Reading read(std::string bytes, const ReadOptions& options = {}) {
  return readers::readNetworkText(std::move(bytes), options);
}

TEST(ReadingCompressed, ReadsAnyFormatInside) {
  EXPECT_EQ(summaryOf(read(zipped("1 2\n2 3\n"))), "undirected 3: 0>1 1>2");
  EXPECT_EQ(summaryOf(read(zstded("*Vertices 2\n*Arcs\n1 2\n"))), "directed 2: 0>1");
  EXPECT_EQ(summaryOf(read(zstded("<graphml><graph edgedefault=\"directed\"><node id=\"a\"/>"
                                  "</graph></graphml>"))),
            "directed 1:");
}

TEST(ReadingCompressed, ReadsPiecesBehindEachOther) {
  EXPECT_EQ(summaryOf(read(zipped("1 2\n") + zipped("2 3\n"))), "undirected 3: 0>1 1>2");
  EXPECT_EQ(summaryOf(read(zstded("1 2\n") + zstded("2 3\n"))), "undirected 3: 0>1 1>2");
}

TEST(ReadingCompressed, RefusesWhatEndsTooEarlyOrIsDamaged) {
  const std::string gzip = zipped("1 2\n2 3\n");
  EXPECT_EQ(
      summaryOf(read(gzip.substr(0, gzip.size() - 9))),
      "error 1:" + std::to_string(gzip.size() - 8) + " what gzip has compressed ends too early");
  const std::string zstd = zstded("1 2\n2 3\n");
  EXPECT_EQ(summaryOf(read(zstd.substr(0, zstd.size() - 1))),
            "error 1:" + std::to_string(zstd.size()) + " what zstd has compressed ends too early");
  std::string damaged = gzip;
  damaged[damaged.size() - 6] ^= 1;  // A byte of the checksum.
  // Behind the checksum, which four bytes of the length follow.
  EXPECT_EQ(summaryOf(read(damaged)),
            "error 1:" + std::to_string(gzip.size() - 3) + " what gzip has compressed is damaged");
  // The second of two frames has no magic number.
  std::string second = zstd;
  second[0] ^= 1;
  EXPECT_EQ(summaryOf(read(zstd + second)),
            "error 1:" + std::to_string(zstd.size() + 1) + " what zstd has compressed is damaged");
  for (std::size_t length = 0; length < gzip.size(); ++length) {
    EXPECT_FALSE(read(gzip.substr(0, length)));
  }
}

TEST(ReadingCompressed, ReadsWhatIsLongerThanAPiece) {
  std::string text;
  for (int i = 0; i < 100'000; ++i) text += std::to_string(i) + " " + std::to_string(i + 1) + "\n";
  for (const std::string& bytes : {zipped(text), zstded(text)}) {
    const Reading reading = read(bytes);
    EXPECT_EQ(reading.value().countVertices(), 100'001U);
    EXPECT_EQ(reading.value().countEdges(), 100'000U);
  }
  // Zeros fill the last block of a tape.
  EXPECT_EQ(summaryOf(read(zipped("1 2\n") + std::string(1000, '\0'))), "undirected 2: 0>1");
  const std::string whole = zipped("1 2\n");
  EXPECT_EQ(summaryOf(read(whole + "xx")),
            "error 1:" + std::to_string(whole.size() + 3) + " what gzip has compressed is damaged");
}

TEST(ReadingCompressed, RefusesBombs) {
  const std::string zeros(50'000'000, ' ');
  ReadOptions options;
  options.mostBytes = 1'000'000;
  for (const std::string& bomb : {zipped(zeros), zstded(zeros)}) {
    const Reading reading = read(bomb, options);
    ASSERT_FALSE(reading);
    EXPECT_EQ(reading.error().text(),
              "decompressed it has more than the 1000000 bytes that it may");
    EXPECT_EQ(reading.error().place()->line, 1U);
    EXPECT_LE(reading.error().place()->column, bomb.size() + 1);
  }
}

TEST(ReadingCompressed, NamesWhatItDoesNotRead) {
  EXPECT_EQ(summaryOf(read(zipped(zstded("1 2\n")))),
            "error 1:1 compressed twice; decompress it first");
  EXPECT_EQ(summaryOf(read("BZh91AY")),
            "error 1:1 compressed by bzip2, which is not read; decompress it first");
  EXPECT_EQ(summaryOf(readNetworkText(zipped("1 2\n"))),
            "error 1:1 compressed by gzip, which the library veq::readers reads");
}

// What is compressed is decompressed twice.
TEST(ReadingCompressed, ReadsWalkOnlyNetworks) {
  const TemporaryFolder folder;
  std::string text;
  for (int line = 0; line < 500'000; ++line) text += "1 2\n2 0\n";
  for (const std::string& bytes : {zipped(text), zstded(text)}) {
    const auto network = readers::readWalkNetwork(folder.write("file", bytes));
    ASSERT_TRUE(network) << network.error().text();
    EXPECT_EQ(network.value().size(), (WalkNetworkSize{3, 1'000'000, 2'000'000}));
    EXPECT_EQ(network.value().degree(2), 1'000'000U);
    const auto cut =
        readers::readWalkNetwork(folder.write("file", bytes.substr(0, bytes.size() / 2)));
    ASSERT_FALSE(cut);
    EXPECT_EQ(cut.error().kind(), ErrorKind::kFormat);
  }
  EXPECT_EQ(readers::readWalkNetwork(folder.write("file", zipped(zipped("1 2\n")))).error().text(),
            "compressed twice; decompress it first");
  EXPECT_EQ(readers::readWalkNetwork(folder.write("file", "BZh9")).error().text(),
            "compressed by bzip2, which is not read; decompress it first");
  EXPECT_EQ(readers::readWalkNetwork(folder.write("file", "0 1\n")).value().countEdges(), 1U);
}

}  // namespace
}  // namespace veq::test::compression_test
