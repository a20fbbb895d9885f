#include "files/ContinuousRecording.h"

#include "core/EngineErrors.h"
#include "core/Numeric.h"
#include "core/RecordSetup.h"
#include "core/VirtualUnit.h"
#include "engine/Aquilonix.h"
#include "files/DataFile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace aqx {

bool StartContinuousRecording(AppState& s, Prompts& p, const QString& path, bool clearData) {
  if (!IsModuleRate(s.FreqADC)) {
    p.message(ModuleRateRefusal(s.FreqADC), QStringLiteral("Ошибка"), PromptButtons::Ok, PromptIcon::Critical);
    return false;
  }
  const int used = RecountChannelUsedCount(s);
  ExportVirtualUnit(s);
  s.SolidMode = true;
  s.SignalDataN = kMaxSamples;
  if (used > 0) s.FreqDesc = s.FreqDescR = RoundHalfEven(static_cast<double>(s.FreqADC) / used);
  s.SelectFirst = s.SelectLast = 0;
  s.SolidBlockCount = 1;
  s.SolidBlockN = 1;
  s.SolidBlockM = 1;
  s.object.RecordDate = DateTimeToOle(QDateTime::currentDateTime());
  s.PathFileData = path;
  QFile::remove(path);
  {
    QFile created(path);
    created.open(QIODevice::WriteOnly);
  }
  if (!WriteFileHeader(s, path, p)) {
    QFile::remove(path);
    return false;
  }
  s.SolidDataStart = static_cast<int32_t>(BuildFileHeaderBytes(s).size());
  // The library's buffer: the power of two above the module's rate.
  const int32_t recordBuffer = 1 << std::clamp(IntFloor(std::log2(std::max(s.FreqADC, 1))) + 1, 1, 30);
  const QByteArray name = QFile::encodeName(path);
  char moduleText[17] = {};
  const int32_t started =
      ReadDataToFile(name.constData(), s.SolidDataStart, recordBuffer, 100000, s.FreqADC / 1000.0, used,
                     s.channels.Channel.data(), s.channels.Volume.data(), s.InputMode, s.SynchroAdType,
                     s.SynchroAdMode, s.SynchroAdChannel, s.SynchroAdPorog, moduleText, s.ChannelDifferential,
                     kMaxSamples, clearData ? 1 : 0);
  if (started != 0) {
    ShowEngineError(p, started);
    QFile::remove(path);  // nothing but a header was written
    return false;
  }
  s.ModuleTag = ModuleTagOf(moduleText);
  return true;
}

bool PollContinuousRecording(AppState& s) {
  CopySignalDataDllRDTF(s.SignalData.data(), kMaxSamples, &s.SolidBlockCount, &s.SolidBlockN,
                        s.channels.Channel.data());
  return EndRDTF() != 0;
}

namespace {

// The library's number and text; when the disk has no room left for another
// second of rows, also that it is full and what the file keeps.
void TellRecordingFailure(const AppState& s, Prompts& p, int32_t number) {
  QString text = EngineErrorText(number);
  const DiskSpace disk = DiskSpaceOf(QFileInfo(s.PathFileData).absolutePath());
  if (disk.known && disk.freeBytes < 2.0 * s.FreqADC)
    text += QStringLiteral("\nДиск заполнен, запись остановлена. В файле сохранено всё, что записано до этого:\n%1\n%2")
                .arg(QDir::toNativeSeparators(s.PathFileData), FormatFileSize(InformationFileData()));
  p.message(text, QStringLiteral("Aquilonix"), PromptButtons::Ok, PromptIcon::Critical);
}

}  // namespace

bool StopContinuousRecording(AppState& s, Prompts& p) {
  const int32_t stopped = StopRDTF();
  // A thread that failed (a full disk) has still left whole rows behind.
  if (stopped != 0) TellRecordingFailure(s, p, stopped);
  s.FreqDesc = s.FreqDescR;
  // The module's tag belongs in the header; the rows behind it stay.
  const bool headerWritten = WriteFileHeader(s, s.PathFileData, p);
  return stopped == 0 && headerWritten;
}

void TellStopFailure(Prompts& p, int32_t result) {
  if (result != 0)
    p.message(QStringLiteral("Error: %1").arg(result), QStringLiteral("Aquilonix"), PromptButtons::Ok,
              PromptIcon::Critical);
}

QString ModuleTagOf(const char* moduleText) {
  return QString::fromLatin1(moduleText, static_cast<qsizetype>(strnlen(moduleText, 16)));
}

}  // namespace aqx
