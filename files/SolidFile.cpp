#include "files/SolidFile.h"

#include "core/EngineErrors.h"
#include "core/Numeric.h"
#include "engine/Aquilonix.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <bit>
#include <vector>

namespace aqx {

namespace {

constexpr int64_t kBlockRows = kMaxSamples;

// 2^(Int(log2 n) + 1): the next power of two above n, for n >= 1.
int64_t NextPowerAbove(int64_t n) {
  return int64_t{1} << (std::bit_width(static_cast<uint64_t>(std::max<int64_t>(n, 1))));
}

int64_t SamplesPerChannel(const AppState& s, int64_t fileBytes, int64_t dataStart) {
  if (s.ChannelUsedCount <= 0) return 0;
  // A torn last row is no sample.
  return std::max<int64_t>(0, fileBytes - dataStart) / 2 / s.ChannelUsedCount;
}

void KeepViewInsideBlock(AppState& s) {
  s.ViewFirst = std::clamp(s.ViewFirst, 1, std::max(s.SignalDataN, 1));
  s.ViewLast = std::clamp(s.ViewLast, s.ViewFirst, std::max(s.SignalDataN, 1));
}

}  // namespace

SolidSizing SizeSolidFile(int64_t samples) {
  SolidSizing out;
  if (samples > kBlockRows) {
    out.SignalDataN = static_cast<int32_t>(kBlockRows);
    int64_t count = RoundHalfEven(static_cast<double>(samples) / kBlockRows);
    if (samples - count * kBlockRows > 0) ++count;
    out.SolidBlockCount = static_cast<int32_t>(count);
  } else {
    out.SignalDataN = static_cast<int32_t>(std::min(NextPowerAbove(samples), kBlockRows));
    out.SolidBlockCount = 1;
  }
  return out;
}

int32_t ScaledBlockCount(int32_t solidBlockCount, int32_t scale) {
  const int64_t m = std::max(scale, 1);
  return static_cast<int32_t>((std::max(solidBlockCount, 0) + m - 1) / m);
}

int32_t MinimalBlockScale(int32_t solidBlockCount) {
  return static_cast<int32_t>(NextPowerAbove(solidBlockCount));
}

bool OpenSolidFileBlocks(AppState& s, int headerBytes, Prompts& p, bool readBlock) {
  const int64_t fileBytes = QFileInfo(s.PathFileData).size();
  const SolidSizing sizing = SizeSolidFile(SamplesPerChannel(s, fileBytes, headerBytes));
  s.SolidDataStart = headerBytes;
  s.SignalDataN = sizing.SignalDataN;
  s.SolidBlockCount = sizing.SolidBlockCount;
  s.SolidBlockN = 1;
  s.SolidBlockM = 1;
  s.ViewFirst = 1;
  s.ViewLast = s.SignalDataN;
  s.SelectFirst = 0;
  s.SelectLast = 0;
  ApplyBlockRule(s);
  if (s.ChannelUsedCount <= 0 || !readBlock) return true;
  // The block is read aside: a read that fails half-way must not leave the
  // previous recording's samples half overwritten.
  const auto rows = static_cast<size_t>(std::clamp(s.SignalDataN, 0, kMaxSamples));
  std::vector<int16_t> staged(rows * SampleStore::kColumns);
  const QByteArray path = QFile::encodeName(s.PathFileData);
  const int32_t result =
      ReadSolidBlock(s.SignalDataN, s.ChannelUsedCount, s.SolidDataStart, s.SolidBlockN, path.constData(),
                     s.ChannelDifferential, s.channels.Channel.data(), staged.data(), s.SolidBlockM);
  if (result != 0) {
    ShowEngineError(p, result);
    return false;
  }
  // Only the columns of the recorded channels move; the others stay as they were.
  std::vector<size_t> columns;
  for (int c = 1; c <= ChannelCount(s) && static_cast<int>(columns.size()) < s.ChannelUsedCount; ++c)
    if (s.channels.Channel[c] == 1) columns.push_back(static_cast<size_t>(c - 1));
  int16_t* store = s.SignalData.data();
  for (size_t at = 0; at < rows * SampleStore::kColumns; at += SampleStore::kColumns)
    for (const size_t column : columns) store[at + column] = staged[at + column];
  return true;
}

int32_t SubReadSolidBlock(AppState& s, Prompts& p) {
  p.notice({QStringLiteral("Подождите, идет чтение данных ...")});
  if (s.ChannelUsedCount > 0)
    s.FreqDesc = s.FreqDescR =
        RoundHalfEven(static_cast<double>(s.FreqADC) / s.ChannelUsedCount / std::max(s.SolidBlockM, 1));
  ApplyBlockRule(s);
  KeepViewInsideBlock(s);
  const QByteArray path = QFile::encodeName(s.PathFileData);
  const int32_t result =
      ReadSolidBlock(s.SignalDataN, s.ChannelUsedCount, s.SolidDataStart, s.SolidBlockN, path.constData(),
                     s.ChannelDifferential, s.channels.Channel.data(), s.SignalData.data(), s.SolidBlockM);
  p.closeNotice();
  s.SignalData.markWritten();
  if (result != 0) ShowEngineError(p, result);
  return result;
}

void ApplySolidBlockCommand(AppState& s, SolidBlockCommand command) {
  const int32_t scaled = ScaledBlockCount(s.SolidBlockCount, s.SolidBlockM);
  switch (command) {
    case SolidBlockCommand::First: s.SolidBlockN = 1; break;
    case SolidBlockCommand::Previous: s.SolidBlockN = std::max(s.SolidBlockN - 1, 1); break;
    case SolidBlockCommand::Next: s.SolidBlockN = std::min(s.SolidBlockN + 1, std::max(scaled, 1)); break;
    case SolidBlockCommand::Last: s.SolidBlockN = std::max(scaled, 1); break;
    case SolidBlockCommand::Min:
      s.SolidBlockM = MinimalBlockScale(s.SolidBlockCount);
      s.SolidBlockN = 1;
      break;
    case SolidBlockCommand::Minus:
      s.SolidBlockM = std::min(s.SolidBlockM * 2, MinimalBlockScale(s.SolidBlockCount));
      s.SolidBlockN = 1;
      break;
    case SolidBlockCommand::Plus:
      s.SolidBlockM = std::max(s.SolidBlockM / 2, 1);
      s.SolidBlockN = 1;
      break;
    case SolidBlockCommand::Max:
      s.SolidBlockM = 1;
      s.SolidBlockN = 1;
      break;
  }
}

int32_t RunSolidBlockCommand(AppState& s, SolidBlockCommand command, Prompts& p) {
  ApplySolidBlockCommand(s, command);
  return SubReadSolidBlock(s, p);
}

SolidBlockControls SolidBlockControlState(const AppState& s, bool measuring) {
  SolidBlockControls c;
  if (measuring) {
    c.blockText = QString::number(s.SolidBlockN);
    c.scaleText = QStringLiteral("1:1");
    return c;
  }
  if (!s.SolidMode || s.SolidBlockCount <= 1) {
    c.blockText = QStringLiteral("1");
    c.scaleText = QStringLiteral("1:1");
    if (!s.SolidMode) return c;
  } else {
    c.blockText = QStringLiteral("%1 / %2").arg(s.SolidBlockN).arg(ScaledBlockCount(s.SolidBlockCount, s.SolidBlockM));
    c.scaleText = QStringLiteral("1:%1").arg(s.SolidBlockM);
  }
  const int32_t scaled = ScaledBlockCount(s.SolidBlockCount, s.SolidBlockM);
  c.first = c.previous = s.SolidBlockN > 1;
  c.next = c.last = s.SolidBlockN < scaled;
  c.minus = c.min = s.SolidBlockM < MinimalBlockScale(s.SolidBlockCount);
  c.plus = c.max = s.SolidBlockM > 1;
  return c;
}

SolidFileFigures DescribeSolidFile(const AppState& s, int headerBytes) {
  SolidFileFigures f;
  f.fileBytes = QFileInfo(s.PathFileData).size();
  f.dataBytes = std::max<int64_t>(0, f.fileBytes - headerBytes);
  f.samplesPerChannel = SamplesPerChannel(s, f.fileBytes, headerBytes);
  const SolidSizing sizing = SizeSolidFile(f.samplesPerChannel);
  f.blockRows = sizing.SignalDataN;
  f.blockCount = sizing.SolidBlockCount;
  f.scaledBlocks = ScaledBlockCount(f.blockCount, s.SolidBlockM);
  if (s.ChannelUsedCount > 0 && s.FreqADC > 0) {
    const double perChannelHz = static_cast<double>(s.FreqADC) / s.ChannelUsedCount;
    f.blockSeconds = kBlockRows / perChannelHz;
    f.recordSeconds = static_cast<double>(f.samplesPerChannel) / perChannelHz;
  }
  return f;
}

}  // namespace aqx
