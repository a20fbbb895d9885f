#include "core/AppState.h"

#include "core/ChannelPhysics.h"

#include "core/Numeric.h"
#include "core/SpectrumSetup.h"
#include "core/Vocabulary.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

namespace aqx {

// Anonymous memory comes zeroed from the system a page at a time, on first
// touch. Large pages where the system has them: a full recording then costs
// a few dozen page faults instead of sixteen thousand.
SampleStore::SampleStore() {
  void* p = mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (p == MAP_FAILED) throw std::bad_alloc();
  madvise(p, kBytes, MADV_HUGEPAGE);
  codes_ = static_cast<int16_t*>(p);
}

SampleStore::~SampleStore() { munmap(codes_, kBytes); }

void SampleStore::clear() {
  // Private anonymous pages given back read as zeros again: no 64 MiB write.
  if (madvise(codes_, kBytes, MADV_DONTNEED) != 0) std::fill_n(codes_, kElements, int16_t{0});
  markWritten();
}

size_t SampleStore::residentBytes() const {
  const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  std::vector<unsigned char> resident((kBytes + page - 1) / page);
  if (mincore(codes_, kBytes, resident.data()) != 0) return kBytes;
  return page * static_cast<size_t>(std::count_if(resident.begin(), resident.end(),
                                                  [](unsigned char r) { return (r & 1) != 0; }));
}

void ResetChannelDefaults(ChannelSetup& ch) {
  for (int c = 1; c <= kMaxChannels; ++c) {
    ch.Channel[c] = 1;
    ch.Active[c] = 0;
    ch.Type[c] = 1;
    ch.Place[c].clear();
    ch.Direct[c].clear();
    ch.Ku[c] = 10.0f;
    ch.Zero[c] = 0;
    ch.KS[c] = 0.0f;
    ch.Volume[c] = 0;
    ch.SensorName[c].clear();
    ch.ChannelColor[c] = ChannelColorDefault(c);
    ch.ChannelLineWidthSignal[c] = 1;
    ch.ChannelLineWidthSpectr[c] = 1;
    ch.ChannelY[c] = 1000000;  // sign for the signal view to lay the channel out
    ch.ChannelYm[c] = -1;
    ch.ProbeFreq[c].fill(-1.0f);
    ch.Filter[c].fill(-1.0f);
  }
}

AppState::AppState() {
  ResetChannelDefaults(channels);
  channels.Active[1] = 1;
  RecountChannelUsedCount(*this);
  for (auto& r : object.Remark) r.clear();
  object.RecordDate = DateTimeToOle(QDateTime::currentDateTime());
  ApplyBlockRule(*this);
}

int ChannelCount(const AppState& s) { return s.ChannelDifferential == 1 ? 16 : 32; }

int RecountChannelUsedCount(AppState& s) {
  int used = 0;
  for (int c = 1; c <= ChannelCount(s); ++c)
    if (s.channels.Channel[c] == 1) ++used;
  s.ChannelUsedCount = used;
  return used;
}

int FirstMarkerChannel(const AppState& s) {
  for (int c = 1; c <= ChannelCount(s); ++c)
    if (s.channels.Type[c] == sensor::ShaftMarker && s.channels.Channel[c] == 1) return c;
  return 0;
}

int ActiveUsedCount(const AppState& s) {
  int n = 0;
  for (int c = 1; c <= ChannelCount(s); ++c)
    if (s.channels.Channel[c] == 1 && s.channels.Active[c] == 1) ++n;
  return n;
}

int FirstUsedChannel(const AppState& s) {
  for (int c = 1; c <= ChannelCount(s); ++c)
    if (s.channels.Channel[c] == 1) return c;
  return 0;
}

int32_t AcquiredRows(const AppState& s) {
  const int rows = std::clamp(s.SignalDataN, 0, kMaxSamples);
  const int channels = ChannelCount(s);
  for (int r = rows; r >= 1; --r)
    for (int c = 1; c <= channels; ++c)
      if (s.channels.Channel[c] == 1 && s.SignalData.at(r, c) != 0) return r == rows ? 0 : r;
  return rows > 0 ? 1 : 0;
}

double ChannelRateHz(const AppState& s) {
  if (s.SolidMode && s.ChannelUsedCount > 0 && s.FreqADC > 0)
    return static_cast<double>(s.FreqADC) / s.ChannelUsedCount / std::max(s.SolidBlockM, 1);
  return std::max(s.FreqDesc, 0);
}

void ApplyBlockRule(AppState& s) {
  if (const auto step = StepAndLines(s.BlockSizeFFT, s.SignalDataN, ChannelRateHz(s))) {
    s.StepDesc = step->StepDesc;
    s.SpectrLineCount = step->SpectrLineCount;
  }
}

void DeriveRotorParameters(AppState& s) {
  if (s.Polus != 0) s.FreqRotorN = s.FreqSety * 120.0 / s.Polus;
  s.FreqOneGarmonic = s.FreqRotorN / 60.0;
  if (s.NumberRotorRecord > 0 && s.FreqRotorN > 0) {
    const double recordSeconds = s.NumberRotorRecord * 60.0 / s.FreqRotorN;
    s.FreqDescR = std::max(1, RoundHalfEven(s.SignalDataN / recordSeconds));
  } else {
    s.FreqDescR = std::max(1, s.FreqDescR);
  }
  ApplyBlockRule(s);
}

void ClearApplicationData(AppState& s) {
  s.Polus = 0;
  s.NumberRotorRecord = 0;
  s.StepDesc = 0;
  s.object.Agregat = 0;
  s.object.Station.clear();
  s.object.Mode.clear();
  s.object.RecordDate = DateTimeToOle(QDateTime::currentDateTime());
  s.Imposition = false;
  s.FirstChannelActive = 0;
  for (auto& r : s.object.Remark) r = QStringLiteral("0");
  auto& ch = s.channels;
  for (int c = 1; c <= kMaxChannels; ++c) {
    ch.Channel[c] = 0;
    ch.Active[c] = 0;
    ch.Type[c] = 0;
    ch.Place[c].clear();
    ch.Direct[c].clear();
    ch.Ku[c] = 0.0f;
    ch.Zero[c] = 0;
    ch.KS[c] = 0.0f;
    ch.Volume[c] = 0;
    ch.SensorName[c].clear();
    ch.ChannelColor[c] = 0;
    ch.ChannelY[c] = 0;
    ch.ChannelYm[c] = 0;
    ch.ProbeFreq[c].fill(-1.0f);
    ch.Filter[c].fill(-1.0f);
  }
}

namespace {
struct UnitRow {
  const char* names[4];
  double divisors[4];
};
// By type, for levels below 5000, below 50000, below 5000000, and above.
// Pressure and temperature keep one name while the divisor changes, and
// centimetres divide by 10000: both are how readouts have always been made.
const UnitRow kLength{{"мкм", "мм", "см", "м"}, {1, 1000, 10000, 1000000}};
const UnitRow kMass{{"г", "кг", "кг", "т"}, {1, 1000, 1000, 1000000}};
const UnitRow kVolt{{"мВ", "В", "В", "кВ"}, {1, 1000, 1000, 1000000}};
const UnitRow kPressure{{"кгс/см2", "кгс/см2", "кгс/см2", "кгс/см2"}, {1, 1000, 1000, 1000000}};
const UnitRow kTemperature{{"°C", "°C", "°C", "°C"}, {1, 1000, 1000, 1000000}};
const UnitRow kPower{{"Вт", "кВт", "кВт", "МВт"}, {1, 1000, 1000, 1000000}};

const UnitRow* UnitRowOfType(int type) {
  switch (type) {
    case 0: case 1: case 8: return &kLength;
    case 2: return &kMass;
    case 3: case 4: case 5: return &kVolt;
    case 6: return &kPressure;
    case 7: return &kTemperature;
    case 9: return &kPower;
    default: return nullptr;
  }
}
}  // namespace

void SetChannelUnit(AppState& s, double value) {
  const int c = s.FirstChannelActive;
  if (c < 1 || c > kMaxChannels) return;
  if (const std::optional<LevelUnit> unit = UnitOfLevel(s.channels.Type[c], value)) {
    s.UnitName = unit->name;
    s.UnitDivisor = unit->divisor;
  }
}

std::optional<LevelUnit> UnitOfLevel(int type, double value) {
  const UnitRow* row = UnitRowOfType(type);
  if (!row) return std::nullopt;
  const int step = value < 5000 ? 0 : value < 50000 ? 1 : value < 5000000 ? 2 : 3;
  return LevelUnit{QString::fromUtf8(row->names[step]), row->divisors[step]};
}

bool IsModuleRate(int32_t freqADC) { return freqADC >= kMinFreqADC && freqADC <= kMaxFreqADC; }

QString ModuleRateRefusal(int32_t freqADC) {
  return QStringLiteral("Недопустимая частота АЦП: %1 Гц.\nМодуль работает на частотах от %2 до %3 Гц.")
      .arg(freqADC)
      .arg(kMinFreqADC)
      .arg(kMaxFreqADC);
}

}  // namespace aqx
