#pragma once
// Helpers shared by the settings, start-up and open-file tests: a temporary
// folder per test, files written from literal bytes, and readers that fill
// the state the way a real reader would.

#include "core/AppState.h"
#include "core/ReaderTable.h"
#include "core/Prompts.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <unistd.h>

namespace aqx::testing {

inline const QLocale kRussian(QLocale::Russian, QLocale::Russia);

inline void WriteBytes(const QString& path, const QByteArray& bytes) {
  QDir().mkpath(QFileInfo(path).absolutePath());
  QFile f(path);
  ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
  ASSERT_EQ(f.write(bytes), bytes.size());
}

inline QByteArray ReadBytes(const QString& path) {
  QFile f(path);
  if (!f.open(QIODevice::ReadOnly)) return {};
  return f.readAll();
}

// A folder in which nothing can be created: read-only where permissions
// count, and below a plain file where they do not (running as root).
inline QString UnwritableFolder(const QTemporaryDir& dir) {
  const QString readOnly = dir.filePath(QStringLiteral("readonly"));
  QDir().mkpath(readOnly);
  QFile::setPermissions(readOnly, QFile::ReadOwner | QFile::ExeOwner);
  if (::access(readOnly.toLocal8Bit().constData(), W_OK) != 0) return readOnly;
  const QString blocker = dir.filePath(QStringLiteral("blocker"));
  QFile f(blocker);
  f.open(QIODevice::WriteOnly);
  return blocker + QStringLiteral("/folder");
}

// A recording as a reader leaves it: the values of a 4096-sample file of a
// 48-pole unit, with a marker channel on channel 3.
inline bool FakeRecordingReader(AppState& s, Prompts&) {
  s.Polus = 48;
  s.FreqSety = 50;
  s.FreqRotorN = 125.0;
  s.FreqOneGarmonic = 125.0 / 60.0;
  s.NumberRotorRecord = 10;
  s.SignalDataN = 4096;
  s.FreqDesc = 853;
  s.FreqDescR = 853;
  s.object.Station = QStringLiteral("Братская ГЭС");
  s.object.Agregat = 7;
  s.object.Mode = QStringLiteral("Сброс нагрузки");
  s.object.Remark[27] = QStringLiteral("Длинный комментарий; с запятой, = и \"кавычками\"");
  s.channels.Type[3] = 3;
  s.channels.Ku[3] = 1.25f;
  s.channels.Place[2] = QStringLiteral("ВГП");
  s.channels.ProbeFreq[2][0] = 12.5f;
  s.channels.Filter[4][3] = 0.75f;
  s.ChannelDifferential = 0;
  return true;
}

inline bool FailingReader(AppState&, Prompts& prompts) {
  prompts.tell(QStringLiteral("Указанный файл не является файлом данных Aquilonix!"),
               QStringLiteral("Открытие"));
  return false;
}

inline FileReaderTable FakeReaders() {
  return {{QStringLiteral("aqx"), FakeRecordingReader}, {QStringLiteral("zrk"), FailingReader}};
}

}  // namespace aqx::testing
