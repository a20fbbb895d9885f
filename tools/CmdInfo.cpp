// aquilonix-tool info FILE [--json]: reads a recording as opening it in the
// program would (fresh default state, the reader of its ending; a data
// file's samples are not read, only the size of their area checked) and
// prints its header and channel table; with --json one JSON object whose
// keys are the state's names.

#include "files/FileReaders.h"
#include "files/SolidFile.h"
#include "tools/ToolCommand.h"

#include <array>
#include <charconv>
#include <cmath>
#include <memory>
#include <string>
#include <type_traits>

namespace aqx::tool {

namespace {

// A JSON writer that keeps the order of the keys as written and prints
// single-precision values in their shortest form (1.25, not 1.2500000000).
class Json {
 public:
  QString text;

  void key(const char* name) {
    separate();
    text += QLatin1Char('"') + QLatin1String(name) + QStringLiteral("\":");
    afterKey_ = true;
  }
  void beginObject() { open(QLatin1Char('{')); }
  void endObject() { close(QLatin1Char('}')); }
  void beginArray() { open(QLatin1Char('[')); }
  void endArray() { close(QLatin1Char(']')); }

  void value(int64_t v) { raw(QString::number(v)); }
  void value(bool v) { raw(v ? QStringLiteral("true") : QStringLiteral("false")); }
  void value(float v) { number(v); }
  void value(double v) { number(v); }
  void value(const QString& s) {
    QString out = QStringLiteral("\"");
    for (const QChar ch : s) {
      if (ch == QLatin1Char('"') || ch == QLatin1Char('\\')) {
        out += QLatin1Char('\\') + ch;
      } else if (ch.unicode() < 0x20) {
        out += QStringLiteral("\\u%1").arg(ch.unicode(), 4, 16, QLatin1Char('0'));
      } else {
        out += ch;
      }
    }
    raw(out + QLatin1Char('"'));
  }
  template <class T>
  void field(const char* name, const T& v) {
    key(name);
    value(v);
  }
  void field(const char* name, int32_t v) {
    key(name);
    value(static_cast<int64_t>(v));
  }

 private:
  bool first_ = true;
  bool afterKey_ = false;

  void separate() {
    if (!first_ && !afterKey_) text += QLatin1Char(',');
    first_ = false;
  }
  void raw(const QString& s) {
    separate();
    text += s;
    afterKey_ = false;
  }
  void open(QChar bracket) {
    raw(bracket);
    first_ = true;
  }
  void close(QChar bracket) {
    text += bracket;
    first_ = false;
    afterKey_ = false;
  }
  template <class T>
  void number(T v) {
    if (!std::isfinite(v)) return raw(QStringLiteral("null"));  // JSON has no NaN
    std::array<char, 64> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), v).ptr;
    raw(QString::fromLatin1(buffer.data(), static_cast<qsizetype>(end - buffer.data())));
  }
};

QString InfoJson(const AppState& s) {
  Json j;
  j.beginObject();
  j.field("FileVersionMajor", s.FileVersionMajor);
  j.field("FileVersionMinor", s.FileVersionMinor);
  j.field("FileVersionRevision", s.FileVersionRevision);
  j.field("Polus", s.Polus);
  j.field("FreqSety", s.FreqSety);
  j.field("NumberRotorRecord", s.NumberRotorRecord);
  j.field("StepDesc", s.StepDesc);
  j.field("FreqRotorReal", s.FreqRotorReal);
  j.field("FreqDesc", s.FreqDesc);
  j.field("FreqDescR", s.FreqDescR);
  j.field("FreqRotorN", s.FreqRotorN);
  j.field("FreqOneGarmonic", s.FreqOneGarmonic);
  j.field("Station", s.object.Station);
  j.field("Agregat", s.object.Agregat);
  j.field("Mode", s.object.Mode);
  j.field("RecordDate", s.object.RecordDate);
  j.field("Imposition", s.Imposition);
  j.field("FirstChannelActive", s.FirstChannelActive);
  j.field("BlockSizeFFT", s.BlockSizeFFT);
  j.field("BlockSizeFFTa", s.BlockSizeFFTa);
  j.field("BlockSizeFFTr", s.BlockSizeFFTr);
  j.field("ChannelDifferential", s.ChannelDifferential);
  j.field("SignalDataN", s.SignalDataN);
  j.field("ChannelUsedCount", s.ChannelUsedCount);
  j.field("InputMode", s.InputMode);
  j.field("SynchroAdType", s.SynchroAdType);
  j.field("SynchroAdMode", s.SynchroAdMode);
  j.field("SynchroAdChannel", s.SynchroAdChannel);
  j.field("SynchroAdPorog", s.SynchroAdPorog);
  j.field("ViewStyle", s.ViewStyle);
  j.field("ModuleTag", s.ModuleTag);
  j.field("SolidMode", s.SolidMode);
  j.field("SolidFileName", s.SolidFileName);
  if (s.SolidMode) {
    const SolidFileFigures f = DescribeSolidFile(s, s.SolidDataStart);
    j.field("SolidSamplesPerChannel", f.samplesPerChannel);
    j.field("SolidBlockCount", s.SolidBlockCount);
    j.field("SolidBlockN", s.SolidBlockN);
    j.field("SolidBlockM", s.SolidBlockM);
    j.field("SolidBlockSeconds", f.blockSeconds);
  }
  j.field("FreqADC", s.FreqADC);
  j.key("Remark");
  j.beginArray();
  for (const QString& r : s.object.Remark) j.value(r);
  j.endArray();
  const auto& m = s.markers;
  j.field("MarkerN", m.MarkerN);
  j.key("Markers");
  j.beginArray();
  for (size_t i = 0; i < static_cast<size_t>(std::clamp(m.MarkerN, 0, kMaxMarkers)); ++i) {
    j.beginObject();
    j.field("MarkerDate", m.MarkerDate[i]);
    j.field("MarkerRemark", m.MarkerRemark[i]);
    j.field("MarkerColor", m.MarkerColor[i]);
    j.field("MarkerOn", m.MarkerOn[i]);
    j.field("MarkerShift", m.MarkerShift[i]);
    j.endObject();
  }
  j.endArray();
  j.key("Channels");
  j.beginArray();
  const auto& ch = s.channels;
  for (int c = 1; c <= kMaxChannels; ++c) {
    j.beginObject();
    j.field("number", c);
    j.field("Channel", ch.Channel[c]);
    j.field("Active", ch.Active[c]);
    j.field("Type", ch.Type[c]);
    j.field("Place", ch.Place[c]);
    j.field("Direct", ch.Direct[c]);
    j.field("Ku", ch.Ku[c]);
    j.field("Zero", ch.Zero[c]);
    j.field("KS", ch.KS[c]);
    j.field("Volume", ch.Volume[c]);
    j.field("SensorName", ch.SensorName[c]);
    j.field("ChannelColor", ch.ChannelColor[c]);
    j.field("ChannelY", ch.ChannelY[c]);
    j.field("ChannelYm", ch.ChannelYm[c]);
    j.key("ProbeFreq");
    j.beginArray();
    for (float f : ch.ProbeFreq[c]) j.value(f);
    j.endArray();
    j.key("Filter");
    j.beginArray();
    for (float f : ch.Filter[c]) j.value(f);
    j.endArray();
    j.endObject();
  }
  j.endArray();
  j.endObject();
  return j.text + QLatin1Char('\n');
}

QString Shortest(double v) {
  std::array<char, 64> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), v).ptr;
  return QString::fromLatin1(buffer.data(), static_cast<qsizetype>(end - buffer.data()));
}

QString Entries(const auto& values) {
  QStringList parts;
  for (float f : values) parts << Shortest(f);
  return parts.join(QLatin1Char(','));
}

QString InfoText(const AppState& s) {
  QString out;
  auto line = [&out](const char* name, const QString& value) {
    out += QLatin1String(name) + QStringLiteral(": ") + value + QLatin1Char('\n');
  };
  auto num = [](auto v) {
    if constexpr (std::is_integral_v<decltype(v)>)
      return QString::number(v);
    else
      return Shortest(static_cast<double>(v));
  };
  line("File", s.PathFileData);
  line("FileVersion", QStringLiteral("%1.%2.%3").arg(s.FileVersionMajor).arg(s.FileVersionMinor).arg(s.FileVersionRevision));
  line("Station", s.object.Station);
  line("Agregat", num(s.object.Agregat));
  line("Mode", s.object.Mode);
  line("RecordDate", num(s.object.RecordDate));
  line("Polus", num(s.Polus));
  line("FreqSety", num(s.FreqSety));
  line("NumberRotorRecord", num(s.NumberRotorRecord));
  line("FreqRotorN", num(s.FreqRotorN));
  line("FreqOneGarmonic", num(s.FreqOneGarmonic));
  line("FreqRotorReal", num(s.FreqRotorReal));
  line("FreqDesc", num(s.FreqDesc));
  line("FreqDescR", num(s.FreqDescR));
  line("FreqADC", num(s.FreqADC));
  line("StepDesc", num(s.StepDesc));
  line("BlockSizeFFT", QStringLiteral("%1 (a %2, r %3)").arg(s.BlockSizeFFT).arg(s.BlockSizeFFTa).arg(s.BlockSizeFFTr));
  line("SignalDataN", num(s.SignalDataN));
  line("ChannelDifferential", num(s.ChannelDifferential));
  line("ChannelUsedCount", num(s.ChannelUsedCount));
  line("FirstChannelActive", num(s.FirstChannelActive));
  line("Imposition", s.Imposition ? QStringLiteral("true") : QStringLiteral("false"));
  line("ViewStyle", num(s.ViewStyle));
  line("Synchro", QStringLiteral("InputMode %1, SynchroAdType %2, SynchroAdMode %3, SynchroAdChannel %4, SynchroAdPorog %5")
                      .arg(s.InputMode).arg(s.SynchroAdType).arg(s.SynchroAdMode).arg(s.SynchroAdChannel).arg(s.SynchroAdPorog));
  line("ModuleTag", s.ModuleTag);
  line("SolidMode", s.SolidMode ? QStringLiteral("true") : QStringLiteral("false"));
  line("SolidFileName", s.SolidFileName);
  if (s.SolidMode) {
    const SolidFileFigures f = DescribeSolidFile(s, s.SolidDataStart);
    line("SolidSamplesPerChannel", num(f.samplesPerChannel));
    line("SolidRecordSeconds", num(f.recordSeconds));
    line("SolidBlockCount", num(s.SolidBlockCount));
    line("SolidBlockN", num(s.SolidBlockN));
    line("SolidBlockM", num(s.SolidBlockM));
    line("SolidBlockRows", num(s.SignalDataN));
    line("SolidBlockSeconds", num(f.blockSeconds));
  }
  for (size_t r = 0; r < s.object.Remark.size(); ++r)
    if (!s.object.Remark[r].isEmpty())
      out += QStringLiteral("Remark(%1): %2\n").arg(r).arg(s.object.Remark[r]);
  line("MarkerN", num(s.markers.MarkerN));
  for (size_t i = 0; i < static_cast<size_t>(std::clamp(s.markers.MarkerN, 0, kMaxMarkers)); ++i)
    out += QStringLiteral("Marker(%1): date %2, color %3, on %4, shift %5, %6\n")
               .arg(i + 1)
               .arg(Shortest(s.markers.MarkerDate[i]))
               .arg(s.markers.MarkerColor[i])
               .arg(s.markers.MarkerOn[i])
               .arg(s.markers.MarkerShift[i])
               .arg(s.markers.MarkerRemark[i]);
  out += QStringLiteral(
      "number\tChannel\tActive\tType\tPlace\tDirect\tKu\tZero\tKS\tVolume\tSensorName\tChannelColor\t"
      "ChannelY\tChannelYm\tProbeFreq\tFilter\n");
  const auto& ch = s.channels;
  for (int c = 1; c <= ChannelCount(s); ++c)
    out += QStringList{QString::number(c), num(ch.Channel[c]), num(ch.Active[c]), num(ch.Type[c]),
                       ch.Place[c], ch.Direct[c], num(ch.Ku[c]), num(ch.Zero[c]), num(ch.KS[c]),
                       num(ch.Volume[c]), ch.SensorName[c],
                       QStringLiteral("%1").arg(static_cast<uint32_t>(ch.ChannelColor[c]), 6, 16, QLatin1Char('0')).toUpper(),
                       num(ch.ChannelY[c]), num(ch.ChannelYm[c]), Entries(ch.ProbeFreq[c]),
                       Entries(ch.Filter[c])}
               .join(QLatin1Char('\t')) +
           QLatin1Char('\n');
  return out;
}

}  // namespace

int RunInfo(ToolContext& ctx) {
  const QStringList paths = Positionals(ctx.args, {});
  if (paths.size() != 1) {
    Print(stderr, QStringLiteral("usage: aquilonix-tool info FILE [--json]\n"));
    return kExitRefused;
  }
  const FileReadFn read = FindFileReader(HeaderFileReaders(), paths[0]);
  if (!read) {
    Print(stderr, QStringLiteral("info: '%1' is not a file type the program reads\n").arg(paths[0]));
    return kExitRefused;
  }
  auto state = std::make_unique<AppState>();
  state->PathFileData = paths[0];
  if (!read(*state, *ctx.prompts)) return kExitRefused;
  Print(ctx.out, HasFlag(ctx.args, QStringLiteral("--json")) ? InfoJson(*state) : InfoText(*state));
  return kExitOk;
}

}  // namespace aqx::tool
