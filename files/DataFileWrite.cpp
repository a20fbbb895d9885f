// Writing the recording in the current layout, and the command "save".
#include "files/DataFile.h"
#include "files/DataFileRules.h"
#include "files/SampleBlocks.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <vector>

namespace aqx {

namespace {

std::vector<int> UsedChannels(const AppState& s) {
  std::vector<int> used;
  for (int c = 1; c <= ChannelCount(s); ++c)
    if (s.channels.Channel[c] == 1) used.push_back(c);
  return used;
}

void TellSaveFailure(Prompts& p, const QString& path, int error, bool targetExisted) {
  QString text = QStringLiteral("Не удалось сохранить файл %1: %2.")
                     .arg(QDir::toNativeSeparators(path), ReasonOfError(error, true));
  if (targetExisted) text += QStringLiteral("\nПрежний файл не изменён.");
  p.message(text, kSaveTitle, PromptButtons::Ok, PromptIcon::Critical);
}

void TakeProgramVersion(AppState& s) {
  s.FileVersionMajor = AQX_VERSION_MAJOR;
  s.FileVersionMinor = AQX_VERSION_MINOR;
  s.FileVersionRevision = AQX_VERSION_PATCH;
}

// The store's samples of the target's channels, into its area; one block
// of samples of all channels is gathered at a time.
bool WriteSamples(PlainFile& file, const AppState& s, const DataFileArea& target) {
  const size_t used = target.usedChannels.size();
  const int samplesPerChannel = target.keptSamples;
  if (used == 0 || samplesPerChannel == 0) return true;
  std::vector<int16_t> block(used * kBlockStride);
  std::vector<size_t> column(used);
  for (size_t k = 0; k < used; ++k) column[k] = static_cast<size_t>(target.usedChannels[k] - 1);
  for (int first = 0; first < samplesPerChannel; first += kSamplesPerBlock) {
    const int count = std::min(kSamplesPerBlock, samplesPerChannel - first);
    GatherChannels(s.SignalData.data(), first, count, column, block.data());
    for (size_t k = 0; k < used; ++k) {
      const auto* source = reinterpret_cast<const char*>(block.data() + k * kBlockStride);
      if (!file.writeAt(target.byteOf(k, first), std::span(source, static_cast<size_t>(count) * 2))) return false;
    }
  }
  return true;
}

// Bytes moved per read and write when samples go from file to file.
constexpr size_t kRowCopyBytes = size_t{1} << 20;

// Each channel's kept samples from the source area into the target's as
// they lie, a piece at a time. False on a failure; `readFailed` (then told)
// when it was the source's.
bool CopySamples(PlainFile& out, const DataFileArea& target, const DataFileArea& source, Prompts& p,
                 bool& readFailed) {
  const size_t used = target.usedChannels.size();
  const int64_t channelBytes = 2 * static_cast<int64_t>(target.keptSamples);
  if (used == 0 || channelBytes == 0) return true;
  PlainFile in;
  if (!OpenArea(in, source, p)) {
    readFailed = true;
    return false;
  }
  std::vector<char> piece(static_cast<size_t>(std::min<int64_t>(channelBytes, kRowCopyBytes)));
  for (size_t k = 0; k < used; ++k) {
    for (int64_t done = 0; done < channelBytes;) {
      const std::span chunk(piece.data(), static_cast<size_t>(std::min<int64_t>(channelBytes - done, kRowCopyBytes)));
      if (!ReadAreaSamples(in, source, k, done / 2, chunk, p)) {
        readFailed = true;
        return false;
      }
      if (!out.writeAt(target.byteOf(k, done / 2), chunk)) return false;
      done += static_cast<int64_t>(chunk.size());
    }
  }
  return true;
}

// A continuous recording of an older layout has its rows right behind a
// shorter header, which the current one would overwrite: the file is
// written anew, header and rows, and replaces the old one only when whole.
bool RewriteSolidFile(AppState& s, const QByteArray& header, Prompts& p) {
  const QString target = s.PathFileData;
  PlainFile in;
  const int64_t fileBytes = in.openRead(target) ? in.size() : -1;
  if (fileBytes < 0) {
    TellSaveFailure(p, target, in.lastError(), true);
    return false;
  }
  const int64_t rowBytes = std::max<int64_t>(0, fileBytes - s.SolidDataStart);
  const auto headerBytes = static_cast<int64_t>(header.size());
  PlainFile out;
  bool written = out.createReplacementFor(target) && out.reserve(headerBytes + rowBytes) &&
                 out.writeAt(0, std::span(header.constData(), static_cast<size_t>(header.size())));
  std::vector<char> piece(static_cast<size_t>(std::min<int64_t>(rowBytes, kRowCopyBytes)));
  for (int64_t done = 0; written && done < rowBytes;) {
    const std::span chunk(piece.data(), static_cast<size_t>(std::min<int64_t>(rowBytes - done, kRowCopyBytes)));
    if (!in.readAt(s.SolidDataStart + done, chunk)) {
      TellSaveFailure(p, target, in.lastError(), true);
      return false;
    }
    written = out.writeAt(headerBytes + done, chunk);
    done += static_cast<int64_t>(chunk.size());
  }
  if (!written || !out.commit()) {
    TellSaveFailure(p, target, out.lastError(), true);
    return false;
  }
  s.SolidDataStart = static_cast<int32_t>(headerBytes);
  TakeProgramVersion(s);
  return true;
}

}  // namespace

QByteArray BuildFileHeaderBytes(const AppState& s) {
  FileHeader h = FileHeaderFromState(s);
  h.magic = QString::fromLatin1(kDataFileMagic);
  h.FileVersionMajor = AQX_VERSION_MAJOR;
  h.FileVersionMinor = AQX_VERSION_MINOR;
  h.FileVersionRevision = AQX_VERSION_PATCH;
  for (QString& name : h.SensorName) name = name.trimmed();
  // Only the recording's markers go out; the other records are blank.
  const auto markers = static_cast<size_t>(std::clamp(s.markers.MarkerN, 0, kMaxMarkers));
  for (size_t i = markers; i < static_cast<size_t>(kMaxMarkers); ++i) {
    h.MarkerDate[i] = 0.0;
    h.MarkerRemark[i].clear();
    h.MarkerColor[i] = h.MarkerOn[i] = h.MarkerShift[i] = 0;
  }
  QByteArray bytes(static_cast<qsizetype>(DataFileHeaderBytes(kCurrentFileLayout)), '\0');
  WriteLayout(DataFileLayout(kCurrentFileLayout), h, std::span(bytes.data(), static_cast<size_t>(bytes.size())));
  return bytes;
}

bool WriteFileHeader(AppState& s, const QString& path, Prompts& p) {
  const QByteArray header = BuildFileHeaderBytes(s);
  PlainFile file;
  if (!file.openWrite(path) ||
      !file.writeAt(0, std::span(header.constData(), static_cast<size_t>(header.size()))) ||
      !file.sync() || !file.close()) {
    TellSaveFailure(p, path, file.lastError(), false);
    return false;
  }
  TakeProgramVersion(s);
  return true;
}

namespace {

// The recording in the current layout into a replacement of PathFileData:
// the header, then the samples by writeSamples(file, area, readFailed),
// which returns false on a failure and sets readFailed when it has told
// one of its source.
template <class SampleWriter>
bool WriteCurrentLayout(AppState& s, Prompts& p, SampleWriter&& writeSamples) {
  const QString target = s.PathFileData;
  const bool targetExisted = QFileInfo::exists(target);
  const QByteArray header = BuildFileHeaderBytes(s);
  DataFileArea area;
  area.path = target;
  area.usedChannels = UsedChannels(s);
  // The first sample byte replaces the last header byte.
  area.areaStart = header.size() - 1;
  area.keptSamples = std::clamp(s.SignalDataN, 0, kMaxSamples);
  area.fileSamplesPerChannel = area.keptSamples;

  PlainFile file;
  if (!file.createReplacementFor(target)) {
    TellSaveFailure(p, target, file.lastError(), targetExisted);
    return false;
  }
  bool readFailed = false;
  const bool written = file.reserve(area.byteOf(area.usedChannels.size(), 0)) &&
                       file.writeAt(0, std::span(header.constData(), static_cast<size_t>(area.areaStart))) &&
                       writeSamples(file, area, readFailed) && file.commit();
  if (!written) {
    if (!readFailed) TellSaveFailure(p, target, file.lastError(), targetExisted);
    return false;
  }
  TakeProgramVersion(s);
  return true;
}

}  // namespace

bool WriteDataFile(AppState& s, Prompts& p) {
  return WriteCurrentLayout(s, p, [&s](PlainFile& file, const DataFileArea& target, bool&) {
    return WriteSamples(file, s, target);
  });
}

bool WriteDataFileFrom(AppState& s, const DataFileArea& source, Prompts& p) {
  return WriteCurrentLayout(s, p, [&](PlainFile& file, const DataFileArea& target, bool& readFailed) {
    return CopySamples(file, target, source, p, readFailed);
  });
}

bool SaveDataFileCommand(AppState& s, Prompts& p) {
  if (s.SolidMode) {
    // The samples are on disk already; only the header is renewed, in
    // place when the rows begin where the current header ends (or where
    // this program put them, when no file told otherwise).
    const QByteArray header = BuildFileHeaderBytes(s);
    const bool inPlace = s.SolidDataStart == 0 || s.SolidDataStart == header.size();
    const bool saved = inPlace ? WriteFileHeader(s, s.PathFileData, p) : RewriteSolidFile(s, header, p);
    if (!saved) return false;
    s.DataSaved = true;
    return true;
  }
  for (;;) {
    const std::optional<QString> chosen =
        p.chooseSaveFile(kSaveTitle, s.InitDirSave, s.PathFileData, kDataFileFilter);
    if (!chosen || chosen->isEmpty()) return false;
    s.InitDirSave = QFileInfo(*chosen).absolutePath();
    // The old file is replaced only by the rename after a complete write,
    // so it is not deleted here.
    if (QFileInfo::exists(*chosen) &&
        p.message(QStringLiteral("Файл с таким именем уже существует. Заменить?"), kSaveTitle,
                  PromptButtons::OkCancel, PromptIcon::Question) != PromptAnswer::Ok)
      continue;
    const QString previousPath = s.PathFileData;
    s.PathFileData = *chosen;
    if (!WriteDataFile(s, p)) {
      s.PathFileData = previousPath;
      return false;
    }
    s.DataSaved = true;
    return true;
  }
}

}  // namespace aqx
