// Zero-phase filtering of channels in place: the per-channel filter table
// (AccountFilter) and the run-out filter (FilterSensorBienie).

#include "engine/ZeroPhase.h"
#include "engine/Parallel.h"

namespace aqx::engine {

bool Usable(double hz, double sampleHz) {
  return std::isfinite(hz) && std::isfinite(sampleHz) && hz > 0.0 && hz < sampleHz / 2.0;
}

void AddButterworth(Cascade& c, Pass pass, double cutoffHz, double sampleHz) {
  constexpr int32_t order = 4;
  const double warped = std::tan(kPi * cutoffHz / sampleHz);
  // One pass has |H|^2 = 1 / (1 + r^(2*order)) at the cut-off; the two passes
  // together give that as their magnitude, wanted to be 1/sqrt(2).
  const double r = std::pow(std::sqrt(2.0) - 1.0, 1.0 / (2.0 * order));
  const double omega = pass == Pass::LowPass ? warped / r : warped * r;
  const double o2 = omega * omega;
  for (int32_t k = 0; k < order / 2; ++k) {
    const double b = 2.0 * std::sin(kPi * (2 * k + 1) / (2.0 * order));
    const double a0 = 1.0 + b * omega + o2;
    Section s{};
    if (pass == Pass::LowPass) {
      s.b0 = o2 / a0;
      s.b1 = 2.0 * o2 / a0;
      s.b2 = o2 / a0;
    } else {
      s.b0 = 1.0 / a0;
      s.b1 = -2.0 / a0;
      s.b2 = 1.0 / a0;
    }
    s.a1 = 2.0 * (o2 - 1.0) / a0;
    s.a2 = (1.0 - b * omega + o2) / a0;
    c.sections.push_back(s);
  }
  // The slowest pole has died out to well under a code after three periods
  // of the cut-off.
  const double settle = std::min(3.0 * sampleHz / cutoffHz, 4e7);
  c.settleSamples = std::max(c.settleSamples, static_cast<int32_t>(std::ceil(settle)));
}

void AddResonance(Cascade& c, bool notch, double centreHz, double q, double sampleHz) {
  const double w0 = 2.0 * kPi * centreHz / sampleHz;
  const double beta = std::tan(w0 / q / 2.0);
  const double gain = 1.0 / (1.0 + beta);
  Section s{};
  if (notch) {
    s.b0 = gain;
    s.b1 = -2.0 * gain * std::cos(w0);
    s.b2 = gain;
  } else {
    s.b0 = 1.0 - gain;
    s.b1 = 0.0;
    s.b2 = -(1.0 - gain);
  }
  s.a1 = -2.0 * gain * std::cos(w0);
  s.a2 = 2.0 * gain - 1.0;
  c.sections.push_back(s);
  // A resonance of quality q decays by e every q / (pi * f) seconds.
  const double settle = std::min(2.5 * q * sampleHz / centreHz, 4e7);
  c.settleSamples = std::max(c.settleSamples, static_cast<int32_t>(std::ceil(settle)));
}

namespace {

// One pass of the cascade over `count` values from x on, `stride` apart
// (transposed direct form II), each section starting in its steady state for
// a constant input equal to the first value.
void RunCascade(const std::vector<Section>& sections, double* x, size_t count, ptrdiff_t stride) {
  if (count == 0) return;
  double level = x[0];
  for (const Section& s : sections) {
    const double out = s.dcGain() * level;
    double z2 = s.b2 * level - s.a2 * out;
    double z1 = s.b1 * level - s.a1 * out + z2;
    double* p = x;
    for (size_t i = 0; i < count; ++i, p += stride) {
      const double in = *p;
      const double y = s.b0 * in + z1;
      z1 = s.b1 * in - s.a1 * y + z2;
      z2 = s.b2 * in - s.a2 * y;
      *p = y;
    }
    level = out;
  }
}

constexpr int32_t kPredictionOrder = 32;
constexpr int32_t kMaxExtension = 1 << 20;
constexpr int32_t kPredictionWindow = 8192;

// Continues `window` (oldest first) by `count` values predicted with an
// autoregressive model fitted by Burg's method, which keeps the model stable:
// sinusoids go on with their phase, noise fades to the window's mean.
void Predict(const std::vector<double>& window, double* out, int32_t count) {
  const int32_t m = static_cast<int32_t>(window.size());
  const int32_t order = std::min(kPredictionOrder, m / 4);
  double mean = 0.0;
  for (double v : window) mean += v;
  mean /= m;
  std::vector<double> f(window.size()), b(window.size());
  for (int32_t i = 0; i < m; ++i) f[i] = b[i] = window[i] - mean;
  std::vector<double> a(1, 1.0);
  for (int32_t k = 1; k <= order; ++k) {
    double num = 0.0;
    double den = 0.0;
    for (int32_t n = k; n < m; ++n) {
      num += f[n] * b[n - 1];
      den += f[n] * f[n] + b[n - 1] * b[n - 1];
    }
    if (!(den > 0.0)) break;
    const double reflection = -2.0 * num / den;
    a.push_back(0.0);
    const std::vector<double> previous = a;
    for (int32_t i = 1; i <= k; ++i) a[i] = previous[i] + reflection * previous[k - i];
    for (int32_t n = m - 1; n >= k; --n) {
      const double fn = f[n];
      f[n] = fn + reflection * b[n - 1];
      b[n] = b[n - 1] + reflection * fn;
    }
  }
  const int32_t used = static_cast<int32_t>(a.size()) - 1;
  std::vector<double> sequence(static_cast<size_t>(used + count));
  for (int32_t i = 0; i < used; ++i) sequence[i] = window[m - used + i] - mean;
  for (int32_t t = used; t < used + count; ++t) {
    double next = 0.0;
    for (int32_t i = 1; i <= used; ++i) next -= a[i] * sequence[t - i];
    sequence[t] = next;
    out[t - used] = next + mean;
  }
}

}  // namespace

int32_t ExtensionFor(const Cascade& cascade) {
  const int32_t least = 6 * static_cast<int32_t>(cascade.sections.size());
  return std::min(kMaxExtension, std::max(cascade.settleSamples, least));
}

int32_t PredictionWindow(int32_t count) { return std::clamp(count, 0, kPredictionWindow); }

void PredictEdges(std::span<const double> head, std::span<const double> tail, int32_t pad, double* before,
                  double* after) {
  if (pad <= 0 || head.empty() || tail.empty()) return;
  std::vector<double> window(tail.begin(), tail.end());
  Predict(window, after, pad);
  window.assign(head.rbegin(), head.rend());
  std::vector<double> reversed(static_cast<size_t>(pad));
  Predict(window, reversed.data(), pad);
  std::reverse_copy(reversed.begin(), reversed.end(), before);
}

void ExtendByPrediction(const double* x, int32_t count, int32_t pad, double* extended) {
  double* mid = extended + pad;
  if (mid != x) std::copy(x, x + count, mid);
  if (pad <= 0 || count < 1) return;
  const auto windowLength = static_cast<size_t>(PredictionWindow(count));
  const std::span<const double> record(mid, static_cast<size_t>(count));
  PredictEdges(record.first(windowLength), record.last(windowLength), pad, extended, mid + count);
}

void FilterZeroPhase(const Cascade& cascade, double* x, int32_t count, std::vector<double>& work) {
  if (count < 2 || cascade.sections.empty()) return;
  const int32_t pad = ExtensionFor(cascade);
  const size_t total = static_cast<size_t>(count) + 2 * static_cast<size_t>(pad);
  work.resize(total);
  ExtendByPrediction(x, count, pad, work.data());
  RunCascade(cascade.sections, work.data(), total, 1);
  RunCascade(cascade.sections, work.data() + total - 1, total, -1);
  std::copy(work.data() + pad, work.data() + pad + count, x);
}

}  // namespace aqx::engine

using namespace aqx::engine;

namespace {

constexpr double kNotchQ = 30.0;
constexpr double kTunnelQ = 10.0;
constexpr double kRunoutCutoffHz = 20.0;

Cascade CascadeFromTable(const float* entries, double sampleHz) {
  Cascade c;
  if (Usable(entries[0], sampleHz)) AddButterworth(c, Pass::HighPass, entries[0], sampleHz);
  if (Usable(entries[1], sampleHz)) AddButterworth(c, Pass::LowPass, entries[1], sampleHz);
  if (Usable(entries[2], sampleHz)) AddResonance(c, true, entries[2], kNotchQ, sampleHz);
  if (Usable(entries[3], sampleHz)) AddResonance(c, false, entries[3], kTunnelQ, sampleHz);
  return c;
}

// Filters rows 1..n of one column of the store in place.
void FilterColumn(const Cascade& cascade, int16_t* signalData, int32_t column, int32_t n,
                  std::vector<double>& samples, std::vector<double>& work) {
  if (n < 2 || cascade.sections.empty()) return;
  samples.resize(static_cast<size_t>(n));
  ReadColumn(signalData, 1, column, n, samples.data());
  FilterZeroPhase(cascade, samples.data(), n, work);
  int16_t* dst = CodePtr(signalData, 1, column);
  for (int32_t i = 0; i < n; ++i) {
    dst[static_cast<size_t>(i) * kColumns] = RoundToCode(samples[static_cast<size_t>(i)]);
  }
}

}  // namespace

extern "C" void AccountFilter(const int32_t* Channel, const float* Filter, double* /*SpectrRe*/,
                              double* /*SpectrIm*/, int16_t* SignalData, int32_t SignalDataN,
                              int32_t frequencyHz, int32_t /*BlockSizeFFT*/) {
  if (Channel == nullptr || Filter == nullptr || SignalData == nullptr || frequencyHz <= 0) return;
  const int32_t n = ClampSampleCount(SignalDataN);
  std::vector<double> samples;
  std::vector<double> work;
  for (int32_t c = 0; c < kColumns; ++c) {
    if (Channel[c] != 1) continue;
    const Cascade cascade = CascadeFromTable(Filter + c * AQX_FILTER_ENTRIES, frequencyHz);
    FilterColumn(cascade, SignalData, c, n, samples, work);
  }
}

extern "C" void FilterSensorBienie(const int32_t* Channel, const int32_t* Type,
                                   int32_t SignalDataN, double* /*SpectrRe*/,
                                   double* /*SpectrIm*/, int16_t* SignalData, int32_t FreqDesc) {
  if (Channel == nullptr || Type == nullptr || SignalData == nullptr || FreqDesc <= 0) return;
  if (!Usable(kRunoutCutoffHz, FreqDesc)) return;
  Cascade cascade;
  AddButterworth(cascade, Pass::LowPass, kRunoutCutoffHz, FreqDesc);
  const int32_t n = ClampSampleCount(SignalDataN);
  std::vector<double> samples;
  std::vector<double> work;
  for (int32_t c = 0; c < kColumns; ++c) {
    if (Channel[c] == 1 && Type[c] == kTypeRunout) {
      FilterColumn(cascade, SignalData, c, n, samples, work);
    }
  }
}
