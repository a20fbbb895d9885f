// Writes the seed corpora of the fuzz targets, each file made by the program
// itself: data files in all thirteen layouts, differential and with markers,
// continuous recordings, ЗОР-16 and РУСЛО-8 files laid out as their readers
// take them, WAVE files made by sox in every sample format the reader takes,
// and settings as the program writes them.
//
//   aqx_fuzz_seeds <folder>   makes <folder>/<target>/... for every target,
//                             and empties <folder>/found/<target> for what
//                             a run of the target finds

#include "core/AppState.h"
#include "core/Config.h"
#include "core/IniText.h"
#include "core/Prompts.h"
#include "core/Settings.h"
#include "files/DataFile.h"
#include "files/DataFileLayout.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringEncoder>

#include <bit>
#include <cmath>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

using namespace aqx;

bool Save(const QString& path, const QByteArray& bytes) {
  QFile f(path);
  if (f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size()) return true;
  std::fprintf(stderr, "aqx_fuzz_seeds: cannot write %s\n", qPrintable(path));
  return false;
}

// Little-endian byte image, zero-filled as it grows.
struct Bytes {
  QByteArray data;
  Bytes& put(qsizetype at, const void* value, qsizetype n) {
    if (data.size() < at + n) data.append(QByteArray(at + n - data.size(), '\0'));
    const auto* p = static_cast<const char*>(value);
    for (qsizetype i = 0; i < n; ++i) data[at + i] = p[i];  // the seeds are made on little-endian machines
    return *this;
  }
  Bytes& u8(qsizetype at, uint8_t v) { return put(at, &v, 1); }
  Bytes& i16(qsizetype at, int16_t v) { return put(at, &v, 2); }
  Bytes& i32(qsizetype at, int32_t v) { return put(at, &v, 4); }
  Bytes& f32(qsizetype at, float v) { return put(at, &v, 4); }
  Bytes& f64(qsizetype at, double v) { return put(at, &v, 8); }
  Bytes& text(qsizetype at, const QByteArray& t) { return put(at, t.constData(), t.size()); }
};

int16_t Code(int sample, int channel) {
  return static_cast<int16_t>(std::lround(3000.0 * std::sin(0.05 * sample * channel) + 100 * channel));
}

// A small recording: channels 1, 2 and 5 (a shaft marker on 5), 64 samples.
void FillRecording(AppState& s, bool differential, int markers) {
  s.ChannelDifferential = differential ? 1 : 0;
  for (int c = 1; c <= kMaxChannels; ++c) s.channels.Channel[c] = 0;
  for (const int c : {1, 2, 5}) {
    s.channels.Channel[c] = 1;
    s.channels.Active[c] = c == 1 ? 1 : 0;
    s.channels.Type[c] = c == 5 ? 3 : 1;
    s.channels.Place[c] = QStringLiteral("Подшипник %1").arg(c);
    s.channels.Direct[c] = QStringLiteral("ВБ");
    s.channels.SensorName[c] = QStringLiteral("ДВ-%1").arg(c);
    s.channels.Ku[c] = 1.25f;
  }
  s.SignalDataN = 64;
  s.ViewFirst = 1;
  s.ViewLast = 64;
  s.FirstChannelActive = 1;
  s.object.Station = QStringLiteral("Волжская ГЭС");
  s.object.Mode = QStringLiteral("Холостой ход");
  s.object.Remark[0] = QStringLiteral("Пуск");
  s.object.RecordDate = 46000.5;
  s.markers.MarkerN = markers;
  for (int m = 0; m < markers; ++m) {
    s.markers.MarkerDate[static_cast<size_t>(m)] = 46000.5 + m / 1440.0;
    s.markers.MarkerRemark[static_cast<size_t>(m)] = QStringLiteral("Метка %1").arg(m + 1);
    s.markers.MarkerColor[static_cast<size_t>(m)] = 0x0000FF;
    s.markers.MarkerOn[static_cast<size_t>(m)] = 1;
    s.markers.MarkerShift[static_cast<size_t>(m)] = 10 * m;
  }
  RecountChannelUsedCount(s);
  for (int i = 1; i <= s.SignalDataN; ++i)
    for (int c = 1; c <= kMaxChannels; ++c) s.SignalData.at(i, c) = Code(i, c);
}

std::vector<int> UsedChannels(const AppState& s) {
  std::vector<int> used;
  for (int c = 1; c <= ChannelCount(s); ++c)
    if (s.channels.Channel[c] == 1) used.push_back(c);
  return used;
}

// The header record of the state in layout `minor`, all H bytes.
QByteArray HeaderOfLayout(const AppState& s, int minor) {
  FileHeader h = FileHeaderFromState(s);
  h.magic = QString::fromLatin1(kDataFileMagic);
  h.FileVersionMajor = 1;
  h.FileVersionMinor = minor;
  h.FileVersionRevision = 0;
  QByteArray bytes(static_cast<qsizetype>(DataFileHeaderBytes(minor)), '\0');
  WriteLayout(DataFileLayout(minor), h, std::span(bytes.data(), static_cast<size_t>(bytes.size())));
  return bytes;
}

// An ordinary data file of an older layout: the sample area, channel after
// channel, begins on the last header byte.
QByteArray DataFileOfLayout(const AppState& s, int minor) {
  QByteArray bytes = HeaderOfLayout(s, minor);
  bytes.chop(1);
  for (const int c : UsedChannels(s))
    for (int i = 1; i <= s.SignalDataN; ++i) {
      const int16_t v = s.SignalData.at(i, c);
      bytes.append(reinterpret_cast<const char*>(&v), 2);
    }
  return bytes;
}

// A continuous recording: the whole header, then rows of all used channels.
QByteArray SolidFileOfLayout(AppState& s, int minor, int rows) {
  s.SolidMode = true;
  s.FreqADC = 32000;
  s.SolidFileName = QStringLiteral("Непрерывная");
  QByteArray bytes = HeaderOfLayout(s, minor);
  for (int i = 1; i <= rows; ++i)
    for (const int c : UsedChannels(s)) {
      const int16_t v = Code(i, c);
      bytes.append(reinterpret_cast<const char*>(&v), 2);
    }
  s.SolidMode = false;
  return bytes;
}

bool MakeDataFiles(const QDir& dir) {
  auto s = std::make_unique<AppState>();
  FillRecording(*s, false, 0);
  bool ok = true;
  for (int minor = kOldestFileLayout; minor < kCurrentFileLayout; ++minor)
    ok &= Save(dir.filePath(QStringLiteral("layout%1.aqx").arg(minor)), DataFileOfLayout(*s, minor));
  ScriptedPrompts prompts;
  s->PathFileData = dir.filePath(QStringLiteral("layout12.aqx"));
  ok &= WriteDataFile(*s, prompts);
  FillRecording(*s, true, 0);
  s->PathFileData = dir.filePath(QStringLiteral("differential.aqx"));
  ok &= WriteDataFile(*s, prompts);
  ok &= Save(dir.filePath(QStringLiteral("differential-layout11.aqx")), DataFileOfLayout(*s, 11));
  FillRecording(*s, false, 3);
  s->PathFileData = dir.filePath(QStringLiteral("markers.aqx"));
  ok &= WriteDataFile(*s, prompts);
  return ok;
}

bool MakeSolidFiles(const QDir& dir) {
  auto s = std::make_unique<AppState>();
  FillRecording(*s, false, 2);
  bool ok = Save(dir.filePath(QStringLiteral("solid-layout12.aqx")), SolidFileOfLayout(*s, 12, 300));
  ok &= Save(dir.filePath(QStringLiteral("solid-layout11.aqx")), SolidFileOfLayout(*s, 11, 300));
  FillRecording(*s, true, 0);
  ok &= Save(dir.filePath(QStringLiteral("solid-differential.aqx")), SolidFileOfLayout(*s, 12, 40));
  return ok;
}

QByteArray Cp1251(const QString& text) { return QStringEncoder("windows-1251").encode(text); }

// ЗОР-16: header of 1417 bytes, then per channel a block head of 668 bytes
// and one byte per sample.
QByteArray ZrkFile(int channels, int samples) {
  Bytes b;
  const QByteArray station = Cp1251(QStringLiteral("Саяно-Шушенская"));
  const QByteArray mode = Cp1251(QStringLiteral("Нагрузка 400 МВт"));
  b.u8(16, static_cast<uint8_t>(station.size())).text(17, station);
  b.u8(57, static_cast<uint8_t>(mode.size())).text(58, mode);
  b.i16(260, 2).i16(262, 40).f32(264, 142.8f).f32(272, 1.5f).i32(280, 7).i16(292, 4);
  b.f64(296, 46000.25).f32(308, 0.1f).f32(316, 2.38f).u8(322, static_cast<uint8_t>(channels));
  b.i32(324, samples);
  for (int i = 0; i < 64; ++i) b.f32(328 + 4 * i, 10.0f * static_cast<float>(i % 4 + 1));
  for (int k = 0; k < 4; ++k) b.i32(584 + 4 * k, 2 * (1 + k * samples / 4));
  b.u8(1416, 1);
  qsizetype at = 1416;
  for (int c = 1; c <= channels; ++c) {
    const QByteArray name = Cp1251(QStringLiteral("Статор %1 стык НБ").arg(c));
    b.u8(at, static_cast<uint8_t>(c)).u8(at + 1, static_cast<uint8_t>(name.size())).text(at + 2, name);
    b.u8(at + 83, c == 1 ? 1 : 2).f32(at + 84, 1.0f).f32(at + 108, 2.0f);
    at += 668;
    for (int i = 0; i < samples; ++i) b.u8(at + i, static_cast<uint8_t>(128 + 100 * std::sin(0.2 * i * c)));
    at += samples;
  }
  return b.data;
}

// РУСЛО-8: header of 557 bytes, then per channel a block head of 54 bytes
// and 1024 one-byte samples.
QByteArray RslFile(int channels) {
  Bytes b;
  b.u8(2, 3).u8(18, 48).f32(28, 1.0f).f32(32, 2.0f).f32(36, 3.0f).f32(52, 4.0f).f32(56, 5.0f).f32(60, 0.12f);
  b.text(64, Cp1251(QStringLiteral("Холостой ход")));
  for (int i = 0; i < 21; ++i) b.f32(144 + 4 * i, 12.5f * static_cast<float>(i % 3 + 1));
  for (int k = 0; k < 5; ++k) b.i32(228 + 4 * k, 5 + 200 * k);
  qsizetype at = 556;
  for (int c = 1; c <= channels; ++c) {
    b.u8(at, static_cast<uint8_t>(c)).text(at + 1, Cp1251(QStringLiteral("Вал %1").arg(c)));
    b.u8(at + 45, c == 2 ? 1 : 0).f32(at + 46, 0.8f);
    at += 54;
    for (int i = 0; i < 1024; ++i) b.u8(at + i, static_cast<uint8_t>(128 + 90 * std::sin(0.03 * i * c)));
    at += 1024;
  }
  return b.data;
}

bool MakeForeignFiles(const QDir& zrk, const QDir& rsl) {
  bool ok = Save(zrk.filePath(QStringLiteral("one-channel.zrk")), ZrkFile(1, 200));
  ok &= Save(zrk.filePath(QStringLiteral("three-channels.zrk")), ZrkFile(3, 64));
  ok &= Save(rsl.filePath(QStringLiteral("one-channel.rsl")), RslFile(1));
  ok &= Save(rsl.filePath(QStringLiteral("seven-channels.rsl")), RslFile(7));
  return ok;
}

// sox synthesises each format the reader takes: 8-bit unsigned and 16-bit
// signed, mono, stereo and more channels than the store has.
bool MakeWaveFiles(const QDir& dir) {
  struct Format {
    const char* name;
    int bits;
    const char* encoding;
    int channels;
    const char* seconds;
  };
  const Format formats[] = {
      {"u8-mono", 8, "unsigned-integer", 1, "0.05"},  {"u8-stereo", 8, "unsigned-integer", 2, "0.03"},
      {"u8-6ch", 8, "unsigned-integer", 6, "0.01"},   {"s16-mono", 16, "signed-integer", 1, "0.05"},
      {"s16-stereo", 16, "signed-integer", 2, "0.03"}, {"s16-6ch", 16, "signed-integer", 6, "0.01"},
      {"s16-40ch", 16, "signed-integer", 40, "0.002"},
  };
  bool ok = true;
  for (const Format& f : formats) {
    const QString path = dir.filePath(QString::fromLatin1(f.name) + QStringLiteral(".wav"));
    QProcess sox;
    sox.start(QStringLiteral("sox"),
              {QStringLiteral("-n"), QStringLiteral("-r"), QStringLiteral("8000"), QStringLiteral("-c"),
               QString::number(f.channels), QStringLiteral("-b"), QString::number(f.bits),
               QStringLiteral("-e"), QString::fromLatin1(f.encoding), path, QStringLiteral("synth"),
               QString::fromLatin1(f.seconds), QStringLiteral("sine"), QStringLiteral("300-900")});
    if (!sox.waitForFinished(30000) || sox.exitStatus() != QProcess::NormalExit || sox.exitCode() != 0) {
      std::fprintf(stderr, "aqx_fuzz_seeds: sox could not make %s: %s\n", qPrintable(path),
                   qPrintable(QString::fromLocal8Bit(sox.readAllStandardError())));
      ok = false;
    }
  }
  return ok;
}

// The settings of a fresh program and of an opened recording, as the program
// writes them, and a tree whose names and values need every escape.
bool MakeSettingsFiles(const QDir& settings, const QDir& configs) {
  auto s = std::make_unique<AppState>();
  MemorySettingsStore fresh;
  SaveConfig(fresh, *s);
  FillRecording(*s, true, 2);
  MemorySettingsStore recording;
  SaveConfig(recording, *s);
  SettingsTree odd;
  odd[QStringLiteral("Config")][QStringLiteral("FreqRotorN")] = QStringLiteral("83,3");
  odd[QStringLiteral("Раздел с пробелом")][QStringLiteral("ключ/с;знаками=")] =
      QStringLiteral("\"в кавычках\", \\ и \t табуляция");
  odd[QStringLiteral("General")][QStringLiteral("@Variant")] = QStringLiteral("@ByteArray(x)");
  odd[QStringLiteral("[скобки]")][QStringLiteral("пусто")] = QString();
  bool ok = true;
  for (const QDir& dir : {settings, configs}) {
    ok &= Save(dir.filePath(QStringLiteral("fresh.conf")), IniTextOf(fresh.tree()));
    ok &= Save(dir.filePath(QStringLiteral("recording.conf")), IniTextOf(recording.tree()));
    ok &= Save(dir.filePath(QStringLiteral("escapes.conf")), IniTextOf(odd));
  }
  return ok;
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "usage: aqx_fuzz_seeds <folder>\n");
    return 2;
  }
  const QDir root(QString::fromLocal8Bit(argv[1]));
  const char* targets[] = {"datafile", "solid", "zrk", "rsl", "wave", "settings", "configs"};
  for (const char* t : targets)
    for (const QString& folder : {QString::fromLatin1(t), QStringLiteral("found/") + QString::fromLatin1(t)}) {
      QDir d(root.filePath(folder));
      if (!d.removeRecursively() || !QDir().mkpath(d.path())) {
        std::fprintf(stderr, "aqx_fuzz_seeds: cannot make %s\n", qPrintable(d.path()));
        return 1;
      }
    }
  const auto dir = [&root](const char* t) { return QDir(root.filePath(QString::fromLatin1(t))); };
  const bool ok = MakeDataFiles(dir("datafile")) && MakeSolidFiles(dir("solid")) &&
                  MakeForeignFiles(dir("zrk"), dir("rsl")) && MakeWaveFiles(dir("wave")) &&
                  MakeSettingsFiles(dir("settings"), dir("configs"));
  return ok ? 0 : 1;
}
