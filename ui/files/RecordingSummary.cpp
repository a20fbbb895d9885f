#include "ui/files/RecordingSummary.h"

#include "core/ReaderTable.h"
#include "core/Prompts.h"
#include "files/FileReaders.h"
#include "ui/main/Workspace.h"

#include <QFileInfo>
#include <QLocale>

#include <cmath>

namespace aqx::ui {

namespace {

// Questions a reader might ask (convert an old file?) are declined, so a
// look at the header never writes anything; messages are kept as the reason.
class DecliningPrompts : public Prompts {
 public:
  QString told;
  PromptAnswer message(const QString& text, const QString&, PromptButtons buttons, PromptIcon) override {
    if (told.isEmpty()) told = text;
    switch (buttons) {
      case PromptButtons::Ok: return PromptAnswer::Ok;
      case PromptButtons::YesNo:
      case PromptButtons::YesNoCancel: return PromptAnswer::No;
      default: return PromptAnswer::Cancel;
    }
  }
  std::optional<QString> input(const QString&, const QString&, const QString&) override { return std::nullopt; }
  std::optional<QString> chooseOpenFile(const QString&, const QString&, const QString&) override {
    return std::nullopt;
  }
  std::optional<QString> chooseSaveFile(const QString&, const QString&, const QString&, const QString&) override {
    return std::nullopt;
  }
  void notice(const QStringList&) override {}
};

}  // namespace

RecordingSummary SummaryOf(const AppState& s, const QString& path) {
  RecordingSummary r;
  r.path = path;
  r.readable = true;
  r.date = RecordDateText(s.object.RecordDate);
  r.station = s.object.Station;
  r.agregat = s.object.Agregat;
  r.mode = s.object.Mode;
  r.sampleRateHz = s.FreqDesc;
  r.seconds = s.FreqDesc > 0 ? static_cast<double>(s.SignalDataN) / s.FreqDesc : 0.0;
  r.channels = s.ChannelUsedCount;
  r.bytes = QFileInfo(path).size();
  return r;
}

RecordingSummary ReadRecordingSummary(const QString& path, AppState& scratch) {
  RecordingSummary r;
  r.path = path;
  r.bytes = QFileInfo(path).size();
  const FileReadFn read = FindFileReader(HeaderFileReaders(), path);
  if (!read) {
    r.problem = QStringLiteral("Тип файла не читается программой");
    return r;
  }
  DecliningPrompts prompts;
  scratch.PathFileData = path;
  scratch.ReminderConvertFile = false;
  if (!read(scratch, prompts)) {
    r.problem = prompts.told.isEmpty() ? QStringLiteral("Файл не прочитан") : prompts.told.simplified();
    return r;
  }
  RecordingSummary ok = SummaryOf(scratch, path);
  return ok;
}

QString DurationText(double seconds) {
  const QLocale locale;
  if (seconds < 60.0) return locale.toString(seconds, 'f', 1) + QStringLiteral(" с");
  const auto whole = static_cast<long long>(std::floor(seconds));
  return QStringLiteral("%1 мин %2 с").arg(whole / 60).arg(whole % 60, 2, 10, QLatin1Char('0'));
}

std::vector<std::pair<QString, QString>> RecordingProperties(const AppState& s, const Vocabulary& vocab) {
  const QLocale locale;
  std::vector<std::pair<QString, QString>> rows;
  const QFileInfo info(s.PathFileData);
  rows.emplace_back(QStringLiteral("Файл"), s.PathFileData.isEmpty() ? QStringLiteral("(не сохранен)") : s.PathFileData);
  if (info.exists())
    rows.emplace_back(QStringLiteral("Размер"), locale.formattedDataSize(info.size(), 1, QLocale::DataSizeTraditionalFormat));
  rows.emplace_back(QStringLiteral("Версия файла"),
                    QStringLiteral("%1.%2.%3").arg(s.FileVersionMajor).arg(s.FileVersionMinor).arg(s.FileVersionRevision));
  rows.emplace_back(QStringLiteral("Станция"), s.object.Station);
  rows.emplace_back(QStringLiteral("Гидроагрегат"), QString::number(s.object.Agregat));
  rows.emplace_back(QStringLiteral("Режим"), s.object.Mode);
  rows.emplace_back(QStringLiteral("Дата и время записи"), RecordDateText(s.object.RecordDate));
  rows.emplace_back(QStringLiteral("Частота дискретизации"), QStringLiteral("%1 Гц").arg(s.FreqDesc));
  rows.emplace_back(QStringLiteral("Отсчетов в канале"), locale.toString(s.SignalDataN));
  rows.emplace_back(QStringLiteral("Длительность"),
                    DurationText(s.FreqDesc > 0 ? static_cast<double>(s.SignalDataN) / s.FreqDesc : 0.0));
  rows.emplace_back(QStringLiteral("Число полюсов"), QString::number(s.Polus));
  rows.emplace_back(QStringLiteral("Номинальная частота вращения"), locale.toString(s.FreqRotorN, 'g', 6) + QStringLiteral(" об/мин"));
  rows.emplace_back(QStringLiteral("Каналов в записи"), QString::number(s.ChannelUsedCount));
  rows.emplace_back(QStringLiteral("Непрерывная запись"), s.SolidMode ? QStringLiteral("да") : QStringLiteral("нет"));
  for (int c = 1; c <= ChannelCount(s); ++c) {
    if (s.channels.Channel[c] != 1) continue;
    const int type = s.channels.Type[c];
    const QString typeName = vocab.SensorTypeList.value(type);
    QString text = typeName;
    if (!s.channels.Place[c].isEmpty()) text += QStringLiteral(", ") + s.channels.Place[c];
    if (!s.channels.Direct[c].isEmpty()) text += QStringLiteral(" ") + s.channels.Direct[c];
    if (!s.channels.SensorName[c].isEmpty()) text += QStringLiteral(", датчик ") + s.channels.SensorName[c];
    text += QStringLiteral(", Ku = ") + locale.toString(s.channels.Ku[c], 'g', 6);
    rows.emplace_back(QStringLiteral("Канал №%1").arg(c), text);
  }
  for (const QString& remark : s.object.Remark)
    if (!remark.trimmed().isEmpty()) rows.emplace_back(QStringLiteral("Примечание"), remark);
  return rows;
}

}  // namespace aqx::ui
