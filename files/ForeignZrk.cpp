// The ".zrk" file of the ЗОР-16 system: a header record of 1417 bytes, then
// one block per channel with its samples as single bytes. The blocks start
// at offset 1416, so the last header byte is also the first block's channel
// number.

#include "files/ForeignCommon.h"
#include "files/ForeignFiles.h"

#include "core/Numeric.h"
#include "files/DataFileRules.h"

#include <cmath>
#include <vector>

namespace aqx {

namespace {

using foreign::BytesField;

const QString kSystem = QStringLiteral("ЗОР-16");

constexpr int kProbeGroups = 16;  // group 0 is not used; groups 1..15 are channels
constexpr int kProbesPerGroup = 4;
constexpr int kShaftMarkSlots = 201;
constexpr int kShownRows = 32768;  // longer recordings are thinned to this
constexpr size_t kPieceBytes = 1 << 20;

struct ZrkHeader {
  uint8_t stationLength = 0;
  QByteArray station;
  uint8_t modeLength = 0;
  QByteArray mode;
  int16_t agregat = 0;
  int16_t polus = 0;
  float freqRotorN = 0;
  float remark0 = 0;
  int32_t remark2 = 0;
  int16_t remark24 = 0;
  int16_t remark7 = 0;
  int16_t remark10and11 = 0;
  int16_t numberRotorRecord = 0;
  double recordDate = 0;
  float stepDesc = 0;
  float rotorHz = 0;  // f
  uint8_t channelCount = 0;
  int32_t signalDataN = 0;
  std::array<float, kProbeGroups * kProbesPerGroup> probeFreq{};
  std::array<int32_t, kShaftMarkSlots> shaftMarks{};  // in half samples
  float remark8 = 0;
  float remark12and13 = 0;
  float remark3to5 = 0;
  float remark1 = 0;
  uint8_t firstChannelActive = 0;
};

Layout<ZrkHeader> ZrkHeaderLayout() {
  using H = ZrkHeader;
  using T = FieldType;
  return {
      ScalarField("stationLength", T::UInt8, &H::stationLength, 16),
      BytesField("station", 40, &H::station, 17),
      ScalarField("modeLength", T::UInt8, &H::modeLength, 57),
      BytesField("mode", 40, &H::mode, 58),
      ScalarField("Agregat", T::Int16, &H::agregat, 260),
      ScalarField("Polus", T::Int16, &H::polus, 262),
      ScalarField("FreqRotorN", T::Float, &H::freqRotorN, 264),
      ScalarField("remark0", T::Float, &H::remark0, 272),
      ScalarField("remark2", T::Int32, &H::remark2, 280),
      ScalarField("remark24", T::Int16, &H::remark24, 284),
      ScalarField("remark7", T::Int16, &H::remark7, 286),
      ScalarField("remark10and11", T::Int16, &H::remark10and11, 288),
      ScalarField("NumberRotorRecord", T::Int16, &H::numberRotorRecord, 292),
      ScalarField("RecordDate", T::Double, &H::recordDate, 296),
      ScalarField("StepDesc", T::Float, &H::stepDesc, 308),
      ScalarField("rotorHz", T::Float, &H::rotorHz, 316),
      ScalarField("channelCount", T::UInt8, &H::channelCount, 322),
      ScalarField("SignalDataN", T::Int32, &H::signalDataN, 324),
      ArrayField("ProbeFreq", T::Float, kProbeGroups * kProbesPerGroup, &H::probeFreq, 0, 328),
      ArrayField("shaftMarks", T::Int32, kShaftMarkSlots, &H::shaftMarks, 0, 584),
      ReservedField<H>("unused1388", 4, 1388),
      ScalarField("remark8", T::Float, &H::remark8, 1392),
      ScalarField("remark12and13", T::Float, &H::remark12and13, 1396),
      ScalarField("remark3to5", T::Float, &H::remark3to5, 1400),
      ScalarField("remark1", T::Float, &H::remark1, 1404),
      ReservedField<H>("unused1408", 8, 1408),
      ScalarField("FirstChannelActive", T::UInt8, &H::firstChannelActive, 1416),
  };
}

constexpr size_t kHeaderBytes = 1417;
constexpr size_t kFirstBlockAt = 1416;

// The part of a channel block in front of its samples.
struct ZrkChannelBlock {
  uint8_t channel = 0;
  uint8_t nameLength = 0;
  QByteArray name;
  uint8_t type = 0;
  float ku = 0;
  float scale = 0;  // a
  size_t samplesAt = 0;  // file offset of the first sample byte
};

Layout<ZrkChannelBlock> ZrkChannelBlockLayout() {
  using B = ZrkChannelBlock;
  using T = FieldType;
  return {
      ScalarField("channel", T::UInt8, &B::channel, 0),
      ScalarField("nameLength", T::UInt8, &B::nameLength, 1),
      BytesField("name", 80, &B::name, 2),
      ReservedField<B>("unused82", 1, 82),
      ScalarField("Type", T::UInt8, &B::type, 83),
      ScalarField("Ku", T::Float, &B::ku, 84),
      ReservedField<B>("unused88", 20, 88),
      ScalarField("scale", T::Float, &B::scale, 108),
      ReservedField<B>("unused112", 4, 112),
      ReservedField<B>("unused116", 40 + 53 + 459, 116),
  };
}

struct ZrkFile {
  ZrkHeader header;
  std::vector<ZrkChannelBlock> blocks;
};

enum class Verdict { Ok, Truncated, Damaged, Unreadable };

// Reads and checks the header and the channel blocks' heads; the samples
// stay in the file. Nothing of the state is touched here.
Verdict ParseZrk(PlainFile& in, ZrkFile& file, QString& reason) {
  const int64_t size = in.size();
  if (size < static_cast<int64_t>(kHeaderBytes)) return Verdict::Truncated;
  std::vector<char> head(kHeaderBytes);
  if (!in.readAt(0, head)) return Verdict::Unreadable;
  ZrkHeader& h = file.header;
  ReadLayout(ZrkHeaderLayout(), std::span<const char>(head), h);
  if (h.signalDataN < 1) {
    reason = QStringLiteral("число отсчётов %1").arg(h.signalDataN);
    return Verdict::Damaged;
  }
  if (h.channelCount == 0) {
    reason = QStringLiteral("нет ни одного канала");
    return Verdict::Damaged;
  }
  if (!std::isfinite(h.rotorHz) || h.rotorHz <= 0.0f ||
      (h.polus <= 0 && RoundHalfEven(100.0 / h.rotorHz) < 1)) {
    reason = QStringLiteral("частота вращения %1 Гц").arg(static_cast<double>(h.rotorHz));
    return Verdict::Damaged;
  }
  if (h.numberRotorRecord < 1) {
    reason = QStringLiteral("число оборотов записи %1").arg(h.numberRotorRecord);
    return Verdict::Damaged;
  }

  const Layout<ZrkChannelBlock> blockLayout = ZrkChannelBlockLayout();
  const size_t blockHeadBytes = PlaceLayout(blockLayout).recordBytes;
  const auto samples = static_cast<int64_t>(h.signalDataN);
  std::vector<char> blockHead(blockHeadBytes);
  auto at = static_cast<int64_t>(kFirstBlockAt);
  for (int i = 0; i < h.channelCount; ++i) {
    if (size - at < static_cast<int64_t>(blockHeadBytes) ||
        size - at - static_cast<int64_t>(blockHeadBytes) < samples)
      return Verdict::Truncated;
    if (!in.readAt(at, blockHead)) return Verdict::Unreadable;
    ZrkChannelBlock b;
    ReadLayout(blockLayout, std::span<const char>(blockHead), b);
    if (b.channel < 1 || b.channel > kMaxChannels) {
      reason = QStringLiteral("номер канала %1").arg(b.channel);
      return Verdict::Damaged;
    }
    if (b.type >= 10) {
      reason = QStringLiteral("тип датчика %1 канала %2").arg(b.type).arg(b.channel);
      return Verdict::Damaged;
    }
    b.samplesAt = static_cast<size_t>(at) + blockHeadBytes;
    at = static_cast<int64_t>(b.samplesAt) + samples;
    file.blocks.push_back(std::move(b));
  }
  return Verdict::Ok;
}

void TakeHeader(const ZrkHeader& h, AppState& s, bool takesProbeFreq) {
  using foreign::RemarkNumberText;
  using foreign::ShortRemark;
  s.object.Station = foreign::CountedText(h.station, h.stationLength);
  s.object.Mode = foreign::CountedText(h.mode, h.modeLength);
  s.object.Agregat = h.agregat;
  s.Polus = h.polus > 0 ? h.polus : RoundHalfEven(100.0 / h.rotorHz);
  s.FreqRotorN = h.freqRotorN;
  s.NumberRotorRecord = h.numberRotorRecord;
  if (std::isfinite(h.recordDate)) s.object.RecordDate = h.recordDate;
  s.StepDesc = h.stepDesc;

  auto& remark = s.object.Remark;
  remark[0] = ShortRemark(RemarkNumberText(h.remark0));
  remark[1] = ShortRemark(RemarkNumberText(h.remark1));
  remark[2] = ShortRemark(RemarkNumberText(h.remark2));
  remark[3] = remark[4] = remark[5] = ShortRemark(RemarkNumberText(h.remark3to5));
  remark[7] = ShortRemark(RemarkNumberText(h.remark7));
  remark[8] = ShortRemark(RemarkNumberText(h.remark8));
  remark[10] = remark[11] = ShortRemark(RemarkNumberText(h.remark10and11));
  remark[12] = remark[13] = ShortRemark(RemarkNumberText(h.remark12and13));
  remark[24] = ShortRemark(RemarkNumberText(h.remark24));

  if (takesProbeFreq)
    for (int j = 1; j < kProbeGroups; ++j)
      for (int i = 1; i <= kProbesPerGroup; ++i)
        s.channels.ProbeFreq[j][static_cast<size_t>(i - 1)] =
            h.probeFreq[static_cast<size_t>(j * kProbesPerGroup + i - 1)];
  s.FirstChannelActive = h.firstChannelActive;
}

double ChannelKu(const ZrkChannelBlock& b) { return b.type == 1 ? 1.0 : static_cast<double>(b.ku); }

// Samples to rows: one to one up to 32768, else thinned by a position that
// grows by 32768/N per sample. The file is read a piece at a time, so a long
// recording costs time, not memory. False on a read error.
bool StageSamples(const ZrkChannelBlock& b, PlainFile& in, int count, std::vector<int16_t>& rows) {
  rows.assign(static_cast<size_t>(std::min(count, kShownRows)), 0);
  const double ku = ChannelKu(b);
  const double scale = b.scale;
  const double step = count <= kShownRows ? 1.0 : static_cast<double>(kShownRows) / count;
  double position = 1.0;
  std::vector<char> piece(std::min<size_t>(static_cast<size_t>(count), kPieceBytes));
  for (int first = 0; first < count;) {
    const int n = std::min(count - first, static_cast<int>(piece.size()));
    if (!in.readAt(static_cast<int64_t>(b.samplesAt) + first, std::span(piece.data(), static_cast<size_t>(n))))
      return false;
    for (int k = 0; k < n; ++k, position += step) {
      const int row = count <= kShownRows ? first + k + 1 : std::clamp(RoundHalfEven(position), 1, kShownRows);
      rows[static_cast<size_t>(row - 1)] =
          foreign::ByteSampleCode(static_cast<uint8_t>(piece[static_cast<size_t>(k)]), scale, ku);
    }
    first += n;
  }
  return true;
}

void TakeChannel(const ZrkChannelBlock& b, const std::vector<int16_t>& rows, AppState& s) {
  const int c = b.channel;
  s.channels.Channel[c] = 1;
  s.channels.Type[c] = b.type;
  s.channels.Ku[c] = static_cast<float>(ChannelKu(b));
  foreign::SplitChannelName(foreign::CountedText(b.name, b.nameLength), s.channels.Place[c],
                            s.channels.Direct[c]);
  for (size_t r = 0; r < rows.size(); ++r) s.SignalData.at(static_cast<int>(r + 1), c) = rows[r];
}

}  // namespace

bool ReadFileZRK(AppState& state, Prompts& prompts) {
  const QString path = state.PathFileData;
  PlainFile in;
  if (!foreign::OpenForeignFile(in, path, prompts)) return false;
  ZrkFile file;
  QString reason;
  switch (ParseZrk(in, file, reason)) {
    case Verdict::Truncated: foreign::TellTruncated(prompts, path, kSystem); return false;
    case Verdict::Damaged: foreign::TellDamaged(prompts, path, kSystem, reason); return false;
    case Verdict::Unreadable: foreign::TellUnreadable(prompts, in); return false;
    case Verdict::Ok: break;
  }
  const ZrkHeader& h = file.header;
  const int count = h.signalDataN;
  const int lastRow = std::min(count, kShownRows);
  // Every sample is read before the state changes: a read error leaves the
  // recording before as it was.
  std::vector<std::vector<int16_t>> staged(file.blocks.size());
  for (size_t i = 0; i < file.blocks.size(); ++i)
    if (!StageSamples(file.blocks[i], in, count, staged[i])) {
      foreign::TellUnreadable(prompts, in);
      return false;
    }

  foreign::ForeignLoad load(state);
  TakeHeader(h, state, load.takesProbeFreq());
  for (size_t i = 0; i < file.blocks.size(); ++i) TakeChannel(file.blocks[i], staged[i], state);

  const int rows = foreign::PowerOfTwoAbove(count, kShownRows);
  // Rows behind the file's samples would show the recording before.
  for (const ZrkChannelBlock& b : file.blocks)
    for (int r = lastRow + 1; r <= rows; ++r) state.SignalData.at(r, b.channel) = 0;

  // The shaft marker channel from the stored marks, in half samples; the
  // marks of a thinned file keep their positions.
  const int m32 = foreign::kMarkerChannel;
  auto& ch = state.channels;
  ch.Channel[m32] = 1;
  ch.Ku[m32] = kShaftMarkerKu;
  ch.Type[m32] = sensor::ShaftMarker;
  ch.Place[m32].clear();
  ch.Direct[m32].clear();
  for (int r = 1; r <= rows; ++r) state.SignalData.at(r, m32) = 0;
  for (int32_t mark : h.shaftMarks) {
    const int m = RoundHalfEven(mark / 2.0);
    if (m > 0 && m <= kShownRows) state.SignalData.at(m, m32) = foreign::kShaftMarkCode;
  }
  state.SignalData.at(1, m32) = foreign::kShaftMarkCode;
  state.SignalData.at(lastRow, m32) = foreign::kShaftMarkCode;

  state.FreqSety = 50;
  state.FreqDesc = std::max(1, RoundHalfEven(count / (h.numberRotorRecord / static_cast<double>(h.rotorHz))));
  state.SignalDataN = rows;
  load.finish();
  return true;
}

}  // namespace aqx
