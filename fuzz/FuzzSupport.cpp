#include "fuzz/FuzzSupport.h"

#include "core/ReaderTable.h"
#include "files/DataFile.h"
#include "files/FileReaders.h"

#include <QDir>
#include <QFile>

#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <type_traits>

namespace aqx::fuzz {

namespace {

// Four independent lanes, so that hashing the 64 MiB store is bound by
// memory, not by the multiplier's latency.
class Hasher {
 public:
  // Each value by its own type, whatever the mix of flags and numbers.
  template <class... T>
  void addEach(T... values) {
    (add(values), ...);
  }

  template <class T>
    requires std::is_arithmetic_v<T>
  void add(T v) {
    // Floats by their bits: a NaN is the same NaN after a refusal.
    if constexpr (std::is_same_v<T, bool>) {
      word(v ? 1 : 0);
    } else if constexpr (sizeof(T) == 8) {
      word(std::bit_cast<uint64_t>(v));
    } else if constexpr (sizeof(T) == 4) {
      word(std::bit_cast<uint32_t>(v));
    } else {
      word(static_cast<uint64_t>(v));
    }
  }
  void add(const QString& s) {
    word(static_cast<uint64_t>(s.size()));
    for (const QChar c : s) word(c.unicode());
  }
  template <class T, size_t N>
  void add(const std::array<T, N>& values) {
    for (const T& v : values) add(v);
  }
  template <class T>
  void add(const PerChannel<T>& values) {
    add(values.values);
  }
  // Plain locals: the loop must not call into instrumented code per word.
  [[clang::no_sanitize("address", "undefined", "coverage")]] void addWords(const uint64_t* p,
                                                                            size_t n) {
    uint64_t a = lanes_[0], b = lanes_[1], c = lanes_[2], d = lanes_[3];
    size_t i = 0;
    for (; i + 4 <= n; i += 4) {
      a = (a ^ p[i]) * kPrime;
      b = (b ^ p[i + 1]) * kPrime;
      c = (c ^ p[i + 2]) * kPrime;
      d = (d ^ p[i + 3]) * kPrime;
    }
    for (; i < n; ++i) a = (a ^ p[i]) * kPrime;
    lanes_ = {a, b, c, d};
  }
  uint64_t value() const {
    uint64_t h = 0;
    for (const uint64_t lane : lanes_) h = (h ^ lane) * kPrime;
    return h;
  }

 private:
  static constexpr uint64_t kPrime = 0x100000001B3ull;
  void word(uint64_t w) { lanes_[0] = (lanes_[0] ^ w) * kPrime; }
  std::array<uint64_t, 4> lanes_{0xCBF29CE484222325ull, 1, 2, 3};
};

void AddChannels(Hasher& h, const ChannelSetup& c) {
  h.add(c.Channel);
  h.add(c.Active);
  h.add(c.Type);
  h.add(c.Place);
  h.add(c.Direct);
  h.add(c.Ku);
  h.add(c.Zero);
  h.add(c.KS);
  h.add(c.Volume);
  h.add(c.SensorName);
  h.add(c.ChannelColor);
  h.add(c.ChannelLineWidthSignal);
  h.add(c.ChannelLineWidthSpectr);
  h.add(c.ChannelY);
  h.add(c.ChannelYm);
  for (const auto& entries : c.ProbeFreq.values) h.add(entries);
  for (const auto& entries : c.Filter.values) h.add(entries);
}

void AddObjectAndMarkers(Hasher& h, const ObjectInfo& o, const Markers& m) {
  h.add(o.Station);
  h.add(o.Agregat);
  h.add(o.Mode);
  h.add(o.Remark);
  h.add(o.RecordDate);
  h.add(m.MarkerN);
  h.add(m.MarkerDate);
  h.add(m.MarkerRemark);
  h.add(m.MarkerColor);
  h.add(m.MarkerOn);
  h.add(m.MarkerShift);
}

void AddOptions(Hasher& h, const SettingsOptions& o) {
  const ConfigOptions& c = o.config;
  h.add(c.ScaleSpectr);
  h.add(c.BandLabelText);
  h.add(c.BandTickCount);
  h.add(c.ColorTypeKit);
  h.add(c.FreqDescWaveN);
  h.add(c.TimeRefresh);
  h.add(c.ViewToolbarMain);
  h.add(c.ViewToolbarChannels);
  h.add(c.ViewStatusBar);
  h.add(c.ViewFiles);
  h.add(c.ColorBackKitSel);
  for (const auto& set : c.ColorBackKit) h.add(set);
  h.add(c.Advice);
  h.add(c.AdviceN);
  h.add(c.StartUpPicture);
  h.add(c.ProbeType);
  h.add(c.FilterType);

  const SignalOptions& s = o.signal;
  h.addEach(s.StatusBarParameter, s.Control, s.StatusBar, s.ScaleX, s.ScaleY, s.Otmetchick,
            s.OtmetchickLine, s.SignalViewColorProperty, s.LineCenter, s.LineZero, s.BeginPoint);
  h.add(s.Cursor);

  const SpectrOptions& sp = o.spectr;
  h.addEach(sp.StatusBarParameter, sp.StatusBar, sp.ViewGarmonic, sp.ViewLinesProbeFreq, sp.Evaluation);
  h.add(sp.Cursor);
  h.add(sp.SpectrViewType);
  h.add(o.spectrum.StatusBar);
  h.add(o.spectrum.SpectrumViewType);

  const TraectoriaOptions& t = o.traectoria;
  h.addEach(t.StatusBar, t.CenterRotor, t.TraectoriaFirstGarmonic, t.TraectoriaOtmetchick, t.BeginPoint);
  h.add(t.Cursor);

  const ParameterOptions& p = o.parameters;
  h.addEach(p.VisibleChannels, p.ColorType, p.FileLastLoad, p.AutoY0, p.ViewRealTime,
            p.StatusFilterConst, p.StatusFilterBienie, p.SignalParameterMax, p.SolidClerData,
            p.ReminderOverload, p.ReminderClearenceMin, p.ReminderClearenceMax);
  h.add(p.ValueClearenceMin);
  h.add(p.ValueClearenceMax);

  const ColorOptions& k = o.color;
  h.addEach(k.ColorLineOtmetchick, k.ColorLinePorogOtmetchick, k.ColorLineCenterSignal,
            k.ColorBeginPoint, k.ColorLineY0Signal, k.ColorGrid, k.ColorLineSynchro,
            k.ColorCarsetSpectrum, k.ColorText, k.ColorLinesGarmonic, k.ColorLinesProbeFreq);

  const OtmetchickOptions& m = o.otmetchick;
  h.addEach(m.OtmetchickAuto, m.OtmetchickLevel, m.OtmetchickDirect, m.OtmetchickDrebezg,
            m.OtmetchickNoise);

  const FormaRotorOptions& f = o.formaRotor;
  h.addEach(f.FormaView, f.FormaViewColor, f.FormaViewScale, f.FormaValue, f.SpicaN, f.SpicaP,
            f.SpicaD, f.SpicaV, f.DiagramaViewType, f.DiagramaView, f.DiagramaViewColor,
            f.DiagramaViewScale, f.DiagramaValue, f.SpectrFormsValue);
}

void AddValues(Hasher& h, const StateValues& s) {
  h.add(s.FileVersionMajor);
  h.add(s.FileVersionMinor);
  h.add(s.FileVersionRevision);
  AddChannels(h, s.channels);
  AddObjectAndMarkers(h, s.object, s.markers);
  h.addEach(s.Polus, s.FreqSety, s.NumberRotorRecord, s.FreqDesc, s.FreqDescR, s.FreqADC,
            s.BlockSizeFFT, s.BlockSizeFFTa, s.BlockSizeFFTr, s.SpectrLineCount, s.ViewStyle,
            s.ChannelDifferential, s.InputMode, s.SynchroAdType, s.SynchroAdMode,
            s.SynchroAdChannel, s.SynchroAdPorog);
  for (double v : {s.FreqRotorN, s.FreqOneGarmonic, s.FreqRotorReal, s.StepDesc}) h.add(v);
  h.add(s.ModuleTag);
  h.add(s.SolidMode);
  h.add(s.SolidFileName);
  h.addEach(s.SolidBlockCount, s.SolidBlockN, s.SolidBlockM, s.SolidDataStart, s.FirstChannelActive);
  h.add(s.Imposition);
  h.add(s.PathFileData);
  h.add(s.DataSaved);
  h.addEach(s.SignalDataN, s.ChannelUsedCount, s.ViewFirst, s.ViewLast, s.SelectFirst, s.SelectLast);
  h.add(s.ViewOpenFlags);
  h.add(s.SignalOffset);
  h.add(s.SignalMaxValue);
  h.add(s.SignalMeanValue);
  h.add(s.SignalCurrentValue);
  h.add(s.ShaftMarkCount);
  h.add(s.ShaftMarks);
  h.addEach(s.SaveProbe, s.SaveFilter, s.ReminderConvertFile, s.ReminderFileSave, s.AccountOffset,
            s.BatchMode);
  h.add(s.InitDirOpen);
  h.add(s.InitDirSave);
  h.add(s.Clearance);
  h.add(s.UnitName);
  h.add(s.UnitDivisor);
  AddOptions(h, s.options);
}

}  // namespace

void Broken(const char* promise) {
  std::fprintf(stderr, "aquilonix fuzz: broken promise: %s\n", promise);
  std::abort();
}

uint64_t StateDigest(const AppState& state) {
  Hasher h;
  AddValues(h, state);
  static_assert(SampleStore::kElements * sizeof(int16_t) % sizeof(uint64_t) == 0);
  h.addWords(reinterpret_cast<const uint64_t*>(state.SignalData.data()),
             SampleStore::kElements * sizeof(int16_t) / sizeof(uint64_t));
  return h.value();
}

void CheckRecordingLimits(const AppState& s) {
  Expect(s.SignalDataN >= 1 && s.SignalDataN <= kMaxSamples, "sample count within 1..1048576");
  Expect(s.ViewFirst >= 1 && s.ViewFirst <= s.ViewLast && s.ViewLast <= s.SignalDataN,
         "view inside the recording");
  Expect(s.SelectFirst >= 0 && s.SelectLast >= 0 && s.SelectFirst <= s.SignalDataN &&
             s.SelectLast <= s.SignalDataN,
         "selection inside the recording");
  const int count = ChannelCount(s);
  int used = 0;
  for (int c = 1; c <= count; ++c) {
    if (s.channels.Channel[c] == 1) ++used;
    Expect(s.channels.Type[c] >= 0 && s.channels.Type[c] <= 9, "sensor type within 0..9");
    Expect(s.channels.Volume[c] >= 0 && s.channels.Volume[c] <= 3, "input range within 0..3");
  }
  Expect(s.ChannelUsedCount == used, "used channel count matches the channel table");
  Expect(s.FirstChannelActive >= 0 && s.FirstChannelActive <= count, "current channel within the table");
  Expect(s.ViewStyle >= 0 && s.ViewStyle <= 7, "window layout within 0..7");
  Expect(s.markers.MarkerN >= 0 && s.markers.MarkerN <= kMaxMarkers, "marker count within 0..100");
  Expect(s.ShaftMarkCount >= 0 && s.ShaftMarkCount <= kMaxShaftMarks, "shaft mark count within the table");
  for (int32_t block : {s.BlockSizeFFT, s.BlockSizeFFTa, s.BlockSizeFFTr})
    Expect(block >= 0 && block <= kMaxSamples, "spectrum block within the store");
  Expect(s.FreqADC >= kMinFreqADC && s.FreqADC <= kMaxFreqADC, "module rate within the module's range");
  if (s.SolidMode) {
    Expect(s.SolidBlockCount >= 1, "a continuous recording has a block");
    Expect(s.SolidBlockM >= 1, "block scale at least 1");
  }
}

std::vector<int16_t> UsedSamples(const AppState& s) {
  std::vector<int16_t> samples;
  for (int c = 1; c <= ChannelCount(s); ++c) {
    if (s.channels.Channel[c] != 1) continue;
    for (int i = 1; i <= s.SignalDataN; ++i) samples.push_back(s.SignalData.at(i, c));
  }
  return samples;
}

FuzzWorld::FuzzWorld(int* argc, char*** argv)
    : app_(*argc, *argv),
      state_(std::make_unique<AppState>()),
      dir_(QDir(QStringLiteral("/dev/shm")).exists() ? QStringLiteral("/dev/shm/aqx-fuzz-XXXXXX")
                                                     : QDir::tempPath() + QStringLiteral("/aqx-fuzz-XXXXXX")) {
  Expect(dir_.isValid(), "scratch folder created");
}

void FuzzWorld::writeFile(const QString& path, const QByteArray& bytes) {
  QFile f(path);
  Expect(f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size(),
         "scratch file written");
}

QByteArray FuzzWorld::readFile(const QString& path) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

uint64_t FuzzWorld::digest() {
  if (!digest_) digest_ = StateDigest(*state_);
  return *digest_;
}

bool OpenAndCheck(FuzzWorld& world, const QString& fileName, const uint8_t* data, size_t size) {
  const QString path = world.path(fileName);
  FuzzWorld::writeFile(path, QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
  AppState& s = world.state();
  s.PathFileData = path;
  const FileReadFn read = FindFileReader(StandardFileReaders(), path);
  Expect(read != nullptr, "a reader for the extension");
  const uint64_t before = world.digest();
  world.stateChanged();
  ScriptedPrompts prompts;
  if (!read(s, prompts)) {
    Expect(!prompts.messages().empty(), "a refusal tells the user why");
    Expect(world.digest() == before, "a refused file leaves the state as it was");
    return false;
  }
  CheckRecordingLimits(s);
  return true;
}

void CheckDataFileRoundTrip(FuzzWorld& world) {
  AppState& s = world.state();
  ScriptedPrompts prompts;
  s.PathFileData = world.path(QStringLiteral("copy.aqx"));
  Expect(WriteDataFile(s, prompts), "an accepted recording can be written");
  const QByteArray header = BuildFileHeaderBytes(s);
  const std::vector<int16_t> samples = UsedSamples(s);
  const int32_t count = s.SignalDataN;
  Expect(ReadDataFile(s, prompts), "a written recording reads back");
  CheckRecordingLimits(s);
  Expect(BuildFileHeaderBytes(s) == header, "header values survive a write and read back");
  Expect(s.SignalDataN == count, "sample count survives a write and read back");
  Expect(UsedSamples(s) == samples, "samples survive a write and read back");
}

}  // namespace aqx::fuzz
