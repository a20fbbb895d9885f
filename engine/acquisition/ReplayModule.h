#pragma once
// A recorded .aqx file played back in real time as if it came from the
// module: the channels of the channel table that the file holds carry its
// codes, the others zeros, at the file's sampling rate, over and over.

#include "engine/acquisition/SimulatedModule.h"

#include <array>
#include <vector>

namespace aqx::acq {

// What the replay needs from a data file of the current layout.
struct ReplaySource {
  int headerBytes = 0;
  bool solid = false;
  double perChannelRateHz = 0.0;
  int64_t rows = 0;
  std::array<int, kSingleEndedChannels> fileColumn{};  // -1 when not in the file
  int columns = 0;
  std::vector<int16_t> channelMajor;  // an ordinary file, whole
  int fd = -1;                        // a solid file, read as it plays
};

class ReplayModule : public SimulatedModule {
 public:
  ReplayModule(const ModuleSettings& settings, VirtualLines& lines);
  ~ReplayModule() override;
  ReplayModule(const ReplayModule&) = delete;
  ReplayModule& operator=(const ReplayModule&) = delete;

  bool openDevice() override;
  bool readDescription(ModuleDescription& description) override;
  bool writeParameters(AdcParameters& parameters) override;
  bool start() override;
  bool readRows(int16_t* codes, int rows) override;
  bool release() override;
  std::string backendText() const override;

 private:
  bool fileRows(int64_t first, int count, std::vector<int16_t>& out);

  ReplaySource source_;
  std::vector<int16_t> fileBuffer_;
};

// Reads the header fields the replay needs; false for anything that is not a
// data file of the current layout.
bool OpenReplaySource(const std::string& path, ReplaySource& source);

}  // namespace aqx::acq
