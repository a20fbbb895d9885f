// rotor-form and the shaft views of render, run as the user runs them: the
// results under their names, the console text, the pictures, and bad input
// told without touching the recording.
#include "files/DataFile.h"
#include "tests/tools/ToolTestSupport.h"
#include "tools/Commands.h"
#include "tests/views/RotorTestSupport.h"

#include <QCryptographicHash>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace aqx::tool {

namespace {

using testing_views::RotorRecording;

constexpr int kPoles = 40;

class ShaftCommands : public ::testing::Test {
 protected:
  QTemporaryDir dir;
  ScriptedPrompts prompts;

  QString path(const QString& name) const { return dir.filePath(name); }

  // Pole 11 at +5 %, a run-out pair ВБ/ЛБ on channels 3 and 4; `edit`
  // spoils what a case needs spoilt.
  QString Write(const QString& name, const std::function<void(AppState&)>& edit = {}) {
    auto s = RotorRecording(kPoles, 50, 6, [](int p) { return p == 11 ? 1.05 * 39 / 38.95 : 1.0; });
    testing_views::AddRunOutPair(*s, 3);
    if (edit) edit(*s);
    s->PathFileData = path(name);
    return WriteDataFile(*s, prompts) ? s->PathFileData : QString();
  }

  static QByteArray Digest(const QString& file) {
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256) : QByteArray();
  }
};

TEST_F(ShaftCommands, RotorFormGivesTheResultsUnderTheirNamesAndTheConsoleText) {
  const QString file = Write(QStringLiteral("ротор.aqx"));
  ASSERT_FALSE(file.isEmpty());
  QString out;
  ASSERT_EQ(RunToolCommand(RunRotorForm, {file, QStringLiteral("--json")}, prompts, out), kExitOk);
  const QJsonObject o = QJsonDocument::fromJson(out.toUtf8()).object();
  EXPECT_EQ(o[QStringLiteral("Polus")].toInt(), kPoles);
  EXPECT_EQ(o[QStringLiteral("FormaRotorN")].toInt(), 5);
  const QJsonArray average = o[QStringLiteral("FormaPolePercent")].toArray()[0].toArray();
  ASSERT_EQ(average.size(), kPoles);
  EXPECT_NEAR(average[10].toDouble(), 5.0, 0.2);
  EXPECT_EQ(o[QStringLiteral("FormaSpeed")].toArray().size(), 6);
  EXPECT_EQ(o[QStringLiteral("FormaGarmonicPhase")].toArray()[0].toArray().size(), 9);
  EXPECT_EQ(o[QStringLiteral("FormaPoleMax")].toArray().size(), kPoles);
  for (const char* key : {"FormaRms", "FormaDistortion", "FormaPoleMin", "FormaGarmonicAmplitude"})
    EXPECT_TRUE(o.contains(QString::fromLatin1(key))) << key;
  ASSERT_EQ(RunToolCommand(RunRotorForm, {file}, prompts, out), kExitOk);
  EXPECT_TRUE(out.contains(QStringLiteral("\r\nСКЗ ЭДС полюсов\r\n")));
  EXPECT_TRUE(out.contains(QStringLiteral("Частоты вращения (об/мин)")));
}

TEST_F(ShaftCommands, BadInputIsToldAndTheRecordingStaysAsItWas) {
  struct Case {
    const char* name;
    std::function<void(AppState&)> edit;
    QStringList extra;
    const char* told;
  };
  const Case cases[] = {
      {"полюсов0.aqx", [](AppState& s) { s.Polus = 0; }, {}, "от 2 до 199"},
      {"полюсов1.aqx", [](AppState& s) { s.Polus = 1; }, {}, "указано 1"},
      {"полюсов200.aqx", [](AppState& s) { s.Polus = 200; }, {}, "указано 200"},
      {"импульс.aqx", [](AppState& s) {
         for (int i = 200; i <= s.SignalDataN; ++i) s.SignalData.at(i, 1) = 0;
       }, {}, "меньше двух импульсов"},
      {"канал.aqx", {}, {QStringLiteral("--channel"), QStringLiteral("1")}, "no recorded turn probe"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const QString file = Write(QString::fromUtf8(c.name), c.edit);
    ASSERT_FALSE(file.isEmpty());
    const QByteArray before = Digest(file);
    const ToolRun run = RunTool(QStringList{QStringLiteral("rotor-form"), file} + c.extra);
    EXPECT_EQ(run.exitCode, kExitRefused);
    EXPECT_TRUE(run.err.contains(QString::fromUtf8(c.told))) << run.err.toStdString();
    EXPECT_TRUE(run.out.isEmpty());
    EXPECT_EQ(Digest(file), before);
  }
}

TEST_F(ShaftCommands, RenderDrawsTheShaftViewsAndRefusesAPairOfOtherUnits) {
  const QString file = Write(QStringLiteral("вал.aqx"));
  for (const char* kind : {"trajectory", "rotor-form", "rotor-diagram", "rotor-spectrum"}) {
    SCOPED_TRACE(kind);
    const QString picture = path(QString::fromLatin1(kind) + QStringLiteral(".png"));
    QStringList args{QStringLiteral("render"), QString::fromLatin1(kind), file, picture, QStringLiteral("--width"),
                     QStringLiteral("500"), QStringLiteral("--height"), QStringLiteral("400")};
    args << QStringLiteral("--channel") << (QString::fromLatin1(kind) == QStringLiteral("trajectory") ? QStringLiteral("3") : QStringLiteral("2"));
    if (QString::fromLatin1(kind) != QStringLiteral("trajectory")) args << QStringLiteral("--form") << QStringLiteral("2");
    const ToolRun run = RunTool(args);
    ASSERT_EQ(run.exitCode, kExitOk) << run.err.toStdString();
    EXPECT_EQ(QImage(picture).size(), QSize(500, 400));
  }
  const QString mixed = Write(QStringLiteral("разные.aqx"), [](AppState& s) { s.channels.Type[4] = 1; });
  const QString picture = path(QStringLiteral("mixed.png"));
  const ToolRun run = RunTool({QStringLiteral("render"), QStringLiteral("trajectory"), mixed, picture,
                               QStringLiteral("--channel"), QStringLiteral("3")});
  EXPECT_EQ(run.exitCode, kExitRefused);
  EXPECT_TRUE(run.err.contains(QStringLiteral("Построение траектории невозможно"))) << run.err.toStdString();
  EXPECT_FALSE(QFile::exists(picture));
  EXPECT_EQ(RunTool({QStringLiteral("render"), QStringLiteral("rotor-form"), file, picture, QStringLiteral("--form"),
                     QStringLiteral("6")}).exitCode,
            kExitRefused);
}

}  // namespace
}  // namespace aqx::tool
