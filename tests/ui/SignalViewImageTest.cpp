// The signal view painted into images and compared with stored references,
// pixel by pixel with a tolerance for font rendering. Set
// AQX_UPDATE_REFERENCE_IMAGES=1 to write the references anew (then look at
// them before committing).

#include "core/AppState.h"
#include "core/Numeric.h"
#include "ui/paint/PaintDrawList.h"
#include "views/signal/SignalView.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>

namespace aqx {
namespace {

using namespace views;

QString ReferencePath(const char* name) {
  return QStringLiteral(AQX_TEST_DATA_DIR "/signalview/") + QString::fromUtf8(name) + QStringLiteral(".png");
}

// Share of pixels whose colour differs by more than `channelTolerance` in
// any of red, green, blue; 1 when the sizes differ.
double DifferentShare(const QImage& a, const QImage& b, int channelTolerance) {
  if (a.size() != b.size()) return 1.0;
  const QImage x = a.convertToFormat(QImage::Format_RGB32);
  const QImage y = b.convertToFormat(QImage::Format_RGB32);
  int64_t different = 0;
  for (int row = 0; row < x.height(); ++row) {
    const auto* p = reinterpret_cast<const QRgb*>(x.constScanLine(row));
    const auto* q = reinterpret_cast<const QRgb*>(y.constScanLine(row));
    for (int col = 0; col < x.width(); ++col) {
      if (std::abs(qRed(p[col]) - qRed(q[col])) > channelTolerance ||
          std::abs(qGreen(p[col]) - qGreen(q[col])) > channelTolerance ||
          std::abs(qBlue(p[col]) - qBlue(q[col])) > channelTolerance)
        ++different;
    }
  }
  return static_cast<double>(different) / (static_cast<double>(x.width()) * x.height());
}

void ExpectLooksLike(const DrawList& list, const char* name) {
  const QImage image = ui::RenderDrawList(list);
  const QString path = ReferencePath(name);
  if (qEnvironmentVariableIntValue("AQX_UPDATE_REFERENCE_IMAGES") == 1) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    ASSERT_TRUE(image.save(path, "PNG"));
    GTEST_SKIP() << "reference written: " << path.toStdString();
  }
  const QImage reference(path);
  ASSERT_FALSE(reference.isNull()) << "no reference image " << path.toStdString();
  // Text may come out a pixel apart between font versions; lines and traces
  // may not.
  EXPECT_LT(DifferentShare(image, reference, 48), 0.01) << name;
}

std::unique_ptr<AppState> Recording(int samples) {
  auto s = std::make_unique<AppState>();
  for (int c = 1; c <= kMaxChannels; ++c) {
    s->channels.Channel[c] = 0;
    s->channels.Active[c] = 0;
    s->channels.Ku[c] = 1.25f;
    s->channels.ChannelYm[c] = 100;
    s->channels.ChannelY[c] = kChannelUnplaced;
  }
  s->channels.Channel[1] = s->channels.Active[1] = 1;
  s->channels.Channel[3] = 1;
  s->channels.Type[3] = 3;  // shaft marker, not shown
  s->channels.ChannelColor[1] = 0x800000;  // navy
  RecountChannelUsedCount(*s);
  s->FirstChannelActive = 1;
  s->SignalDataN = samples;
  s->FreqDesc = 1000;
  s->AccountOffset = false;
  s->object.RecordDate = DateTimeToOle(QDateTime(QDate(2022, 6, 1), QTime(9, 30, 0)));
  return s;
}

SignalViewState View(AppState& s, int w, int h) {
  SignalViewState v;
  v.widthPx = w;
  v.heightPx = h;
  InitSignalView(s, v);
  ConfigSliderH(s, v);
  return v;
}

TEST(SignalViewImage, StaircaseWithGridsMarkersAndSelection) {
  auto s = Recording(100);
  for (int i = 1; i <= 100; ++i) {
    s->SignalData.at(i, 1) = static_cast<int16_t>(std::lround(70 * std::sin(2 * std::numbers::pi * i / 25.0)));
    s->SignalData.at(i, 3) = (i % 25 == 1) ? 3000 : 0;
  }
  s->FreqRotorN = 2400;  // a mark each 25 samples at 1000 Hz
  s->SelectFirst = 40;
  s->SelectLast = 60;
  s->options.parameters.AutoY0 = false;
  s->options.signal.LineCenter = true;
  s->options.otmetchick.OtmetchickAuto = 0;
  s->options.otmetchick.OtmetchickLevel = 1500;
  SignalViewState v = View(*s, 400, 200);
  const DrawList list = BuildSignal(*s, v, ui::QtFontMetrics(ui::DefaultViewFont()).metrics());
  ExpectLooksLike(list, "staircase");
}

TEST(SignalViewImage, LongRecordThinnedKeepsItsPeak) {
  auto s = Recording(32768);
  for (int i = 1; i <= 32768; ++i)
    s->SignalData.at(i, 1) = static_cast<int16_t>(std::lround(40 * std::sin(2 * std::numbers::pi * i / 3000.0)));
  s->SignalData.at(20000, 1) = 95;
  s->options.parameters.AutoY0 = false;
  SignalViewState v = View(*s, 400, 200);
  const DrawList list = BuildSignal(*s, v, ui::QtFontMetrics(ui::DefaultViewFont()).metrics());
  ExpectLooksLike(list, "thinned");
}

TEST(SignalViewImage, ImposedChannelsInBands) {
  auto s = Recording(2000);
  const BgrColor colors[] = {0x0000C0, 0x008000, 0xC00000};
  for (int c = 1; c <= 3; ++c) {
    s->channels.Channel[c] = s->channels.Active[c] = 1;
    s->channels.Type[c] = 1;
    s->channels.ChannelColor[c] = colors[c - 1];
    for (int i = 1; i <= 2000; ++i)
      s->SignalData.at(i, c) = static_cast<int16_t>(std::lround(30 * c * std::sin(2 * std::numbers::pi * i * c / 500.0)));
  }
  RecountChannelUsedCount(*s);
  s->Imposition = true;
  SignalViewState v = View(*s, 400, 300);
  for (int c = 1; c <= 3; ++c) s->SignalMaxValue[c] = 30 * c;
  AccountChannelY0(*s, v);
  const DrawList list = BuildSignal(*s, v, ui::QtFontMetrics(ui::DefaultViewFont()).metrics());
  ExpectLooksLike(list, "imposition");
}

}  // namespace
}  // namespace aqx
