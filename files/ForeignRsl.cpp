// The ".rsl" file of the РУСЛО-8 system: a header record of 557 bytes, then
// up to seven channel blocks of 1024 single-byte samples each. The blocks
// start at offset 556, so the last header byte is also the first block's
// channel number; a channel number of 0 or above 7 ends the list.

#include "files/ForeignCommon.h"
#include "files/ForeignFiles.h"

#include "core/Numeric.h"

#include <cmath>
#include <vector>

namespace aqx {

namespace {

using foreign::BytesField;

const QString kSystem = QStringLiteral("РУСЛО-8");

constexpr int kSamples = 1024;
constexpr int kMaxBlocks = 7;
constexpr int kProbeChannels = 7;
constexpr int kProbesPerChannel = 3;
constexpr int kShaftMarkSlots = 40;

struct RslHeader {
  uint8_t agregat = 0;
  uint8_t polusTwice = 0;
  float remark0 = 0;
  float remark8and9 = 0;
  float remark2and7 = 0;
  float remark10and11 = 0;
  float remark12and13 = 0;
  float shaftRunOut = 0;  // remark 27
  QByteArray mode;
  std::array<float, kProbeChannels * kProbesPerChannel> probeFreq{};
  std::array<int32_t, kShaftMarkSlots> shaftMarks{};  // in samples
  uint8_t firstChannelActive = 0;
};

Layout<RslHeader> RslHeaderLayout() {
  using H = RslHeader;
  using T = FieldType;
  return {
      ScalarField("Agregat", T::UInt8, &H::agregat, 2),
      ScalarField("Polus", T::UInt8, &H::polusTwice, 18),
      ScalarField("remark0", T::Float, &H::remark0, 28),
      ScalarField("remark8and9", T::Float, &H::remark8and9, 32),
      ScalarField("remark2and7", T::Float, &H::remark2and7, 36),
      ReservedField<H>("unused40", 12, 40),
      ScalarField("remark10and11", T::Float, &H::remark10and11, 52),
      ScalarField("remark12and13", T::Float, &H::remark12and13, 56),
      ScalarField("remark27", T::Float, &H::shaftRunOut, 60),
      BytesField("Mode", 56, &H::mode, 64),
      ArrayField("ProbeFreq", T::Float, kProbeChannels * kProbesPerChannel, &H::probeFreq, 0, 144),
      ArrayField("shaftMarks", T::Int32, kShaftMarkSlots, &H::shaftMarks, 0, 228),
      ScalarField("FirstChannelActive", T::UInt8, &H::firstChannelActive, 556),
  };
}

constexpr size_t kHeaderBytes = 557;
constexpr size_t kFirstBlockAt = 556;

// The part of a channel block in front of its samples. Of the middle fields
// only Type and Ku are taken: a text of 44 bytes, the type byte, then two
// floats of which the first is Ku.
struct RslChannelBlock {
  uint8_t channel = 0;
  uint8_t type = 0;
  float ku = 0;
  size_t samplesAt = 0;
};

Layout<RslChannelBlock> RslChannelBlockLayout() {
  using B = RslChannelBlock;
  using T = FieldType;
  return {
      ScalarField("channel", T::UInt8, &B::channel, 0),
      ReservedField<B>("text", 44, 1),
      ScalarField("Type", T::UInt8, &B::type, 45),
      ScalarField("Ku", T::Float, &B::ku, 46),
      ReservedField<B>("unused50", 4, 50),
  };
}

struct RslFile {
  RslHeader header;
  std::vector<RslChannelBlock> blocks;
};

enum class Verdict { Ok, Truncated, Damaged };

Verdict ParseRsl(std::span<const char> bytes, RslFile& file, QString& reason) {
  if (bytes.size() < kHeaderBytes) return Verdict::Truncated;
  RslHeader& h = file.header;
  ReadLayout(RslHeaderLayout(), bytes.first(kHeaderBytes), h);
  if (RoundHalfEven(h.polusTwice / 2.0) < 1) {
    reason = QStringLiteral("число полюсов %1").arg(RoundHalfEven(h.polusTwice / 2.0));
    return Verdict::Damaged;
  }

  const Layout<RslChannelBlock> blockLayout = RslChannelBlockLayout();
  const size_t blockHeadBytes = PlaceLayout(blockLayout).recordBytes;
  size_t at = kFirstBlockAt;
  for (int i = 0; i < kMaxBlocks && at < bytes.size(); ++i) {
    const auto channel = static_cast<uint8_t>(bytes[at]);
    if (channel == 0 || channel > kMaxBlocks) break;
    if (bytes.size() - at < blockHeadBytes + kSamples) return Verdict::Truncated;
    RslChannelBlock b;
    ReadLayout(blockLayout, bytes.subspan(at, blockHeadBytes), b);
    if (b.type >= 10) {
      reason = QStringLiteral("тип датчика %1 канала %2").arg(b.type).arg(b.channel);
      return Verdict::Damaged;
    }
    b.samplesAt = at + blockHeadBytes;
    at = b.samplesAt + kSamples;
    file.blocks.push_back(b);
  }
  if (file.blocks.empty()) {
    reason = QStringLiteral("нет ни одного канала");
    return Verdict::Damaged;
  }
  return Verdict::Ok;
}

void TakeHeader(const RslHeader& h, AppState& s, bool takesProbeFreq) {
  using foreign::RemarkNumberText;
  using foreign::ShortRemark;
  s.object.Agregat = h.agregat;
  s.Polus = RoundHalfEven(h.polusTwice / 2.0);
  s.object.Mode = foreign::TextCutAtZero(h.mode);
  auto& remark = s.object.Remark;
  remark[0] = ShortRemark(RemarkNumberText(h.remark0));
  remark[8] = remark[9] = ShortRemark(RemarkNumberText(h.remark8and9));
  remark[2] = remark[7] = ShortRemark(RemarkNumberText(h.remark2and7));
  remark[10] = remark[11] = ShortRemark(RemarkNumberText(h.remark10and11));
  remark[12] = remark[13] = ShortRemark(RemarkNumberText(h.remark12and13));
  remark[27] = QStringLiteral("Биение вала: ") + RemarkNumberText(h.shaftRunOut);
  if (takesProbeFreq)
    for (int j = 1; j <= kProbeChannels; ++j)
      for (int i = 1; i <= kProbesPerChannel; ++i)
        s.channels.ProbeFreq[j][static_cast<size_t>(i - 1)] =
            h.probeFreq[static_cast<size_t>((j - 1) * kProbesPerChannel + i - 1)];
  s.FirstChannelActive = h.firstChannelActive;
}

void TakeSamples(const RslChannelBlock& b, std::span<const char> bytes, AppState& s) {
  const int c = b.channel;
  const double ku = b.type == 1 ? 1.0 : static_cast<double>(b.ku);
  s.channels.Channel[c] = 1;
  s.channels.Type[c] = b.type;
  s.channels.Ku[c] = static_cast<float>(ku);
  const auto* sample = reinterpret_cast<const uint8_t*>(bytes.data() + b.samplesAt);
  for (int n = 1; n <= kSamples; ++n)
    s.SignalData.at(n, c) = foreign::ByteSampleCode(sample[n - 1], 1.0, ku);
}

// The file stores no sampling rate. The marks, relative to the first, fall
// one revolution apart: the marks inside the record give the samples per
// revolution, and with the speed from the poles the rate and the number of
// revolutions of the record. With no mark inside, the record is taken as one
// revolution.
void DeriveRateFromMarks(const RslHeader& h, AppState& s) {
  int inside = 0;
  int lastMark = 0;
  for (int i = 1; i < kShaftMarkSlots; ++i) {
    const int64_t m = int64_t{h.shaftMarks[static_cast<size_t>(i)]} - h.shaftMarks[0];
    if (m > 0 && m <= kSamples) {
      ++inside;
      lastMark = std::max(lastMark, static_cast<int>(m));
    }
  }
  const double turnsPerSecond = s.FreqSety * 2.0 / s.Polus;
  const double samplesPerTurn = inside > 0 ? static_cast<double>(lastMark) / inside : kSamples;
  s.NumberRotorRecord = std::max(1, RoundHalfEven(kSamples / samplesPerTurn));
  s.FreqDesc = std::max(1, RoundHalfEven(samplesPerTurn * turnsPerSecond));
}

}  // namespace

bool ReadFileRSL(AppState& state, Prompts& prompts) {
  const QString path = state.PathFileData;
  // Seven blocks at most: nothing past them is read.
  const size_t usefulBytes =
      kFirstBlockAt + kMaxBlocks * (PlaceLayout(RslChannelBlockLayout()).recordBytes + kSamples);
  const auto bytes = foreign::ReadFileStart(path, usefulBytes, prompts);
  if (!bytes) return false;
  const std::span<const char> data(bytes->constData(), static_cast<size_t>(bytes->size()));
  RslFile file;
  QString reason;
  switch (ParseRsl(data, file, reason)) {
    case Verdict::Truncated: foreign::TellTruncated(prompts, path, kSystem); return false;
    case Verdict::Damaged: foreign::TellDamaged(prompts, path, kSystem, reason); return false;
    case Verdict::Ok: break;
  }

  foreign::ForeignLoad load(state);
  const RslHeader& h = file.header;
  TakeHeader(h, state, load.takesProbeFreq());
  for (const RslChannelBlock& b : file.blocks) TakeSamples(b, data, state);

  const int m32 = foreign::kMarkerChannel;
  auto& ch = state.channels;
  ch.Channel[m32] = 1;
  ch.Ku[m32] = kShaftMarkerKu;
  ch.Type[m32] = sensor::ShaftMarker;
  for (int r = 1; r <= kSamples; ++r) state.SignalData.at(r, m32) = 0;
  // A mark equal to the first is no revolution and sets nothing.
  for (int i = 1; i < kShaftMarkSlots; ++i) {
    const int64_t m = int64_t{h.shaftMarks[static_cast<size_t>(i)]} - h.shaftMarks[0];
    if (m > 0 && m <= kSamples) state.SignalData.at(static_cast<int>(m), m32) = foreign::kShaftMarkCode;
  }

  state.FreqSety = 50;
  state.SignalDataN = kSamples;
  DeriveRateFromMarks(h, state);
  load.finish();
  return true;
}

}  // namespace aqx
