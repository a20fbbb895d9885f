#pragma once
// The header record of the .aqx data file and its thirteen layouts. The
// record holds the values in their in-memory types; the layouts say where
// each lies in the file of a given layout version (FileVersionMinor 0..12).

#include "core/AppState.h"
#include "files/Layout.h"

#include <QString>

#include <array>
#include <cstddef>
#include <cstdint>

namespace aqx {

inline constexpr int kOldestFileLayout = 0;
inline constexpr int kCurrentFileLayout = 12;
inline constexpr int kRemarkShortCount = 27;  // Remark(0..26), 10 bytes each
inline constexpr size_t kRemarkShortBytes = 10;
inline constexpr size_t kRemarkFieldBytes = 1000;
inline constexpr const char* kDataFileMagic = "Aquilonix";

struct FileHeader {
  QString magic;
  int32_t FileVersionMajor = 0;
  int32_t FileVersionMinor = 0;
  int32_t FileVersionRevision = 0;
  int32_t Polus = 0;
  int32_t FreqSety = 0;
  int32_t NumberRotorRecord = 0;
  double StepDesc = 0;
  double FreqRotorReal = 0;  // a Single in the file
  int32_t FreqDesc = 0;
  int32_t FreqDescR = 0;
  double FreqRotorN = 0;
  double FreqOneGarmonic = 0;
  QString Station;
  int32_t Agregat = 0;
  QString Mode;
  double RecordDate = 0;
  bool Imposition = false;
  int32_t FirstChannelActive = 0;
  int32_t BlockSizeFFT = 0;
  int32_t BlockSizeFFTa = 0;
  int32_t BlockSizeFFTr = 0;

  // Channel arrays, index 0 is channel 1.
  std::array<int32_t, kMaxChannels> Channel{};
  std::array<int32_t, kMaxChannels> Active{};
  std::array<int32_t, kMaxChannels> Type{};
  std::array<QString, kMaxChannels> Place;
  std::array<QString, kMaxChannels> Direct;
  std::array<float, kMaxChannels> Ku{};
  std::array<int32_t, kMaxChannels> Zero{};
  std::array<float, kMaxChannels> KS{};
  std::array<int32_t, kMaxChannels> ChannelColor{};
  std::array<int32_t, kMaxChannels> Volume{};
  std::array<QString, kMaxChannels> SensorName;
  std::array<int32_t, kMaxChannels> ChannelY{};
  std::array<int32_t, kMaxChannels> ChannelYm{};
  int32_t ChannelDifferential = 0;
  std::array<std::array<float, kProbeEntries>, kMaxChannels> ProbeFreq{};
  std::array<std::array<float, kFilterEntries>, kMaxChannels> Filter{};

  int32_t SignalDataN = 0;
  int32_t InputMode = 0;
  int32_t SynchroAdType = 0;
  int32_t SynchroAdMode = 0;
  int32_t SynchroAdChannel = 0;
  int32_t SynchroAdPorog = 0;
  int32_t ViewStyle = 0;
  QString ModuleTag;
  bool SolidMode = false;
  QString SolidFileName;
  int32_t FreqADC = 0;
  std::array<QString, kRemarkCount> Remark;

  int32_t MarkerN = 0;
  std::array<double, kMaxMarkers> MarkerDate{};
  std::array<QString, kMaxMarkers> MarkerRemark;
  std::array<int32_t, kMaxMarkers> MarkerColor{};
  std::array<int32_t, kMaxMarkers> MarkerOn{};
  std::array<int32_t, kMaxMarkers> MarkerShift{};
};

// The layout of version `minor` (0..12), generated from the one field
// sequence; an empty layout for any other number.
Layout<FileHeader> DataFileLayout(int minor);

// H, the size of the header record of a layout; the sample area starts at
// byte number H counted from 1. 0 for an unknown layout.
size_t DataFileHeaderBytes(int minor);

// The first bytes that every layout shares: magic and version triple.
Layout<FileHeader> DataFileIdentityLayout();
inline constexpr size_t kDataFileIdentityBytes = 22;

}  // namespace aqx
