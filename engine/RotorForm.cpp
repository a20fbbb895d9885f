// The rotor form: pole by pole EMF of the turn probe per revolution and
// their average (FormaRotorAccount).

#include "engine/RotorForm.h"

#include "engine/MarkerDetect.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <vector>

using namespace aqx::engine;

namespace {

constexpr int32_t kFormStride = AQX_FORMA_POLES;
constexpr int32_t kHarmonicStride = AQX_FORMA_HARMONICS;
constexpr int32_t kMaxForms = AQX_FORMA_FORMS - 1;
constexpr int32_t kMaxPoles = AQX_FORMA_POLES - 1;
constexpr int32_t kHarmonics = AQX_FORMA_HARMONICS - 1;

struct Revolution {
  int32_t start = 0;   // index (from 0) of the mark's row
  int32_t length = 0;  // samples to the next mark
  double rpm = 0.0;
};

// Marks closer than half the usual spacing are bounces or spikes.
std::vector<size_t> SpacedMarks(const MarkerResult& found) {
  std::vector<size_t> kept;
  if (found.marks.size() < 2) return kept;
  std::vector<int32_t> gaps;
  for (size_t i = 1; i < found.marks.size(); ++i) gaps.push_back(found.marks[i] - found.marks[i - 1]);
  std::nth_element(gaps.begin(), gaps.begin() + gaps.size() / 2, gaps.end());
  const int32_t least = gaps[gaps.size() / 2] / 2;
  kept.push_back(0);
  for (size_t i = 1; i < found.marks.size(); ++i) {
    if (found.marks[i] - found.marks[kept.back()] >= least) kept.push_back(i);
  }
  return kept;
}

// Half-waves of the EMF in one revolution: sign changes beyond 30% of the
// peak, so that ripple near zero does not count.
int32_t HalfWaves(const std::vector<double>& emf, const Revolution& r, double mean) {
  double peak = 0.0;
  for (int32_t j = 0; j < r.length; ++j) peak = std::max(peak, std::fabs(emf[r.start + j] - mean));
  const double threshold = 0.3 * peak;
  if (threshold <= 0.0) return 0;
  int32_t sign = 0;
  int32_t changes = 0;
  for (int32_t j = 0; j < r.length; ++j) {
    const double v = emf[r.start + j] - mean;
    const int32_t s = v > threshold ? 1 : (v < -threshold ? -1 : 0);
    if (s == 0) continue;
    if (sign != 0 && s != sign) ++changes;
    sign = s;
  }
  return changes;
}

// The number of half-waves that most revolutions agree on, or 0.
int32_t PolesFromEmf(const std::vector<int32_t>& halfWaves) {
  std::vector<int32_t> votes(kMaxPoles + 1, 0);
  for (int32_t h : halfWaves) {
    if (h >= 0 && h <= kMaxPoles) ++votes[static_cast<size_t>(h)];
  }
  const auto best = std::max_element(votes.begin(), votes.end());
  const int32_t poles = static_cast<int32_t>(best - votes.begin());
  const bool agreed = *best * 5 >= static_cast<int32_t>(halfWaves.size()) * 4;
  return (agreed && poles >= 2 && poles % 2 == 0) ? poles : 0;
}

struct FormValues {
  std::vector<double> poleRms;  // pole 1..P at 0..P-1
  double rms = 0.0;
  double speed = 0.0;
};

struct FormSummary {
  std::vector<double> percent;
  double distortion = 0.0;
  std::array<std::complex<double>, AQX_FORMA_HARMONICS> harmonics{};
};

FormSummary Summarise(const FormValues& f) {
  FormSummary s;
  const size_t poles = f.poleRms.size();
  s.percent.resize(poles, 0.0);
  if (f.rms > 0.0) {
    for (size_t p = 0; p < poles; ++p) s.percent[p] = 100.0 * (f.poleRms[p] - f.rms) / f.rms;
  }
  const auto [lo, hi] = std::minmax_element(s.percent.begin(), s.percent.end());
  s.distortion = *hi - *lo;
  for (int32_t h = 1; h <= kHarmonics; ++h) {
    std::complex<double> c = 0.0;
    for (size_t p = 0; p < poles; ++p) {
      c += s.percent[p] * std::polar(1.0, -2.0 * kPi * h * static_cast<double>(p) / poles);
    }
    s.harmonics[h] = c * (2.0 / poles);
  }
  return s;
}

// Whole revolutions between the kept marks, at most kMaxForms.
std::vector<Revolution> RevolutionsOf(const MarkerResult& found, const std::vector<size_t>& kept,
                                      double sampleHz) {
  std::vector<Revolution> revolutions;
  for (size_t i = 1; i < kept.size() && static_cast<int32_t>(revolutions.size()) < kMaxForms; ++i) {
    Revolution r;
    r.start = found.marks[kept[i - 1]] - 1;
    r.length = found.marks[kept[i]] - found.marks[kept[i - 1]];
    r.rpm = 60.0 * sampleHz / (found.crossings[kept[i]] - found.crossings[kept[i - 1]]);
    revolutions.push_back(r);
  }
  return revolutions;
}

// A first guess of the channel's offset, good enough to count half-waves.
double MeanOverRevolutions(const std::vector<double>& emf, const std::vector<Revolution>& revolutions) {
  double sum = 0.0;
  int64_t counted = 0;
  for (const Revolution& r : revolutions) {
    for (int32_t j = 0; j < r.length; ++j) sum += emf[static_cast<size_t>(r.start + j)];
    counted += r.length;
  }
  return sum / static_cast<double>(counted);
}

// Pole boundaries sit on the zero crossings of the wave of poles/2 periods
// per revolution; one offset (part of a pole) for the whole record,
// averaged over it.
double PoleOffset(const std::vector<double>& emf, const std::vector<Revolution>& revolutions,
                  int32_t poles, double mean) {
  const double periods = poles / 2.0;
  std::complex<double> offsetSum = 0.0;
  for (const Revolution& rev : revolutions) {
    // The phasor turns by a fixed step per sample; it is set afresh every
    // kReanchorSamples so that the rounding of the products cannot build up.
    constexpr int32_t kReanchorSamples = 512;
    const double radiansPerSample = -2.0 * kPi * periods / rev.length;
    const double stepRe = std::cos(radiansPerSample);
    const double stepIm = std::sin(radiansPerSample);
    double sumRe = 0.0;
    double sumIm = 0.0;
    double turnRe = 1.0;
    double turnIm = 0.0;
    for (int32_t j = 0; j < rev.length; ++j) {
      if (j % kReanchorSamples == 0) {
        turnRe = std::cos(radiansPerSample * j);
        turnIm = std::sin(radiansPerSample * j);
      }
      const double v = emf[static_cast<size_t>(rev.start + j)] - mean;
      sumRe += v * turnRe;
      sumIm += v * turnIm;
      const double nextRe = turnRe * stepRe - turnIm * stepIm;
      turnIm = turnRe * stepIm + turnIm * stepRe;
      turnRe = nextRe;
    }
    const std::complex<double> c(sumRe, sumIm);
    const double lag = -std::arg(c);  // the wave is cos(2*pi*periods*j/L - lag)
    offsetSum += std::polar(1.0, 2.0 * (lag + kPi / 2.0));
  }
  double offset = std::arg(offsetSum) / (2.0 * kPi);
  if (offset < 0.0) offset += 1.0;
  // A wave that crosses zero exactly on a sample leaves the phase a rounding
  // error either side of a whole boundary; on a fixed grid the boundaries
  // do not move with the last bit of the sums.
  constexpr double kOffsetGrid = 1e9;
  const double snapped = std::round(offset * kOffsetGrid) / kOffsetGrid;
  return snapped >= 1.0 ? 0.0 : snapped;
}

// The single forms: pole p of a revolution covers [bounds[p], bounds[p+1])
// of the record, and its RMS is taken about the channel's offset.
std::vector<FormValues> SingleForms(const std::vector<double>& emf, const std::vector<Revolution>& revolutions,
                                    int32_t poles, double offset, double mean) {
  const auto n = static_cast<int32_t>(emf.size());
  std::vector<std::vector<int32_t>> bounds(revolutions.size());
  double sectionSum = 0.0;
  int64_t sectionCount = 0;
  for (size_t r = 0; r < revolutions.size(); ++r) {
    const Revolution& rev = revolutions[r];
    const double perPole = static_cast<double>(rev.length) / poles;
    for (int32_t p = 0; p <= poles; ++p) {
      bounds[r].push_back(std::min(n, rev.start + static_cast<int32_t>(std::ceil((p + offset) * perPole))));
    }
    for (int32_t i = bounds[r].front(); i < bounds[r].back(); ++i) sectionSum += emf[static_cast<size_t>(i)];
    sectionCount += bounds[r].back() - bounds[r].front();
  }
  // Over whole revolutions the EMF has no mean: what is left is the offset of
  // the channel. Summed from pole boundary to pole boundary, so that a pole
  // cut at a revolution's end is not counted once weak and once strong.
  const double zero = sectionCount > 0 ? sectionSum / static_cast<double>(sectionCount) : mean;

  std::vector<FormValues> forms(revolutions.size());
  for (size_t r = 0; r < revolutions.size(); ++r) {
    FormValues& f = forms[r];
    f.speed = revolutions[r].rpm;
    f.poleRms.assign(static_cast<size_t>(poles), 0.0);
    for (int32_t p = 0; p < poles; ++p) {
      const int32_t begin = bounds[r][static_cast<size_t>(p)];
      const int32_t end = bounds[r][static_cast<size_t>(p) + 1];
      double sumSquares = 0.0;
      for (int32_t i = begin; i < end; ++i) {
        const double v = emf[static_cast<size_t>(i)] - zero;
        sumSquares += v * v;
      }
      f.poleRms[static_cast<size_t>(p)] =
          end > begin ? std::sqrt(sumSquares / (end - begin)) * kMillivoltsPerCode : 0.0;
    }
    for (double v : f.poleRms) f.rms += v;
    f.rms /= poles;
  }
  return forms;
}

FormValues AverageForm(const std::vector<FormValues>& forms, int32_t poles) {
  FormValues average;
  average.poleRms.assign(static_cast<size_t>(poles), 0.0);
  for (const FormValues& f : forms) {
    for (int32_t p = 0; p < poles; ++p) average.poleRms[static_cast<size_t>(p)] += f.poleRms[static_cast<size_t>(p)] / forms.size();
    average.speed += f.speed / forms.size();
  }
  for (double v : average.poleRms) average.rms += v;
  average.rms /= poles;
  return average;
}

}  // namespace

namespace aqx::engine {

RotorFormResult ComputeRotorForm(std::span<const int16_t> store, const RotorFormRequest& request) {
  RotorFormResult result;
  auto fail = [&](int32_t code) {
    result.status = code;
    return result;
  };
  const int32_t n = ClampSampleCount(request.rows);
  const bool columnsUsable = request.turnColumn >= 0 && request.turnColumn < kColumns &&
                             request.markerColumn >= 0 && request.markerColumn < kColumns;
  if (!columnsUsable || !(request.sampleHz > 0.0) || store.size() < static_cast<size_t>(n) * kColumns) {
    return fail(AQX_FORMA_BAD_ARGUMENTS);
  }
  MarkerSettings settings;
  settings.automatic = true;
  const MarkerResult found = DetectMarks(store.data(), request.markerColumn, Stretch{1, n}, settings, kMaxMarks);
  const std::vector<size_t> kept = SpacedMarks(found);
  if (kept.size() < 2) return fail(AQX_FORMA_NO_REVOLUTION);
  const std::vector<Revolution> revolutions = RevolutionsOf(found, kept, request.sampleHz);

  std::vector<double> emf(static_cast<size_t>(n));
  for (int32_t i = 0; i < n; ++i) emf[static_cast<size_t>(i)] = CodeAt(store.data(), i + 1, request.turnColumn);
  const double mean = MeanOverRevolutions(emf, revolutions);
  std::vector<int32_t> halfWaves;
  for (const Revolution& r : revolutions) halfWaves.push_back(HalfWaves(emf, r, mean));
  int32_t poles = request.poles;
  const int32_t fromEmf = PolesFromEmf(halfWaves);
  if (fromEmf > 0) poles = fromEmf;
  if (poles < 2 || poles > kMaxPoles) return fail(AQX_FORMA_BAD_POLES);
  result.poles = poles;

  const std::vector<FormValues> forms =
      SingleForms(emf, revolutions, poles, PoleOffset(emf, revolutions, poles, mean), mean);
  const FormValues average = AverageForm(forms, poles);
  const size_t poleCount = static_cast<size_t>(poles);
  result.poleMin.assign(poleCount, 0.0);
  result.poleMax.assign(poleCount, 0.0);
  double fullScale = 0.0;
  const int32_t formCount = static_cast<int32_t>(forms.size());
  for (int32_t f = 0; f <= formCount; ++f) {
    const FormValues& values = f == 0 ? average : forms[static_cast<size_t>(f - 1)];
    const FormSummary s = Summarise(values);
    RotorFormValues& out = result.forms.emplace_back();
    out.speedRpm = values.speed;
    out.rms = values.rms;
    out.distortion = s.distortion;
    out.poleRms = values.poleRms;
    out.polePercent = s.percent;
    for (size_t p = 0; p < poleCount && f > 0; ++p) {
      const double percent = s.percent[p];
      result.poleMin[p] = f == 1 ? percent : std::min(result.poleMin[p], percent);
      result.poleMax[p] = f == 1 ? percent : std::max(result.poleMax[p], percent);
    }
    for (int32_t h = 1; h <= kHarmonics; ++h) {
      const double amplitude = std::abs(s.harmonics[h]);
      out.harmonicAmplitude[h] = amplitude;
      out.harmonicPhase[h] = amplitude > 0.0 ? WrapDegrees(std::arg(s.harmonics[h]) * 180.0 / kPi) : 0.0;
      fullScale = std::max(fullScale, amplitude);
    }
  }
  result.largestHarmonic = fullScale;
  return result;
}

}  // namespace aqx::engine

extern "C" int32_t FormaRotorAccount(int64_t /*windowHandle*/, const int16_t* SignalData,
                                     int32_t SignalDataN, const int32_t* Channel,
                                     const int32_t* Type, int32_t FreqDesc, int32_t* Polus,
                                     int32_t* FormaRotorN, double* FormaSpeed,
                                     double* FormaPoleRms, double* FormaPolePercent,
                                     double* FormaRms, double* FormaDistortion,
                                     double* FormaPoleMin, double* FormaPoleMax,
                                     double* FormaGarmonicAmplitude, double* FormaGarmonicPhase,
                                     double* FormaRotorResult) {
  auto fail = [&](int32_t code) {
    if (FormaRotorN) *FormaRotorN = 0;
    if (FormaRotorResult) *FormaRotorResult = 0.0;
    return code;
  };
  const double* arrays[] = {FormaSpeed,   FormaPoleRms, FormaPolePercent,      FormaRms,
                            FormaDistortion, FormaPoleMin, FormaPoleMax, FormaGarmonicAmplitude,
                            FormaGarmonicPhase};
  const bool arraysPresent = std::all_of(std::begin(arrays), std::end(arrays),
                                         [](const double* a) { return a != nullptr; });
  if (SignalData == nullptr || Polus == nullptr || FormaRotorN == nullptr ||
      FormaRotorResult == nullptr || !arraysPresent || FreqDesc <= 0) {
    return fail(AQX_FORMA_BAD_ARGUMENTS);
  }
  RotorFormRequest request;
  request.turnColumn = FirstChannelOfType(Channel, Type, kTypeTurnProbe);
  if (request.turnColumn < 0) return fail(AQX_FORMA_NO_TURN_PROBE);
  request.markerColumn = FirstChannelOfType(Channel, Type, kTypeMarker);
  if (request.markerColumn < 0) return fail(AQX_FORMA_NO_MARKER);
  request.rows = ClampSampleCount(SignalDataN);
  request.sampleHz = FreqDesc;
  request.poles = *Polus;
  const RotorFormResult r =
      ComputeRotorForm(std::span(SignalData, static_cast<size_t>(request.rows) * kColumns), request);
  if (r.status != 0) return fail(r.status);
  *Polus = r.poles;

  std::fill_n(FormaSpeed, AQX_FORMA_FORMS, 0.0);
  std::fill_n(FormaRms, AQX_FORMA_FORMS, 0.0);
  std::fill_n(FormaDistortion, AQX_FORMA_FORMS, 0.0);
  std::fill_n(FormaPoleRms, AQX_FORMA_FORMS * kFormStride, 0.0);
  std::fill_n(FormaPolePercent, AQX_FORMA_FORMS * kFormStride, 0.0);
  std::fill_n(FormaPoleMin, AQX_FORMA_POLES, 0.0);
  std::fill_n(FormaPoleMax, AQX_FORMA_POLES, 0.0);
  std::fill_n(FormaGarmonicAmplitude, AQX_FORMA_FORMS * kHarmonicStride, 0.0);
  std::fill_n(FormaGarmonicPhase, AQX_FORMA_FORMS * kHarmonicStride, 0.0);
  const int32_t formCount = static_cast<int32_t>(r.forms.size());
  for (int32_t f = 0; f < formCount; ++f) {
    const RotorFormValues& form = r.forms[static_cast<size_t>(f)];
    FormaSpeed[f] = form.speedRpm;
    FormaRms[f] = form.rms;
    FormaDistortion[f] = form.distortion;
    std::copy(form.poleRms.begin(), form.poleRms.end(), FormaPoleRms + f * kFormStride + 1);
    std::copy(form.polePercent.begin(), form.polePercent.end(), FormaPolePercent + f * kFormStride + 1);
    std::copy(form.harmonicAmplitude.begin() + 1, form.harmonicAmplitude.end(), FormaGarmonicAmplitude + f * kHarmonicStride + 1);
    std::copy(form.harmonicPhase.begin() + 1, form.harmonicPhase.end(), FormaGarmonicPhase + f * kHarmonicStride + 1);
  }
  std::copy(r.poleMin.begin(), r.poleMin.end(), FormaPoleMin + 1);
  std::copy(r.poleMax.begin(), r.poleMax.end(), FormaPoleMax + 1);
  *FormaRotorN = formCount - 1;
  *FormaRotorResult = r.largestHarmonic > 0.0 ? r.largestHarmonic : 1.0;
  return 0;
}
