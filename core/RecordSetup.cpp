#include "core/RecordSetup.h"

#include "core/Config.h"
#include "core/ConfigKeys.h"
#include "core/ConfigWriters.h"
#include "core/Numeric.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>
#include <QTemporaryFile>

#include <algorithm>
#include <cmath>

namespace aqx {

namespace {

constexpr int32_t kModuleClockHz = 8000000;
constexpr std::array<int32_t, kFreqSliderPositions> kDividers{
    80,   100,  125,  160,  200,  250,  320,  400,   500,   640,   800,   1000,  1250,  1600,  2000, 2500,
    3200, 4000, 5000, 6400, 8000, 10000, 12500, 16000, 20000, 25000, 32000, 40000, 50000, 64000, 65535};
constexpr int kMaxSolidNameLength = 25;

std::optional<int32_t> PositiveInteger(const QString& text) {
  bool ok = false;
  const qlonglong v = text.trimmed().toLongLong(&ok);
  if (!ok || v <= 0 || v > 1000000000) return std::nullopt;
  return static_cast<int32_t>(v);
}

void Refuse(Prompts& prompts, const QString& text) {
  prompts.message(text, QStringLiteral("Ошибка"), PromptButtons::Ok, PromptIcon::Critical);
}

// A folder the recording can create its file in: probed with a file of our
// own, since permissions alone do not tell a read-only mount.
bool FolderWritable(const QString& folder) {
  if (!QFileInfo(folder).isDir()) return false;
  QTemporaryFile probe(QDir(folder).filePath(QStringLiteral(".aqx-probe-XXXXXX")));
  return probe.open();
}

}  // namespace

int32_t RecordBufferLength(double timeRefreshSeconds, int32_t freqDescR) {
  const double rows = timeRefreshSeconds * freqDescR;
  if (!(rows >= 2.0)) return 1;
  return 1 << std::clamp(IntFloor(std::log2(rows)), 0, 30);
}

std::optional<RotorRates> AccountRotorRates(int32_t polus, int32_t freqSety, int32_t numberRotorRecord,
                                            int32_t signalDataN, double timeRefreshSeconds,
                                            int channelUsedCount) {
  if (polus <= 0 || freqSety <= 0 || numberRotorRecord <= 0 || signalDataN <= 0) return std::nullopt;
  RotorRates r;
  r.freqRotorN = freqSety * 120.0 / polus;
  r.revolutionSeconds = 60.0 / r.freqRotorN;
  r.firstHarmonicHz = r.freqRotorN / 60.0;
  r.spectrumStepHz = r.freqRotorN / numberRotorRecord / 60.0;
  r.freqDescR = std::max(1, RoundHalfEven(signalDataN / (numberRotorRecord * 60.0 / r.freqRotorN)));
  r.cycleSeconds = static_cast<double>(signalDataN) / r.freqDescR;
  r.moduleRateHz = static_cast<int64_t>(channelUsedCount) * r.freqDescR;
  r.moduleRateOk = r.moduleRateHz >= kMinFreqADC && r.moduleRateHz <= kMaxFreqADC;
  r.bufferLength = RecordBufferLength(timeRefreshSeconds, r.freqDescR);
  return r;
}

int32_t FreqDividerAt(int position) {
  return kDividers[static_cast<size_t>(std::clamp(position, 1, kFreqSliderPositions) - 1)];
}

int32_t FreqADCAt(int position) {
  return RoundHalfEven(static_cast<double>(kModuleClockHz) / FreqDividerAt(position));
}

int FreqSliderPosition(int32_t freqADC) {
  int best = 1;
  for (int p = 1; p <= kFreqSliderPositions; ++p)
    if (std::abs(FreqADCAt(p) - freqADC) < std::abs(FreqADCAt(best) - freqADC)) best = p;
  return best;
}

int32_t SolidFreqDescR(int32_t freqADC, int channelUsedCount) {
  if (channelUsedCount <= 0) return std::max(1, freqADC);
  return std::max(1, RoundHalfEven(static_cast<double>(freqADC) / channelUsedCount));
}

QStringList RevolutionChoices() {
  QStringList out;
  for (int n = 1; n <= 19; ++n) out << QString::number(1 << n);
  return out;
}

QStringList SampleCountChoices() {
  QStringList out;
  for (int n = 9; (1 << n) <= kMaxSamples; ++n) out << QString::number(1 << n);
  return out;
}

QStringList RefreshTimeChoices(const QLocale& locale) {
  QStringList out;
  for (double v : {0.05, 0.10, 0.25, 0.50, 1.00, 2.50, 5.00, 10.00}) out << locale.toString(v, 'f', 2);
  return out;
}

QString TimeText(double seconds) {
  if (!(seconds >= 1.0)) return {};
  auto rest = static_cast<qint64>(std::min(seconds, 1e15));
  const qint64 days = rest / 86400;
  rest %= 86400;
  const qint64 hours = rest / 3600;
  rest %= 3600;
  const qint64 minutes = rest / 60;
  const qint64 secs = rest % 60;
  QString out;
  if (days) out += QStringLiteral(" %1 дн").arg(days);
  if (hours) out += QStringLiteral(" %1 ч").arg(hours);
  if (minutes) out += QStringLiteral(" %1 мин").arg(minutes);
  if (secs) out += QStringLiteral(" %1 сек").arg(secs);
  return out;
}

DiskSpace DiskSpaceOf(const QString& folder) {
  QStorageInfo info(folder);
  DiskSpace d;
  if (!info.isValid() || !info.isReady()) return d;
  d.totalBytes = static_cast<double>(info.bytesTotal());
  d.freeBytes = static_cast<double>(info.bytesAvailable());
  d.known = d.totalBytes > 0;
  return d;
}

QStringList DiskEstimateLines(const DiskSpace& disk, int32_t freqADC, int channelUsedCount, const QLocale& locale) {
  const double rateBytes = freqADC * 2.0;
  QString freeTime = TimeText(rateBytes > 0 ? disk.freeBytes / rateBytes : 0.0);
  if (freeTime.isEmpty()) freeTime = QStringLiteral(" 0 сек");
  const double channelHz = static_cast<double>(freqADC) / std::max(channelUsedCount, 1);
  QString blockTime = TimeText(channelHz > 0 ? kMaxSamples / channelHz : 0.0);
  if (blockTime.isEmpty()) blockTime = QStringLiteral(" 0 сек");
  return {QStringLiteral("Емкость: ") + FormatFileSize(disk.totalBytes, locale),
          QStringLiteral("Занято: ") + FormatFileSize(disk.totalBytes - disk.freeBytes, locale),
          QStringLiteral("Свободно: ") + FormatFileSize(disk.freeBytes, locale) + QStringLiteral(" (") + freeTime +
              QStringLiteral(")"),
          QStringLiteral("Скорость: ") + FormatFileSize(rateBytes, locale) + QStringLiteral("/сек"),
          QStringLiteral("Скорость: ") + FormatFileSize(rateBytes * 60, locale) + QStringLiteral("/мин"),
          QStringLiteral("Скорость: ") + FormatFileSize(rateBytes * 3600, locale) + QStringLiteral("/час"),
          QStringLiteral("Продолжительность блока: ") + blockTime};
}

QString SolidFolder(const AppState& s) {
  const QFileInfo info(s.InitDirSave);
  if (info.isDir()) return info.absoluteFilePath();
  if (info.isFile()) return info.absolutePath();
  return QDir::homePath();
}

QString SolidFilePath(const QString& solidPath, const QString& solidFileName) {
  QString folder = solidPath;
  const QFileInfo info(folder);
  if (info.isFile() || (!info.exists() && info.fileName().contains(QLatin1Char('.')))) folder = info.path();
  return QDir(folder).filePath(solidFileName.trimmed() + QStringLiteral(".aqx"));
}

RecordSettingsInput CurrentRecordSettings(const AppState& s) {
  RecordSettingsInput in;
  in.polus = QString::number(s.Polus);
  in.freqSety = QString::number(s.FreqSety);
  in.numberRotorRecord = QString::number(s.NumberRotorRecord);
  in.signalDataN = s.SignalDataN;
  in.timeRefresh = s.options.config.TimeRefresh;
  in.freqADC = s.FreqADC;
  in.solidMode = s.SolidMode;
  in.solidFileName = s.SolidFileName;
  in.solidPath = SolidFolder(s);
  return in;
}

QString LargeCycleWarning() {
  return QStringLiteral(
      "Выбрано высокое значение - количества отсчетов цикла записи.\n"
      "Выбранная величина предназначена для мощных компьютеров,\n"
      "требует больших системных ресурсов и длительности обработки данных.\n"
      "Оптимальное рекомендуемое значение - 32768 отсчетов.");
}

RecordApply ApplyRecordSettings(AppState& s, SettingsStore& store, Prompts& prompts, const RecordSettingsInput& in) {
  // The cyclic values are checked in either mode: they give the rated speed
  // that every view reads.
  const auto polus = PositiveInteger(in.polus);
  if (!polus) {
    Refuse(prompts, QStringLiteral("Число полюсов должно быть целым числом больше нуля."));
    return {false, RecordField::Polus};
  }
  const auto freqSety = PositiveInteger(in.freqSety);
  if (!freqSety || *freqSety > 1000) {
    Refuse(prompts, QStringLiteral("Частота сети должна быть целым числом от 1 до 1000 Гц."));
    return {false, RecordField::FreqSety};
  }
  const auto revolutions = PositiveInteger(in.numberRotorRecord);
  if (!revolutions) {
    Refuse(prompts, QStringLiteral("Количество оборотов должно быть целым числом больше нуля."));
    return {false, RecordField::NumberRotorRecord};
  }
  const int used = RecountChannelUsedCount(s);
  int32_t freqDescR = 0;
  int32_t signalDataN = std::clamp(in.signalDataN, 1, kMaxSamples);
  if (in.solidMode) {
    const QString name = in.solidFileName.trimmed();
    if (name.isEmpty()) {
      Refuse(prompts, QStringLiteral("Не указано имя файла данных!"));
      return {false, RecordField::SolidFileName};
    }
    if (name.size() > kMaxSolidNameLength) {
      Refuse(prompts, QStringLiteral("Длина имени файла данных, не должна превышать 25 символов!"));
      return {false, RecordField::SolidFileName};
    }
    if (name.contains(QLatin1Char('/')) || name.contains(QLatin1Char('\\')) || name == QStringLiteral(".") ||
        name == QStringLiteral("..")) {
      Refuse(prompts, QStringLiteral("Имя файла данных не может содержать знаки \"/\" и \"\\\"."));
      return {false, RecordField::SolidFileName};
    }
    if (!FolderWritable(in.solidPath)) {
      Refuse(prompts, QStringLiteral("Запись в папку невозможна:\n%1").arg(QDir::toNativeSeparators(in.solidPath)));
      return {false, RecordField::SolidPath};
    }
    freqDescR = SolidFreqDescR(in.freqADC, used);
    signalDataN = kMaxSamples;
  } else {
    freqDescR = AccountRotorRates(*polus, *freqSety, *revolutions, signalDataN, in.timeRefresh, used)->freqDescR;
  }
  // A continuous run goes at the module frequency itself; the per-channel
  // figure is rounded and may exceed it by a few hertz (100000 / 11).
  const int64_t moduleRate = in.solidMode ? in.freqADC : static_cast<int64_t>(freqDescR) * used;
  if (moduleRate > kMaxFreqADC) {
    Refuse(prompts, QStringLiteral("Выбрана частота работы АЦП превышающая допустимое значениее - 100 кГц."));
    return {false, RecordField::Frequency};
  }
  if (moduleRate < kMinFreqADC) {
    Refuse(prompts, QStringLiteral("Выбрана частота работы АЦП меньше допустимого значения - 122 Гц."));
    return {false, RecordField::Frequency};
  }

  s.Polus = *polus;
  s.FreqSety = *freqSety;
  s.NumberRotorRecord = *revolutions;
  s.SignalDataN = signalDataN;
  s.options.config.TimeRefresh = in.timeRefresh;
  s.FreqADC = in.freqADC;
  s.SolidMode = in.solidMode;
  s.SolidFileName = in.solidFileName.trimmed();
  s.InitDirSave = in.solidPath;
  SaveInitDirSave(store, s);
  // The settings discard the record in memory: its rates no longer hold.
  s.SignalData.clear();
  s.ShaftMarkCount = 0;
  s.FreqRotorN = s.FreqSety * 120.0 / s.Polus;
  s.FreqOneGarmonic = s.FreqRotorN / 60.0;
  s.FreqDescR = freqDescR;
  s.FreqDesc = freqDescR;
  s.SolidBlockCount = 0;
  s.SolidBlockN = 1;
  s.SolidBlockM = 1;
  s.ViewFirst = 1;
  s.ViewLast = s.SignalDataN;
  s.SelectFirst = s.SelectLast = 0;
  ApplyBlockRule(s);
  SaveConfig(store, s);
  WriteSetting(store, QString::fromLatin1(kSectionConfig), QStringLiteral("SolidFileName"), s.SolidFileName);
  return {true, RecordField::None};
}

}  // namespace aqx
