// Reading a data file of any layout into the state. The file is checked
// whole before the state is touched: a refused file leaves the previous
// recording as it was.
#include "core/Numeric.h"
#include "core/ChannelPhysics.h"
#include "files/DataFile.h"
#include "files/DataFileRules.h"
#include "files/SampleBlocks.h"
#include "files/SolidFile.h"

#include <QDir>

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

namespace aqx {

namespace {

const QString kReadingNotice = QStringLiteral("Подождите, идет чтение файла ...");

// Shows the reading notice unless a report walks through files; closes it
// on every way out.
class ReadingNotice {
 public:
  ReadingNotice(const AppState& s, Prompts& p) : prompts_(p), shown_(!s.BatchMode) {
    if (shown_) prompts_.notice({kReadingNotice});
  }
  ~ReadingNotice() {
    if (shown_) prompts_.closeNotice();
  }
  ReadingNotice(const ReadingNotice&) = delete;
  ReadingNotice& operator=(const ReadingNotice&) = delete;

 private:
  Prompts& prompts_;
  bool shown_;
};

void Refuse(Prompts& p, const QString& text) {
  p.message(text, kOpenTitle, PromptButtons::Ok, PromptIcon::Exclamation);
}

QString Damaged(const QString& what) {
  return QStringLiteral("Файл данных повреждён: %1.\nЗагрузка невозможна!").arg(what);
}

// A header read and checked, with all that the state will take from it.
struct ParsedDataFile {
  FileHeader header;
  int layout = kCurrentFileLayout;
  int64_t headerBytes = 0;  // H
  int channelCountBefore = kMaxChannels;
  QStringList repaired;
  // Its channels are those whose samples the file holds, ascending: up to
  // the ChannelCount after the read, with the Channel flags after the read
  // (the file's up to the ChannelCount before it, the state's beyond).
  DataFileArea area;
};

bool OpenForReading(PlainFile& file, const QString& path, Prompts& p) {
  if (file.openRead(path)) return true;
  Refuse(p, QStringLiteral("Не удалось открыть файл %1: %2.")
                .arg(QDir::toNativeSeparators(path), ReasonOfError(file.lastError(), false)));
  return false;
}

// Reads and checks the header (layout by the file's minor version, or the
// one given) and, for an ordinary file when `checkSamples`, that the sample
// area is all there. Tells the user why and returns nothing on refusal.
std::optional<ParsedDataFile> ParseDataFile(PlainFile& file, const AppState& s, Prompts& p,
                                            std::optional<int> forcedLayout, bool checkSamples) {
  const int64_t fileBytes = file.size();
  if (fileBytes < 0) {
    Refuse(p, QStringLiteral("Не удалось прочитать файл %1: %2.")
                  .arg(QDir::toNativeSeparators(file.path()), ReasonOfError(file.lastError(), false)));
    return std::nullopt;
  }
  ParsedDataFile f;
  // Magic and version: a file shorter than them reads as zeros beyond its
  // end, and then its magic fails.
  std::array<char, kDataFileIdentityBytes> identity{};
  const auto identityRead =
      static_cast<size_t>(std::min<int64_t>(fileBytes, static_cast<int64_t>(identity.size())));
  if (!file.readAt(0, std::span(identity.data(), identityRead))) {
    Refuse(p, QStringLiteral("Не удалось прочитать файл %1: %2.")
                  .arg(QDir::toNativeSeparators(file.path()), ReasonOfError(file.lastError(), false)));
    return std::nullopt;
  }
  FileHeader id;
  ReadLayout(DataFileIdentityLayout(), std::span<const char>(identity), id);
  if (id.magic != QLatin1String(kDataFileMagic)) {
    Refuse(p, QStringLiteral("Указанный файл не является файлом данных Aquilonix!"));
    return std::nullopt;
  }
  f.layout = forcedLayout.value_or(id.FileVersionMinor);
  if (f.layout < kOldestFileLayout || f.layout > kCurrentFileLayout) {
    Refuse(p, QStringLiteral("Файл данных неизвестной или старшей версии (v%1.%2).\nЗагрузка невозможна!")
                  .arg(id.FileVersionMajor)
                  .arg(id.FileVersionMinor));
    return std::nullopt;
  }
  f.headerBytes = static_cast<int64_t>(DataFileHeaderBytes(f.layout));
  f.area.path = file.path();
  f.area.areaStart = f.headerBytes - 1;
  // The last header byte is the first sample byte, and a file without
  // samples ends before it.
  if (fileBytes < f.headerBytes - 1) {
    Refuse(p, Damaged(QStringLiteral("заголовок версии %1.%2 обрезан (%3 байт из %4)")
                          .arg(id.FileVersionMajor)
                          .arg(f.layout)
                          .arg(fileBytes)
                          .arg(f.headerBytes - 1)));
    return std::nullopt;
  }
  // The last header byte is never the header's: the writer puts the first
  // sample's low byte there, or ends the file before it. It reads as zero
  // rather than as a stray character of the remark or a marker's shift.
  std::vector<char> record(static_cast<size_t>(f.headerBytes), '\0');
  const auto recordRead = static_cast<size_t>(f.headerBytes - 1);
  if (!file.readAt(0, std::span(record.data(), recordRead))) {
    Refuse(p, QStringLiteral("Не удалось прочитать файл %1: %2.")
                  .arg(QDir::toNativeSeparators(file.path()), ReasonOfError(file.lastError(), false)));
    return std::nullopt;
  }
  // What the layout lacks keeps the state's value after the defaults.
  f.channelCountBefore = ChannelCount(s);
  f.header = FileHeaderFromState(s);
  ResetHeaderDefaults(f.header, f.channelCountBefore);
  ReadLayout(DataFileLayout(f.layout), std::span<const char>(record), f.header);
  f.repaired = RepairHeader(f.header, f.channelCountBefore);

  const int countAfter = f.header.ChannelDifferential == 1 ? 16 : kMaxChannels;
  for (int c = 1; c <= countAfter; ++c) {
    const int flag = c <= f.channelCountBefore ? f.header.Channel[static_cast<size_t>(c - 1)]
                                               : s.channels.Channel[c];
    if (flag == 1) f.area.usedChannels.push_back(c);
  }
  const int64_t samples = f.area.fileSamplesPerChannel = f.header.SignalDataN;
  f.area.keptSamples = static_cast<int>(std::clamp<int64_t>(samples, 1, static_cast<int64_t>(kMaxSamples)));
  if (!checkSamples || f.header.SolidMode) return f;
  const auto used = f.area.usedChannels.size();
  if (samples < 1 && used > 0) {
    Refuse(p, Damaged(QStringLiteral("неверное число отсчётов в заголовке (%1)").arg(samples)));
    return std::nullopt;
  }
  const int64_t needBytes = f.area.byteOf(used, 0);
  if (fileBytes < needBytes) {
    Refuse(p, Damaged(QStringLiteral("по заголовку в нём %1 отсчётов по %2 каналам (%3 байт), "
                                     "а в файле %4 байт")
                          .arg(samples)
                          .arg(used)
                          .arg(needBytes)
                          .arg(fileBytes)));
    return std::nullopt;
  }
  return f;
}

// The header into the state, with the rules of every header reader.
void CommitHeader(const ParsedDataFile& f, AppState& s) {
  CopyHeaderToState(f.header, s, {f.channelCountBefore, !s.SaveProbe, !s.SaveFilter});
  s.SolidBlockCount = 0;
  s.SolidBlockN = 1;
  s.SolidBlockM = 1;
  // A marker channel reads in plain codes, whatever the file holds.
  for (int c = 1; c <= f.channelCountBefore; ++c)
    if (s.channels.Type[c] == sensor::ShaftMarker) s.channels.Ku[c] = kShaftMarkerKu;
  if (s.SolidMode) {
    const int used = RecountChannelUsedCount(s);
    if (used > 0) s.FreqDesc = s.FreqDescR = RoundHalfEven(static_cast<double>(s.FreqADC) / used);
  }
  RecountChannelUsedCount(s);
}

// The sample area, channel after channel in the file, into the sample-major
// store, one block of samples of all channels at a time. With no store the
// area is only read through: a read error then leaves the store as it was.
bool ReadSamples(PlainFile& file, const DataFileArea& area, int16_t* store, Prompts& p) {
  const size_t used = area.usedChannels.size();
  if (used == 0) return true;
  const int keep = area.keptSamples;
  std::vector<int16_t> block(used * kBlockStride);
  std::vector<size_t> column(used);
  for (size_t k = 0; k < used; ++k) column[k] = static_cast<size_t>(area.usedChannels[k] - 1);
  for (int first = 0; first < keep; first += kSamplesPerBlock) {
    const int count = std::min(kSamplesPerBlock, keep - first);
    for (size_t k = 0; k < used; ++k) {
      auto* target = reinterpret_cast<char*>(block.data() + k * kBlockStride);
      if (!ReadAreaSamples(file, area, k, first, std::span(target, static_cast<size_t>(count) * 2), p))
        return false;
    }
    if (store) SpreadChannels(block.data(), first, count, column, store);
  }
  return true;
}

void TellRepaired(const ParsedDataFile& f, Prompts& p) {
  if (f.repaired.isEmpty()) return;
  p.message(QStringLiteral("В заголовке файла недопустимые значения (%1); "
                           "они заменены значениями по умолчанию.")
                .arg(f.repaired.join(QStringLiteral(", "))),
            kOpenTitle, PromptButtons::Ok, PromptIcon::Exclamation);
}

}  // namespace

bool OpenArea(PlainFile& file, const DataFileArea& area, Prompts& p) {
  return OpenForReading(file, area.path, p);
}

bool ReadAreaSamples(PlainFile& file, const DataFileArea& area, size_t k, int64_t first, std::span<char> bytes,
                     Prompts& p) {
  if (file.readAt(area.byteOf(k, first), bytes)) return true;
  Refuse(p, QStringLiteral("Ошибка чтения файла %1: %2.")
                .arg(QDir::toNativeSeparators(file.path()), ReasonOfError(file.lastError(), false)));
  return false;
}

namespace {

// What a read does with the samples: into the store, not at all, or (for
// an ordinary file) left in the file for the caller.
enum class SampleUse { Store, None, LeaveInFile };

bool ReadDataFileAs(AppState& s, Prompts& p, SampleUse use, std::optional<DataFileArea>* area) {
  ReadingNotice notice(s, p);
  PlainFile file;
  if (!OpenForReading(file, s.PathFileData, p)) return false;
  std::optional<ParsedDataFile> parsed = ParseDataFile(file, s, p, std::nullopt, true);
  if (!parsed) return false;
  const ParsedDataFile& f = *parsed;
  const int keep = f.area.keptSamples;
  // A continuous file's block is always read when samples are wanted.
  const bool leaveInFile = use == SampleUse::LeaveInFile && !f.header.SolidMode;
  const bool withSamples = use != SampleUse::None && !leaveInFile;
  // Every byte of the samples is read once before the store is touched (the
  // second pass then comes from the page cache), so that a read error
  // leaves the previous recording whole without a second 64 MiB store. A
  // store that has never held a sample has nothing to lose: one pass.
  const bool storeHoldsSamples = s.SignalData.residentBytes() > 0;
  if (withSamples && storeHoldsSamples && !f.header.SolidMode && !ReadSamples(file, f.area, nullptr, p))
    return false;

  // The block of a continuous file is read after the header is in; a
  // failure there puts the previous values back.
  const StateValues previous = s;
  CommitHeader(f, s);
  if (s.SolidMode) {
    file.close();
    if (!OpenSolidFileBlocks(s, static_cast<int>(f.headerBytes), p, withSamples)) {
      static_cast<StateValues&>(s) = previous;
      return false;
    }
  } else {
    s.SignalDataN = keep;
    s.ViewFirst = 1;
    s.ViewLast = s.SignalDataN;
    ApplyBlockRule(s);
    if (withSamples && !ReadSamples(file, f.area, s.SignalData.data(), p)) {
      static_cast<StateValues&>(s) = previous;
      return false;
    }
  }
  if (area) {
    if (leaveInFile)
      area->emplace(f.area);
    else
      area->reset();
  }
  TellRepaired(f, p);
  if (s.ReminderConvertFile &&
      (f.header.FileVersionMajor != AQX_VERSION_MAJOR || f.header.FileVersionMinor != AQX_VERSION_MINOR)) {
    p.message(QStringLiteral("Файл версии %1.%2 успешно конвертирован до текущей версии %3.%4")
                  .arg(f.header.FileVersionMajor)
                  .arg(f.header.FileVersionMinor)
                  .arg(AQX_VERSION_MAJOR)
                  .arg(AQX_VERSION_MINOR),
              kConvertTitle, PromptButtons::Ok, PromptIcon::Information);
  }
  return true;
}

}  // namespace

bool ReadDataFile(AppState& s, Prompts& p) { return ReadDataFileAs(s, p, SampleUse::Store, nullptr); }

bool ReadDataFileHeader(AppState& s, Prompts& p) { return ReadDataFileAs(s, p, SampleUse::None, nullptr); }

bool ReadDataFileLeavingSamples(AppState& s, Prompts& p, std::optional<DataFileArea>& area) {
  return ReadDataFileAs(s, p, SampleUse::LeaveInFile, &area);
}

bool LoadHeaderOfLayout(AppState& s, int minor, Prompts& p) {
  PlainFile file;
  if (!OpenForReading(file, s.PathFileData, p)) return false;
  std::optional<ParsedDataFile> parsed = ParseDataFile(file, s, p, minor, false);
  if (!parsed) return false;
  CommitHeader(*parsed, s);
  TellRepaired(*parsed, p);
  return true;
}

bool LoadHeader(AppState& s, Prompts& p) { return LoadHeaderOfLayout(s, kCurrentFileLayout, p); }

void ResetFileDefaults(AppState& s) {
  FileHeader h = FileHeaderFromState(s);
  const int count = ChannelCount(s);
  ResetHeaderDefaults(h, count);
  CopyHeaderToState(h, s, {count, true, true});
  s.SolidBlockCount = 0;
  s.SolidBlockN = 1;
  s.SolidBlockM = 1;
}

}  // namespace aqx
