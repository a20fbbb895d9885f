// The markers' list, the recording description's Apply and the player's
// picture, through their public functions.

#include "views/edit/MarkerList.h"
#include "views/edit/ObjectForm.h"
#include "views/edit/PlayerPicture.h"

#include "SignalTestSupport.h"

#include <gtest/gtest.h>

namespace aqx::views {
namespace {

TEST(MarkerList, AddsUpToAHundredStampedMarksAndRefusesTheNext) {
  AppState s;
  ScriptedPrompts prompts;
  for (int k = 1; k <= kMaxMarkers; ++k) ASSERT_TRUE(AddMarker(s, 45000.0 + k, prompts));
  EXPECT_TRUE(prompts.messages().empty());
  EXPECT_EQ(s.markers.MarkerRemark[99], QStringLiteral("Маркер №100"));
  EXPECT_EQ(s.markers.MarkerColor[0], 255);
  EXPECT_EQ(s.markers.MarkerOn[0], 1);
  EXPECT_FALSE(AddMarker(s, 46000.0, prompts));
  EXPECT_EQ(prompts.messages().size(), 1u);
  EXPECT_EQ(prompts.messages()[0].title, QStringLiteral("Маркеры"));
  EXPECT_EQ(s.markers.MarkerN, 100);
  EXPECT_EQ(s.markers.MarkerDate[99], 45100.0);
}

TEST(MarkerList, EditsDeleteAndClearAfterTheirQuestions) {
  AppState s;
  ScriptedPrompts prompts;
  for (int k = 1; k <= 3; ++k) AddMarker(s, 45000.0 + k, prompts);
  SetMarkerRemark(s, 1, QString(60, QLatin1Char('x')));
  EXPECT_EQ(s.markers.MarkerRemark[1].size(), 50);
  ToggleMarker(s, 2);
  EXPECT_EQ(MarkerRow(s, 2)[3], QStringLiteral("нет"));
  EXPECT_FALSE(SetMarkerShift(s, 0, QStringLiteral("два")));
  EXPECT_TRUE(SetMarkerShift(s, 0, QStringLiteral("3")));
  EXPECT_EQ(MarkerRow(s, 0)[4], QStringLiteral("3"));

  prompts.answers = {PromptAnswer::Cancel};
  EXPECT_FALSE(DeleteMarker(s, 0, prompts));
  EXPECT_EQ(s.markers.MarkerN, 3);
  EXPECT_TRUE(DeleteMarker(s, 0, prompts));  // OK
  EXPECT_EQ(s.markers.MarkerN, 2);
  EXPECT_EQ(s.markers.MarkerDate[0], 45002.0);
  EXPECT_EQ(s.markers.MarkerOn[1], 0);  // the hidden mark moved down with its date
  EXPECT_EQ(s.markers.MarkerDate[1], 45003.0);
  EXPECT_TRUE(ClearMarkers(s, prompts));
  EXPECT_EQ(s.markers.MarkerN, 0);
}

TEST(ObjectForm, ApplyTrimsTextsTakesNoNumberAsUnitZeroAndMarksTheRecordingChanged) {
  AppState s;
  ObjectForm form = ObjectFormOf(s);
  form.station = QStringLiteral("  Красноярская ГЭС ");
  form.agregat = QStringLiteral("12а");
  form.mode = QStringLiteral(" Холостой ход");
  form.data[0] = QStringLiteral(" 640 ");
  form.data[27] = QStringLiteral("после ремонта");
  ApplyObjectForm(s, form);
  EXPECT_EQ(s.object.Station, QStringLiteral("Красноярская ГЭС"));
  EXPECT_EQ(s.object.Agregat, 0);
  EXPECT_EQ(s.object.Mode, QStringLiteral("Холостой ход"));
  EXPECT_EQ(s.object.Remark[0], QStringLiteral("640"));
  EXPECT_EQ(s.object.Remark[27], QStringLiteral("после ремонта"));
  EXPECT_FALSE(s.DataSaved);
  // Unchanged, Apply still counts.
  s.DataSaved = true;
  ApplyObjectForm(s, ObjectFormOf(s));
  EXPECT_FALSE(s.DataSaved);
  EXPECT_EQ(ObjectFormOf(s).agregat, QString());
  EXPECT_EQ(ObjectFieldLabels()[12], QStringLiteral("Открытие РК (колонка), град."));
}

TEST(PlayerPicture, DrawsEachColumnsExtremesAndThePlayingPosition) {
  auto s = testing_views::MakeState(1000);
  // A square wave of 3000 +- 1000, as a probe with its offset: every
  // column spans the whole height.
  for (int k = 1; k <= 1000; ++k) s->SignalData.at(k, 1) = static_cast<int16_t>(k % 2 == 0 ? 4000 : 2000);
  const DrawList list = PlayerPicture(*s, 1, 100, 50, 0.5);
  ASSERT_EQ(list.items.size(), 101u);
  const auto& first = std::get<Line>(list.items[0]);
  EXPECT_EQ(first.y1, 2);
  EXPECT_EQ(first.y2, 49);
  const auto& position = std::get<Line>(list.items[100]);
  EXPECT_EQ(position.x1, 50);  // half of 99, half to even
  s->options.config.FreqDescWaveN = 99;
  EXPECT_EQ(WaveRateRow(*s), 8);
  EXPECT_DOUBLE_EQ(PlaySeconds(*s, 0), 1000.0 / 8000);
  EXPECT_TRUE(PlayerInfoText(*s, 8).startsWith(QStringLiteral("Частота дескритизации: 48000 Гц")));
}

}  // namespace
}  // namespace aqx::views
