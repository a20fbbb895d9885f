#include "files/ChannelImport.h"

#include <QFileInfo>
#include <QLocale>

namespace aqx {

namespace {

double DurationSeconds(const AppState& s) { return s.FreqDesc > 0 ? static_cast<double>(s.SignalDataN) / s.FreqDesc : 0.0; }

}  // namespace

QStringList ImportDifferences(const AppState& a, const AppState& b) {
  QStringList lines;
  const auto line = [&lines](const char* name, const QString& source, const QString& destination) {
    if (source != destination) lines << QString::fromUtf8(name) + source + QStringLiteral(" / ") + destination;
  };
  const auto fixed = [](double v, int decimals) { return QString::number(v, 'f', decimals); };
  line("Количество полюсов ротора генератора: ", QString::number(a.Polus), QString::number(b.Polus));
  line("Частота сети (Гц): ", QString::number(a.FreqSety), QString::number(b.FreqSety));
  line("Количество оборотов для записи: ", QString::number(a.NumberRotorRecord), QString::number(b.NumberRotorRecord));
  line("Шаг дескритизации (Гц): ", fixed(a.StepDesc, 4), fixed(b.StepDesc, 4));
  line("Продолжительность записи: ", fixed(DurationSeconds(a), 2), fixed(DurationSeconds(b), 2));
  line("Частота приведенной дискретизации (Гц): ", QString::number(a.FreqDescR), QString::number(b.FreqDescR));
  line("Частота дискретизации (Гц): ", QString::number(a.FreqDesc), QString::number(b.FreqDesc));
  line("Частота вращения ротора генератора (об/мин): ", fixed(a.FreqRotorN, 1), fixed(b.FreqRotorN, 1));
  line("Частота первой гармоники (Гц): ", QString::number(a.FreqOneGarmonic), QString::number(b.FreqOneGarmonic));
  line("Станция: ", a.object.Station, b.object.Station);
  line("Агрегат: ", QString::number(a.object.Agregat), QString::number(b.object.Agregat));
  return lines;
}

std::unique_ptr<AppState> OpenImportSource(const AppState& destination, const QString& path,
                                           const FileReaderTable& readers, Prompts& prompts) {
  const FileReadFn read = FindFileReader(readers, path);
  if (!read || !QFileInfo(path).isFile()) {
    prompts.tell(read ? QStringLiteral("Файл не найден:\n") + path
                      : QStringLiteral("Файл неподдерживаемого формата для импорта."),
                 kImportTitle, PromptIcon::Exclamation);
    return nullptr;
  }
  auto source = std::make_unique<AppState>();
  source->PathFileData = path;
  source->BatchMode = true;
  source->ReminderConvertFile = false;
  source->ChannelDifferential = destination.ChannelDifferential;
  // The reader tells what it refuses (a damaged file, a newer version).
  if (!read(*source, prompts)) return nullptr;
  if (source->SignalDataN != destination.SignalDataN) {
    prompts.tell(QStringLiteral("Размерность данных источника отличается от приемника.\n"
                                "Отсчётов в канале: источник %1, приёмник %2.")
                     .arg(source->SignalDataN)
                     .arg(destination.SignalDataN),
                 kImportTitle, PromptIcon::Exclamation);
    return nullptr;
  }
  const QStringList differences = ImportDifferences(*source, destination);
  if (!differences.isEmpty()) {
    const QString text = QStringLiteral("Источник отличается от приемника!\n\n") + differences.join(QLatin1Char('\n')) +
                         QStringLiteral("\n\nПродолжить?");
    if (prompts.ask(text, kImportTitle, PromptButtons::YesNo, PromptIcon::Exclamation) != PromptAnswer::Yes)
      return nullptr;
  }
  return source;
}

std::vector<ImportChannelEntry> ImportChannelList(const AppState& s, const QStringList& sensorTypeNames) {
  std::vector<ImportChannelEntry> list;
  for (int c = 1; c <= ChannelCount(s); ++c) {
    if (s.channels.Channel[c] != 1) continue;
    QStringList parts{QStringLiteral("%1").arg(c, 2, 10, QLatin1Char('0'))};
    for (const QString& p : {sensorTypeNames.value(s.channels.Type[c]), s.channels.Place[c].trimmed(),
                             s.channels.Direct[c].trimmed(), s.channels.SensorName[c].trimmed()})
      if (!p.isEmpty()) parts << p;
    list.push_back({c, parts.join(QLatin1Char(' '))});
  }
  return list;
}

bool ImportChannel(AppState& d, const AppState& src, int from, int to, Prompts& prompts) {
  if (from < 1 || from > kMaxChannels || to < 1 || to > ChannelCount(d) || src.SignalDataN != d.SignalDataN)
    return false;
  if (prompts.ask(QStringLiteral("Импортировать данные в канал №%1").arg(to), kImportTitle) != PromptAnswer::Yes)
    return false;
  ChannelSetup& ch = d.channels;
  const ChannelSetup& sc = src.channels;
  ch.Channel[to] = 1;
  ch.Type[to] = sc.Type[from];
  ch.Place[to] = sc.Place[from];
  ch.Direct[to] = sc.Direct[from];
  ch.Ku[to] = sc.Ku[from];
  ch.Zero[to] = sc.Zero[from];
  ch.KS[to] = sc.KS[from];
  ch.ChannelColor[to] = sc.ChannelColor[from];
  ch.Volume[to] = sc.Volume[from];
  ch.SensorName[to] = sc.SensorName[from];
  if (!d.SaveProbe) ch.ProbeFreq[to] = sc.ProbeFreq[from];
  if (!d.SaveFilter) ch.Filter[to] = sc.Filter[from];
  for (int k = 1; k <= d.SignalDataN; ++k) d.SignalData.at(k, to) = src.SignalData.at(k, from);
  d.SignalData.markWritten();
  RecountChannelUsedCount(d);
  d.DataSaved = false;
  return true;
}

}  // namespace aqx
