#include "files/DataFileRules.h"

#include <algorithm>

namespace aqx {

namespace {

// Walks every value shared by header record and state with one function,
// so that the two directions cannot drift apart. `assign(h, s)` gets the
// header's value and the state's value of one field.
template <class HeaderRef, class StateRef, class Assign>
void ForEachHeaderValue(HeaderRef& h, StateRef& s, const HeaderTransfer& t, Assign assign) {
  assign(h.FileVersionMajor, s.FileVersionMajor);
  assign(h.FileVersionMinor, s.FileVersionMinor);
  assign(h.FileVersionRevision, s.FileVersionRevision);
  assign(h.Polus, s.Polus);
  assign(h.FreqSety, s.FreqSety);
  assign(h.NumberRotorRecord, s.NumberRotorRecord);
  assign(h.StepDesc, s.StepDesc);
  assign(h.FreqRotorReal, s.FreqRotorReal);
  assign(h.FreqDesc, s.FreqDesc);
  assign(h.FreqDescR, s.FreqDescR);
  assign(h.FreqRotorN, s.FreqRotorN);
  assign(h.FreqOneGarmonic, s.FreqOneGarmonic);
  assign(h.Station, s.object.Station);
  assign(h.Agregat, s.object.Agregat);
  assign(h.Mode, s.object.Mode);
  assign(h.RecordDate, s.object.RecordDate);
  assign(h.Imposition, s.Imposition);
  assign(h.FirstChannelActive, s.FirstChannelActive);
  assign(h.BlockSizeFFT, s.BlockSizeFFT);
  assign(h.BlockSizeFFTa, s.BlockSizeFFTa);
  assign(h.BlockSizeFFTr, s.BlockSizeFFTr);
  auto& ch = s.channels;
  const int count = std::clamp(t.channelCount, 0, kMaxChannels);
  for (int c = 1; c <= count; ++c) {
    const size_t i = static_cast<size_t>(c - 1);
    assign(h.Channel[i], ch.Channel[c]);
    assign(h.Active[i], ch.Active[c]);
    assign(h.Type[i], ch.Type[c]);
    assign(h.Place[i], ch.Place[c]);
    assign(h.Direct[i], ch.Direct[c]);
    assign(h.Ku[i], ch.Ku[c]);
    assign(h.Zero[i], ch.Zero[c]);
    assign(h.KS[i], ch.KS[c]);
    assign(h.ChannelColor[i], ch.ChannelColor[c]);
    assign(h.Volume[i], ch.Volume[c]);
    assign(h.SensorName[i], ch.SensorName[c]);
    assign(h.ChannelY[i], ch.ChannelY[c]);
    assign(h.ChannelYm[i], ch.ChannelYm[c]);
    if (t.probeFreq) assign(h.ProbeFreq[i], ch.ProbeFreq[c]);
    if (t.filter) assign(h.Filter[i], ch.Filter[c]);
  }
  assign(h.ChannelDifferential, s.ChannelDifferential);
  assign(h.SignalDataN, s.SignalDataN);
  assign(h.InputMode, s.InputMode);
  assign(h.SynchroAdType, s.SynchroAdType);
  assign(h.SynchroAdMode, s.SynchroAdMode);
  assign(h.SynchroAdChannel, s.SynchroAdChannel);
  assign(h.SynchroAdPorog, s.SynchroAdPorog);
  assign(h.ViewStyle, s.ViewStyle);
  assign(h.ModuleTag, s.ModuleTag);
  assign(h.SolidMode, s.SolidMode);
  assign(h.SolidFileName, s.SolidFileName);
  assign(h.FreqADC, s.FreqADC);
  assign(h.Remark, s.object.Remark);
  auto& m = s.markers;
  assign(h.MarkerN, m.MarkerN);
  assign(h.MarkerDate, m.MarkerDate);
  assign(h.MarkerRemark, m.MarkerRemark);
  assign(h.MarkerColor, m.MarkerColor);
  assign(h.MarkerOn, m.MarkerOn);
  assign(h.MarkerShift, m.MarkerShift);
}

}  // namespace

FileHeader FileHeaderFromState(const AppState& state) {
  FileHeader h;
  h.magic = QString::fromLatin1(kDataFileMagic);
  ForEachHeaderValue(h, state, HeaderTransfer{},
                     [](auto& headerValue, const auto& stateValue) { headerValue = stateValue; });
  return h;
}

void CopyHeaderToState(const FileHeader& header, AppState& state, const HeaderTransfer& transfer) {
  ForEachHeaderValue(header, state, transfer,
                     [](const auto& headerValue, auto& stateValue) { stateValue = headerValue; });
}

void ResetHeaderDefaults(FileHeader& h, int channelCount) {
  h.FreqDescR = h.FreqDesc;
  if (h.Polus != 0) h.FreqRotorN = h.FreqSety * 120.0 / h.Polus;
  h.FreqOneGarmonic = h.FreqRotorN / 60.0;
  h.BlockSizeFFT = h.BlockSizeFFTa = h.BlockSizeFFTr = kMaxSamples;
  const int count = std::clamp(channelCount, 0, kMaxChannels);
  for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
    h.Zero[i] = 0;
    h.KS[i] = 0.0f;
    h.Volume[i] = 0;
    h.SensorName[i].clear();
    h.ChannelY[i] = 1000000;  // sign for the signal view to lay the channel out anew
    h.ChannelYm[i] = -1;
    // Entries the layouts before 8 and 9 lack; the others stay.
    h.ProbeFreq[i][5] = -1.0f;
    h.ProbeFreq[i][6] = -1.0f;
    h.Filter[i][3] = -1.0f;
  }
  h.ChannelDifferential = 0;
  h.InputMode = h.SynchroAdType = h.SynchroAdMode = 0;
  h.SynchroAdChannel = 32;
  h.SynchroAdPorog = 1000;
  h.ViewStyle = 1;
  h.ModuleTag = QStringLiteral("?");
  h.SolidMode = false;
  h.SolidFileName = QStringLiteral("Aquilonix");
  h.FreqADC = 32000;
  h.MarkerN = 0;
  h.MarkerDate.fill(0.0);
  for (QString& r : h.MarkerRemark) r.clear();
  h.MarkerColor.fill(0);
  h.MarkerOn.fill(0);
  h.MarkerShift.fill(0);
}

QStringList RepairHeader(FileHeader& h, int channelCount) {
  QStringList repaired;
  auto repair = [&repaired](auto& value, auto low, auto high, auto fallback, const QString& what) {
    if (value >= low && value <= high) return;
    value = fallback;
    if (!repaired.contains(what)) repaired << what;
  };
  const int count = std::clamp(channelCount, 0, kMaxChannels);
  for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
    repair(h.Type[i], 0, 9, 1, QStringLiteral("тип датчика"));
    repair(h.Volume[i], 0, 3, 0, QStringLiteral("диапазон входа"));
  }
  repair(h.ViewStyle, 0, 7, 1, QStringLiteral("расположение окон"));
  repair(h.FirstChannelActive, 0, kMaxChannels, 1, QStringLiteral("текущий канал"));
  repair(h.BlockSizeFFT, 0, kMaxSamples, kMaxSamples, QStringLiteral("размер блока спектра"));
  repair(h.BlockSizeFFTa, 0, kMaxSamples, kMaxSamples, QStringLiteral("размер блока спектра"));
  repair(h.BlockSizeFFTr, 0, kMaxSamples, kMaxSamples, QStringLiteral("размер блока спектра"));
  repair(h.FreqADC, kMinFreqADC, kMaxFreqADC, 32000, QStringLiteral("частота АЦП"));
  repair(h.MarkerN, 0, kMaxMarkers, std::clamp(h.MarkerN, 0, kMaxMarkers),
         QStringLiteral("число маркеров"));
  return repaired;
}

}  // namespace aqx
