// Continuous recording to a file: the rows behind the header, the live view
// of the block being written, the end by itself, and what a killed process
// or a full disk leaves on disk.

#include "AcquisitionTestSupport.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cmath>

extern char** environ;

using namespace aqx_test;

namespace {

constexpr int kHeaderBytes = 14173;
constexpr int kRowBytes = 8;  // four channels

// A header region the recording must leave alone, byte for byte.
std::vector<unsigned char> HeaderBytes() {
  std::vector<unsigned char> h(kHeaderBytes);
  for (size_t i = 0; i < h.size(); ++i) h[i] = static_cast<unsigned char>((i * 7 + 3) % 251);
  std::memcpy(h.data(), "Aquilonix ", 10);
  return h;
}

struct Recording {
  std::string path;
  int32_t maxRows = 8192;
  int32_t clear = 1;
  double kHz = 100.0;
  std::array<int32_t, 32> on = On({1, 2, 3, 4});
  int32_t headerBytes = kHeaderBytes;

  int32_t start(char* moduleText = nullptr) const {
    char text[17];
    const std::array<int32_t, 32> volume{};
    return ReadDataToFile(path.c_str(), headerBytes, 131072, 100000, kHz, 4, on.data(), volume.data(),
                          0, 0, 0, 32, 1000, moduleText ? moduleText : text, 0, maxRows, clear);
  }
};

void SetCounterChannels(EnvScope& env) {
  env.set("AQX_VIRTUAL_CHANNELS", "counter,counterhigh,runout,zero");
}

bool StartsWithHeader(const std::vector<unsigned char>& bytes) {
  const std::vector<unsigned char> header = HeaderBytes();
  return bytes.size() >= header.size() && std::equal(header.begin(), header.end(), bytes.begin());
}

int64_t FileSize(const std::string& path) {
  struct stat st {};
  return stat(path.c_str(), &st) == 0 ? static_cast<int64_t>(st.st_size) : -1;
}

// Checks a stretch of SignalData against the row numbers it must hold.
void ExpectRows(const int16_t* store, int64_t firstRow, int64_t rows, int64_t step, int64_t fileRows,
                const std::string& what) {
  for (int64_t i = 0; i < rows; ++i) {
    const int64_t row = firstRow + i * step;
    if (row < fileRows) {
      ASSERT_EQ(At(store, i, 1), CounterCode(row)) << what << " row " << i;
      ASSERT_EQ(At(store, i, 2), CounterCode(row / 16384)) << what << " row " << i;
      ASSERT_EQ(At(store, i, 4), 0) << what << " row " << i;
    } else {
      ASSERT_EQ(At(store, i, 1), 0) << what << " past the end, row " << i;
      ASSERT_EQ(At(store, i, 2), 0) << what << " past the end, row " << i;
    }
  }
}

// Runs this test program again with one child test and an environment
// variable that lets the child act.
pid_t SpawnChild(const std::string& filter, const std::string& key, const std::string& value) {
  EnvScope env;
  env.set(key, value);
  std::string exe = "/proc/self/exe";
  std::string filterArg = "--gtest_filter=" + filter;
  char* argv[] = {exe.data(), filterArg.data(), nullptr};
  pid_t pid = -1;
  if (posix_spawn(&pid, exe.c_str(), nullptr, nullptr, argv, environ) != 0) return -1;
  return pid;
}

bool WaitForFile(const std::string& path, int timeoutMs) {
  for (int waited = 0; waited < timeoutMs; waited += 10) {
    if (FileSize(path) >= 0) return true;
    SleepMs(10);
  }
  return false;
}

}  // namespace

TEST(RecordingContinuous, EveryBlockReadsBackWithTheRightRows) {
  EnvScope env;
  SetCounterChannels(env);
  Recording rec;
  rec.path = TempPath("blocks.aqx");
  WriteBytes(rec.path, HeaderBytes());
  auto live = MakeStore(0x1111, 8193);
  char moduleText[17] = {};
  ASSERT_EQ(rec.start(moduleText), 0);
  EXPECT_STREQ(moduleText, "E140 VR000001");

  // The live view: the block being written, its rows so far, then zeros.
  int polls = 0;
  int32_t lastBlock = 0;
  double lastSize = 0.0;
  const auto started = std::chrono::steady_clock::now();
  while (std::chrono::steady_clock::now() - started < std::chrono::milliseconds(1500)) {
    int32_t count = -1, current = -1;
    CopySignalDataDllRDTF(live.get(), AQX_SIGNAL_ROWS, &count, &current, rec.on.data());
    ASSERT_EQ(EndRDTF(), 0);
    ASSERT_GE(count, 1);
    ASSERT_EQ(count, current);
    ASSERT_GE(current, lastBlock);
    lastBlock = current;
    const int64_t first = static_cast<int64_t>(current - 1) * rec.maxRows;
    int64_t filled = 0;
    while (filled < rec.maxRows && At(live.get(), filled, 1) == CounterCode(first + filled) &&
           At(live.get(), filled, 2) == CounterCode((first + filled) / 16384))
      ++filled;
    for (int64_t r = filled; r < rec.maxRows; ++r) ASSERT_EQ(At(live.get(), r, 2), 0) << r;
    EXPECT_EQ(At(live.get(), 0, 5), 0x1111);  // channel 5 is not recorded
    const double size = InformationFileData();
    ASSERT_GE(size, lastSize);
    lastSize = size;
    ++polls;
    SleepMs(4);
  }
  EXPECT_GE(lastBlock, 3);
  ASSERT_EQ(StopRDTF(), 0);
  EXPECT_EQ(EndRDTF(), 0);

  const std::vector<unsigned char> bytes = ReadBytes(rec.path);
  ASSERT_GT(bytes.size(), static_cast<size_t>(kHeaderBytes));
  EXPECT_EQ(InformationFileData(), static_cast<double>(bytes.size()));
  EXPECT_TRUE(StartsWithHeader(bytes));
  ASSERT_EQ((bytes.size() - kHeaderBytes) % kRowBytes, 0u);
  const int64_t fileRows = static_cast<int64_t>(bytes.size() - kHeaderBytes) / kRowBytes;
  // 100 kHz over four channels for 1.5 s.
  EXPECT_GT(fileRows, 30000);

  auto store = MakeStore(0, 8193);
  const int32_t n = rec.maxRows;
  const int32_t blocks = static_cast<int32_t>((fileRows + n - 1) / n);
  for (int32_t b = 1; b <= blocks; ++b) {
    ASSERT_EQ(ReadSolidBlock(n, 4, kHeaderBytes, b, rec.path.c_str(), 0, rec.on.data(), store.get(), 1), 0);
    ExpectRows(store.get(), static_cast<int64_t>(b - 1) * n, n, 1, fileRows, "scale 1 block " + std::to_string(b));
  }
  for (int32_t scale : {4, 64}) {
    const int32_t scaled = static_cast<int32_t>((fileRows + int64_t{n} * scale - 1) / (int64_t{n} * scale));
    for (int32_t b = 1; b <= scaled; ++b) {
      ASSERT_EQ(ReadSolidBlock(n, 4, kHeaderBytes, b, rec.path.c_str(), 0, rec.on.data(), store.get(), scale), 0);
      ExpectRows(store.get(), static_cast<int64_t>(b - 1) * n * scale, n, scale, fileRows,
                 "scale " + std::to_string(scale) + " block " + std::to_string(b));
    }
  }
  std::remove(rec.path.c_str());
}

TEST(RecordingContinuous, NewRowsFollowEarlierOnesUnlessTheyAreCleared) {
  EnvScope env;
  SetCounterChannels(env);
  Recording rec;
  rec.path = TempPath("append.aqx");
  rec.kHz = 8.0;  // 2000 rows a second
  WriteBytes(rec.path, HeaderBytes());
  ASSERT_EQ(rec.start(), 0);
  SleepMs(300);
  ASSERT_EQ(StopRDTF(), 0);
  const int64_t firstRows = (FileSize(rec.path) - kHeaderBytes) / kRowBytes;
  ASSERT_GT(firstRows, 100);

  // A torn row at the end is dropped before new rows follow.
  {
    std::ofstream out(rec.path, std::ios::binary | std::ios::app);
    out.write("\x01\x02\x03", 3);
  }
  rec.clear = 0;
  ASSERT_EQ(rec.start(), 0);
  SleepMs(300);
  ASSERT_EQ(StopRDTF(), 0);
  const int64_t size = FileSize(rec.path);
  ASSERT_EQ((size - kHeaderBytes) % kRowBytes, 0);
  const int64_t rows = (size - kHeaderBytes) / kRowBytes;
  ASSERT_GT(rows, firstRows + 100);
  auto store = MakeStore(0, 4097);
  ASSERT_EQ(ReadSolidBlock(4096, 4, kHeaderBytes, 1, rec.path.c_str(), 0, rec.on.data(), store.get(), 1), 0);
  for (int64_t r = 0; r < rows && r < 4096; ++r)
    ASSERT_EQ(At(store.get(), r, 1), CounterCode(r < firstRows ? r : r - firstRows)) << r;
  const std::vector<unsigned char> bytes = ReadBytes(rec.path);
  EXPECT_TRUE(StartsWithHeader(bytes));

  rec.clear = 1;
  ASSERT_EQ(rec.start(), 0);
  SleepMs(100);
  ASSERT_EQ(StopRDTF(), 0);
  EXPECT_LT((FileSize(rec.path) - kHeaderBytes) / kRowBytes, firstRows);
  std::remove(rec.path.c_str());
}

TEST(RecordingFailures, StartFailuresLeaveTheFileAsItWas) {
  EnvScope env;
  Recording rec;
  rec.path = TempPath("fail.aqx");
  for (int number : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 13, 15, 16, 18, 23, 26, 28, 29, 30, 31, 33, 34}) {
    WriteBytes(rec.path, HeaderBytes());
    env.set("AQX_VIRTUAL_FAIL", std::to_string(number));
    EXPECT_EQ(rec.start(), number);
    EXPECT_EQ(ReadBytes(rec.path), HeaderBytes()) << number;
  }
  env.set("AQX_VIRTUAL_FAIL", std::nullopt);
  // The same numbers from real causes.
  rec.kHz = 100.001;
  EXPECT_EQ(rec.start(), 18);
  rec.kHz = 100.0;
  std::remove(rec.path.c_str());
  EXPECT_EQ(rec.start(), 30);
  WriteBytes(rec.path, std::vector<unsigned char>(100, 'A'));
  EXPECT_EQ(rec.start(), 31);
  EXPECT_EQ(ReadBytes(rec.path), std::vector<unsigned char>(100, 'A'));
  rec.on = On({});
  WriteBytes(rec.path, HeaderBytes());
  EXPECT_EQ(rec.start(), 10);
  std::remove(rec.path.c_str());
}

TEST(RecordingFailures, StopStepsAreToldByStopRDTF) {
  Recording rec;
  rec.path = TempPath("stopfail.aqx");
  rec.kHz = 8.0;
  for (int number : {12, 21, 22, 32}) {
    EnvScope env;
    env.set("AQX_VIRTUAL_FAIL", std::to_string(number));
    WriteBytes(rec.path, HeaderBytes());
    ASSERT_EQ(rec.start(), 0) << number;
    SleepMs(50);
    EXPECT_EQ(StopRDTF(), number);
    const std::vector<unsigned char> bytes = ReadBytes(rec.path);
    EXPECT_TRUE(StartsWithHeader(bytes)) << number;
  }
  std::remove(rec.path.c_str());
}

TEST(RecordingFailures, RecordingEndsByItselfWhenTheModuleOrTheFileFails) {
  for (int number : {20, 27}) {
    EnvScope env;
    SetCounterChannels(env);
    env.set("AQX_VIRTUAL_FAIL", std::to_string(number)).set("AQX_VIRTUAL_FAIL_AFTER_ROWS", "5000");
    Recording rec;
    rec.path = TempPath("selfend.aqx");
    WriteBytes(rec.path, HeaderBytes());
    ASSERT_EQ(rec.start(), 0);
    int32_t end = 0;
    for (int waited = 0; waited < 5000 && end == 0; waited += 10) {
      SleepMs(10);
      end = EndRDTF();
    }
    EXPECT_EQ(end, number);
    EXPECT_EQ(StopRDTF(), number);
    EXPECT_EQ(EndRDTF(), 0);
    // Exactly the rows before the failure are on disk.
    EXPECT_EQ(FileSize(rec.path), kHeaderBytes + 5000 * kRowBytes) << number;
    auto store = MakeStore(0, 8193);
    ASSERT_EQ(ReadSolidBlock(8192, 4, kHeaderBytes, 1, rec.path.c_str(), 0, rec.on.data(), store.get(), 1), 0);
    ExpectRows(store.get(), 0, 8192, 1, 5000, "after failure " + std::to_string(number));
    std::remove(rec.path.c_str());
  }
}

// Child of the test below: records until it is killed.
TEST(RecordingKillChild, RecordsUntilKilled) {
  const char* path = std::getenv("AQX_TEST_RECORD_CHILD");
  if (!path) GTEST_SKIP() << "runs only as the child of RecordingCrash";
  EnvScope env;
  SetCounterChannels(env);
  Recording rec;
  rec.path = path;
  rec.maxRows = AQX_SIGNAL_ROWS;
  ASSERT_EQ(rec.start(), 0);
  WriteBytes(rec.path + ".started", {1});
  auto live = MakeStore();
  for (int i = 0; i < 3000; ++i) {  // at most half a minute
    int32_t count = 0, current = 0;
    CopySignalDataDllRDTF(live.get(), AQX_SIGNAL_ROWS, &count, &current, rec.on.data());
    SleepMs(10);
  }
  StopRDTF();
}

TEST(RecordingCrash, SigkillLosesAtMostTheLastSecond) {
  const std::string path = TempPath("killed.aqx");
  const std::string started = path + ".started";
  std::remove(started.c_str());
  WriteBytes(path, HeaderBytes());
  const pid_t child = SpawnChild("RecordingKillChild.*", "AQX_TEST_RECORD_CHILD", path);
  ASSERT_GT(child, 0);
  ASSERT_TRUE(WaitForFile(started, 30000));
  const auto recordingSince = std::chrono::steady_clock::now();
  SleepMs(2500);
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - recordingSince).count();
  ASSERT_EQ(kill(child, SIGKILL), 0);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFSIGNALED(status));

  const std::vector<unsigned char> bytes = ReadBytes(path);
  ASSERT_GE(bytes.size(), static_cast<size_t>(kHeaderBytes));
  EXPECT_TRUE(StartsWithHeader(bytes));
  const int64_t fileRows = static_cast<int64_t>(bytes.size() - kHeaderBytes) / kRowBytes;
  // 25,000 rows a second; at most the last second may be missing.
  EXPECT_GE(fileRows, static_cast<int64_t>((seconds - 1.0) * 25000.0));
  auto store = MakeStore(0, 131073);
  const std::array<int32_t, 32> on = On({1, 2, 3, 4});
  ASSERT_EQ(ReadSolidBlock(131072, 4, kHeaderBytes, 1, path.c_str(), 0, on.data(), store.get(), 1), 0);
  ExpectRows(store.get(), 0, 131072, 1, fileRows, "after SIGKILL");
  std::remove(path.c_str());
  std::remove(started.c_str());
}

// Child of the test below: records into a file that may not grow past a limit.
TEST(RecordingDiskFullChild, EndsByItselfWithAWholeFile) {
  const char* path = std::getenv("AQX_TEST_DISKFULL_CHILD");
  if (!path) GTEST_SKIP() << "runs only as the child of RecordingDiskFull";
  signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{kHeaderBytes + 100003, kHeaderBytes + 100003};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  EnvScope env;
  SetCounterChannels(env);
  Recording rec;
  rec.path = path;
  ASSERT_EQ(rec.start(), 0);
  int32_t end = 0;
  for (int waited = 0; waited < 10000 && end == 0; waited += 10) {
    SleepMs(10);
    end = EndRDTF();
  }
  EXPECT_EQ(end, 27);
  EXPECT_EQ(StopRDTF(), 27);
}

TEST(RecordingDiskFull, FullDiskEndsTheRecordingWithWholeRows) {
  const std::string path = TempPath("full.aqx");
  WriteBytes(path, HeaderBytes());
  const pid_t child = SpawnChild("RecordingDiskFullChild.*", "AQX_TEST_DISKFULL_CHILD", path);
  ASSERT_GT(child, 0);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  const int64_t size = FileSize(path);
  // The limit cut a row; the recording dropped the torn part.
  EXPECT_EQ(size, kHeaderBytes + 100000);
  const std::vector<unsigned char> bytes = ReadBytes(path);
  EXPECT_TRUE(StartsWithHeader(bytes));
  auto store = MakeStore(0, 16385);
  const std::array<int32_t, 32> on = On({1, 2, 3, 4});
  ASSERT_EQ(ReadSolidBlock(16384, 4, kHeaderBytes, 1, path.c_str(), 0, on.data(), store.get(), 1), 0);
  ExpectRows(store.get(), 0, 16384, 1, 12500, "full disk");
  std::remove(path.c_str());
}
