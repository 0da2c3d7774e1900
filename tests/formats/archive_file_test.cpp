#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>

#include "tests/support/archives.hpp"
#include "veq/formats/archive_file.hpp"

namespace veq::archive_file_test {
namespace {

using namespace test;

// A folder of this test alone.
class ArchiveFile : public testing::Test {
 protected:
  ArchiveFile()
      : folder_(std::filesystem::temp_directory_path() /
                ("veq_archive_" +
                 std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) +
                 std::to_string(std::random_device()()))) {
    std::filesystem::create_directory(folder_);
  }
  ~ArchiveFile() override { std::filesystem::remove_all(folder_); }

  std::string path(const char* name) const { return (folder_ / name).string(); }

 private:
  std::filesystem::path folder_;
};

TEST_F(ArchiveFile, BringsANetworkBack) {
  const auto network = threeEdges(true, Weighted::kBoth);
  for (const bool atomically : {false, true}) {
    ASSERT_TRUE(writeArchiveToFile(*network, path("a.veqa"), atomically));
    const Owned<VEQNetwork> back = networkWithArchiveFile(path("a.veqa"));
    ASSERT_TRUE(back);
    EXPECT_EQ(archived(*back), archived(*network));
  }
}

TEST_F(ArchiveFile, ThatCannotBeWrittenIsFalse) {
  const auto network = threeEdges(true, Weighted::kBoth);
  EXPECT_FALSE(writeArchiveToFile(*network, path("none/a.veqa"), true));
  EXPECT_FALSE(writeArchiveToFile(*network, path("none/a.veqa"), false));
  EXPECT_FALSE(writeArchiveToFile(*network, "", false));
}

TEST_F(ArchiveFile, ThatIsNoneGivesNoNetwork) {
  EXPECT_FALSE(networkWithArchiveFile(path("none")));
  EXPECT_FALSE(networkWithArchiveFile(path("")));
  std::ofstream(path("text")) << "#vertices 1 nonweighted\n";
  EXPECT_FALSE(networkWithArchiveFile(path("text")));
  std::ofstream(path("empty")) << "";
  EXPECT_FALSE(networkWithArchiveFile(path("empty")));
}

TEST_F(ArchiveFile, IsNotTouchedWhereAPropertyIsRefused) {
  auto network = threeEdges(true, Weighted::kBoth);
  ASSERT_TRUE(writeArchiveToFile(*network, path("a.veqa"), false));
  network->setPropertyValue_forKey_atVertexIndex(std::make_shared<Stranger>(), "who", 2);
  EXPECT_THROW(static_cast<void>(writeArchiveToFile(*network, path("a.veqa"), false)),
               std::invalid_argument);
  EXPECT_TRUE(networkWithArchiveFile(path("a.veqa")));
}

}  // namespace
}  // namespace veq::archive_file_test
