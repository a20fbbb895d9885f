#include "UiTestSupport.h"

#include "core/Startup.h"
#include "files/DataFile.h"

#include <QFile>

#include <cmath>
#include <vector>

namespace aqx::uitest {

namespace {
// The counters wrap to 14 bits as the module's codes do.
int16_t CounterCode(int64_t n) { return static_cast<int16_t>(((n % 16384) + 16384 + 8192) % 16384 - 8192); }
}  // namespace

CounterRows CheckCounterRows(const QString& path, int64_t headerBytes, int channels) {
  CounterRows check;
  QFile file(path);
  if (channels < 2 || !file.open(QIODevice::ReadOnly) || !file.seek(headerBytes)) return check;
  std::vector<int16_t> rows(static_cast<size_t>(65536) * static_cast<size_t>(channels));
  const qint64 rowBytes = 2 * channels;
  for (;;) {
    const qint64 got = file.read(reinterpret_cast<char*>(rows.data()), static_cast<qint64>(rows.size() * 2));
    if (got <= 0) break;
    check.tornRow = got % rowBytes != 0;
    for (qint64 i = 0; i < got / rowBytes; ++i, ++check.rows) {
      const int16_t* row = rows.data() + i * channels;
      if (check.firstWrongRow < 0 && (row[0] != CounterCode(check.rows) || row[1] != CounterCode(check.rows / 16384)))
        check.firstWrongRow = check.rows;
    }
  }
  return check;
}

void FillRecording(AppState& s, int samples, int channels) {
  samples = std::clamp(samples, 1, kMaxSamples);
  channels = std::clamp(channels, 1, kMaxChannels);
  s.SignalDataN = samples;
  s.FreqDesc = 2677;
  s.FreqDescR = 2677;
  s.object.Station = QStringLiteral("Волжская ГЭС");
  s.object.Agregat = 5;
  s.object.Mode = QStringLiteral("Холостой ход без возбуждения");
  s.object.RecordDate = 45000.5;
  const double revolutionSamples = 2677.0 / 1.38;
  for (int c = 1; c <= kMaxChannels; ++c) {
    s.channels.Channel[c] = c <= channels ? 1 : 0;
    s.channels.Active[c] = c == 1 ? 1 : 0;
    const int kind = (c - 1) % 4;
    s.channels.Type[c] = kind == 0 ? 0 : kind == 1 ? 1 : kind == 2 ? 3 : 5;
    s.channels.Ku[c] = 8.0f;
    s.channels.Place[c] = QStringLiteral("Турбинный подшипник");
    s.channels.Direct[c] = QStringLiteral("+X");
    for (int i = 1; i <= samples; ++i) {
      const double t = (i - 1) / 2677.0;
      double code = 0;
      switch (kind) {
        case 0: code = 800 * std::sin(2 * M_PI * 1.38 * t) + 40 * std::sin(2 * M_PI * 11 * t); break;
        case 1: code = 300 * std::sin(2 * M_PI * 50 * t) + 120 * std::sin(2 * M_PI * 1.38 * t); break;
        case 2: code = std::fmod(i - 1, revolutionSamples) < 20 ? 2000 : 0; break;
        default: code = 1000 + 500.0 * (i - 1) / samples; break;
      }
      s.SignalData.at(i, c) = static_cast<int16_t>(std::lround(code));
    }
  }
  s.FirstChannelActive = 1;
  RecountChannelUsedCount(s);
  s.ViewFirst = 1;
  s.ViewLast = samples;
}

bool WriteRecording(const QString& path, int samples, int channels) {
  auto s = std::make_unique<AppState>();
  FillRecording(*s, samples, channels);
  s->PathFileData = path;
  StderrPrompts prompts;
  return WriteDataFile(*s, prompts);
}

Workbench::Workbench() : state(std::make_unique<AppState>()), readers(StandardFileReaders()) {
  SpeedLoad(*state, store, vocabulary);
  // The tip of the day would stand over every window under test.
  store.save(QStringLiteral("Config"), QStringLiteral("Advice"), QStringLiteral("0"));
  window = std::make_unique<ui::MainWindow>(*state, store, prompts, vocabulary, readers);
  window->load();
  window->show();
}

Workbench::~Workbench() { window.reset(); }

}  // namespace aqx::uitest
