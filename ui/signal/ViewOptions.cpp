#include "ui/signal/ViewOptions.h"

#include "core/ConfigKeys.h"
#include "ui/paint/PaintDrawList.h"
#include "ui/main/Workspace.h"

#include <algorithm>

namespace aqx::ui {

views::BgrColor ViewBackground(const AppState& s) {
  const auto& kit = s.options.config.ColorBackKit;
  const int set = std::clamp(s.options.config.ColorBackKitSel, 0, static_cast<int>(kit.size()) - 1);
  return ToBgr(ColorBackOf(kit[static_cast<size_t>(set)]));
}

int CursorSetting(views::SignalCursor cursor) {
  switch (cursor) {
    case views::SignalCursor::Free: return 0;
    case views::SignalCursor::Bound: return 1;
    case views::SignalCursor::None: break;
  }
  return -1;
}

views::SignalCursor CursorFromSetting(int value) {
  if (value == 0) return views::SignalCursor::Free;
  if (value == 1) return views::SignalCursor::Bound;
  return views::SignalCursor::None;
}

views::SignalViewOptions SignalOptionsFromState(const AppState& s) {
  views::SignalViewOptions o;
  const SignalOptions& sig = s.options.signal;
  o.StatusBarParameter = sig.StatusBarParameter;
  o.Control = sig.Control;
  o.StatusBar = sig.StatusBar;
  o.ScaleX = sig.ScaleX;
  o.ScaleY = sig.ScaleY;
  o.Cursor = CursorFromSetting(sig.Cursor);
  o.Otmetchick = sig.Otmetchick;
  o.OtmetchickLine = sig.OtmetchickLine;
  o.LineCenter = sig.LineCenter;
  o.LineZero = sig.LineZero;
  o.BeginPoint = sig.BeginPoint;
  const ParameterOptions& par = s.options.parameters;
  o.AutoY0 = par.AutoY0;
  o.ViewRealTime = par.ViewRealTime;
  o.StatusFilterConst = par.StatusFilterConst;
  o.SignalParameterMax = par.SignalParameterMax;
  const OtmetchickOptions& otm = s.options.otmetchick;
  o.OtmetchickAuto = otm.OtmetchickAuto;
  o.OtmetchickLevel = otm.OtmetchickLevel;
  o.OtmetchickDirect = otm.OtmetchickDirect;
  o.OtmetchickDrebezg = otm.OtmetchickDrebezg;
  o.OtmetchickNoise = otm.OtmetchickNoise;
  const ColorOptions& col = s.options.color;
  o.colors.ColorLineOtmetchick = col.ColorLineOtmetchick;
  o.colors.ColorLinePorogOtmetchick = col.ColorLinePorogOtmetchick;
  o.colors.ColorLineCenterSignal = col.ColorLineCenterSignal;
  o.colors.ColorBeginPoint = col.ColorBeginPoint;
  o.colors.ColorLineY0Signal = col.ColorLineY0Signal;
  o.colors.ColorGrid = col.ColorGrid;
  o.colors.ColorLineSynchro = col.ColorLineSynchro;
  o.colors.ColorText = col.ColorText;
  o.colors.Background = ViewBackground(s);
  return o;
}

namespace {

void Store(SettingsStore& store, bool& field, bool value, const char* key) {
  if (field == value) return;
  field = value;
  WriteSetting(store, QString::fromLatin1(kSectionSignal), QString::fromLatin1(key), value);
}

}  // namespace

void StoreSignalOptions(const views::SignalViewOptions& o, AppState& s, SettingsStore& store) {
  SettingsStore::Batch batch(store);
  SignalOptions& sig = s.options.signal;
  Store(store, sig.StatusBarParameter, o.StatusBarParameter, "StatusBarParameter");
  Store(store, sig.Control, o.Control, "Control");
  Store(store, sig.StatusBar, o.StatusBar, "StatusBar");
  Store(store, sig.ScaleX, o.ScaleX, "ScaleX");
  Store(store, sig.ScaleY, o.ScaleY, "ScaleY");
  Store(store, sig.Otmetchick, o.Otmetchick, "Otmetchick");
  Store(store, sig.OtmetchickLine, o.OtmetchickLine, "OtmetchickLine");
  Store(store, sig.LineCenter, o.LineCenter, "LineCenter");
  Store(store, sig.LineZero, o.LineZero, "LineZero");
  Store(store, sig.BeginPoint, o.BeginPoint, "BeginPoint");
  const int cursor = CursorSetting(o.Cursor);
  if (CursorFromSetting(sig.Cursor) != o.Cursor) {
    sig.Cursor = cursor;
    WriteSetting(store, QString::fromLatin1(kSectionSignal), QStringLiteral("Cursor"), static_cast<int32_t>(cursor));
  }
}

}  // namespace aqx::ui
