// ReadSolidBlock on files built byte by byte: which rows of which block at
// which scale land in which columns, the end of the file, and its failures.

#include "AcquisitionTestSupport.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace aqx_test;

namespace {

// Channels 2, 5 and 9 on; row r holds r*3 + k in the k-th of them (k from
// 0), wrapped to 16 bits, behind `offset` header bytes.
std::string MakeSolidFile(const std::string& name, int64_t rows, int offset) {
  std::vector<unsigned char> bytes(static_cast<size_t>(offset + rows * 6), 0xEE);
  for (int64_t r = 0; r < rows; ++r)
    for (int k = 0; k < 3; ++k)
      PutInt16(bytes, static_cast<size_t>(offset + r * 6 + k * 2), static_cast<int16_t>(r * 3 + k));
  const std::string path = TempPath(name);
  WriteBytes(path, bytes);
  return path;
}

int16_t Expected(int64_t row, int k) { return static_cast<int16_t>(row * 3 + k); }

const std::array<int32_t, 32> kOn = On({2, 5, 9});
constexpr int16_t kSentinel = 0x7A7A;

void ExpectBlock(const int16_t* store, int64_t firstRow, int64_t rows, int64_t step, int64_t fileRows) {
  for (int64_t i = 0; i < rows; ++i) {
    const int64_t row = firstRow + i * step;
    for (int k = 0; k < 3; ++k) {
      const int channel = k == 0 ? 2 : k == 1 ? 5 : 9;
      const int16_t want = row < fileRows ? Expected(row, k) : int16_t{0};
      ASSERT_EQ(At(store, i, channel), want) << "row " << i << " channel " << channel;
    }
    ASSERT_EQ(At(store, i, 1), kSentinel);
    ASSERT_EQ(At(store, i, 3), kSentinel);
    ASSERT_EQ(At(store, i, 32), kSentinel);
  }
  ASSERT_EQ(At(store, rows, 2), kSentinel) << "the row after the block";
}

}  // namespace

TEST(SolidBlockRead, BlocksAtScaleOneFollowEachOtherAndTheLastRunsOutInZeros) {
  const std::string path = MakeSolidFile("solid1.aqx", 1000, 14173);
  auto store = MakeStore(kSentinel, 257);
  for (int block = 1; block <= 4; ++block) {
    ASSERT_EQ(ReadSolidBlock(256, 3, 14173, block, path.c_str(), 0, kOn.data(), store.get(), 1), 0);
    ExpectBlock(store.get(), (block - 1) * 256, 256, 1, 1000);
  }
  // A block wholly past the end is all zeros; a block number below 1 is block 1.
  ASSERT_EQ(ReadSolidBlock(256, 3, 14173, 9, path.c_str(), 0, kOn.data(), store.get(), 1), 0);
  ExpectBlock(store.get(), 8 * 256, 256, 1, 1000);
  ASSERT_EQ(ReadSolidBlock(256, 3, 14173, 0, path.c_str(), 0, kOn.data(), store.get(), 1), 0);
  ExpectBlock(store.get(), 0, 256, 1, 1000);
  std::remove(path.c_str());
}

TEST(SolidBlockRead, ScaledBlocksTakeEveryMthRow) {
  const std::string path = MakeSolidFile("solid2.aqx", 5000, 100);
  auto store = MakeStore(kSentinel, 129);
  ASSERT_EQ(ReadSolidBlock(128, 3, 100, 1, path.c_str(), 0, kOn.data(), store.get(), 4), 0);
  ExpectBlock(store.get(), 0, 128, 4, 5000);
  ASSERT_EQ(ReadSolidBlock(128, 3, 100, 3, path.c_str(), 0, kOn.data(), store.get(), 16), 0);
  ExpectBlock(store.get(), 2 * 128 * 16, 128, 16, 5000);
  std::remove(path.c_str());
}

TEST(SolidBlockRead, RowsFarApartAreFetchedOneByOne) {
  // 6-byte rows 16384 apart: 96 KiB between the rows taken.
  const int64_t rows = 16384 * 6 + 5;
  const std::string path = MakeSolidFile("solid3.aqx", rows, 14173);
  auto store = MakeStore(kSentinel, 9);
  ASSERT_EQ(ReadSolidBlock(8, 3, 14173, 1, path.c_str(), 0, kOn.data(), store.get(), 16384), 0);
  ExpectBlock(store.get(), 0, 8, 16384, rows);
  std::remove(path.c_str());
}

TEST(SolidBlockRead, TornLastRowAndDifferentialConnection) {
  const std::string path = MakeSolidFile("solid4.aqx", 10, 14173);
  {
    std::ofstream out(path, std::ios::binary | std::ios::app);
    out.write("\x05\x00\x06", 3);  // half a row
  }
  auto store = MakeStore(kSentinel, 17);
  ASSERT_EQ(ReadSolidBlock(16, 3, 14173, 1, path.c_str(), 0, kOn.data(), store.get(), 1), 0);
  ExpectBlock(store.get(), 0, 16, 1, 10);

  // In differential connection only channels 1..16 count: 17 is no column.
  const std::array<int32_t, 32> on = On({2, 17, 5, 9});
  store = MakeStore(kSentinel, 33);
  ASSERT_EQ(ReadSolidBlock(16, 3, 14173, 1, path.c_str(), 1, on.data(), store.get(), 1), 0);
  ExpectBlock(store.get(), 0, 16, 1, 10);
  EXPECT_EQ(At(store.get(), 0, 17), kSentinel);
  std::remove(path.c_str());
}

TEST(SolidBlockRead, ARecordingOfNoChannelReadsNothing) {
  const std::string path = MakeSolidFile("solid-none.aqx", 100, 14173);
  auto store = MakeStore(kSentinel, 257);
  const std::array<int32_t, 32> off{};
  for (const int32_t scale : {1, 4})
    ASSERT_EQ(ReadSolidBlock(256, 0, 14173, 1, path.c_str(), 0, off.data(), store.get(), scale), 0);
  for (int64_t i = 0; i <= 256; ++i)
    for (int c = 1; c <= 32; ++c) ASSERT_EQ(At(store.get(), i, c), kSentinel) << "row " << i << " channel " << c;
  std::remove(path.c_str());
}

TEST(SolidBlockRead, FailuresHaveTheirNumbers) {
  EnvScope env;
  const std::string path = MakeSolidFile("solid5.aqx", 100, 14173);
  auto store = MakeStore(kSentinel, 17);
  const std::string missing = path + ".missing";
  EXPECT_EQ(ReadSolidBlock(16, 3, 14173, 1, missing.c_str(), 0, kOn.data(), store.get(), 1), 35);
  EXPECT_EQ(ReadSolidBlock(16, 3, 14173, 1, nullptr, 0, kOn.data(), store.get(), 1), 35);
  // A folder opens but cannot be read.
  const std::string folder = TempPath("solid-folder");
  mkdir(folder.c_str(), 0700);
  EXPECT_EQ(ReadSolidBlock(16, 3, 0, 1, folder.c_str(), 0, kOn.data(), store.get(), 1), 36);
  rmdir(folder.c_str());
  for (int number : {33, 35, 36}) {
    env.set("AQX_VIRTUAL_FAIL", std::to_string(number));
    EXPECT_EQ(ReadSolidBlock(16, 3, 14173, 1, path.c_str(), 0, kOn.data(), store.get(), 1), number);
  }
  std::remove(path.c_str());
}
