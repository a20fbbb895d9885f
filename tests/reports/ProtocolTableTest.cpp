// The protocol and master tables from recordings of analytic signals written
// here: heads, comments, values, the empty block of an unreadable file, and
// the last file left in memory.

#include "ReportTestSupport.h"

#include "reports/ProtocolTable.h"
#include "reports/ReportCommands.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace aqx::reports {
namespace {

using namespace testing_reports;

// "a/b" as two numbers.
std::pair<int, int> Pair(const QString& text) {
  const QStringList parts = text.split(QLatin1Char('/'));
  return {parts.value(0).toInt(), parts.value(1).toInt()};
}

class ReportFolder : public RecordingFolder {
 protected:
  void SetUp() override {
    ASSERT_TRUE(WriteAnalyticRecording(dir.filePath(QStringLiteral("a_rec.aqx")), {}, prompts));
    ASSERT_TRUE(WriteFile(dir.filePath(QStringLiteral("b_broken.aqx")), "no recording at all"));
    AnalyticRecording idle;
    idle.mode = QStringLiteral("Холостой ход");
    idle.vibrationPeakToPeak = 400.0;
    ASSERT_TRUE(WriteAnalyticRecording(dir.filePath(QStringLiteral("c_rec.aqx")), idle, prompts));
    prompts.shown.clear();
  }

  ReportWalk Walk() {
    ReportContext ctx{*state, prompts, readers, {}};
    return ReadReportFiles(ctx, FolderRecordings(dir.path()));
  }
};

TEST_F(ReportFolder, ProtocolHasThreeRowsAFileWithTheParametersOfEachType) {
  const ReportWalk walk = Walk();
  ASSERT_EQ(walk.files.size(), 3u);
  const ProtocolTable t = BuildProtocolTable(walk.files, true);

  EXPECT_EQ(t.text(3, 1), QStringLiteral("Номинал"));
  EXPECT_EQ(t.find(3, 1)->comment, QStringLiteral("Файл: a_rec.aqx"));
  // Run-out: place, type, direction, then its four columns without comments.
  EXPECT_EQ(t.text(1, 2), QStringLiteral("ВГП"));
  EXPECT_EQ(t.text(2, 2), QStringLiteral("Биение"));
  EXPECT_EQ(t.text(3, 2), QStringLiteral("X"));
  const QString runoutHeads[] = {QStringLiteral("0-20Гц"), QStringLiteral("1 гарм.(А)"), QStringLiteral("1 гарм.(Ф)"),
                                 QStringLiteral("Смещение")};
  for (int k = 0; k < 4; ++k) {
    EXPECT_EQ(t.text(2, 3 + k), runoutHeads[k]);
    EXPECT_TRUE(t.find(2, 3 + k)->comment.isEmpty());
  }
  EXPECT_NEAR(t.text(3, 3).toInt(), 600, 12);
  EXPECT_NEAR(t.text(3, 4).toInt(), 600, 6);
  EXPECT_NEAR(t.text(3, 5).toInt(), 30, 1);
  EXPECT_EQ(t.text(3, 6), QStringLiteral("300"));  // 400 codes less the clearance of 100

  // Vibration: levels as max/mean, the Latin C in the overall level's
  // comment and the Cyrillic one in the bands'.
  EXPECT_EQ(t.text(2, 7), QStringLiteral("Вибрация"));
  EXPECT_EQ(t.text(2, 8), QStringLiteral("ОУ"));
  const QString overall = t.find(2, 8)->comment;
  EXPECT_EQ(overall, QStringLiteral("Максимальное/") + QLatin1Char('C') + QStringLiteral("реднее"));
  EXPECT_EQ(overall.at(13).unicode(), 0x43);
  EXPECT_EQ(t.text(2, 9), QStringLiteral("0-1 Гц"));
  EXPECT_EQ(t.find(2, 9)->comment.at(13).unicode(), 0x0421);
  EXPECT_EQ(t.text(2, 10), QStringLiteral("1-30 Гц"));
  EXPECT_EQ(t.text(2, 11), QStringLiteral("30-200 Гц"));
  const auto [overallMax, overallMean] = Pair(t.text(3, 8));
  EXPECT_NEAR(overallMax, 800, 16);
  EXPECT_NEAR(overallMean, 800, 16);
  EXPECT_LT(Pair(t.text(3, 11)).first, 20);  // nothing above 30 Hz
  // The probe table: 2 Hz holds the harmonic, 10 Hz nothing.
  EXPECT_EQ(t.text(2, 12), QStringLiteral("2.00 Гц"));
  EXPECT_EQ(t.find(2, 12)->comment, QStringLiteral("Амплитуда/Фаза"));
  const auto [amplitude, phase] = Pair(t.text(3, 12));
  EXPECT_NEAR(amplitude, 800, 8);
  EXPECT_NEAR(phase, 90, 1);
  EXPECT_EQ(t.text(2, 13), QStringLiteral("10.00 Гц"));
  EXPECT_EQ(t.text(3, 13), QStringLiteral("0/-"));

  // Shaft marker: a pulse each 512 samples at 1024 Hz.
  EXPECT_EQ(t.text(2, 14), QStringLiteral("Отметчик"));
  EXPECT_EQ(t.text(2, 15), QStringLiteral("n, об/мин"));
  EXPECT_EQ(t.find(2, 15)->comment, QStringLiteral("Частота вращения"));
  EXPECT_EQ(t.text(3, 15), QStringLiteral("120.00"));
  EXPECT_EQ(t.text(2, 16), QStringLiteral("N"));
  EXPECT_EQ(t.find(2, 16)->comment, QStringLiteral("Количество оборотов"));
  EXPECT_EQ(t.text(3, 16), QStringLiteral("16"));
  EXPECT_EQ(t.columnCount(), 16);

  // The unreadable file keeps its three rows, empty; the third file follows.
  for (int row = 4; row <= 6; ++row)
    for (int column = 1; column <= 16; ++column) EXPECT_EQ(t.find(row, column), nullptr) << row << "," << column;
  EXPECT_EQ(t.text(9, 1), QStringLiteral("Холостой ход"));
  EXPECT_NEAR(Pair(t.text(9, 8)).first, 400, 8);
  EXPECT_EQ(t.rowCount(), 9);
  EXPECT_EQ(prompts.messages().size(), 1u);  // the reader told about the broken file

  // The last file stays in memory; the batch flag is down again.
  EXPECT_EQ(state->PathFileData, dir.filePath(QStringLiteral("c_rec.aqx")));
  EXPECT_EQ(state->object.Mode, QStringLiteral("Холостой ход"));
  EXPECT_FALSE(state->BatchMode);
  EXPECT_TRUE(walk.recordingReplaced());
}

TEST_F(ReportFolder, ProtocolWithoutTheMaximumShowsMeansOnly) {
  const ProtocolTable t = BuildProtocolTable(Walk().files, false);
  EXPECT_EQ(t.find(2, 8)->comment, QLatin1Char('C') + QStringLiteral("реднее"));
  EXPECT_EQ(t.find(2, 9)->comment, QStringLiteral("Среднее"));
  EXPECT_FALSE(t.text(3, 8).contains(QLatin1Char('/')));
  EXPECT_NEAR(t.text(3, 8).toInt(), 800, 16);
}

TEST_F(RecordingFolder, EmptyFolderGivesAnEmptyTable) {
  ReportContext ctx{*state, prompts, readers, {}};
  const ReportWalk walk = ReadReportFiles(ctx, FolderRecordings(dir.path()));
  EXPECT_TRUE(walk.files.empty());
  EXPECT_FALSE(walk.recordingReplaced());
  EXPECT_EQ(BuildProtocolTable(walk.files, true).rowCount(), 0);
}

TEST_F(ReportFolder, MasterPlacesChosenChannelsAndParametersInTheirOrder) {
  const QStringList files = FolderRecordings(dir.path());
  // The channels step reads apart from the recording in memory.
  const std::vector<MasterChannel> found = MasterChannelsOfFiles(files, readers, prompts);
  ASSERT_EQ(found.size(), 3u);
  EXPECT_EQ(MasterChannelCaption(found[0]), QStringLiteral("Биение - ВГП - X"));
  EXPECT_EQ(MasterChannelCaption(found[2]), QStringLiteral("Отметчик - ВГП - "));
  EXPECT_TRUE(state->PathFileData.isEmpty());

  MasterChoice choice;
  choice.files = {files[2], files[1], files[0]};
  choice.channels = {found[1], found[2], MasterChannel{sensor::Runout, QStringLiteral("НГП"), QStringLiteral("X")}};
  choice.parameters = {MasterParameter::OverallMax, MasterParameter::RotorSpeed, MasterParameter::HarmonicPhase};
  ReportContext ctx{*state, prompts, readers, {}};
  const ProtocolTable t = BuildMasterTable(ReadReportFiles(ctx, choice.files).files, choice);

  EXPECT_EQ(t.text(1, 3), QStringLiteral("Вибрация - ВГП - Y"));
  EXPECT_EQ(t.text(1, 6), QStringLiteral("Отметчик - ВГП - "));
  EXPECT_EQ(t.text(1, 9), QStringLiteral("Биение - НГП - X"));
  EXPECT_EQ(t.text(2, 1), QStringLiteral("Файл"));
  EXPECT_EQ(t.text(2, 2), QStringLiteral("Режим"));
  EXPECT_EQ(t.text(2, 3), QStringLiteral("ОУ (макс.)"));
  EXPECT_EQ(t.text(2, 4), QStringLiteral("Частота вращения"));
  EXPECT_EQ(t.text(2, 11), QStringLiteral("1 гармоника (Фаза)"));
  // First row: the idle run, first in the chosen order.
  EXPECT_EQ(t.text(3, 1), QStringLiteral("c_rec.aqx"));
  EXPECT_EQ(t.text(3, 2), QStringLiteral("Холостой ход"));
  EXPECT_NEAR(t.text(3, 3).toInt(), 400, 8);
  EXPECT_EQ(t.find(3, 4), nullptr);  // no speed of a vibration channel
  EXPECT_NEAR(t.text(3, 5).toInt(), 90, 1);
  EXPECT_EQ(t.text(3, 7), QStringLiteral("120.00"));
  for (int column = 9; column <= 11; ++column) EXPECT_EQ(t.find(3, column), nullptr);
  // The unreadable file keeps only its name.
  EXPECT_EQ(t.text(4, 1), QStringLiteral("b_broken.aqx"));
  EXPECT_EQ(t.find(4, 2), nullptr);
  EXPECT_NEAR(t.text(5, 3).toInt(), 800, 16);
}

}  // namespace
}  // namespace aqx::reports
