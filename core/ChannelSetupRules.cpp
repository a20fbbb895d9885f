#include "core/ChannelSetupRules.h"

#include "core/ChannelPhysics.h"
#include "core/ConfigKeys.h"
#include "core/ConfigWriters.h"
#include "core/EngineErrors.h"
#include "core/Numeric.h"

#include <algorithm>
#include <cmath>

namespace aqx {

namespace {

constexpr int32_t kLeastGap = 500;
constexpr int32_t kGreatestGap = 3000;
constexpr int32_t kCalibrationRows = 4096;
constexpr float kLeastKu = 0.5f;

const QString kSetupTitle = QStringLiteral("Настройка каналов");

QString GapRule() {
  return QStringLiteral(
      "Величина зазора должна быть больше величины биения вала (чтобы непроизошло задевания головки датчика об "
      "вал) и находится в диапазоне 500-3000 мкм. Рекомендуемая величина - 2000 мкм.");
}

QString PlaceOf(const AppState& s, int c) {
  return QStringLiteral("%1 %2").arg(s.channels.Place[c], s.channels.Direct[c]);
}

}  // namespace

ChannelSetupInput CurrentChannelSetup(const AppState& s) {
  ChannelSetupInput in;
  const QLocale locale;
  for (int c = 1; c <= kMaxChannels; ++c) {
    ChannelRow& r = in.rows[static_cast<size_t>(c - 1)];
    r.on = s.channels.Channel[c] == 1;
    r.type = std::clamp(s.channels.Type[c], 0, sensor::kTypeCount - 1);
    r.place = s.channels.Place[c];
    r.direct = s.channels.Direct[c];
    r.ku = locale.toString(static_cast<double>(s.channels.Ku[c]), 'g', 6);
    r.zero = QString::number(s.channels.Zero[c]);
    r.volume = std::clamp(s.channels.Volume[c], 0, 3);
    r.sensorName = s.channels.SensorName[c];
    r.color = s.channels.ChannelColor[c];
  }
  in.differential = s.ChannelDifferential == 1;
  in.inputMode = std::clamp(s.InputMode, 0, 3);
  in.synchroAdType = s.SynchroAdType;
  in.synchroAdMode = std::clamp(s.SynchroAdMode, 0, 3);
  in.synchroAdChannel = std::clamp(s.SynchroAdChannel, 1, kMaxChannels);
  in.synchroAdPorog = QString::number(s.SynchroAdPorog);
  return in;
}

bool ApplyChannelSetup(AppState& s, SettingsStore& store, Prompts& prompts, const ChannelSetupInput& in) {
  const int count = in.differential ? kMaxChannels / 2 : kMaxChannels;
  auto refuse = [&](const QString& text) {
    prompts.message(text, kSetupTitle, PromptButtons::Ok, PromptIcon::Exclamation);
    return false;
  };
  std::array<float, kMaxChannels> ku{};
  std::array<int32_t, kMaxChannels> zero{};
  int on = 0, markers = 0;
  for (int c = 1; c <= count; ++c) {
    const ChannelRow& r = in.rows[static_cast<size_t>(c - 1)];
    if (!r.on) continue;
    ++on;
    if (r.type == sensor::ShaftMarker) ++markers;
  }
  if (on == 0) return refuse(QStringLiteral("Отключение всех каналов недопустимо!"));
  for (int c = 1; c <= count; ++c) {
    const ChannelRow& r = in.rows[static_cast<size_t>(c - 1)];
    const auto k = ParseLocaleNumber(r.ku);
    const auto z = ParseLocaleNumber(r.zero);
    if (!k || !std::isfinite(*k) || std::fabs(*k) > 1e6)
      return refuse(QStringLiteral("Канал №%1: коэффициент преобразования должен быть числом.").arg(c));
    if (!z || std::fabs(*z) > 100000)
      return refuse(QStringLiteral("Канал №%1: установка нуля должна быть числом от -100000 до 100000 мВ.").arg(c));
    ku[static_cast<size_t>(c - 1)] = static_cast<float>(*k);
    zero[static_cast<size_t>(c - 1)] = RoundHalfEven(*z);
    if (r.on && ku[static_cast<size_t>(c - 1)] == 0.0f) return refuse(QStringLiteral("Нулевое значения Ку недопустимо!"));
  }
  if (markers > 1) return refuse(QStringLiteral("Недопустимо включение нескольких отметчиков!"));
  const auto porog = ParseLocaleNumber(in.synchroAdPorog);
  if (in.inputMode == 3 && (!porog || std::fabs(*porog) > 8191))
    return refuse(QStringLiteral("Порог синхронизации должен быть числом от -8191 до 8191."));

  for (int c = 1; c <= kMaxChannels; ++c) {
    const ChannelRow& r = in.rows[static_cast<size_t>(c - 1)];
    const bool kept = c <= count;
    s.channels.Channel[c] = kept && r.on ? 1 : 0;
    if (!kept) continue;
    s.channels.Type[c] = std::clamp(r.type, 0, sensor::kTypeCount - 1);
    s.channels.Place[c] = r.place;
    s.channels.Direct[c] = r.direct;
    s.channels.Ku[c] = ku[static_cast<size_t>(c - 1)];
    s.channels.Zero[c] = zero[static_cast<size_t>(c - 1)];
    s.channels.Volume[c] = std::clamp(r.volume, 0, 3);
    s.channels.SensorName[c] = r.sensorName;
    s.channels.ChannelColor[c] = r.color;
  }
  s.ChannelDifferential = in.differential ? 1 : 0;
  RecountChannelUsedCount(s);
  if (s.FirstChannelActive < 1 || s.FirstChannelActive > kMaxChannels || s.channels.Channel[s.FirstChannelActive] != 1)
    s.FirstChannelActive = std::max(FirstUsedChannel(s), 1);
  s.InputMode = std::clamp(in.inputMode, 0, 3);
  s.SynchroAdType = in.synchroAdType;
  s.SynchroAdMode = std::clamp(in.synchroAdMode, 0, 3);
  s.SynchroAdChannel = std::clamp(in.synchroAdChannel, 1, count);
  if (porog) s.SynchroAdPorog = std::clamp(RoundHalfEven(*porog), -8191, 8191);
  SaveChannelSetup(store, s);
  SaveFirstChannelActive(store, s);
  const QLatin1String synchro(kSectionSynchro);
  WriteSetting(store, synchro, QStringLiteral("InputMode"), s.InputMode);
  WriteSetting(store, synchro, QStringLiteral("SynchroAdType"), s.SynchroAdType);
  WriteSetting(store, synchro, QStringLiteral("SynchroAdMode"), s.SynchroAdMode);
  WriteSetting(store, synchro, QStringLiteral("SynchroAdChannel"), s.SynchroAdChannel);
  WriteSetting(store, synchro, QStringLiteral("SynchroAdPorog"), s.SynchroAdPorog);
  return true;
}

QStringList InputModeNames() {
  return {QStringLiteral("Отключена"), QStringLiteral("Цифровая"), QStringLiteral("Цифровая покадровая"),
          QStringLiteral("Аналоговая")};
}

QStringList SynchroAdModeNames() {
  return {QStringLiteral("Больше порога"), QStringLiteral("Меньше порога"), QStringLiteral("Переход снизу-вверх"),
          QStringLiteral("Переход сверху-вниз")};
}

QString SynchroInfoText(int32_t inputMode, int32_t synchroAdMode) {
  switch (inputMode) {
    case 1:
      return QStringLiteral(
          "Цифровая синхронизация начала сбора. После запуска ЛАД переходит в режим ожидания события (перехода из "
          "логической единицы в ноль) на цифровой линии ввода INT аналогового разьема. И только после обнаружения "
          "события, данные с ЛАД начинают поступать в fifo-буфер модуля, а дальнейшая активность на линии INT "
          "игнорируется.");
    case 2:
      return QStringLiteral(
          "Цифровая покадровая синхронизация. После запуска ЛАД переходит в режим ожидания события (перехода из "
          "логической единицы в ноль) на цифровой линии ввода INT аналогового разьема. После обнаружения события, "
          "считываются данные соответствующие одному кадру и ЛАД сново переходит в режим ожидания события на "
          "линии INT. После обнаружения очередного события и до окончания сбора данных одного кадра отсчетов, вся "
          "активонсть на линии INT игнорируется.");
    case 3: {
      const QString modes[] = {
          QStringLiteral("Синхронизация при обнаружении сигнала большего чем заданное пороговое значение"),
          QStringLiteral("Сихронизация при обнаружении сигнала меньшего чем заданное пороговое значение"),
          QStringLiteral("Синхронизация при обнаружении перехода сигнала снизу-вверх через пороговое значение"),
          QStringLiteral("Синхронизация при обнаружении перехода сигнала сверху-вниз через погоговое значентие")};
      return QStringLiteral(
                 "Аналоговая синхронизация начала сбора. После запуска ЛАД переходит в режим ожидания события на "
                 "указанном канале. И только после обнаружения события, данные начинают поступать в fifo-буфер "
                 "модуля, а дальнейшая активность в канале, выбранном для аналоговой синхронизацци, игнорируется.") +
             QStringLiteral("\n") + modes[std::clamp(synchroAdMode, 0, 3)];
    }
    default:
      return QStringLiteral(
          "Отсутствие какой-либо синхронизации ввода. В этом режиме работы, данные начинают поступать сразу.");
  }
}

QStringList ColorSetNames() {
  return {QStringLiteral("Черный"), QStringLiteral("Красный"), QStringLiteral("Синий"),  QStringLiteral("Голубой"),
          QStringLiteral("Белый"),  QStringLiteral("Цветной"), QStringLiteral("Случайный"), QStringLiteral("Типовой")};
}

int32_t ColorOfSet(int set, int channel, int32_t type, const Vocabulary& vocabulary,
                   const std::array<int32_t, 10>& colorTypeKit, uint32_t randomBits) {
  switch (set) {
    case 0: return BgrWord(0, 0, 0);
    case 1: return BgrWord(255, 0, 0);
    case 2: return BgrWord(0, 0, 255);
    case 3: return BgrWord(0, 255, 255);
    case 4: return BgrWord(255, 255, 255);
    case 5: return ChannelColorDefault(channel);
    case 6: return BgrWord(static_cast<int>(randomBits & 0xFF), static_cast<int>((randomBits >> 8) & 0xFF),
                           static_cast<int>((randomBits >> 16) & 0xFF));
    default: {
      const int index = std::clamp(colorTypeKit[static_cast<size_t>(std::clamp(type, 0, 9))], 0, kColorListCount - 1);
      const uint32_t rgb = vocabulary.ColorList[static_cast<size_t>(index)];
      return BgrWord(static_cast<int>((rgb >> 16) & 0xFF), static_cast<int>((rgb >> 8) & 0xFF),
                     static_cast<int>(rgb & 0xFF));
    }
  }
}

QString CalibrationGapPrompt() {
  return QStringLiteral("Введите величину тарировочного зазора между валом и датчиками биения. ") + GapRule();
}

GapCheck CheckCalibrationGap(const QString& text) {
  const auto v = ParseLocaleNumber(text.trimmed());
  if (!v || !std::isfinite(*v)) return {std::nullopt, QStringLiteral("Величина зазора должна быть числовым значением.")};
  if (*v < kLeastGap) return {std::nullopt, QStringLiteral("Величина зазора слишком мала.")};
  if (*v > kGreatestGap) return {std::nullopt, QStringLiteral("Величина зазора слишком велика.")};
  return {RoundHalfEven(*v), {}};
}

float CalibrationKu(double meanPressed, double meanAtGap, int32_t gapMicrometres) {
  if (gapMicrometres <= 0) return 0.0f;
  // Truncated to hundredths; the small guard keeps 0.50 from becoming 0.49
  // through the binary form of the quotient.
  const double hundredths = std::fabs(meanPressed - meanAtGap) * kMillivoltsPerCode / gapMicrometres * 100.0;
  return static_cast<float>(std::floor(hundredths + 1e-9) / 100.0);
}

std::vector<int> CalibrateRunOutSensors(AppState& s, Prompts& prompts, int channel, const CalibrationHooks& hooks) {
  std::vector<int> listed;
  for (int c = 1; c <= ChannelCount(s); ++c)
    if (s.channels.Channel[c] == 1 && s.channels.Type[c] == sensor::Runout && (channel == 0 || c == channel))
      listed.push_back(c);
  const QString setupTitle = QStringLiteral("Настройка");
  const auto pump = [&] {
    if (hooks.pump) hooks.pump();
  };
  if (listed.empty()) {
    prompts.message(channel == 0 ? QStringLiteral("Датчики биения вала отсутствуют в конфигурации каналов.")
                                 : QStringLiteral("Канал №%1 не является включенным каналом датчика биения.").arg(channel),
                    QStringLiteral("Внимание"), PromptButtons::Ok, PromptIcon::Exclamation);
    return {};
  }
  QString question;
  if (channel == 0) {
    QStringList lines;
    for (int c : listed) lines << QStringLiteral("канал №%1 (%2);").arg(c).arg(PlaceOf(s, c));
    lines.back().chop(1);
    lines.back() += QLatin1Char('.');
    question = QStringLiteral("Прижмите вплотную к валу ВСЕ датчики биения:\n") + lines.join(QLatin1Char('\n'));
  } else {
    question = QStringLiteral("Прижмите вплотную к валу датчик биения,\nканала №%1").arg(channel);
  }
  pump();
  if (prompts.ask(question, setupTitle, PromptButtons::OkCancel, PromptIcon::Question) != PromptAnswer::Ok) return {};
  auto read = [&](std::array<double, kMaxChannels>& means) {
    if (hooks.busy) hooks.busy(true);
    const int32_t result = hooks.read(means, kCalibrationRows);
    if (hooks.busy) hooks.busy(false);
    if (result != 0) ShowEngineError(prompts, result);
    return result == 0;
  };
  std::array<double, kMaxChannels> pressed{}, atGap{};
  if (!read(pressed)) return {};
  const QString ask = channel == 0 ? QStringLiteral(" мкм, между валом и ВСЕМИ датчиками биения:")
                                   : QStringLiteral(" мкм, между валом и датчиком биения,");
  int32_t gap = 0;
  for (;;) {
    pump();
    const auto answer = prompts.input(QStringLiteral("Установите зазор - %1").arg(s.Clearance) + ask, setupTitle,
                                      QString::number(s.Clearance));
    if (!answer || answer->trimmed().isEmpty()) return {};
    const GapCheck check = CheckCalibrationGap(*answer);
    if (check.gap) {
      gap = *check.gap;
      break;
    }
    const bool number = ParseLocaleNumber(answer->trimmed()).has_value();
    pump();
    prompts.message(number ? check.refusal + QStringLiteral("\n") + GapRule() : check.refusal,
                    QStringLiteral("Внимание"), PromptButtons::Ok, PromptIcon::Exclamation);
  }
  s.Clearance = gap;
  if (!read(atGap)) return {};
  std::vector<int> written;
  for (int c : listed) {
    const size_t i = static_cast<size_t>(c - 1);
    const float ku = CalibrationKu(pressed[i], atGap[i], gap);
    if (ku < kLeastKu) {
      pump();
      const QString value = QLocale().toString(static_cast<double>(ku), 'f', 2);
      prompts.message(channel == 0 ? QStringLiteral("Зазор в канале №%1 (%2) слишком мал (Ку=%3)!")
                                         .arg(c)
                                         .arg(PlaceOf(s, c), value)
                                   : QStringLiteral("Зазор слишком мал (Ку=%1 мВ/мкм)!").arg(value),
                      setupTitle, PromptButtons::Ok, PromptIcon::Exclamation);
      continue;
    }
    s.channels.KS[c] = static_cast<float>(atGap[i]);
    s.channels.Ku[c] = ku;
    written.push_back(c);
  }
  return written;
}

}  // namespace aqx
