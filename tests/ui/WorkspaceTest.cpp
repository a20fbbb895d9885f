#include "ui/common/QtPrompts.h"
#include "ui/main/SplashPictures.h"
#include "ui/main/Workspace.h"

#include "core/Vocabulary.h"

#include <gtest/gtest.h>

#include <memory>

namespace aqx {
namespace {

std::unique_ptr<AppState> FreshState() {
  auto s = std::make_unique<AppState>();
  for (int c = 1; c <= kMaxChannels; ++c) {
    s->channels.Channel[c] = c <= 4 ? 1 : 0;
    s->channels.Active[c] = 0;
  }
  s->channels.Active[1] = 1;
  s->FirstChannelActive = 1;
  return s;
}

TEST(Workspace, TilesCoverTheAreaWithoutGaps) {
  const auto across = ui::TileAcross(800, 601, 3);
  ASSERT_EQ(across.size(), 3u);
  EXPECT_EQ(across[0], (ui::PixelBox{0, 0, 800, 200}));
  EXPECT_EQ(across[1].top, 200);
  EXPECT_EQ(across[2].top + across[2].height, 601);
  const auto side = ui::TileSideBySide(801, 400, 2);
  EXPECT_EQ(side[0], (ui::PixelBox{0, 0, 400, 400}));
  EXPECT_EQ(side[1], (ui::PixelBox{400, 0, 401, 400}));
  EXPECT_TRUE(ui::TileAcross(800, 600, 0).empty());
  EXPECT_EQ(ui::ThirdWindowBox({0, 300, 900, 300}), (ui::PixelBox{300, 0, 600, 600}));
}

// The cascade of the window menu once shrank the windows to 160 x 80.
TEST(Workspace, CascadedWindowsStayUsableAndInsideTheArea) {
  const auto boxes = ui::CascadeBoxes(1200, 800, 3, 30);
  ASSERT_EQ(boxes.size(), 3u);
  EXPECT_EQ(boxes[0], (ui::PixelBox{0, 0, 900, 600}));
  EXPECT_EQ(boxes[2], (ui::PixelBox{60, 60, 900, 600}));
  const auto many = ui::CascadeBoxes(1200, 800, 40, 30);
  EXPECT_LE(many.back().left + many.back().width, 1200) << "steps shrink for many windows";
  EXPECT_LE(many.back().top + many.back().height, 800);
  EXPECT_TRUE(ui::CascadeBoxes(1200, 800, 0, 30).empty());
}

// A window left outside a workspace that shrank could not be reached.
TEST(Workspace, AWindowOutsideAShrunkAreaComesBackInside) {
  EXPECT_EQ(ui::FitIntoArea({100, 50, 400, 300}, 1000, 700, 200, 100), (ui::PixelBox{100, 50, 400, 300}));
  EXPECT_EQ(ui::FitIntoArea({700, 500, 400, 300}, 800, 600, 200, 100), (ui::PixelBox{400, 300, 400, 300}));
  EXPECT_EQ(ui::FitIntoArea({0, 0, 1600, 1000}, 800, 600, 200, 100), (ui::PixelBox{0, 0, 800, 600}));
  EXPECT_EQ(ui::FitIntoArea({10, 10, 50, 20}, 800, 600, 200, 100), (ui::PixelBox{10, 10, 200, 100}));
  EXPECT_EQ(ui::FitIntoArea({10, 10, 300, 300}, 150, 90, 200, 100), (ui::PixelBox{0, 0, 150, 90}));
}

TEST(Workspace, ColourSetsTintWhiteByTheirStrength) {
  EXPECT_EQ(ui::ColorBackCaptions().size(), ui::kColorBackSetCount);
  EXPECT_EQ(ui::ColorBackCaptions()[3], QStringLiteral("Осциллограф"));
  EXPECT_EQ(ui::ColorBackOf({10, 20, 30, 0}), QColor(255, 255, 255));
  EXPECT_EQ(ui::ColorBackOf({10, 20, 30, 255}), QColor(10, 20, 30));
  // "Белый": barely tinted.
  const QColor white = ui::ColorBackOf({103, 193, 0, 3});
  EXPECT_GE(white.red(), 250);
  EXPECT_GE(white.blue(), 250);
  // Garbage in the store stays a valid colour.
  EXPECT_TRUE(ui::ColorBackOf({-5, 999, 40, 9999}).isValid());
}

TEST(Workspace, ChannelButtonsFollowUseActivityAndOptions) {
  auto s = FreshState();
  const Vocabulary vocab = BuildVocabulary();
  ui::ChannelButtonOptions o;
  o.ColorTypeKit = {5, 56, 33, 41, 57, 9, 1, 53, 4, 57};
  s->channels.Type[2] = 3;
  s->channels.Place[2] = QStringLiteral("Вал");
  s->channels.Direct[2] = QStringLiteral("+X");
  auto b = ui::ChannelButtons(*s, vocab, o);
  ASSERT_EQ(b.size(), 32u);
  EXPECT_TRUE(b[0].visible && b[0].pressed && b[0].current);
  EXPECT_TRUE(b[1].visible && !b[1].pressed && !b[1].current);
  EXPECT_TRUE(b[1].toolTip.contains(vocab.SensorTypeList[3]));
  EXPECT_TRUE(b[1].toolTip.contains(QStringLiteral("Вал +X")));
  EXPECT_TRUE(b[1].coloured);
  EXPECT_EQ(b[1].face, QColor::fromRgb(vocab.ColorList[41]));
  EXPECT_FALSE(b[4].visible);  // unused, hidden
  o.VisibleChannels = false;
  o.ColorType = false;
  b = ui::ChannelButtons(*s, vocab, o);
  EXPECT_TRUE(b[4].visible);
  EXPECT_FALSE(b[4].enabled);
  EXPECT_FALSE(b[1].coloured);
  s->ChannelDifferential = 1;
  b = ui::ChannelButtons(*s, vocab, o);
  EXPECT_TRUE(b[15].visible);
  EXPECT_FALSE(b[16].visible);  // beyond 16 differential channels
}

TEST(Workspace, SelectActiveChannelWithoutImpositionKeepsOne) {
  auto s = FreshState();
  auto changed = ui::SelectActiveChannel(*s, 3);
  EXPECT_EQ(changed, (std::vector<int>{1, 3}));
  EXPECT_EQ(s->FirstChannelActive, 3);
  EXPECT_EQ(ActiveUsedCount(*s), 1);
  EXPECT_TRUE(ui::SelectActiveChannel(*s, 3).empty());
  EXPECT_TRUE(ui::SelectActiveChannel(*s, 0).empty());
  EXPECT_TRUE(ui::SelectActiveChannel(*s, 33).empty());
}

TEST(Workspace, SelectActiveChannelWithImpositionAddsAndReleases) {
  auto s = FreshState();
  s->Imposition = true;
  ui::SelectActiveChannel(*s, 3);
  ui::SelectActiveChannel(*s, 2);
  EXPECT_EQ(ActiveUsedCount(*s), 3);
  EXPECT_EQ(s->FirstChannelActive, 2);
  // Releasing the current one makes the lowest active current.
  ui::SelectActiveChannel(*s, 2);
  EXPECT_EQ(s->channels.Active[2], 0);
  EXPECT_EQ(s->FirstChannelActive, 1);
  ui::SelectActiveChannel(*s, 1);
  EXPECT_EQ(s->FirstChannelActive, 3);
  // The last one stays.
  auto changed = ui::SelectActiveChannel(*s, 3);
  EXPECT_EQ(s->channels.Active[3], 1);
  EXPECT_EQ(s->FirstChannelActive, 3);
  EXPECT_TRUE(changed.empty());
}

TEST(Workspace, ImpositionOffKeepsOnlyTheCurrentChannel) {
  auto s = FreshState();
  s->Imposition = true;
  ui::SelectActiveChannel(*s, 2);
  ui::SelectActiveChannel(*s, 4);
  const auto changed = ui::FlipImposition(*s);
  EXPECT_FALSE(s->Imposition);
  EXPECT_EQ(changed, (std::vector<int>{1, 2}));
  EXPECT_EQ(s->channels.Active[4], 1);
  EXPECT_TRUE(ui::FlipImposition(*s).empty());
  EXPECT_TRUE(s->Imposition);
}

TEST(Workspace, StatusTextsAndHiddenEmptyPanels) {
  auto s = FreshState();
  const Vocabulary vocab = BuildVocabulary();
  s->object.Agregat = 7;
  s->object.RecordDate = 45000.5;  // 15.03.2023 12:00
  s->channels.Type[1] = 0;
  s->channels.Place[1] = QStringLiteral("ТП");
  const auto t = ui::MainStatusTexts(*s, vocab);
  EXPECT_EQ(t[static_cast<int>(ui::MainPanel::Agregat)], QStringLiteral("г/а №7"));
  EXPECT_EQ(t[static_cast<int>(ui::MainPanel::DateTime)], QStringLiteral("15.03.2023 12:00:00"));
  EXPECT_TRUE(t[static_cast<int>(ui::MainPanel::Station)].isEmpty());
  EXPECT_EQ(t[static_cast<int>(ui::MainPanel::Type)], vocab.SensorTypeList[0]);
  EXPECT_EQ(t[static_cast<int>(ui::MainPanel::Place)], QStringLiteral("ТП"));
  EXPECT_TRUE(ui::RecordDateText(0.0).isEmpty());
}

TEST(Workspace, FileFiltersBecomeQtFilters) {
  EXPECT_EQ(ui::ToQtFileFilter(QStringLiteral("Все поддерживаемые типы|*.rsl;*.zrk;*.aqx;*.wav|Aquilonix (*.aqx)|*.aqx|Все файлы (*.*)|*.*")),
            QStringLiteral("Все поддерживаемые типы (*.rsl *.zrk *.aqx *.wav);;Aquilonix (*.aqx);;Все файлы (*.*)"));
  EXPECT_EQ(ui::ToQtFileFilter(QStringLiteral("WAVE файлы (*.wav)|*.wav")), QStringLiteral("WAVE файлы (*.wav)"));
  EXPECT_EQ(ui::ToQtFileFilter(QString()), QString());
}

TEST(Workspace, SplashPicturesCycle) {
  EXPECT_EQ(ui::NextSplashPicture(1), 2);
  EXPECT_EQ(ui::NextSplashPicture(ui::kSplashPictureCount), 1);
  EXPECT_EQ(ui::NextSplashPicture(0), 1);  // a garbled setting still cycles
  EXPECT_FALSE(ui::SplashPictureCaption(2).station.isEmpty());
}

}  // namespace
}  // namespace aqx
