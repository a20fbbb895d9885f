#pragma once
// The spectrum analyser settings (frmSetupSpectrumAnalyser) without a window:
// the rule that gives the line spacing and the number of lines from the
// block size, the choices of the window's lists, the text rules of its boxes
// and the Apply that puts a choice into the state and the settings.

#include "core/AppState.h"
#include "core/Settings.h"

#include <QLocale>
#include <QString>
#include <QStringList>

#include <optional>

namespace aqx {

inline constexpr int kSmoothingWindowCount = 9;  // "Нет" and the eight windows
inline constexpr double kAlphaMax = 9.0;
inline constexpr int kOverlapMax = 99;

struct SpectrumStep {
  double StepDesc = 0.0;
  int32_t SpectrLineCount = 0;
};

// Step and lines for n samples at freqDescHz: a block at least n long gives
// one transform over n, a shorter one its own length; block 0 (or n <= 0)
// changes nothing (nullopt).
std::optional<SpectrumStep> StepAndLines(int32_t blockSizeFFT, int32_t n, double freqDescHz);

// "Нет", then 512, 1024, ... 1048576.
QStringList BlockSizeTexts();
// 0 for "Нет", the number for any other entry; nullopt for text that is no entry.
std::optional<int32_t> BlockSizeOfText(const QString& text);
// Index in BlockSizeTexts of a block size; a size not in the list takes the
// next larger entry (a stored size from an older layout still shows).
int BlockSizeIndex(int32_t blockSize);
// "Нет", "Hanning", ... "Blackman - Nuttall".
QStringList SmoothingWindowNames();

// Alpha as the box leaves it: a number held to 0..9, text that is no number 0.
double AlphaOfText(const QString& text, const QLocale& locale = QLocale());
// "0.0000" in the locale's form.
QString AlphaText(double alpha, const QLocale& locale = QLocale());
// Overlap as the box takes it: digits held to 0..99, anything else 0.
int32_t OverlapOfText(const QString& text);

struct SpectrumAnalyserChoice {
  int32_t BlockSizeFFTa = kMaxSamples;
  int32_t BlockSizeFFTr = kMaxSamples;
  int32_t SmoothingWindow = 1;
  double AlphaParametr = 0.0;
  int32_t Overlapping = 50;
};

SpectrumAnalyserChoice CurrentSpectrumAnalyser(const AppState& s);
// Apply: the two block sizes, the one in force (the run's while the record
// command is checked), step and lines for SignalDataN, and the five keys in
// section Config. The samples are not touched: the window acts on each block
// of the spectrum, not on the store.
void ApplySpectrumAnalyser(AppState& s, SettingsStore& store, const SpectrumAnalyserChoice& choice,
                           bool recordChecked);

}  // namespace aqx
