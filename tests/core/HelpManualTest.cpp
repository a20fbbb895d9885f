// The manual's pages: their order from the contents, the page of a window,
// and the search over all pages.

#include "core/HelpManual.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace aqx {
namespace {

void Write(const QDir& dir, const char* name, const char* text) {
  QFile f(dir.filePath(QString::fromLatin1(name)));
  ASSERT_TRUE(f.open(QIODevice::WriteOnly));
  f.write(text);
}

struct Manual : testing::Test {
  void SetUp() override {
    const QDir d(dir.path());
    Write(d, "index.md", "# Содержание\n\n1. [Сигнал](signal.md)\n2. [Спектр](spectr.md#top)\n");
    Write(d, "spectr.md", "# Спектр\n<!-- windows: frmViewSpectr frmViewSpectrum -->\nГармоники и спектр спектр.\n");
    Write(d, "signal.md", "# Сигнал\n<!-- windows: frmViewSignal -->\nКурсор и спектр.\n");
    Write(d, "extra.md", "Без заголовка\n");
    Write(d, "notes.txt", "не страница");
  }
  QTemporaryDir dir;
};

TEST_F(Manual, PagesFollowTheContents) {
  const HelpManual m = HelpManual::load(dir.path());
  ASSERT_EQ(m.pages().size(), 4u);
  EXPECT_EQ(m.pages()[0].fileName, QStringLiteral("index.md"));
  EXPECT_EQ(m.pages()[1].fileName, QStringLiteral("signal.md"));
  EXPECT_EQ(m.pages()[2].fileName, QStringLiteral("spectr.md"));
  EXPECT_EQ(m.pages()[3].title, QStringLiteral("extra.md"));  // no heading: its file name
  EXPECT_EQ(m.pages()[1].title, QStringLiteral("Сигнал"));
}

TEST_F(Manual, WindowFindsItsPageAndUnknownOnesTheContents) {
  const HelpManual m = HelpManual::load(dir.path());
  EXPECT_EQ(m.pageForWindow(QStringLiteral("frmViewSpectrum")), QStringLiteral("spectr.md"));
  EXPECT_EQ(m.pageForWindow(QStringLiteral("frmViewSignal")), QStringLiteral("signal.md"));
  EXPECT_EQ(m.pageForWindow(QStringLiteral("frmNowhere")), QStringLiteral("index.md"));
}

TEST_F(Manual, SearchNeedsEveryWordAndRanksByMatches) {
  const HelpManual m = HelpManual::load(dir.path());
  const auto hits = m.search(QStringLiteral("СПЕКТР"));
  ASSERT_EQ(hits.size(), 3u);
  EXPECT_EQ(hits[0].fileName, QStringLiteral("spectr.md"));
  const auto both = m.search(QStringLiteral("курсор спектр"));
  ASSERT_EQ(both.size(), 1u);
  EXPECT_EQ(both[0].fileName, QStringLiteral("signal.md"));
  EXPECT_EQ(both[0].excerpt, QStringLiteral("Курсор и спектр."));
  // Link targets are not shown, and the contents page comes last.
  const auto signal = m.search(QStringLiteral("сигнал"));
  ASSERT_EQ(signal.size(), 2u);
  EXPECT_EQ(signal[1].fileName, QStringLiteral("index.md"));
  EXPECT_EQ(signal[1].excerpt, QStringLiteral("1. Сигнал"));
  EXPECT_TRUE(m.search(QStringLiteral("   ")).empty());
  EXPECT_TRUE(m.search(QStringLiteral("турбина")).empty());
}

TEST_F(Manual, FolderWithoutContentsIsNoManual) {
  QTemporaryDir empty;
  EXPECT_TRUE(HelpManual::load(empty.path()).empty());
  EXPECT_TRUE(HelpManual::load(QStringLiteral("/nonexistent/folder")).empty());
  EXPECT_EQ(HelpManual::findFolder({empty.path(), dir.path()}), QDir(dir.path()).absolutePath());
  EXPECT_TRUE(HelpManual::findFolder({empty.path()}).isEmpty());
}

}  // namespace
}  // namespace aqx
