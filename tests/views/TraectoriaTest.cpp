// The trajectory view on analytic orbits: circles and lines of a known size,
// the first-harmonic ellipse against the first harmonic alone, the geometry
// at its edges, the refusals and the bars.

#include "SignalTestSupport.h"

#include "views/trajectory/TraectoriaRefresh.h"
#include "views/trajectory/TraectoriaView.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace aqx {
namespace {

using namespace views;
using namespace testing_views;

constexpr double kPi = std::numbers::pi;
constexpr int kSide = 400;
constexpr BgrColor kOrbit = 0x00AB00;
constexpr float kKu = 8.0f;  // mV per micrometre

// Run-out on channels 1 (ВБ) and 2 (ЛБ): amplitudes in micrometres, phase
// of channel 2 against channel 1 in degrees, with 16 whole revolutions in
// 8192 samples at 1000 Hz; `harmonics` adds a second and a third of half
// and a third of the first.
std::unique_ptr<AppState> RunOutPair(double amplitude1, double amplitude2, double phaseDeg, bool harmonics = false) {
  constexpr int kSamples = 8192;
  auto s = MakeState(kSamples);
  SetTestOptions(*s);
  s->options.parameters.StatusFilterConst = false;
  s->options.traectoria.CenterRotor = false;  // its cross has the orbit's colour
  for (int c : {1, 2}) {
    s->channels.Channel[c] = 1;
    s->channels.Type[c] = 0;
    s->channels.Ku[c] = kKu;
    s->channels.KS[c] = 0.0f;
  }
  s->channels.Direct[1] = QStringLiteral("ВБ");
  s->channels.Direct[2] = QStringLiteral("ЛБ");
  s->channels.ChannelColor[1] = kOrbit;
  RecountChannelUsedCount(*s);
  s->FreqOneGarmonic = 1000.0 * 16 / kSamples;
  auto codes = [&](double micrometres) { return static_cast<int16_t>(std::lround(micrometres * kKu / 1.25)); };
  for (int i = 1; i <= kSamples; ++i) {
    const double w = 2 * kPi * 16 * (i - 1) / kSamples;
    double a = amplitude1 * std::sin(w);
    double b = amplitude2 * std::sin(w + phaseDeg * kPi / 180);
    if (harmonics) {
      a += amplitude1 / 2 * std::sin(2 * w + 1) + amplitude1 / 3 * std::sin(3 * w);
      b += amplitude2 / 2 * std::sin(2 * w + 2) + amplitude2 / 3 * std::sin(3 * w + 0.5);
    }
    s->SignalData.at(i, 1) = codes(a);
    s->SignalData.at(i, 2) = codes(b);
  }
  AccountSignalMaxAll(*s);
  return s;
}

struct Drawn {
  TraectoriaViewState v;
  DrawList list;
};

// ScaleXY 100 micrometres on 400 pixels: half a micrometre a pixel.
Drawn DrawAt(AppState& s, AnalysisResults& r, int sliderV = 3) {
  Drawn d;
  InitTraectoriaView(s, d.v);
  ResizeTraectoria(d.v, kSide, kSide);
  TraectoriaSliderVChanged(d.v, sliderV);
  d.list = BuildTraectoria(s, r, d.v, FontMetrics{});
  return d;
}

// The pixels of the orbit's runs.
std::vector<std::pair<int, int>> OrbitPixels(const DrawList& list) {
  std::vector<std::pair<int, int>> pixels;
  for (const Line& l : LinesOf(list, kOrbit))
    if (l.y1 == l.y2 && l.pen.width == 1)
      for (int x = l.x1; x <= l.x2; ++x) pixels.emplace_back(x, l.y1);
  return pixels;
}

TEST(TraectoriaOrbit, SinesNinetyDegreesApartDrawACircleOfTheirAmplitude) {
  auto s = RunOutPair(80, 80, 90);
  AnalysisResults r;
  const Drawn d = DrawAt(*s, r);
  ASSERT_EQ(d.v.ScaleXY, 100);
  EXPECT_DOUBLE_EQ(d.v.UnitsPerPixel, 0.5);
  EXPECT_EQ(d.v.Caption, QStringLiteral("Траектория движения вала (ВБ-ЛБ)"));
  const auto pixels = OrbitPixels(d.list);
  ASSERT_GT(pixels.size(), 500u);
  int left = kSide, right = 0, top = kSide, bottom = 0;
  for (const auto& [x, y] : pixels) {
    EXPECT_NEAR(std::hypot(x - 200, y - 200), 160.0, 1.5) << x << "," << y;
    left = std::min(left, x), right = std::max(right, x), top = std::min(top, y), bottom = std::max(bottom, y);
  }
  EXPECT_NEAR(right - left, 320, 2);
  EXPECT_NEAR(bottom - top, 320, 2);
}

TEST(TraectoriaOrbit, EqualAmplitudesInPhaseDrawALineAtFortyFiveDegrees) {
  auto s = RunOutPair(80, 80, 0);
  AnalysisResults r;
  const auto pixels = OrbitPixels(DrawAt(*s, r).list);
  ASSERT_FALSE(pixels.empty());
  int low = kSide, high = 0;
  for (const auto& [x, y] : pixels) {
    // ВБ reads upward, ЛБ to the right: up and right together.
    EXPECT_NEAR(y - 200, -(x - 200), 1) << x << "," << y;
    low = std::min(low, x), high = std::max(high, x);
  }
  EXPECT_NEAR(high - low, 320, 2);
}

TEST(TraectoriaOrbit, FirstHarmonicEllipseMatchesTheFirstHarmonicAlone) {
  auto pure = RunOutPair(80, 40, 90);
  auto rich = RunOutPair(80, 40, 90, true);
  for (AppState* s : {pure.get(), rich.get()}) s->options.traectoria.TraectoriaFirstGarmonic = true;
  AnalysisResults r;
  const auto ellipses = [&](AppState& s) {
    auto polylines = ItemsOf<Polyline>(DrawAt(s, r).list);
    EXPECT_EQ(polylines.size(), 1u);
    return polylines.empty() ? Polyline{} : polylines.front();
  };
  const Polyline a = ellipses(*pure);
  const Polyline b = ellipses(*rich);
  ASSERT_EQ(a.xs.size(), 1002u);
  ASSERT_EQ(b.xs.size(), a.xs.size());
  int widest = 0, tallest = 0;
  for (size_t i = 0; i < a.xs.size(); ++i) {
    EXPECT_NEAR(a.xs[i], b.xs[i], 1) << i;
    EXPECT_NEAR(a.ys[i], b.ys[i], 1) << i;
    widest = std::max(widest, std::abs(a.xs[i] - 200));
    tallest = std::max(tallest, std::abs(a.ys[i] - 200));
  }
  // 40 micrometres across (channel 2), 80 up and down (channel 1).
  EXPECT_NEAR(widest, 80, 1);
  EXPECT_NEAR(tallest, 160, 1);
  EXPECT_EQ(a.pen.width, 2);
}

TEST(TraectoriaOrbit, SpokesCrossesAndDartFollowTheOptions) {
  auto s = RunOutPair(80, 80, 90);
  s->ShaftMarkCount = 2;
  s->ShaftMarks[0] = 1;     // angle 0: channel 1 at zero, channel 2 at +80
  s->ShaftMarks[1] = 9000;  // past the store: left out
  AnalysisResults r;
  Drawn d = DrawAt(*s, r);
  const auto spokes = LinesOf(d.list, kMarkerLine);
  ASSERT_EQ(spokes.size(), 1u);
  EXPECT_EQ(spokes[0].x2, 200 + 2 * 160);
  EXPECT_EQ(spokes[0].y2, 200);
  EXPECT_EQ(LinesOf(d.list, kBeginPoint).size(), 2u);
  s->options.traectoria.TraectoriaOtmetchick = false;
  s->options.traectoria.BeginPoint = false;
  d.list = BuildTraectoria(*s, r, d.v, FontMetrics{});
  EXPECT_TRUE(LinesOf(d.list, kMarkerLine).empty());
  EXPECT_TRUE(LinesOf(d.list, kBeginPoint).empty());
  EXPECT_FALSE(HasText(d.list, QStringLiteral("Центр траектории")));
  // Dragged 500 pixels to the left, the centre is out: the dart points right.
  TraectoriaMouseDown(*s, d.v, TraectoriaButton::Left, 300, 200);
  const TraectoriaAction a = TraectoriaMouseMove(*s, d.v, -200, 200, true);
  EXPECT_TRUE(a.redraw);
  EXPECT_EQ(d.v.CenterX, -300);
  EXPECT_EQ(d.v.FlatScrollBarHMin, -300);
  d.list = BuildTraectoria(*s, r, d.v, FontMetrics{});
  EXPECT_TRUE(HasText(d.list, QStringLiteral("Центр траектории")));
}

TEST(TraectoriaOrbit, ARefreshLeavesTheActiveChannelsHarmonicInTheSharedArrays) {
  auto s = RunOutPair(80, 40, 90);
  s->options.traectoria.TraectoriaFirstGarmonic = true;
  AnalysisResults r;
  AccountChannelProbe(*s, r, 1);
  const int32_t amplitude = r.ProbeAmplitude[0];
  const int32_t phase = r.ProbePhase[0];
  ASSERT_EQ(amplitude, 160);
  s->ViewOpenFlags[frmViewTraectoria] = true;
  TraectoriaViewState v;
  InitTraectoriaView(*s, v);
  ResizeTraectoria(v, kSide, kSide);
  ViewRegistry registry;
  registry.runOn = true;
  registry.signalStatusBarParameter = true;
  InstallEngineSteps(registry, *s, r);
  InstallTraectoriaView(registry, *s, v, r, {});
  // What the parameter bars read: the probe values right after their step.
  const auto probe = registry[RefreshStep::Probe];
  int32_t seen = 0;
  registry[RefreshStep::Probe] = [&] {
    probe();
    seen = r.ProbeAmplitude[0];
  };
  ViewRefresh(*s, registry);
  EXPECT_EQ(seen, amplitude);
  EXPECT_EQ(v.AmplitudeX, 80);  // channel 2, on the horizontal axis
  EXPECT_EQ(r.ProbeAmplitude[0], amplitude);
  EXPECT_EQ(r.ProbePhase[0], phase);
  EXPECT_EQ(r.SpectrChannel, 1);
}

TEST(TraectoriaRefusals, EachOneIsWrittenInThePictureAndChangesNothing) {
  AnalysisResults r;
  auto s = RunOutPair(80, 80, 90);
  const int16_t before = s->SignalData.at(100, 2);
  s->channels.Type[2] = 1;  // vibration beside run-out: other units
  Drawn d = DrawAt(*s, r);
  EXPECT_TRUE(HasText(d.list, QStringLiteral("Построение траектории невозможно")));
  EXPECT_TRUE(HasText(d.list, QStringLiteral("Каналы №1 и №2 измеряют разные величины")));
  EXPECT_FALSE(d.v.ControlsEnabled);
  EXPECT_EQ(s->SignalData.at(100, 2), before);

  s->channels.Type[2] = 0;
  s->channels.Direct[2] = QStringLiteral("НБ");  // both on the vertical axis
  d = DrawAt(*s, r);
  EXPECT_TRUE(HasText(d.list, QStringLiteral("Траекторию невозможно построить по направлениям: ВБ-НБ")));
  EXPECT_TRUE(d.v.ControlsEnabled);
  EXPECT_FALSE(LinesOf(d.list, kGrid).empty());
  EXPECT_TRUE(OrbitPixels(d.list).empty());

  s->FirstChannelActive = ChannelCount(*s);
  d = DrawAt(*s, r);
  EXPECT_TRUE(HasText(d.list, QStringLiteral("Построение траектории невозможно")));

  s->FirstChannelActive = 1;
  InitTraectoriaView(*s, d.v);
  ResizeTraectoria(d.v, 49, 300);
  d.list = BuildTraectoria(*s, r, d.v, FontMetrics{});
  ASSERT_EQ(d.list.items.size(), 1u);
  EXPECT_TRUE(HasText(d.list, QStringLiteral("Мало места")));
}

TEST(TraectoriaGeometry, DirectionsPairAsTheAxesReadAndOnlyAcrossAxes) {
  const auto p = [](const char* a, const char* b) { return PairByDirection(QString::fromUtf8(a), QString::fromUtf8(b)); };
  EXPECT_TRUE(p("ВБ", "ЛБ").nextIsX);
  EXPECT_EQ(p("ВБ", "ПБ").signX, -1);
  EXPECT_EQ(p("ВБ", "ПБ").signY, -1);
  EXPECT_EQ(p("НБ", "ЛБ").signY, 1);
  EXPECT_FALSE(p("ПБ", "НБ").nextIsX);
  EXPECT_EQ(p("ПБ", "НБ").signX, -1);
  EXPECT_EQ(p("ЛБ", "ВБ").signY, -1);
  EXPECT_FALSE(p("ЛБ", "ПБ").paired);
  EXPECT_FALSE(p("ВБ", "НБ").paired);
  EXPECT_FALSE(p("ВБ", "вб").paired);
  EXPECT_FALSE(p("ВБ ", "ЛБ").paired);
}

TEST(TraectoriaGeometry, CompassAngleOnTheAxesAndInEachQuarter) {
  EXPECT_DOUBLE_EQ(CartesianToPolar(0, 5), 0);
  EXPECT_DOUBLE_EQ(CartesianToPolar(5, 0), 90);
  EXPECT_DOUBLE_EQ(CartesianToPolar(0, -5), 180);
  EXPECT_DOUBLE_EQ(CartesianToPolar(-5, 0), 270);
  EXPECT_NEAR(CartesianToPolar(1, 1), 45, 1e-12);
  EXPECT_NEAR(CartesianToPolar(1, -1), 135, 1e-12);
  EXPECT_NEAR(CartesianToPolar(-1, -1), 225, 1e-12);
  EXPECT_NEAR(CartesianToPolar(-1, 1), 315, 1e-12);
}

TEST(TraectoriaGeometry, DartPointsFromTheMiddleTowardTheCentreOutside) {
  EXPECT_TRUE(DirectionDart(400, 300, 400, 300).empty());  // on the edge is inside
  const auto right = DirectionDart(400, 300, 900, 150);
  ASSERT_EQ(right.size(), 8u);
  EXPECT_EQ(right[3].x2, 230);  // the tip, 30 pixels right of the middle
  EXPECT_EQ(right[3].y2, 150);
  EXPECT_EQ(right[0].x1, 170);
  const auto below = DirectionDart(400, 300, 200, 1000);
  EXPECT_EQ(below[3].x2, 200);
  EXPECT_EQ(below[3].y2, 180);
}

TEST(TraectoriaGeometry, AutoScaleTakesTheFirstStepAboveBothPeaks) {
  EXPECT_EQ(AutoScaleXY(95, 40, -1), 100);
  EXPECT_EQ(AutoScaleXY(100, 0, -1), 200);
  EXPECT_EQ(AutoScaleXY(0, 0, -1), 10);
  EXPECT_EQ(AutoScaleXY(5000000, 10, 2000), 2000);  // past the last step: kept
  EXPECT_EQ(GridNumber(20), QStringLiteral(" 20"));
  EXPECT_EQ(GridNumber(-0.02), QStringLiteral("-0.02"));
}

TEST(TraectoriaBars, StretchBarsMoveTheEndsAndHoldEachOther) {
  auto s = MakeState(65536);
  TraectoriaViewState v;
  InitTraectoriaView(*s, v);
  EXPECT_EQ(v.ScrollStep, 2);
  EXPECT_EQ(v.HScrollRMax, 32768);
  TraectoriaHScrollLChanged(v, 100);
  EXPECT_EQ(v.BeginSample, 200);
  EXPECT_EQ(v.HScrollRMin, 100);
  TraectoriaHScrollRChanged(v, 50);  // held at the left bar
  EXPECT_EQ(v.EndSample, 200);
  EXPECT_EQ(v.HScrollLMax, 100);
  TraectoriaHScrollLChanged(v, 0);
  EXPECT_EQ(v.BeginSample, 1);
  TraectoriaSliderVChanged(v, -1);
  EXPECT_EQ(v.ScaleXY, -1);
}

TEST(TraectoriaStatus, PanelsReadScaleStretchCursorAndBeginPoint) {
  auto s = RunOutPair(80, 80, 90);
  s->channels.KS[1] = 640.0f;  // 100 micrometres
  AnalysisResults r;
  Drawn d = DrawAt(*s, r);
  s->options.traectoria.Cursor = true;
  TraectoriaMouseMove(*s, d.v, 180, 260, false);
  const TraectoriaStatus st = OutInfoToStatusBar(*s, d.v);
  EXPECT_EQ(st[TraectoriaPanel::Dimension], QStringLiteral("D: 100 мкм "));
  EXPECT_EQ(st[TraectoriaPanel::Window], QStringLiteral("W: 00:00:00.001 - 00:00:08.192 "));
  EXPECT_EQ(st[TraectoriaPanel::Cursor], QStringLiteral("C1 = X: 10мкм Y: -30мкм "));
  EXPECT_EQ(st[TraectoriaPanel::BeginPoint], QStringLiteral("BP = X: 0мкм Y: 100мкм "));
}

}  // namespace
}  // namespace aqx
