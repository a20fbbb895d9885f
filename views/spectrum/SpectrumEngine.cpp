#include "views/spectrum/SpectrumEngine.h"

#include "views/edit/EditHistory.h"

#include "core/FrequencyTables.h"
#include "core/Numeric.h"
#include "engine/Aquilonix.h"

#include <algorithm>
#include <array>

namespace aqx::views {

namespace {
constexpr int kEngineWindowIndex = 1;  // Hanning: AccountSpectrFull's own window
constexpr int kEngineOverlap = 50;
}  // namespace

void SpectrumOfRows(const AppState& s, int channel, int selectFirst, int selectLast, int first, int last,
                    SpectrumOut& out) {
  const int c = std::clamp(channel, 1, kMaxChannels);
  const int window = s.options.config.SmoothingWindow;
  const int overlap = s.options.config.Overlapping;
  const int32_t filterConst = s.options.parameters.StatusFilterConst ? 1 : 0;
  const int32_t marks = out.amplitudeOnly ? 0 : std::clamp(s.ShaftMarkCount, 0, kMaxShaftMarks);
  double step = s.StepDesc;
  if (window == kEngineWindowIndex && overlap == kEngineOverlap) {
    const int32_t flag = s.ViewOpenFlags[frmViewSpectr] ? -1 : 0;
    AccountSpectrFull(nullptr, nullptr, out.phase, out.real, out.amplitude, selectFirst, selectLast, first, last,
                      kMaxSamples, s.SignalDataN, s.SignalData.data(), c, s.SignalOffset.data(),
                      s.channels.Type.data(), filterConst, s.BlockSizeFFT, &step, s.FreqDesc, &out.SpectrLineCount,
                      &out.SpectrMax, s.channels.Ku.data(), marks, s.ShaftMarks.data(), flag);
  } else {
    AccountSpectrWindow(out.phase, out.real, out.amplitude, selectFirst, selectLast, first, last, s.SignalDataN,
                        s.SignalData.data(), c, filterConst, s.BlockSizeFFT, window, overlap, &step, s.FreqDesc,
                        &out.SpectrLineCount, &out.SpectrMax, s.channels.Ku.data(), marks, s.ShaftMarks.data());
  }
  // The engine takes whole hertz; a coarse block of a continuous recording
  // runs at a fraction of one, and its lines are that much closer.
  const double rate = ChannelRateHz(s);
  if (s.FreqDesc != rate && rate > 0.0) step *= rate / std::max(s.FreqDesc, 1);
  out.StepDesc = step;
}

std::vector<float> DecadeColumnMaxima(const double* amplitude, int lineCount, double stepHz, int widthPx,
                                      int gridDivisions, double topHz) {
  std::vector<float> columns(static_cast<size_t>(std::max(widthPx, 0)), -1.0f);
  if (columns.empty() || amplitude == nullptr) return columns;
  // Lines come in order of x, thousands to a column in the upper decades:
  // the running maximum stays in a register until the column changes.
  int column = -1;
  double largest = -1.0;
  const auto keep = [&] {
    if (column >= 0) columns[static_cast<size_t>(column)] = std::max(columns[static_cast<size_t>(column)], static_cast<float>(largest));
  };
  ForEachLineX(lineCount, stepHz, widthPx, gridDivisions, topHz, [&](int k, double x) {
    const int at = std::clamp(static_cast<int>(x), 0, widthPx - 1);
    if (at != column) {
      keep();
      column = at;
      largest = amplitude[k];
    } else {
      largest = std::max(largest, amplitude[k]);
    }
  });
  keep();
  return columns;
}

bool FilterSamples(AppState& s, EditHistory* history) {
  if (!FilterTableActive(s)) return false;
  // Four entries per channel in a row, and only the channels this
  // connection counts.
  std::array<float, kMaxChannels * kFilterEntries> filter{};
  PerChannel<int32_t> used = s.channels.Channel;
  for (int c = 1; c <= kMaxChannels; ++c) {
    std::copy(s.channels.Filter[c].begin(), s.channels.Filter[c].end(), filter.begin() + (c - 1) * kFilterEntries);
    if (c > ChannelCount(s)) used[c] = 0;
  }
  if (history) {
    std::vector<int> channels;
    for (int c = 1; c <= kMaxChannels; ++c)
      if (used[c] == 1) channels.push_back(c);
    history->begin(s, 1, s.SignalDataN, std::move(channels));
  }
  AccountFilter(used.data(), filter.data(), nullptr, nullptr, s.SignalData.data(), s.SignalDataN,
                RoundHalfEven(ChannelRateHz(s)), s.BlockSizeFFT);
  s.DataSaved = false;
  // What was kept of the old samples (scale extremes, steps of a history
  // this filtering is not in) is old now.
  if (history) {
    history->commit(s);
  } else {
    s.SignalData.markWritten();
  }
  return true;
}

}  // namespace aqx::views
