#include "core/SpectrumSetup.h"

#include "core/ConfigKeys.h"
#include "core/ConfigWriters.h"
#include "core/Numeric.h"

#include <algorithm>

namespace aqx {

namespace {
constexpr int kFirstBlockPower = 9;   // 512
constexpr int kLastBlockPower = 20;   // 1,048,576
const QString kNone = QStringLiteral("Нет");
}  // namespace

std::optional<SpectrumStep> StepAndLines(int32_t blockSizeFFT, int32_t n, double freqDescHz) {
  if (blockSizeFFT <= 0 || n <= 0) return std::nullopt;
  const int32_t length = blockSizeFFT < n ? blockSizeFFT : n;
  return SpectrumStep{freqDescHz / length, RoundHalfEven(length / 2.0)};
}

QStringList BlockSizeTexts() {
  QStringList texts{kNone};
  for (int p = kFirstBlockPower; p <= kLastBlockPower; ++p) texts << QString::number(1 << p);
  return texts;
}

std::optional<int32_t> BlockSizeOfText(const QString& text) {
  const QString t = text.trimmed();
  if (t == kNone) return 0;
  const QStringList texts = BlockSizeTexts();
  if (!texts.contains(t)) return std::nullopt;
  return t.toInt();
}

int BlockSizeIndex(int32_t blockSize) {
  if (blockSize <= 0) return 0;
  for (int p = kFirstBlockPower; p <= kLastBlockPower; ++p)
    if (blockSize <= (1 << p)) return p - kFirstBlockPower + 1;
  return kLastBlockPower - kFirstBlockPower + 1;
}

QStringList SmoothingWindowNames() {
  return {kNone,          QStringLiteral("Hanning"),     QStringLiteral("Hamming"),
          QStringLiteral("Blackman"), QStringLiteral("Barlette"), QStringLiteral("Blackman-Harris"),
          QStringLiteral("Flat Topped"), QStringLiteral("Nuttall"), QStringLiteral("Blackman - Nuttall")};
}

double AlphaOfText(const QString& text, const QLocale& locale) {
  const auto v = ParseLocaleNumber(text, locale);
  if (!v) return 0.0;
  return std::clamp(*v, 0.0, kAlphaMax);
}

QString AlphaText(double alpha, const QLocale& locale) { return locale.toString(alpha, 'f', 4); }

int32_t OverlapOfText(const QString& text) {
  const QString t = text.trimmed();
  if (t.isEmpty()) return 0;
  for (QChar ch : t)
    if (!ch.isDigit()) return 0;
  // More digits than fit an integer are still "above 99".
  return t.size() > 3 ? kOverlapMax : std::min(t.toInt(), kOverlapMax);
}

SpectrumAnalyserChoice CurrentSpectrumAnalyser(const AppState& s) {
  const ConfigOptions& c = s.options.config;
  return {s.BlockSizeFFTa, s.BlockSizeFFTr, c.SmoothingWindow, c.AlphaParametr, c.Overlapping};
}

void ApplySpectrumAnalyser(AppState& s, SettingsStore& store, const SpectrumAnalyserChoice& choice,
                           bool recordChecked) {
  s.BlockSizeFFTa = std::clamp(choice.BlockSizeFFTa, 0, kMaxSamples);
  s.BlockSizeFFTr = std::clamp(choice.BlockSizeFFTr, 0, kMaxSamples);
  s.BlockSizeFFT = recordChecked ? s.BlockSizeFFTr : s.BlockSizeFFTa;
  ApplyBlockRule(s);
  ConfigOptions& c = s.options.config;
  c.SmoothingWindow = std::clamp(choice.SmoothingWindow, 0, kSmoothingWindowCount - 1);
  c.AlphaParametr = std::clamp(choice.AlphaParametr, 0.0, kAlphaMax);
  c.Overlapping = std::clamp(choice.Overlapping, 0, kOverlapMax);
  const QString config = QString::fromLatin1(kSectionConfig);
  SettingsStore::Batch batch(store);
  WriteSetting(store, config, QStringLiteral("BlockSizeFFTa"), s.BlockSizeFFTa);
  WriteSetting(store, config, QStringLiteral("BlockSizeFFTr"), s.BlockSizeFFTr);
  for (const char* key : {"SmoothingWindow", "AlphaParametr", "Overlapping"}) SaveOption(store, s, config, QLatin1String(key));
}

}  // namespace aqx
