#include "views/edit/SignalEdit.h"

#include "core/ChannelPhysics.h"
#include "core/Numeric.h"
#include "engine/Aquilonix.h"
#include "views/signal/SignalEngine.h"

#include <QDateTime>
#include <QLocale>

#include <algorithm>
#include <cmath>
#include <limits>

namespace aqx::views {

namespace {

const QString kNoSelection = QStringLiteral("Выделите участок сигнала в окне \"Сигнал\": команда работает на выделенном участке.");

int16_t ToCode(double v) {
  return static_cast<int16_t>(std::clamp(RoundHalfEven(v), static_cast<int32_t>(std::numeric_limits<int16_t>::min()),
                                         static_cast<int32_t>(std::numeric_limits<int16_t>::max())));
}

bool CurrentChannelValid(const AppState& s) {
  return s.FirstChannelActive >= 1 && s.FirstChannelActive <= ChannelCount(s);
}

// The selection commands: a stretch inside the record on a channel that exists.
bool CheckSelection(const AppState& s, Prompts& prompts, const QString& title) {
  if (HasSelection(s) && CurrentChannelValid(s)) return true;
  prompts.tell(kNoSelection, title, PromptIcon::Exclamation);
  return false;
}

std::vector<int> ActiveChannels(const AppState& s) {
  std::vector<int> channels;
  for (int c = 1; c <= ChannelCount(s); ++c)
    if (s.channels.Active[c] == 1) channels.push_back(c);
  return channels;
}

std::vector<int> UsedChannels(const AppState& s) {
  std::vector<int> channels;
  for (int c = 1; c <= ChannelCount(s); ++c)
    if (s.channels.Channel[c] == 1) channels.push_back(c);
  return channels;
}

// The shaft marks of the whole record, as the engine's whole-record calls
// need them.
void MarksOfWholeRecord(AppState& s) {
  const int viewFirst = s.ViewFirst, viewLast = s.ViewLast, selectFirst = s.SelectFirst, selectLast = s.SelectLast;
  s.ViewFirst = 1;
  s.ViewLast = s.SignalDataN;
  s.SelectFirst = s.SelectLast = 0;
  RunOtmetchick(s);
  s.ViewFirst = viewFirst;
  s.ViewLast = viewLast;
  s.SelectFirst = selectFirst;
  s.SelectLast = selectLast;
}

// Removes rows first..last of the channels and stretches what is left back
// over rows 1..n by nearest sample, from the top down so that no source is
// overwritten before it is read.
void CutAndStretch(AppState& s, const std::vector<int>& channels, int first, int last, int n) {
  for (int k = last + 1; k <= n; ++k)
    for (int c : channels) s.SignalData.at(first + k - last - 1, c) = s.SignalData.at(k, c);
  // d is the row of the last sample kept; stretching from the row past it
  // would end the record on a stale sample out of its order.
  const int d = n - (last - first + 1);
  const double ratio = static_cast<double>(d) / n;
  double p = d;
  for (int k = n; k >= 2; --k) {
    const int source = std::clamp(RoundHalfEven(p), 1, n);
    for (int c : channels) s.SignalData.at(k, c) = s.SignalData.at(source, c);
    p -= ratio;
  }
}

// Every edit leaves the recording unsaved and its undo step complete.
EditResult Finished(AppState& s, EditHistory& history) {
  s.DataSaved = false;
  history.commit(s);
  return EditResult::Changed;
}

QString PlainNumber(double v, const QLocale& locale) {
  QString text = locale.toString(v, 'f', 6);
  const QString point = locale.decimalPoint();
  if (text.contains(point)) {
    while (text.endsWith(QLatin1Char('0'))) text.chop(1);
    if (text.endsWith(point)) text.chop(point.size());
  }
  if (text == QStringLiteral("-0")) text = QStringLiteral("0");
  return text;
}

}  // namespace

bool HasSelection(const AppState& s) {
  return s.SelectFirst >= 1 && s.SelectLast >= s.SelectFirst && s.SelectLast <= s.SignalDataN &&
         s.SignalDataN <= kMaxSamples;
}

EditResult SignalDelete(AppState& s, Prompts& prompts, EditHistory& history) {
  const QString title = QStringLiteral("Удаление");
  if (!HasSelection(s)) {
    prompts.tell(kNoSelection, title, PromptIcon::Exclamation);
    return EditResult::Nothing;
  }
  const int n = s.SignalDataN;
  const int cutRows = s.SelectLast - s.SelectFirst + 1;
  // Nothing would be left to stretch, and the new rate would be infinite.
  if (cutRows >= n) {
    prompts.tell(QStringLiteral("Выделена вся запись: после вырезки в ней не осталось бы ни одного отсчёта.\n"
                                "Выделите участок короче записи."),
                 title, PromptIcon::Exclamation);
    return EditResult::Nothing;
  }
  const bool yes = prompts.message(QStringLiteral("Удалить выделенный диапазон во всех каналах?"), title,
                                   PromptButtons::YesNo, PromptIcon::Exclamation) == PromptAnswer::Yes;
  // Every channel in use loses the stretch: the new rate holds for all of
  // them, and a channel left whole would no longer keep time with the rest.
  const std::vector<int> channels = yes ? UsedChannels(s) : std::vector<int>{};
  history.begin(s, 1, n, channels);
  if (!channels.empty()) CutAndStretch(s, channels, s.SelectFirst, s.SelectLast, n);
  // The rate follows whatever the answer: users know the command this way.
  s.FreqDesc = RoundHalfEven(static_cast<double>(s.FreqDesc) * n / (n - cutRows));
  s.StepDesc = static_cast<double>(s.FreqDesc) / n;
  s.SelectFirst = s.SelectLast = 0;
  return Finished(s, history);
}

EditResult SignalSmoothly(AppState& s, Prompts& prompts, EditHistory& history) {
  if (!CheckSelection(s, prompts, QStringLiteral("Сгладить"))) return EditResult::Nothing;
  const int c = s.FirstChannelActive;
  history.begin(s, s.SelectFirst, s.SelectLast, {c});
  const double a = s.SignalData.at(s.SelectFirst, c);
  const double b = s.SignalData.at(s.SelectLast, c);
  // Both ends count in the divisor, so the line stops one step short of b.
  const double step = (b - a) / (s.SelectLast - s.SelectFirst + 1);
  double v = a;
  for (int row = s.SelectFirst; row <= s.SelectLast; ++row) {
    s.SignalData.at(row, c) = ToCode(v);
    v += step;
  }
  s.SelectFirst = s.SelectLast = 0;
  return Finished(s, history);
}

EditResult SignalZero(AppState& s, Prompts& prompts, EditHistory& history) {
  if (!CheckSelection(s, prompts, QStringLiteral("Обнулить"))) return EditResult::Nothing;
  const int c = s.FirstChannelActive;
  history.begin(s, s.SelectFirst, s.SelectLast, {c});
  for (int row = s.SelectFirst; row <= s.SelectLast; ++row) s.SignalData.at(row, c) = 0;
  return Finished(s, history);
}

EditResult SignalMemory(const AppState& s, Prompts& prompts, SignalClipboard& clipboard) {
  if (!CheckSelection(s, prompts, QStringLiteral("Запомнить"))) return EditResult::Nothing;
  clipboard.resize(static_cast<size_t>(s.SelectLast - s.SelectFirst + 1));
  for (int row = s.SelectFirst; row <= s.SelectLast; ++row)
    clipboard[static_cast<size_t>(row - s.SelectFirst)] = s.SignalData.at(row, s.FirstChannelActive);
  return EditResult::Refreshed;
}

EditResult SignalPaste(AppState& s, Prompts& prompts, const SignalClipboard& clipboard, EditHistory& history) {
  const QString title = QStringLiteral("Вставить");
  if (clipboard.empty()) return EditResult::Nothing;
  if (!CheckSelection(s, prompts, title)) return EditResult::Nothing;
  const int room = s.SignalDataN - s.SelectFirst + 1;
  const int count = static_cast<int>(std::min<size_t>(clipboard.size(), static_cast<size_t>(room)));
  if (count < static_cast<int>(clipboard.size())) {
    const QString text = QStringLiteral("Запомнено отсчётов: %1, до конца записи помещается: %2.\n"
                                        "Вставить только помещающиеся? Остальные будут отброшены.")
                             .arg(clipboard.size())
                             .arg(count);
    if (prompts.ask(text, title, PromptButtons::YesNo, PromptIcon::Exclamation) != PromptAnswer::Yes)
      return EditResult::Nothing;
  }
  const int c = s.FirstChannelActive;
  history.begin(s, s.SelectFirst, s.SelectFirst + count - 1, {c});
  for (int k = 0; k < count; ++k) s.SignalData.at(s.SelectFirst + k, c) = clipboard[static_cast<size_t>(k)];
  return Finished(s, history);
}

std::optional<double> ParseShiftAngle(const QString& text) {
  std::optional<double> angle = ParseLocaleNumber(text.trimmed());
  if (!angle) angle = ParseLocaleNumber(text.trimmed(), QLocale::c());
  if (!angle || !std::isfinite(*angle) || *angle < -360.0 || *angle > 360.0) return std::nullopt;
  return angle;
}

EditResult SignalShift(AppState& s, Prompts& prompts, EditHistory& history) {
  const QString title = QStringLiteral("Угол сдвига");
  if (!CurrentChannelValid(s) || s.SignalDataN < 2) return EditResult::Nothing;
  const std::optional<QString> answer = prompts.input(title, title, QLocale().toString(s.options.signal.Corner));
  if (!answer || answer->trimmed().isEmpty()) return EditResult::Nothing;
  const std::optional<double> angle = ParseShiftAngle(*answer);
  if (!angle) {
    prompts.tell(QStringLiteral("Значение угла должно находится в диапазоне от -360 до 360."), title,
                 PromptIcon::Exclamation);
    return EditResult::Nothing;
  }
  s.options.signal.Corner = *angle;
  MarksOfWholeRecord(s);
  if (s.ShaftMarkCount < 2) {
    prompts.tell(QStringLiteral("Сдвиг невозможен: в записи меньше двух отметок оборота.\n"
                                "Сдвиг делается внутри каждого оборота, от отметки до отметки."),
                 title, PromptIcon::Exclamation);
    return EditResult::Refreshed;
  }
  const int c = s.FirstChannelActive;
  history.begin(s, 1, s.SignalDataN, {c});
  ShiftSignal(s.SignalData.data(), s.SignalDataN, c, *angle, s.ShaftMarkCount, s.ShaftMarks.data());
  return Finished(s, history);
}

EditResult SetupReAccount(AppState& s, Prompts& prompts, EditHistory& history) {
  if (s.SignalDataN < 2 || s.SignalDataN > kMaxSamples) return EditResult::Nothing;
  MarksOfWholeRecord(s);
  PerChannel<int32_t> used;
  for (int c : UsedChannels(s)) used[c] = 1;
  history.begin(s, 1, s.SignalDataN, UsedChannels(s));
  int32_t revolutions = 0;
  int32_t done = 0;
  CutSignal(s.SignalData.data(), s.SignalDataN, used.data(), s.ShaftMarkCount, s.ShaftMarks.data(), &revolutions,
            &s.FreqDesc, s.FreqDescR, &s.StepDesc, &s.FreqOneGarmonic, s.FreqRotorN, &done);
  if (done == 0) {
    history.abandon();
    prompts.tell(QStringLiteral("Вырезка эффективного сигнала невозможна: в записи меньше двух отметок оборота."),
                 QStringLiteral("Вырезка эффективного сигнала"), PromptIcon::Exclamation);
    return EditResult::Refreshed;
  }
  s.DataSaved = false;
  history.commit(s);
  MarksOfWholeRecord(s);
  return EditResult::Changed;
}

std::optional<QString> SignalValuesText(const AppState& s, const QStringList& sensorTypeNames,
                                        const QString& rotorSpeedText,
                                        const std::function<bool(int done, int total)>& progress) {
  const QString eol = QStringLiteral("\r\n");
  const QDateTime date = OleToDateTime(s.object.RecordDate);
  QString text = QStringLiteral("Aquilonix v%1.%2.%3").arg(AQX_VERSION_MAJOR).arg(AQX_VERSION_MINOR).arg(AQX_VERSION_PATCH) + eol;
  text += QStringLiteral("Станция: ") + s.object.Station + eol;
  text += QStringLiteral("Гидроагрегат №") + QString::number(s.object.Agregat) + eol;
  text += QStringLiteral("Режим: ") + s.object.Mode + eol;
  text += QStringLiteral("Дата и время: ") +
          (s.object.RecordDate != 0.0 && date.isValid() ? date.toString(QStringLiteral("dd.MM.yyyy HH:mm:ss")) : QString()) +
          eol + eol;
  text += QStringLiteral("Частота вращения: ") + rotorSpeedText.trimmed() + eol;

  std::vector<int> channels;
  if (s.Imposition) {
    for (int c : ActiveChannels(s))
      if (s.channels.Channel[c] == 1) channels.push_back(c);
  } else if (CurrentChannelValid(s)) {
    channels.push_back(s.FirstChannelActive);
  }
  const auto joined = [&](auto valueOf) {
    QStringList values;
    for (int c : channels) values << valueOf(c);
    return values.join(QLatin1Char('\t'));
  };
  text += QStringLiteral("Тип измерения: ") + joined([&](int c) { return sensorTypeNames.value(s.channels.Type[c]); }) + eol;
  text += QStringLiteral("Место: ") + joined([&](int c) { return s.channels.Place[c].trimmed(); }) + eol;
  text += QStringLiteral("Направление: ") + joined([&](int c) { return s.channels.Direct[c].trimmed(); }) + eol;

  const int n = std::clamp(s.SignalDataN, 0, kMaxSamples);
  const int first = HasSelection(s) ? s.SelectFirst : 1;
  const int last = HasSelection(s) ? s.SelectLast : n;
  const int total = std::max(0, last - first + 1);
  constexpr int kBlockRows = 1024;
  QLocale locale;
  locale.setNumberOptions(QLocale::OmitGroupSeparator);
  std::vector<double> scale;
  for (int c : channels) scale.push_back(kMillivoltsPerCode / SafeKu(s.channels.Ku[c]));
  QStringList values;
  for (int row = first; row <= last; ++row) {
    values.clear();
    for (size_t k = 0; k < channels.size(); ++k) {
      const int c = channels[k];
      values << PlainNumber((s.SignalData.at(row, c) - s.SignalOffset[c]) * scale[k], locale);
    }
    text += values.join(QLatin1Char('\t')) + eol;
    const int done = row - first + 1;
    if (progress && (done % kBlockRows == 0 || done == total) && !progress(done, total)) return std::nullopt;
  }
  return text;
}

}  // namespace aqx::views
