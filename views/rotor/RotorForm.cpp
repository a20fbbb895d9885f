#include "views/rotor/RotorForm.h"

#include "core/ChannelPhysics.h"
#include "core/Numeric.h"
#include "engine/Aquilonix.h"

#include <QDateTime>

#include <algorithm>

namespace aqx::views {

static_assert(kFormaForms == AQX_FORMA_FORMS && kFormaPoles == AQX_FORMA_POLES &&
              kFormaHarmonics == AQX_FORMA_HARMONICS);

namespace {

size_t FormIndex(const FormaRotorResults& r, int form) {
  return static_cast<size_t>(std::clamp(form, 0, std::clamp(r.FormaRotorN, 0, kFormaForms - 1)));
}
size_t PoleIndex(int pole) { return static_cast<size_t>(std::clamp(pole, 1, kFormaPoles - 1)); }
size_t HarmonicIndex(int harmonic) { return static_cast<size_t>(std::clamp(harmonic, 1, kFormaHarmonicCount)); }

}  // namespace

FormaRotorResults::FormaRotorResults()
    : FormaSpeed(kFormaForms),
      FormaPoleRms(static_cast<size_t>(kFormaForms) * kFormaPoles),
      FormaPolePercent(static_cast<size_t>(kFormaForms) * kFormaPoles),
      FormaRms(kFormaForms),
      FormaDistortion(kFormaForms),
      FormaPoleMin(kFormaPoles),
      FormaPoleMax(kFormaPoles),
      FormaGarmonicAmplitude(static_cast<size_t>(kFormaForms) * kFormaHarmonics),
      FormaGarmonicPhase(static_cast<size_t>(kFormaForms) * kFormaHarmonics) {}

double FormaRotorResults::percent(int form, int pole) const {
  return FormaPolePercent[FormIndex(*this, form) * kFormaPoles + PoleIndex(pole)];
}
double FormaRotorResults::poleRms(int form, int pole) const {
  return FormaPoleRms[FormIndex(*this, form) * kFormaPoles + PoleIndex(pole)];
}
double FormaRotorResults::poleMin(int pole) const { return FormaPoleMin[PoleIndex(pole)]; }
double FormaRotorResults::poleMax(int pole) const { return FormaPoleMax[PoleIndex(pole)]; }
double FormaRotorResults::amplitude(int form, int harmonic) const {
  return FormaGarmonicAmplitude[FormIndex(*this, form) * kFormaHarmonics + HarmonicIndex(harmonic)];
}
double FormaRotorResults::phase(int form, int harmonic) const {
  return FormaGarmonicPhase[FormIndex(*this, form) * kFormaHarmonics + HarmonicIndex(harmonic)];
}
double FormaRotorResults::speed(int form) const { return FormaSpeed[FormIndex(*this, form)]; }
double FormaRotorResults::rms(int form) const { return FormaRms[FormIndex(*this, form)]; }
double FormaRotorResults::distortion(int form) const { return FormaDistortion[FormIndex(*this, form)]; }

int FormaRotorChannel(const AppState& s) {
  const int count = ChannelCount(s);
  const int f = s.FirstChannelActive;
  if (f >= 1 && f <= count && s.channels.Channel[f] == 1 && s.channels.Type[f] == sensor::TurnProbe) return f;
  for (int c = 1; c <= count; ++c)
    if (s.channels.Channel[c] == 1 && s.channels.Type[c] == sensor::TurnProbe) return c;
  return 0;
}

int RunFormaRotorAccount(AppState& s, FormaRotorResults& r) {
  if (s.Polus < kFormaMinPolus || s.Polus > kFormaMaxPolus) {
    r.Failure = AQX_FORMA_BAD_POLES;
    return r.Failure;
  }
  // The engine takes the first turn probe it sees: every other one is
  // hidden from it, as are channels past ChannelCount.
  const int turn = FormaRotorChannel(s);
  PerChannel<int32_t> used = s.channels.Channel;
  for (int c = 1; c <= kMaxChannels; ++c) {
    if (c > ChannelCount(s) || (s.channels.Type[c] == sensor::TurnProbe && c != turn)) used[c] = 0;
  }
  int32_t polus = s.Polus;
  int32_t forms = 0;
  const int32_t result = FormaRotorAccount(
      0, s.SignalData.data(), std::clamp(s.SignalDataN, 0, kMaxSamples), used.data(), s.channels.Type.data(),
      s.FreqDesc, &polus, &forms, r.FormaSpeed.data(), r.FormaPoleRms.data(), r.FormaPolePercent.data(),
      r.FormaRms.data(), r.FormaDistortion.data(), r.FormaPoleMin.data(), r.FormaPoleMax.data(),
      r.FormaGarmonicAmplitude.data(), r.FormaGarmonicPhase.data(), &r.FormaRotorResult);
  r.Failure = result;
  if (result != 0) {
    r.FormaRotorN = 0;
    return result;
  }
  r.FormaRotorN = std::clamp(forms, 0, kFormaForms - 1);
  r.Polus = std::clamp(polus, kFormaMinPolus, kFormaMaxPolus);
  s.Polus = r.Polus;
  return 0;
}

QString FormaRotorFailureText(int failure, const AppState& s) {
  switch (failure) {
    case 0: return {};
    case kFormaNotComputed: return QStringLiteral("Форма ротора еще не рассчитана.");
    case AQX_FORMA_NO_TURN_PROBE:
      return QStringLiteral("Форма ротора строится по каналу типа \"Виток\", а в записи такого канала нет.");
    case AQX_FORMA_NO_MARKER:
      return QStringLiteral("Форма ротора делится на обороты по отметчику, а в записи нет канала типа \"Отметчик\".");
    case AQX_FORMA_NO_REVOLUTION:
      return QStringLiteral("Отметчик дал меньше двух импульсов: в записи нет ни одного полного оборота для формы ротора.");
    case AQX_FORMA_BAD_POLES:
      return QStringLiteral("Число полюсов ротора должно быть от %1 до %2, а в описании записи указано %3.")
          .arg(kFormaMinPolus)
          .arg(kFormaMaxPolus)
          .arg(s.Polus);
    case AQX_FORMA_BAD_ARGUMENTS: return QStringLiteral("В записи нет данных для формы ротора.");
    default: return QStringLiteral("Форма ротора не построена (ошибка %1).").arg(failure);
  }
}

namespace {

constexpr char kLineEnd[] = "\r\n";

QString Row(const QStringList& fields) { return fields.join(QLatin1Char('\t')) + QLatin1String(kLineEnd); }

// The form numbers 1..N and, with `average`, "Средн" after them.
QStringList FormHeader(const QString& first, int forms, bool average) {
  QStringList h{first};
  for (int f = 1; f <= forms; ++f) h << QString::number(f);
  if (average) h << QStringLiteral("Средн");
  return h;
}

}  // namespace

QString FormaRotorConsoleText(const AppState& s, const FormaRotorResults& r) {
  const int forms = r.valid() ? r.FormaRotorN : 0;
  const int poles = r.valid() ? r.Polus : 0;
  const QDateTime date = OleToDateTime(s.object.RecordDate);
  QString text;
  text += QStringLiteral("Дата: ") +
          (s.object.RecordDate != 0.0 && date.isValid() ? date.toString(QStringLiteral("dd.MM.yyyy HH:mm:ss")) : QString()) +
          QLatin1String(kLineEnd);
  text += s.PathFileData + QLatin1String(kLineEnd);
  if (!r.valid()) return text + FormaRotorFailureText(r.Failure, s) + QLatin1String(kLineEnd);
  auto pole = [](int p) { return QStringLiteral("№") + QStringLiteral("%1").arg(p, 2, 10, QLatin1Char('0')); };

  text += QLatin1String(kLineEnd) + QStringLiteral("СКЗ ЭДС полюсов") + QLatin1String(kLineEnd);
  text += Row(FormHeader(QStringLiteral("Полюс"), forms, false) << QString());
  for (int p = 1; p <= poles; ++p) {
    QStringList row{pole(p)};
    for (int f = 1; f <= forms; ++f) row << FormatStandard(r.poleRms(f, p));
    text += Row(row);
  }
  QStringList mean{QStringLiteral("Среднее")};
  for (int f = 1; f <= forms; ++f) mean << FormatStandard(r.rms(f));
  text += Row(mean);

  text += QLatin1String(kLineEnd) + QStringLiteral("Процентные значения ЭДС полюсов") + QLatin1String(kLineEnd);
  text += Row(FormHeader(QStringLiteral("Полюс"), forms, true)
              << QStringLiteral("Мин") << QStringLiteral("Макс") << QStringLiteral("Разбр"));
  for (int p = 1; p <= poles; ++p) {
    QStringList row{pole(p)};
    for (int f = 1; f <= forms; ++f) row << FormatStandard(r.percent(f, p));
    row << FormatStandard(r.percent(0, p)) << FormatStandard(r.poleMin(p)) << FormatStandard(r.poleMax(p))
        << FormatStandard(r.poleMax(p) - r.poleMin(p));
    text += Row(row);
  }

  text += QLatin1String(kLineEnd) + QStringLiteral("Степень искажения форм") + QLatin1String(kLineEnd);
  text += Row(FormHeader(QString(), forms, true));
  QStringList distortion{QStringLiteral("p, %")};
  for (int f = 1; f <= forms; ++f) distortion << FormatStandard(r.distortion(f));
  text += Row(distortion << FormatStandard(r.distortion(0)));

  text += QLatin1String(kLineEnd) + QStringLiteral("Гармоники спектра форм") + QLatin1String(kLineEnd);
  QStringList formNumbers{QString()};
  QStringList columns{QStringLiteral("Гарм")};
  for (int f = 1; f <= forms + 1; ++f) {
    formNumbers << (f <= forms ? QString::number(f) : QStringLiteral("Средн")) << QString();
    columns << QStringLiteral("Ампл") << QStringLiteral("Фаза");
  }
  text += Row(formNumbers) + Row(columns);
  for (int n = 1; n <= kFormaHarmonicCount; ++n) {
    QStringList row{QString::number(n)};
    for (int f = 1; f <= forms + 1; ++f) {
      const int form = f <= forms ? f : 0;
      row << FormatStandard(r.amplitude(form, n)) << FormatStandard(r.phase(form, n));
    }
    text += Row(row);
  }

  text += QLatin1String(kLineEnd) + QStringLiteral("Частоты вращения (об/мин)") + QLatin1String(kLineEnd);
  text += Row(FormHeader(QString(), forms, true));
  QStringList speeds{QStringLiteral("n")};
  for (int f = 1; f <= forms; ++f) speeds << FormatStandard(r.speed(f));
  text += Row(speeds << FormatStandard(r.speed(0)));
  return text;
}

}  // namespace aqx::views
