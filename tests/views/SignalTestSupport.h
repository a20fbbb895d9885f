#pragma once
// A small recording for the view tests: channel 1 in use and shown, codes
// read 1:1 as display units (Ku 1.25), 1000 samples per second.

#include "core/AppState.h"
#include "core/Numeric.h"
#include "views/Primitives.h"
#include "views/signal/SignalView.h"

#include <memory>
#include <variant>
#include <vector>

namespace aqx::testing_views {

// Distinct colours so that each kind of line can be picked out of a list.
inline constexpr views::BgrColor kMarkerLine = 0x0000F1;
inline constexpr views::BgrColor kPorog = 0x0000F2;
inline constexpr views::BgrColor kCentre = 0x0000F3;
inline constexpr views::BgrColor kBeginPoint = 0x0000F4;
inline constexpr views::BgrColor kZero = 0x0000F5;
inline constexpr views::BgrColor kGrid = 0x0000F6;
inline constexpr views::BgrColor kSynchro = 0x0000F7;
inline constexpr views::BgrColor kTextColor = 0x0000F8;

inline std::unique_ptr<AppState> MakeState(int samples, int channelY = 50, int channelYm = 100) {
  auto s = std::make_unique<AppState>();
  for (int c = 1; c <= kMaxChannels; ++c) {
    s->channels.Channel[c] = 0;
    s->channels.Active[c] = 0;
    s->channels.Ku[c] = 1.25f;
    s->channels.ChannelY[c] = channelY;
    s->channels.ChannelYm[c] = channelYm;
    s->channels.Type[c] = 1;
  }
  s->channels.Channel[1] = 1;
  s->channels.Active[1] = 1;
  RecountChannelUsedCount(*s);
  s->FirstChannelActive = 1;
  s->SignalDataN = samples;
  s->ViewFirst = 1;
  s->ViewLast = samples;
  s->FreqDesc = 1000;
  s->AccountOffset = false;
  return s;
}

// Colours the tests tell apart, and no automatic placing of the zero lines.
inline void SetTestOptions(AppState& s) {
  ColorOptions& c = s.options.color;
  c.ColorLineOtmetchick = kMarkerLine;
  c.ColorLinePorogOtmetchick = kPorog;
  c.ColorLineCenterSignal = kCentre;
  c.ColorBeginPoint = kBeginPoint;
  c.ColorLineY0Signal = kZero;
  c.ColorGrid = kGrid;
  c.ColorLineSynchro = kSynchro;
  c.ColorText = kTextColor;
  s.options.parameters.AutoY0 = false;
}

// A drawing after its preparation, as the view makes one on results already
// in the state.
inline views::DrawList PrepareAndDraw(AppState& s, views::SignalViewState& v, const views::FontMetrics& fm) {
  views::PrepareSignal(s, v);
  return views::DrawSignal(s, v, fm);
}

inline views::SignalViewState ViewOf(AppState& s, int w, int h) {
  views::SignalViewState v;
  v.widthPx = w;
  v.heightPx = h;
  views::InitSignalView(s, v);
  views::ConfigSliderH(s, v);
  return v;
}

template <class T>
std::vector<T> ItemsOf(const views::DrawList& list) {
  std::vector<T> out;
  for (const auto& item : list.items)
    if (const T* p = std::get_if<T>(&item)) out.push_back(*p);
  return out;
}

inline std::vector<views::Line> LinesOf(const views::DrawList& list, views::BgrColor color) {
  std::vector<views::Line> out;
  for (const auto& l : ItemsOf<views::Line>(list))
    if (l.pen.color == color) out.push_back(l);
  return out;
}

inline bool HasText(const views::DrawList& list, const QString& text) {
  for (const auto& t : ItemsOf<views::Text>(list))
    if (QString::fromStdString(t.utf8) == text) return true;
  return false;
}

// The drawn lines, not the filled shapes that hide what lies behind them.
inline std::vector<views::Polyline> TracesOf(const views::DrawList& list) {
  std::vector<views::Polyline> traces = ItemsOf<views::Polyline>(list);
  std::erase_if(traces, [](const views::Polyline& p) { return p.filled; });
  return traces;
}

}  // namespace aqx::testing_views
