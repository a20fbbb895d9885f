#pragma once
// Recordings of analytic signals for the report tests, and zip packages
// opened and made with libzip as a spreadsheet program would see them.

#include "core/AppState.h"
#include "core/ChannelPhysics.h"
#include "core/Prompts.h"
#include "files/DataFile.h"
#include "files/FileReaders.h"
#include "tests/files/DataFileTestSupport.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <ctime>

#include <gtest/gtest.h>

#include <zip.h>

#include <cmath>
#include <map>
#include <ostream>
#include <memory>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

// Texts in failure output as UTF-8 rather than as code units.
inline void PrintTo(const QString& text, std::ostream* os) { *os << '"' << text.toStdString() << '"'; }

namespace aqx::testing_reports {

// One revolution is 512 samples at 1024 Hz: 2 Hz, 120 rpm; 16 revolutions.
inline constexpr int kSampleHz = 1024;
inline constexpr int kRows = 8192;
inline constexpr int kRevolutionRows = 512;

// Channel 1 run-out: 400 codes of offset and a first harmonic of 600 codes
// peak to peak at 30°; channel 2 vibration: 800 codes at 90°; channel 3 a
// shaft marker pulse at the start of revolutions 2..16. One code is one unit.
// The vibration channel probes 2 Hz (its harmonic) and 10 Hz (nothing).
struct AnalyticRecording {
  QString mode = QStringLiteral("Номинал");
  double runoutOffsetCodes = 400.0;
  double runoutPeakToPeak = 600.0;
  double runoutPhaseDegrees = 30.0;
  double vibrationPeakToPeak = 800.0;
  double vibrationPhaseDegrees = 90.0;
  float clearanceKS = 100.0f;
  QString place = QStringLiteral("ВГП");
  // Differential connection: 16 channels; channel 20 is marked in use but
  // lies past them.
  bool differential = false;
};

using testing::ReadFile;
using testing::WriteFile;

// A folder of recordings to report on, and the recording in memory.
class RecordingFolder : public ::testing::Test {
 protected:
  QTemporaryDir dir;
  ScriptedPrompts prompts;
  std::unique_ptr<AppState> state = std::make_unique<AppState>();
  FileReaderTable readers = StandardFileReaders();
};

// (peak-to-peak / 2) cos(2 pi f t - phase), t = 0 at row 1.
inline double Harmonic(int row, double peakToPeak, double phaseDegrees) {
  const double t = static_cast<double>(row - 1) / kSampleHz;
  return peakToPeak / 2 * std::cos(2 * std::numbers::pi * 2.0 * t - phaseDegrees * std::numbers::pi / 180);
}

inline bool WriteAnalyticRecording(const QString& path, const AnalyticRecording& r, Prompts& prompts) {
  auto s = std::make_unique<AppState>();
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Channel[c] = c <= 3 ? 1 : 0;
  const int32_t types[3] = {sensor::Runout, sensor::Vibration, sensor::ShaftMarker};
  const char* directions[3] = {"X", "Y", ""};
  for (int c = 1; c <= 3; ++c) {
    s->channels.Type[c] = types[c - 1];
    s->channels.Place[c] = r.place;
    s->channels.Direct[c] = QString::fromLatin1(directions[c - 1]);
    s->channels.Ku[c] = static_cast<float>(kMillivoltsPerCode);
  }
  s->channels.KS[1] = r.clearanceKS;
  if (r.differential) {
    s->ChannelDifferential = 1;
    s->channels.Channel[20] = 1;
    s->channels.Type[20] = sensor::Vibration;
    s->channels.Ku[20] = static_cast<float>(kMillivoltsPerCode);
  }
  s->channels.ProbeFreq[2] = {2.0f, 10.0f, -1.0f, -1.0f, -1.0f, -1.0f, -1.0f};
  s->object.Mode = r.mode;
  s->FreqDesc = s->FreqDescR = kSampleHz;
  s->FreqADC = kSampleHz * 3;
  s->FreqRotorN = 120.0;
  s->FreqOneGarmonic = 2.0;
  s->NumberRotorRecord = 16;
  s->BlockSizeFFT = s->BlockSizeFFTa = s->BlockSizeFFTr = kMaxSamples;
  s->SignalDataN = kRows;
  for (int i = 1; i <= kRows; ++i) {
    s->SignalData.at(i, 1) = static_cast<int16_t>(
        std::lround(r.runoutOffsetCodes + Harmonic(i, r.runoutPeakToPeak, r.runoutPhaseDegrees)));
    s->SignalData.at(i, 2) = static_cast<int16_t>(std::lround(Harmonic(i, r.vibrationPeakToPeak, r.vibrationPhaseDegrees)));
    const int inRevolution = (i - 1) % kRevolutionRows;
    s->SignalData.at(i, 3) = static_cast<int16_t>(i > kRevolutionRows && inRevolution < 20 ? 4000 : 0);
  }
  s->PathFileData = path;
  return WriteDataFile(*s, prompts);
}

// Every entry of a zip file by name, uncompressed; empty when it is no zip.
inline std::map<std::string, std::string> Unzip(const QString& path) {
  std::map<std::string, std::string> entries;
  int error = 0;
  zip_t* archive = zip_open(QFile::encodeName(path).constData(), ZIP_RDONLY, &error);
  if (!archive) return entries;
  for (zip_int64_t i = 0; i < zip_get_num_entries(archive, 0); ++i) {
    zip_stat_t st;
    zip_stat_index(archive, static_cast<zip_uint64_t>(i), 0, &st);
    std::string data(static_cast<size_t>(st.size), '\0');
    zip_file_t* f = zip_fopen_index(archive, static_cast<zip_uint64_t>(i), 0);
    if (f) {
      zip_fread(f, data.data(), st.size);
      zip_fclose(f);
    }
    entries[st.name] = data;
  }
  zip_discard(archive);
  return entries;
}

// A zip file of the given entries, deflated, in the order given. Entries
// carry one fixed date, so that the same entries zip to the same bytes
// whenever they are zipped.
inline bool Zip(const QString& path, const std::vector<std::pair<std::string, std::string>>& entries) {
  constexpr time_t kEntryDate = 1767225600;  // 2026-01-01
  int error = 0;
  zip_t* archive = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &error);
  if (!archive) return false;
  for (const auto& [name, data] : entries) {
    zip_source_t* source = zip_source_buffer(archive, data.data(), data.size(), 0);
    const zip_int64_t index = source ? zip_file_add(archive, name.c_str(), source, ZIP_FL_ENC_UTF_8) : -1;
    if (index < 0) {
      zip_source_free(source);
      zip_discard(archive);
      return false;
    }
    zip_file_set_mtime(archive, static_cast<zip_uint64_t>(index), kEntryDate, 0);
  }
  return zip_close(archive) == 0;
}

}  // namespace aqx::testing_reports
