#include "ui/main/Workspace.h"

#include "core/Numeric.h"

#include <QDateTime>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace aqx::ui {

QString UpdateRecordTitle() {
  return QStringLiteral("Aquilonix v%1.%2 (Комплекс наблюдения за гидроагрегатом)")
      .arg(AQX_VERSION_MAJOR)
      .arg(AQX_VERSION_MINOR);
}

QString RunRecordTitle(const AppState& s, bool measuring, bool continuous, double fileBytes) {
  if (!measuring) return UpdateRecordTitle();
  if (!continuous) return UpdateRecordTitle() + QStringLiteral(" - идет измерение");
  return UpdateRecordTitle() + QStringLiteral(" - идет запись: %1 (%2)")
                                   .arg(QFileInfo(s.PathFileData).fileName(), FormatFileSize(fileBytes));
}

ViewStyleDef ViewStyleDefinition(int style) {
  switch (style) {
    case 0: return {QStringLiteral("Сигнал"), {frmViewSignal}, Arrangement::Maximised};
    case 1: return {QStringLiteral("Сигнал + Спектр"), {frmViewSpectr, frmViewSignal}, Arrangement::TileAcross};
    case 2:
      return {QStringLiteral("Сигнал + Спектр + Каскад спектров"),
              {frmViewSpectr, frmViewSignal, frmViewSpectrum},
              Arrangement::TileAcrossThenThird};
    case 3:
      return {QStringLiteral("Сигнал + Спектр + Траектория"),
              {frmViewSpectr, frmViewSignal, frmViewTraectoria},
              Arrangement::TileAcrossThenThird};
    case 4: return {QStringLiteral("Форма ротора"), {frmViewFormaRotor}, Arrangement::Maximised};
    case 5:
      return {QStringLiteral("Форма ротора + Диаграмма"),
              {frmViewFormaRotorDiagram, frmViewFormaRotor},
              Arrangement::TileSideBySide};
    case 6:
      return {QStringLiteral("Форма ротора + Сигнал"), {frmViewSignal, frmViewFormaRotor}, Arrangement::TileSideBySide};
    case 7: return {QStringLiteral("Параметры"), {kParametersWindow}, Arrangement::Maximised};
    default: return {};
  }
}

namespace {

// Splits total into count parts that differ by at most one pixel.
std::vector<int> Shares(int total, int count) {
  std::vector<int> shares;
  int used = 0;
  for (int i = 0; i < count; ++i) {
    const int end = static_cast<int>(static_cast<long long>(total) * (i + 1) / count);
    shares.push_back(end - used);
    used = end;
  }
  return shares;
}

}  // namespace

std::vector<PixelBox> TileAcross(int areaWidthPx, int areaHeightPx, int count) {
  std::vector<PixelBox> boxes;
  if (count <= 0) return boxes;
  int top = 0;
  for (int h : Shares(std::max(0, areaHeightPx), count)) {
    boxes.push_back({0, top, std::max(0, areaWidthPx), h});
    top += h;
  }
  return boxes;
}

std::vector<PixelBox> CascadeBoxes(int areaWidthPx, int areaHeightPx, int count, int stepPx) {
  std::vector<PixelBox> boxes;
  if (count <= 0) return boxes;
  const int w = std::max(0, areaWidthPx);
  const int h = std::max(0, areaHeightPx);
  // Each window keeps three quarters of the area; the steps shrink when many
  // windows would walk off it.
  const int width = w * 3 / 4;
  const int height = h * 3 / 4;
  const int room = std::min(w - width, h - height);
  const int step = count > 1 ? std::clamp(room / (count - 1), 0, std::max(0, stepPx)) : 0;
  for (int k = 0; k < count; ++k) boxes.push_back({k * step, k * step, width, height});
  return boxes;
}

PixelBox FitIntoArea(const PixelBox& window, int areaWidthPx, int areaHeightPx, int minWidthPx, int minHeightPx) {
  PixelBox b = window;
  const int w = std::max(0, areaWidthPx);
  const int h = std::max(0, areaHeightPx);
  b.width = std::clamp(b.width, std::min(minWidthPx, w), w);
  b.height = std::clamp(b.height, std::min(minHeightPx, h), h);
  b.left = std::clamp(b.left, 0, w - b.width);
  b.top = std::clamp(b.top, 0, h - b.height);
  return b;
}

std::vector<PixelBox> TileSideBySide(int areaWidthPx, int areaHeightPx, int count) {
  std::vector<PixelBox> boxes;
  if (count <= 0) return boxes;
  int left = 0;
  for (int w : Shares(std::max(0, areaWidthPx), count)) {
    boxes.push_back({left, 0, w, std::max(0, areaHeightPx)});
    left += w;
  }
  return boxes;
}

PixelBox ThirdWindowBox(const PixelBox& signalWindow) {
  return {signalWindow.width / 3, 0, signalWindow.width * 2 / 3, signalWindow.height * 2};
}

QStringList ColorBackCaptions() {
  return {QStringLiteral("Белый"),       QStringLiteral("Стандарт"), QStringLiteral("Лампа накаливания"),
          QStringLiteral("Осциллограф"), QStringLiteral("Ультра"),   QStringLiteral("Случайный")};
}

QColor ColorBackOf(const std::array<int32_t, 4>& parts) {
  const int32_t bgr = ColorBackBgr(parts);
  return QColor(BgrRed(bgr), BgrGreen(bgr), BgrBlue(bgr));
}

QColor WorkspaceColorOf(const std::array<int32_t, 4>& parts) { return ColorBackOf(parts).darker(135); }

std::vector<ChannelButtonState> ChannelButtons(const AppState& s, const Vocabulary& vocab,
                                               const ChannelButtonOptions& o) {
  std::vector<ChannelButtonState> buttons;
  const int count = ChannelCount(s);
  for (int c = 1; c <= kMaxChannels; ++c) {
    ChannelButtonState b;
    b.channel = c;
    const bool used = c <= count && s.channels.Channel[c] == 1;
    b.visible = c <= count && (used || !o.VisibleChannels);
    b.enabled = used;
    b.pressed = used && s.channels.Active[c] == 1;
    b.current = used && c == s.FirstChannelActive;
    const int type = s.channels.Type[c];
    const QString typeText = type >= 0 && type < vocab.SensorTypeList.size() ? vocab.SensorTypeList[type] : QString();
    const QString where = (s.channels.Place[c] + QLatin1Char(' ') + s.channels.Direct[c]).trimmed();
    b.toolTip = QStringLiteral("Канал №%1: %2").arg(c).arg(typeText);
    if (!where.isEmpty()) b.toolTip += QStringLiteral(", ") + where;
    if (o.ColorType && type >= 0 && type < static_cast<int>(o.ColorTypeKit.size())) {
      const int index = o.ColorTypeKit[static_cast<size_t>(type)];
      if (index >= 0 && index < kColorListCount) {
        b.coloured = true;
        b.face = QColor::fromRgb(vocab.ColorList[static_cast<size_t>(index)]);
      }
    }
    buttons.push_back(b);
  }
  return buttons;
}

namespace {

int LowestActive(const AppState& s) {
  const int count = ChannelCount(s);
  for (int c = 1; c <= count; ++c)
    if (s.channels.Active[c] == 1 && s.channels.Channel[c] == 1) return c;
  for (int c = 1; c <= count; ++c)
    if (s.channels.Active[c] == 1) return c;
  return 0;
}

std::vector<int> ChangedChannels(const PerChannel<int32_t>& before, const PerChannel<int32_t>& after) {
  std::vector<int> changed;
  for (int c = 1; c <= kMaxChannels; ++c)
    if (before[c] != after[c]) changed.push_back(c);
  return changed;
}

}  // namespace

std::vector<int> SelectActiveChannel(AppState& s, int channel) {
  if (channel < 1 || channel > ChannelCount(s)) return {};
  const PerChannel<int32_t> before = s.channels.Active;
  PerChannel<int32_t>& active = s.channels.Active;
  if (!s.Imposition) {
    active.fill(0);
    active[channel] = 1;
    s.FirstChannelActive = channel;
  } else if (active[channel] != 1) {
    active[channel] = 1;
    s.FirstChannelActive = channel;
  } else {
    active[channel] = 0;
    const int lowest = LowestActive(s);
    // The last channel cannot be released: it stays shown and current.
    if (lowest == 0) active[channel] = 1;
    s.FirstChannelActive = lowest == 0 ? channel : lowest;
  }
  return ChangedChannels(before, active);
}

std::vector<int> FlipImposition(AppState& s) {
  const PerChannel<int32_t> before = s.channels.Active;
  s.Imposition = !s.Imposition;
  if (!s.Imposition)
    for (int c = 1; c <= kMaxChannels; ++c)
      if (c != s.FirstChannelActive) s.channels.Active[c] = 0;
  return ChangedChannels(before, s.channels.Active);
}

QString RecordDateText(double recordDate) {
  if (recordDate == 0.0 || !std::isfinite(recordDate)) return {};
  const QDateTime epoch(QDate(1899, 12, 30), QTime(0, 0), Qt::UTC);
  const qint64 ms = static_cast<qint64>(std::llround(recordDate * 86400000.0));
  return epoch.addMSecs(ms).toString(QStringLiteral("dd.MM.yyyy HH:mm:ss"));
}

std::array<QString, kMainPanelCount> MainStatusTexts(const AppState& s, const Vocabulary& vocab) {
  std::array<QString, kMainPanelCount> t;
  t[static_cast<int>(MainPanel::DateTime)] = RecordDateText(s.object.RecordDate);
  t[static_cast<int>(MainPanel::Station)] = s.object.Station.trimmed();
  t[static_cast<int>(MainPanel::Agregat)] = QStringLiteral("г/а №") + QString::number(s.object.Agregat);
  t[static_cast<int>(MainPanel::Mode)] = s.object.Mode.trimmed();
  const int c = s.FirstChannelActive;
  if (c >= 1 && c <= kMaxChannels) {
    const int type = s.channels.Type[c];
    if (type >= 0 && type < vocab.SensorTypeList.size()) t[static_cast<int>(MainPanel::Type)] = vocab.SensorTypeList[type];
    t[static_cast<int>(MainPanel::Place)] = (s.channels.Place[c].trimmed() + QLatin1Char(' ') + s.channels.Direct[c].trimmed()).trimmed();
  }
  return t;
}

bool HasData(const AppState& s) { return !s.PathFileData.isEmpty() || !s.DataSaved; }

}  // namespace aqx::ui
