#pragma once
// The rules of the main window that need no widget: view styles, background
// colour sets, channel buttons, channel selection, status bar texts, the
// caption and the recent-file menu entries. The window applies them.

#include "core/AppState.h"
#include "core/Vocabulary.h"

#include <QColor>
#include <QString>
#include <QStringList>

#include <array>
#include <vector>

namespace aqx::ui {

// "Aquilonix v1.12 (Комплекс наблюдения за гидроагрегатом)".
QString UpdateRecordTitle();
// The caption during a run says so, and for a continuous recording names its
// file with the length written so far; idle it is UpdateRecordTitle().
QString RunRecordTitle(const AppState& s, bool measuring, bool continuous, double fileBytes);

// ---------------------------------------------------------------------------
// View styles (mnuViewStyle 0..7).
// ---------------------------------------------------------------------------

inline constexpr int kViewStyleCount = 8;
// A view window that is no ViewWindow of the state: the parameter table.
inline constexpr int kParametersWindow = kViewWindowCount;

enum class Arrangement { Maximised, TileAcross, TileSideBySide, TileAcrossThenThird };

struct ViewStyleDef {
  QString caption;
  std::vector<int> windows;  // ViewWindow or kParametersWindow, in opening order
  Arrangement arrangement = Arrangement::Maximised;
};

// Style 0..7; any other number gives a style with no windows.
ViewStyleDef ViewStyleDefinition(int style);

struct PixelBox {
  int left = 0, top = 0, width = 0, height = 0;
  friend bool operator==(const PixelBox&, const PixelBox&) = default;
};
// Tile across: n windows one above the other over the full width.
std::vector<PixelBox> TileAcross(int areaWidthPx, int areaHeightPx, int count);
// Tile side by side: n windows next to each other over the full height.
std::vector<PixelBox> TileSideBySide(int areaWidthPx, int areaHeightPx, int count);
// Cascade: every window three quarters of the area, each one step of
// stepPx further right and down than the one before, the steps shrunk so that
// the last window still lies inside the area.
std::vector<PixelBox> CascadeBoxes(int areaWidthPx, int areaHeightPx, int count, int stepPx);
// A window moved, and shrunk only when it is larger than the area, so that
// it lies inside the area; no smaller than minWidthPx x minHeightPx where
// the area is larger than that.
PixelBox FitIntoArea(const PixelBox& window, int areaWidthPx, int areaHeightPx, int minWidthPx, int minHeightPx);
// The third window of styles 2 and 3: top 0, left a third of the signal
// window's width, two thirds of that width wide, twice its height high.
PixelBox ThirdWindowBox(const PixelBox& signalWindow);

// ---------------------------------------------------------------------------
// Background colour sets (mnuViewColorBack 0..5).
// ---------------------------------------------------------------------------

inline constexpr int kColorBackSetCount = 6;
QStringList ColorBackCaptions();
// Each set is a colour (first three parts, red, green, blue) and its strength
// (fourth part, 0..255) over white: the view pictures' background.
QColor ColorBackOf(const std::array<int32_t, 4>& parts);
// The workspace behind the view windows: the same tint, darker.
QColor WorkspaceColorOf(const std::array<int32_t, 4>& parts);

// ---------------------------------------------------------------------------
// Channel toolbar and channel selection.
// ---------------------------------------------------------------------------

struct ChannelButtonState {
  int channel = 0;
  bool visible = false;
  bool enabled = false;
  bool pressed = false;
  bool current = false;
  QString toolTip;
  bool coloured = false;  // face in the type colour
  QColor face;
};

struct ChannelButtonOptions {
  bool VisibleChannels = true;  // hide unused channels (else show them disabled)
  bool ColorType = true;        // colour the faces by type
  std::array<int32_t, 10> ColorTypeKit{};  // ColorList index per type
};

// One entry per channel 1..32: beyond ChannelCount the buttons are hidden.
std::vector<ChannelButtonState> ChannelButtons(const AppState& s, const Vocabulary& vocab,
                                               const ChannelButtonOptions& o);

// SelectActiveChannel on the state: returns the channels whose Active changed
// (the caller saves those and FirstChannelActive).
std::vector<int> SelectActiveChannel(AppState& s, int channel);
// mnuViewImposition: flips Imposition; switched off, only FirstChannelActive
// stays active. Returns the channels whose Active changed.
std::vector<int> FlipImposition(AppState& s);

// ---------------------------------------------------------------------------
// Main status bar.
// ---------------------------------------------------------------------------

enum class MainPanel { DateTime, Station, Agregat, Mode, Type, Place, kCount };
inline constexpr int kMainPanelCount = static_cast<int>(MainPanel::kCount);
// Texts of the panels; an empty text hides its panel.
std::array<QString, kMainPanelCount> MainStatusTexts(const AppState& s, const Vocabulary& vocab);
// RecordDate (days since 30 December 1899) as date and time, "" for 0.
QString RecordDateText(double recordDate);

// ---------------------------------------------------------------------------
// Command enabling (RefreshToolbarMainMenu, ActivateElements).
// ---------------------------------------------------------------------------

// A recording is in memory: there is a file path or an unsaved run.
bool HasData(const AppState& s);

}  // namespace aqx::ui
