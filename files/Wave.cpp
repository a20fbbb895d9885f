#include "files/Wave.h"

#include "core/Numeric.h"
#include "files/DataFile.h"
#include "files/DataFileRules.h"
#include "files/Layout.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <vector>

namespace aqx {

namespace {

const QString kErrorTitle = QStringLiteral("Ошибка");
const QString kUnknownFormat = QStringLiteral("Файл неизвестного формата.");
// Frames read in one request at most.
constexpr size_t kPieceBytes = 1 << 20;

// The fixed 44-byte header of a plain PCM file. Other writers put more into
// the format block and add chunks before the samples; the reader takes the
// first 36 bytes from here and walks the chunks itself.
struct WaveHeader {
  QByteArray riffTag;
  uint32_t riffBytes = 0;  // file size - 8
  QByteArray waveTag;
  QByteArray fmtTag;
  uint32_t fmtBytes = 0;
  uint16_t format = 0;
  uint16_t channels = 0;
  uint32_t samplesPerSecond = 0;
  uint32_t bytesPerSecond = 0;
  uint16_t blockAlign = 0;
  uint16_t bitsPerSample = 0;
  QByteArray dataTag;
  uint32_t dataBytes = 0;
};

LayoutField<WaveHeader> TagField(std::string_view name, int64_t offset, QByteArray WaveHeader::*member) {
  return {name, FieldType::Bytes, offset, 1, 1, 4,
          [member](WaveHeader& h, int, int) -> FieldTarget { return &(h.*member); }};
}

Layout<WaveHeader> WaveHeaderLayout() {
  using H = WaveHeader;
  return {
      TagField("RIFF", 0, &H::riffTag),
      ScalarField("riffBytes", FieldType::UInt32, &H::riffBytes, 4),
      TagField("WAVE", 8, &H::waveTag),
      TagField("fmt", 12, &H::fmtTag),
      ScalarField("fmtBytes", FieldType::UInt32, &H::fmtBytes, 16),
      ScalarField("format", FieldType::UInt16, &H::format, 20),
      ScalarField("channels", FieldType::UInt16, &H::channels, 22),
      ScalarField("samplesPerSecond", FieldType::UInt32, &H::samplesPerSecond, 24),
      ScalarField("bytesPerSecond", FieldType::UInt32, &H::bytesPerSecond, 28),
      ScalarField("blockAlign", FieldType::UInt16, &H::blockAlign, 32),
      ScalarField("bitsPerSample", FieldType::UInt16, &H::bitsPerSample, 34),
      TagField("data", 36, &H::dataTag),
      ScalarField("dataBytes", FieldType::UInt32, &H::dataBytes, 40),
  };
}

constexpr uint16_t kFormatPcm = 1;
constexpr uint16_t kFormatExtensible = 0xFFFE;
// Tail of the sub-format identifier that marks an extensible block as
// plain integer PCM (its first two bytes carry the format, 1).
constexpr unsigned char kPcmSubFormatTail[14] = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                                 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

uint32_t LittleU32(std::span<const char> bytes, size_t at) {
  uint32_t v = 0;
  for (size_t i = 4; i-- > 0;) v = (v << 8) | static_cast<uint8_t>(bytes[at + i]);
  return v;
}

uint16_t LittleU16(std::span<const char> bytes, size_t at) {
  return static_cast<uint16_t>(static_cast<uint8_t>(bytes[at]) |
                               (static_cast<uint8_t>(bytes[at + 1]) << 8));
}

// Writers such as sox mark more than two channels (and more than 16 bits) as
// "extensible" with a PCM sub-format; that is PCM all the same.
bool IsPcm(const WaveHeader& h, const WaveSource& source) {
  if (h.format == kFormatPcm) return true;
  if (h.format != kFormatExtensible || h.fmtBytes < 40) return false;
  constexpr size_t subFormatAt = 20 + 24;
  std::array<char, 2 + sizeof kPcmSubFormatTail> subFormat{};
  return source.read(subFormatAt, subFormat) && LittleU16(subFormat, 0) == kFormatPcm &&
         std::memcmp(subFormat.data() + 2, kPcmSubFormatTail, sizeof kPcmSubFormatTail) == 0;
}

// A chunk tag of four printable characters is a chunk that other programs
// are entitled to add ("LIST", "PAD ", "fact", "JUNK"...); the reader steps
// over it. Anything else means the walk has lost the structure.
bool IsChunkTag(std::span<const char> head) {
  for (size_t i = 0; i < 4; ++i) {
    const auto ch = static_cast<unsigned char>(head[i]);
    if (ch < 0x20 || ch > 0x7E) return false;
  }
  return true;
}

// Power-of-two length of the store for P samples: 2^(Int(log2 P) + 1),
// at most the store.
int StoreLengthFor(size_t frames) {
  if (frames >= static_cast<size_t>(kMaxSamples)) return kMaxSamples;
  return static_cast<int>(std::bit_floor(frames) * 2);
}

// Row k of the store takes file frame round((k - 1) * P / rows), the nearest
// one. The index can pass 2^31 for a 4 GB file, so it is rounded in 64 bits
// (nearbyint rounds half to even in the default mode). Frames close together
// are read in pieces; frames far apart one by one, so a long file costs
// neither memory nor a read of everything.
bool StageFrames(PlainFile& file, const WaveContents& w, int rows, int used, std::vector<int16_t>& staged) {
  staged.assign(static_cast<size_t>(rows) * static_cast<size_t>(used), 0);
  const double step = static_cast<double>(w.frameCount) / rows;
  const auto frameBytes = static_cast<size_t>(w.blockAlign);
  const size_t lastFrame = w.frameCount - 1;
  const auto frameOf = [&](int k) {
    return std::min(static_cast<size_t>(std::nearbyint((k - 1) * step)), lastFrame);
  };
  const size_t framesPerPiece = std::max<size_t>(1, kPieceBytes / frameBytes);
  std::vector<char> piece;
  int16_t* to = staged.data();
  for (int k = 1; k <= rows;) {
    // Rows whose frames fall inside one piece from the first one's frame.
    const size_t firstFrame = frameOf(k);
    int last = k;
    while (last < rows && frameOf(last + 1) - firstFrame < framesPerPiece) ++last;
    const size_t spanFrames = frameOf(last) - firstFrame + 1;
    piece.resize(spanFrames * frameBytes);
    if (!file.readAt(static_cast<int64_t>(w.dataOffset + firstFrame * frameBytes), piece)) return false;
    for (; k <= last; ++k) {
      const char* frame = piece.data() + (frameOf(k) - firstFrame) * frameBytes;
      for (int c = 1; c <= used; ++c) {
        if (w.bitsPerSample == 16) {
          const char* s = frame + (c - 1) * 2;
          *to++ = static_cast<int16_t>(static_cast<uint8_t>(s[0]) | (static_cast<uint8_t>(s[1]) << 8));
        } else {
          *to++ = static_cast<uint8_t>(frame[c - 1]);
        }
      }
    }
  }
  return true;
}

}  // namespace

std::array<char, kWaveHeaderBytes> WaveHeaderBytes(size_t channelCount, int sampleCount, int samplesPerSecond) {
  const auto count = static_cast<uint32_t>(channelCount);
  const auto frames = static_cast<uint32_t>(std::clamp(sampleCount, 0, kMaxSamples));
  const uint32_t dataBytes = count * frames * 2;
  WaveHeader h;
  h.riffTag = "RIFF";
  h.riffBytes = dataBytes + 36;
  h.waveTag = "WAVE";
  h.fmtTag = "fmt ";
  h.fmtBytes = 16;
  h.format = kFormatPcm;
  h.channels = static_cast<uint16_t>(count);
  h.samplesPerSecond = static_cast<uint32_t>(samplesPerSecond);
  h.bytesPerSecond = static_cast<uint32_t>(samplesPerSecond) * count * 2;
  h.blockAlign = static_cast<uint16_t>(count * 2);
  h.bitsPerSample = 16;
  h.dataTag = "data";
  h.dataBytes = dataBytes;
  std::array<char, kWaveHeaderBytes> bytes{};
  WriteLayout(WaveHeaderLayout(), h, std::span<char>(bytes));
  return bytes;
}

namespace {

// Fills `frames` with rows first..first+count-1 (from 1), each row the
// channels' codes one after another, little-endian. False when the rows
// could not be had; the reason has then been told.
using RowSource = std::function<bool(int first, int count, char* frames)>;

RowSource StoreRows(const AppState& state, std::span<const int> channels) {
  return [&state, channels](int first, int count, char* out) {
    for (int row = first; row < first + count; ++row)
      for (int c : channels) {
        const auto code = static_cast<uint16_t>(state.SignalData.at(row, c));
        *out++ = static_cast<char>(code & 0xFF);
        *out++ = static_cast<char>(code >> 8);
      }
    return true;
  };
}

// The rows of an ordinary data file's area as it lies: each channel's piece
// of the rows is read, then the pieces are woven into frames. The file
// holds the codes little-endian, as the frames do.
class AreaRows {
 public:
  AreaRows(const DataFileArea& area, Prompts& prompts) : area_(area), prompts_(prompts) {}
  bool open() { return OpenArea(file_, area_, prompts_); }
  bool operator()(int first, int count, char* out) {
    const size_t used = area_.usedChannels.size();
    const auto pieceBytes = 2 * static_cast<size_t>(count);
    pieces_.resize(used * pieceBytes);
    for (size_t k = 0; k < used; ++k)
      if (!ReadAreaSamples(file_, area_, k, first - 1, std::span(pieces_.data() + k * pieceBytes, pieceBytes),
                           prompts_))
        return false;
    for (size_t i = 0; i < pieceBytes; i += 2)
      for (size_t k = 0; k < used; ++k) {
        *out++ = pieces_[k * pieceBytes + i];
        *out++ = pieces_[k * pieceBytes + i + 1];
      }
    return true;
  }

 private:
  const DataFileArea& area_;
  Prompts& prompts_;
  PlainFile file_;
  std::vector<char> pieces_;
};

// The frames go out a piece at a time through a temporary that replaces the
// target only once complete and synced: the export never holds a second copy
// of the recording, and a failed one never leaves half a file under the name.
bool WriteWaveFrames(int frames, size_t channelCount, const RowSource& rows, int samplesPerSecond,
                     const QString& path, Prompts& prompts, const QString& title) {
  const std::array<char, kWaveHeaderBytes> header = WaveHeaderBytes(channelCount, frames, samplesPerSecond);
  const size_t frameBytes = 2 * channelCount;
  const int framesPerPiece = static_cast<int>(std::max<size_t>(1, kPieceBytes / frameBytes));
  std::vector<char> piece(static_cast<size_t>(framesPerPiece) * frameBytes);
  PlainFile file;
  bool ok = file.createReplacementFor(path) &&
            file.reserve(static_cast<int64_t>(kWaveHeaderBytes + frameBytes * static_cast<size_t>(frames))) &&
            file.writeAt(0, header);
  int64_t at = kWaveHeaderBytes;
  for (int first = 1; ok && first <= frames; first += framesPerPiece) {
    const int count = std::min(frames - first + 1, framesPerPiece);
    if (!rows(first, count, piece.data())) return false;
    const auto bytes = static_cast<size_t>(count) * frameBytes;
    ok = file.writeAt(at, std::span<const char>(piece.data(), bytes));
    at += static_cast<int64_t>(bytes);
  }
  if (ok && file.commit()) return true;
  prompts.message(QStringLiteral("Не удалось записать файл %1: %2.")
                      .arg(QDir::toNativeSeparators(path), ReasonOfError(file.lastError(), true)),
                  title, PromptButtons::Ok, PromptIcon::Critical);
  return false;
}

}  // namespace

bool WriteWaveFile(const AppState& state, const QString& path, Prompts& prompts, const QString& title,
                   const DataFileArea* samplesInFile) {
  // A file's area holds the channels and rows of the state read from it;
  // they are taken from the area, as they size its reads.
  std::vector<int> channels;
  if (samplesInFile)
    channels = samplesInFile->usedChannels;
  else
    for (int c = 1; c <= ChannelCount(state); ++c)
      if (state.channels.Channel[c] == 1) channels.push_back(c);
  if (channels.empty()) {
    prompts.message(QStringLiteral("В записи нет ни одного канала с данными."), title,
                    PromptButtons::Ok, PromptIcon::Exclamation);
    return false;
  }
  const int frames = samplesInFile ? samplesInFile->keptSamples : std::clamp(state.SignalDataN, 0, kMaxSamples);
  if (!samplesInFile) return WriteWaveFrames(frames, channels.size(), StoreRows(state, channels), state.FreqDesc,
                                             path, prompts, title);
  AreaRows rows(*samplesInFile, prompts);
  return rows.open() && WriteWaveFrames(frames, channels.size(), std::ref(rows), state.FreqDesc, path, prompts, title);
}

bool WriteWaveChannel(const AppState& state, int channel, const QString& path,
                      int samplesPerSecond, Prompts& prompts, const QString& title) {
  const int one[] = {std::clamp(channel, 1, kMaxChannels)};
  return WriteWaveFrames(std::clamp(state.SignalDataN, 0, kMaxSamples), 1, StoreRows(state, one), samplesPerSecond,
                         path, prompts, title);
}

bool ParseWave(const WaveSource& source, WaveContents& contents, QString& refusal) {
  // A file shorter than the header reads as zeros beyond its end, so that
  // each check below refuses it with its own text.
  std::array<char, kWaveHeaderBytes> prefix{};
  const auto prefixBytes = static_cast<size_t>(std::min<uint64_t>(source.size, kWaveHeaderBytes));
  if (!source.read(0, std::span(prefix.data(), prefixBytes))) {
    refusal = kUnknownFormat;
    return false;
  }
  WaveHeader h;
  ReadLayout(WaveHeaderLayout(), std::span<const char>(prefix), h);

  if (h.riffTag != "RIFF") {
    refusal = QStringLiteral("Файл не RIFF формата.");
    return false;
  }
  if (h.waveTag != "WAVE") {
    refusal = QStringLiteral("Файл не WAVE формата.");
    return false;
  }
  const uint64_t size = source.size;
  if (h.fmtTag != "fmt " || h.fmtBytes < 16 || uint64_t{h.fmtBytes} + 20 > size) {
    refusal = kUnknownFormat;
    return false;
  }
  if (!IsPcm(h, source)) {
    refusal = QStringLiteral("Файл не PCM формата.");
    return false;
  }
  if (h.bitsPerSample != 8 && h.bitsPerSample != 16) {
    refusal = QStringLiteral("Файл неподдерживаемого %1-битного формата.").arg(h.bitsPerSample);
    return false;
  }
  if (h.channels == 0 || h.samplesPerSecond == 0 ||
      h.blockAlign != h.channels * (h.bitsPerSample / 8)) {
    refusal = kUnknownFormat;
    return false;
  }

  // Chunks are word-aligned: an odd size is followed by one pad byte.
  uint64_t at = 20 + uint64_t{h.fmtBytes} + (h.fmtBytes & 1u);
  std::array<char, 8> chunkHead{};
  for (;;) {
    if (at > size || size - at < 8 || !source.read(at, chunkHead) || !IsChunkTag(chunkHead)) {
      refusal = kUnknownFormat;
      return false;
    }
    const uint32_t chunkBytes = LittleU32(chunkHead, 4);
    if (std::memcmp(chunkHead.data(), "data", 4) == 0) {
      contents.dataOffset = at + 8;
      // Writers that stream (and never come back to the size) leave it too
      // large; what the file holds is what counts.
      const uint64_t dataBytes = std::min<uint64_t>(chunkBytes, size - contents.dataOffset);
      contents.frameCount = dataBytes / h.blockAlign;
      break;
    }
    at += 8 + uint64_t{chunkBytes} + (chunkBytes & 1u);
  }
  if (contents.frameCount == 0) {
    refusal = QStringLiteral("Файл не содержит отсчётов.");
    return false;
  }
  contents.channels = h.channels;
  contents.samplesPerSecond = static_cast<int>(std::min<uint32_t>(h.samplesPerSecond, INT32_MAX));
  contents.bitsPerSample = h.bitsPerSample;
  contents.blockAlign = h.blockAlign;
  return true;
}

bool ParseWave(std::span<const char> bytes, WaveContents& contents, QString& refusal) {
  const WaveSource source{bytes.size(), [bytes](uint64_t at, std::span<char> out) {
                            if (at > bytes.size() || bytes.size() - at < out.size()) return false;
                            std::memcpy(out.data(), bytes.data() + at, out.size());
                            return true;
                          }};
  return ParseWave(source, contents, refusal);
}

bool ReadFileWave(AppState& state, Prompts& prompts) {
  PlainFile file;
  const auto tellUnreadable = [&] {
    prompts.message(QStringLiteral("Не удалось прочитать файл %1: %2.")
                        .arg(QDir::toNativeSeparators(state.PathFileData),
                             ReasonOfError(file.lastError(), false)),
                    kErrorTitle, PromptButtons::Ok, PromptIcon::Critical);
  };
  if (!file.openRead(state.PathFileData)) {
    prompts.message(QStringLiteral("Не удалось открыть файл %1.")
                        .arg(QDir::toNativeSeparators(state.PathFileData)),
                    kErrorTitle, PromptButtons::Ok, PromptIcon::Critical);
    return false;
  }
  const int64_t fileBytes = file.size();
  if (fileBytes < 0) {
    tellUnreadable();
    return false;
  }
  const WaveSource source{static_cast<uint64_t>(fileBytes), [&file](uint64_t at, std::span<char> out) {
                            return file.readAt(static_cast<int64_t>(at), out);
                          }};
  WaveContents w;
  QString refusal;
  if (!ParseWave(source, w, refusal)) {
    if (file.lastError() != 0) {
      tellUnreadable();
      return false;
    }
    prompts.message(refusal, kErrorTitle, PromptButtons::Ok, PromptIcon::Critical);
    return false;
  }

  const int rows = StoreLengthFor(w.frameCount);
  const int used = std::min(w.channels, ChannelCount(state));
  // Only the frames the store takes are read, into a buffer no larger than
  // the store, before the state changes: a read error leaves it as it was.
  std::vector<int16_t> staged;
  if (!StageFrames(file, w, rows, used, staged)) {
    tellUnreadable();
    return false;
  }
  file.close();
  // 2^(Int(log2 P) + 1) passes the store from P = 1048576 on, but only a
  // longer file loses samples; that is what the warning is about.
  if (w.frameCount > static_cast<size_t>(kMaxSamples))
    prompts.message(QStringLiteral("Файл слишком большой!"), QStringLiteral("Внимание"),
                    PromptButtons::Ok, PromptIcon::Exclamation);

  auto& ch = state.channels;
  for (int c = 1; c <= kMaxChannels; ++c) {
    ch.Channel[c] = 0;
    ch.Active[c] = 0;
  }
  for (int c = 1; c <= used; ++c) {
    ch.Channel[c] = 1;
    ch.Type[c] = 5;
    ch.Place[c].clear();
    ch.Direct[c].clear();
    ch.SensorName[c].clear();
    ch.Ku[c] = 1.0f;
    ch.KS[c] = 0.0f;
    ch.Volume[c] = 0;
    ch.ChannelColor[c] = 0;
    // A zero or a layout of the recording before would skew this one.
    ch.Zero[c] = 0;
    ch.ChannelY[c] = 1000000;
    ch.ChannelYm[c] = -1;
  }
  const int16_t* from = staged.data();
  for (int k = 1; k <= rows; ++k)
    for (int c = 1; c <= used; ++c) state.SignalData.at(k, c) = *from++;

  state.SignalDataN = rows;
  state.ViewFirst = 1;
  state.ViewLast = rows;
  state.SelectFirst = 0;
  state.SelectLast = 0;
  // The store now spans the file's time in `rows` samples.
  state.FreqDesc = std::max(1, RoundHalfEven(static_cast<double>(w.samplesPerSecond) * rows /
                                             static_cast<double>(w.frameCount)));
  state.FreqDescR = state.FreqDesc;
  state.SolidMode = false;
  state.SolidBlockCount = 0;
  state.SolidBlockN = 1;
  state.SolidBlockM = 1;
  state.markers.MarkerN = 0;
  state.FirstChannelActive = 1;
  ch.Active[1] = 1;
  RecountChannelUsedCount(state);
  ApplyBlockRule(state);
  state.DataSaved = true;
  return true;
}

bool ExportWaveCommand(const AppState& state, Prompts& prompts, const DataFileArea* samplesInFile) {
  const QString title = QStringLiteral("Экспорт");
  const QString suggested =
      state.PathFileData.isEmpty() ? QString() : QFileInfo(state.PathFileData).completeBaseName() +
                                                     QStringLiteral(".wav");
  const auto path = prompts.chooseSaveFile(title, state.InitDirSave, suggested,
                                           QStringLiteral("WAVE (*.wav)|*.wav|Все файлы (*.*)|*.*"));
  if (!path || path->isEmpty()) return false;
  if (QFileInfo::exists(*path) &&
      prompts.ask(QStringLiteral("Файл с таким именем уже существует. Заменить?"), title,
                  PromptButtons::YesNo) != PromptAnswer::Yes)
    return false;
  return WriteWaveFile(state, *path, prompts, title, samplesInFile);
}

}  // namespace aqx
