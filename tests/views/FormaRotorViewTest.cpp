// The rotor form windows: the polar plot's geometry at its edges, a pole 5 %
// high found where it is and its first harmonic pointing at it, the refusals
// of bad input, the console report, the diagram's and the spectrum's scales.

#include "RotorTestSupport.h"
#include "SignalTestSupport.h"

#include "engine/Aquilonix.h"
#include "views/rotor/RotorRefresh.h"
#include "views/rotor/RotorView.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace aqx {
namespace {

using namespace views;
using namespace testing_views;

constexpr double kPi = std::numbers::pi;
constexpr int kPoles = 40;
constexpr int kHighPole = 11;

// Pole 11 is 5 % above the mean of the form: a = 1.05 (P - 1) / (P - 1.05).
double HighPole(int pole) { return pole == kHighPole ? 1.05 * (kPoles - 1) / (kPoles - 1.05) : 1.0; }

FormaViewState ViewOf(int w, int h, int form = 0) {
  FormaViewState v;
  v.widthPx = w;
  v.heightPx = h;
  v.HScroll = form;
  return v;
}

TEST(FormaRotorGeometry, RingsPolesAndSpokesAtTheirEdges) {
  const RotorGeometry g = RotorGeometryFor(400, 300, 14);
  EXPECT_EQ(g.cx, 200);
  EXPECT_EQ(g.cy, 150);
  EXPECT_DOUBLE_EQ(g.R, 136);
  EXPECT_EQ(g.zeroRadius, 113);
  // +V on the outer ring, -5V in the centre, beyond them held.
  EXPECT_NEAR(PercentRadius(g, 5, 5), 136, 0.5);
  EXPECT_NEAR(PercentRadius(g, -25, 5), 0, 0.5);
  EXPECT_DOUBLE_EQ(PercentRadius(g, 40, 5), PercentRadius(g, 5, 5));
  EXPECT_DOUBLE_EQ(PercentRadius(g, -400, 5), PercentRadius(g, -25, 5));
  EXPECT_DOUBLE_EQ(PercentRadius(g, 0, 5), 113);
  // Pole 1 at the top, a quarter further on the right (y grows downward):
  // clockwise on screen; the last pole one pitch short of the first.
  EXPECT_DOUBLE_EQ(PoleAngle(1, 96), -kPi / 2);
  EXPECT_NEAR(PoleAngle(25, 96), 0, 1e-12);
  EXPECT_NEAR(PoleAngle(96, 96), 3 * kPi / 2 - 2 * kPi / 96, 1e-12);
  EXPECT_NEAR(PoleAngle(199, 199) - PoleAngle(198, 199), 2 * kPi / 199, 1e-12);
  // Spokes: the first on pole SpicaP, "правое" clockwise, "левое" the other way.
  EXPECT_DOUBLE_EQ(SpokeAngle(1, 1, 8, 1, 40), -kPi / 2);
  EXPECT_NEAR(SpokeAngle(2, 1, 8, 1, 40), -kPi / 4, 1e-12);
  EXPECT_NEAR(SpokeAngle(2, 1, 8, 0, 40), -3 * kPi / 4, 1e-12);
  EXPECT_NEAR(SpokeAngle(1, 11, 36, 1, 40), 0, 1e-12);
  EXPECT_NEAR(SpokeAngle(1, 360, 1, 1, 40), 359 * 2 * kPi / 40 - kPi / 2, 1e-9);  // past a turn, still drawn
  EXPECT_NEAR(FirstHarmonicPoint(g, 5, 0, 5).y, 150 - 136 / 6.0, 1e-9);  // phase 0: straight up
}

TEST(FormaRotorGeometry, ColoursByLimitsAtTheirBounds) {
  EXPECT_EQ(ColorByLimits(3, -3), kLimitGreen);
  EXPECT_EQ(ColorByLimits(3, 3.01), kLimitYellow);
  EXPECT_EQ(ColorByLimits(7.99, -7.99), kLimitYellow);
  EXPECT_EQ(ColorByLimits(0, -8), kLimitRed);
}

struct HighPoleForm : ::testing::Test {
  std::unique_ptr<AppState> s = RotorRecording(kPoles, 50, 6, HighPole);
  FormaRotorResults r;
  void SetUp() override {
    SetTestOptions(*s);
    ASSERT_EQ(RunFormaRotorAccount(*s, r), 0) << FormaRotorFailureText(r.Failure, *s).toStdString();
  }
};

TEST_F(HighPoleForm, FindsThePoleFivePercentHighAndItsHarmonicPointsAtIt) {
  EXPECT_EQ(r.FormaRotorN, 5);
  EXPECT_EQ(r.Polus, kPoles);
  EXPECT_NEAR(r.percent(0, kHighPole), 5.0, 0.2);
  EXPECT_NEAR(r.percent(0, kHighPole + 1), -5.0 / (kPoles - 1), 0.2);
  EXPECT_NEAR(r.speed(0), 60.0 * 4000 / (kPoles * 50), 0.01);
  EXPECT_NEAR(r.amplitude(0, 1), 10.0 / (kPoles - 1), 0.02);
  // The cross stands on pole 11's line, at A s / V from the centre.
  FormaViewState v = ViewOf(600, 600);
  const RotorGeometry g = RotorGeometryFor(600, 600, FontMetrics{}.lineHeight);
  const PointF p = FirstHarmonicPoint(g, r.amplitude(0, 1), r.phase(0, 1), v.VScroll);
  const double angle = std::atan2(p.y - g.cy, p.x - g.cx);
  EXPECT_NEAR(std::remainder(angle - PoleAngle(kHighPole, kPoles), 2 * kPi), 0.0, 0.03);
  EXPECT_NEAR(std::hypot(p.x - g.cx, p.y - g.cy), r.amplitude(0, 1) * g.ringStep / v.VScroll, 1e-9);
  const DrawList list = DrawFormaRotor(*s, r, v, FontMetrics{});
  const int x = RoundHalfEven(p.x), y = RoundHalfEven(p.y);
  bool cross = false;
  for (const Line& l : ItemsOf<Line>(list)) cross = cross || (l.x1 == x - 10 && l.x2 == x + 10 && l.y1 == y);
  EXPECT_TRUE(cross);
  // One line a pole from the centre, the form closed back to pole 1, a dot a pole.
  EXPECT_EQ(LinesOf(list, kGrid).size(), static_cast<size_t>(kPoles));
  size_t dots = 0;
  for (const Rect& rc : ItemsOf<Rect>(list)) dots += rc.filled ? 1 : 0;
  EXPECT_EQ(dots, static_cast<size_t>(kPoles));
  EXPECT_TRUE(HasText(list, QStringLiteral("40")));
}

TEST_F(HighPoleForm, StatusSectorsLimitsAndOneColour) {
  const FormaStatus st = PrintToStatusbar(r, 0);
  EXPECT_EQ(st.Form, QStringLiteral("Средняя форма"));
  EXPECT_EQ(PrintToStatusbar(r, 3).Form, QStringLiteral("Форма №3"));
  EXPECT_EQ(st.NobForm, FormatStandard(r.speed(0)) + QStringLiteral(" об/мин"));
  EXPECT_EQ(st.PrPi, FormatStandard(r.distortion(0)) + QStringLiteral("%"));
  s->options.formaRotor.FormaView = 0;
  s->options.formaRotor.FormaViewScale = true;
  s->options.formaRotor.SpicaV = false;
  FormaViewState v = ViewOf(600, 600);
  v.VScroll = 7;  // only the pair at 3 %
  DrawList list = DrawFormaRotor(*s, r, v, FontMetrics{});
  size_t yellow = 0, red = 0;
  for (const Ellipse& e : ItemsOf<Ellipse>(list)) {
    yellow += e.pen.color == kLimitYellow ? 1 : 0;
    red += e.pen.color == kLimitRed ? 1 : 0;
  }
  EXPECT_EQ(yellow, 2u);
  EXPECT_EQ(red, 0u);
  // Sectors: a chord and a step a pole; pole 11 (5 %) and its steps yellow.
  EXPECT_EQ(LinesOf(list, kLimitYellow).size(), 3u);
  v.VScroll = 2;
  list = DrawFormaRotor(*s, r, v, FontMetrics{});
  EXPECT_TRUE(ItemsOf<Ellipse>(list).size() == 7u);  // the rings alone
  s->options.formaRotor.FormaViewColor = true;
  list = DrawFormaRotor(*s, r, v, FontMetrics{});
  EXPECT_TRUE(LinesOf(list, kLimitYellow).empty());
  EXPECT_EQ(LinesOf(list, kOneColour).size(), 2u * kPoles + 2u);  // and the cross
}

TEST_F(HighPoleForm, DiagramAndSpectrumKeepTheirScales) {
  s->options.formaRotor.DiagramaViewScale = true;
  FormaViewState v = ViewOf(2400, 400);  // room for every value's label
  v.VScroll = 1;  // three lines, no limits; the high pole held at the top
  DrawList list = DrawFormaRotorDiagram(*s, r, v, FontMetrics{});
  EXPECT_EQ(LinesOf(list, kGrid).size(), 2u + 3u);
  EXPECT_TRUE(LinesOf(list, kLimitYellow).empty());
  const int mid = 200, top = mid - RoundHalfEven((mid - FontMetrics{}.lineHeight) / 1.0);
  size_t bars = 0;
  for (const Rect& rc : ItemsOf<Rect>(list)) {
    if (!rc.filled) continue;
    ++bars;
    if (rc.fill == kLimitYellow) {
      EXPECT_EQ(rc.top, top);
    }
  }
  EXPECT_EQ(bars, static_cast<size_t>(kPoles));
  s->options.formaRotor.DiagramaValue = true;
  list = DrawFormaRotorDiagram(*s, r, v, FontMetrics{});
  EXPECT_TRUE(HasText(list, FormatStandard(r.percent(0, kHighPole))));  // the true value, not the clamp

  // The largest harmonic of all forms reaches the top line of the spectrum.
  v = ViewOf(500, 300);
  r.FormaRotorResult = r.amplitude(0, 1);
  list = DrawFormaSpectrForms(*s, r, v, FontMetrics{});
  std::vector<Rect> harmonics;
  for (const Rect& rc : ItemsOf<Rect>(list))
    if (rc.filled) harmonics.push_back(rc);
  ASSERT_EQ(harmonics.size(), 9u);
  EXPECT_EQ(harmonics[0].top, FontMetrics{}.lineHeight);
  EXPECT_TRUE(HasText(list, QStringLiteral("Номер гармоники")));
}

TEST_F(HighPoleForm, ConsoleHasSixTabSeparatedSections) {
  s->PathFileData = QStringLiteral("/data/запись.aqx");
  const QString text = FormaRotorConsoleText(*s, r);
  const QStringList lines = text.split(QStringLiteral("\r\n"));
  EXPECT_EQ(lines[1], QStringLiteral("/data/запись.aqx"));
  int at = 0;
  for (const char* title : {"СКЗ ЭДС полюсов", "Процентные значения ЭДС полюсов", "Степень искажения форм",
                            "Гармоники спектра форм", "Частоты вращения (об/мин)"}) {
    const int next = static_cast<int>(lines.indexOf(QString::fromUtf8(title)));
    EXPECT_GT(next, at) << title;
    at = next;
  }
  const int percents = static_cast<int>(lines.indexOf(QStringLiteral("Процентные значения ЭДС полюсов")));
  EXPECT_EQ(lines[percents + 1], QStringLiteral("Полюс\t1\t2\t3\t4\t5\tСредн\tМин\tМакс\tРазбр"));
  const QStringList row = lines[percents + 1 + kHighPole].split(QLatin1Char('\t'));
  ASSERT_EQ(row.size(), 10);
  EXPECT_EQ(row[0], QStringLiteral("№11"));
  EXPECT_EQ(row[6], FormatStandard(r.percent(0, kHighPole)));
  EXPECT_EQ(lines.indexOf(QStringLiteral("Гарм\tАмпл\tФаза\tАмпл\tФаза\tАмпл\tФаза\tАмпл\tФаза\tАмпл\tФаза\tАмпл\tФаза")),
            static_cast<qsizetype>(lines.indexOf(QStringLiteral("Гармоники спектра форм")) + 2));
  EXPECT_TRUE(lines.last().isEmpty());  // every line ends with CR LF
}

TEST(FormaRotorRefusals, BadInputIsToldAndChangesNothing) {
  struct Case {
    const char* what;
    int polus;
    int marks;
    int markerType;
    int turnType;
    int expected;
  };
  const Case cases[] = {
      {"Polus 0", 0, 4, sensor::ShaftMarker, sensor::TurnProbe, AQX_FORMA_BAD_POLES},
      {"Polus 1", 1, 4, sensor::ShaftMarker, sensor::TurnProbe, AQX_FORMA_BAD_POLES},
      {"Polus 200", 200, 4, sensor::ShaftMarker, sensor::TurnProbe, AQX_FORMA_BAD_POLES},
      {"one pulse", 12, 1, sensor::ShaftMarker, sensor::TurnProbe, AQX_FORMA_NO_REVOLUTION},
      {"no marker", 12, 4, sensor::Vibration, sensor::TurnProbe, AQX_FORMA_NO_MARKER},
      {"no turn probe", 12, 4, sensor::ShaftMarker, sensor::Voltage, AQX_FORMA_NO_TURN_PROBE},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    auto s = RotorRecording(12, 50, c.marks, [](int) { return 1.0; });
    s->Polus = c.polus;
    s->channels.Type[kRotorMarker] = c.markerType;
    s->channels.Type[kRotorTurn] = c.turnType;
    const int16_t sample = s->SignalData.at(300, kRotorTurn);
    FormaRotorResults r;
    // A failure during a refresh tells the open windows, which then draw
    // the reason instead of a stale form.
    ViewRegistry registry;
    int told = 0;
    InstallFormaRotorViews(registry, *s, r, {[&] { ++told; }, {}, {}});
    EXPECT_EQ(registry.formaRotorAccount(), c.expected);
    EXPECT_EQ(told, 1);
    EXPECT_FALSE(r.valid());
    EXPECT_EQ(s->Polus, c.polus);
    EXPECT_EQ(s->SignalData.at(300, kRotorTurn), sample);
    const QString message = FormaRotorFailureText(r.Failure, *s);
    EXPECT_FALSE(message.isEmpty());
    const DrawList list = DrawFormaRotor(*s, r, ViewOf(400, 300), FontMetrics{});
    EXPECT_TRUE(HasText(list, message) || ItemsOf<Text>(list).size() == 2u);
    EXPECT_EQ(PrintToStatusbar(r, 0).PrPi, QString());
  }
  auto s = RotorRecording(12, 50, 4, [](int) { return 1.0; });
  s->Polus = 0;
  FormaRotorResults r;
  RunFormaRotorAccount(*s, r);
  EXPECT_EQ(FormaRotorFailureText(r.Failure, *s),
            QStringLiteral("Число полюсов ротора должно быть от 2 до 199, а в описании записи указано 0."));
}

TEST(FormaRotorPictures, TooSmallOrWithoutFormsDrawANoteOnly) {
  auto s = MakeState(100);
  FormaRotorResults r;
  for (auto draw : {&DrawFormaRotor, &DrawFormaRotorDiagram, &DrawFormaSpectrForms}) {
    const DrawList small = draw(*s, r, ViewOf(49, 300), FontMetrics{});
    ASSERT_EQ(small.items.size(), 1u);
    EXPECT_TRUE(HasText(small, QStringLiteral("Мало места")));
    const DrawList none = draw(*s, r, ViewOf(900, 300), FontMetrics{});
    EXPECT_TRUE(HasText(none, QStringLiteral("Форма ротора еще не рассчитана.")));
  }
  FormaViewState v = ViewOf(300, 300, 7);
  InitFormaData(r, v);
  EXPECT_EQ(v.HScroll, 0);  // form 0 stands even without forms
}

}  // namespace
}  // namespace aqx
