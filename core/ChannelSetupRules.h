#pragma once
// Channel settings (frmSetupChannels, "Настройка каналов"): the rows of the
// 32 channels as the window edits them, Apply with its refusals, the
// synchronisation texts, the colour sets, and the calibration of run-out
// sensors against the shaft through the module.

#include "core/AppState.h"
#include "core/Prompts.h"
#include "core/Settings.h"
#include "core/Vocabulary.h"

#include <QString>
#include <QStringList>

#include <array>
#include <functional>
#include <optional>
#include <vector>

namespace aqx {

struct ChannelRow {
  bool on = false;
  int32_t type = 0;
  QString place;
  QString direct;
  QString ku;    // mV per unit, as typed
  QString zero;  // mV, as typed
  int32_t volume = 0;
  QString sensorName;
  int32_t color = 0;  // blue-green-red word
};

struct ChannelSetupInput {
  std::array<ChannelRow, kMaxChannels> rows;
  bool differential = false;
  int32_t inputMode = 0;
  int32_t synchroAdType = 0;
  int32_t synchroAdMode = 0;
  int32_t synchroAdChannel = 1;
  QString synchroAdPorog;
};

ChannelSetupInput CurrentChannelSetup(const AppState& s);
// cmdApply: the refusals in their order, then every row, the connection
// and the synchronisation into the state and the settings. False (state
// untouched) after telling a refusal.
bool ApplyChannelSetup(AppState& s, SettingsStore& store, Prompts& prompts, const ChannelSetupInput& in);

// The entries of cmbInputMode, and the explanation of a mode (and of the
// analogue sub-mode in mode 3).
QStringList InputModeNames();
QStringList SynchroAdModeNames();
QString SynchroInfoText(int32_t inputMode, int32_t synchroAdMode);

// ImageCombo1: the colour sets and the colour of a channel in one.
QStringList ColorSetNames();
int32_t ColorOfSet(int set, int channel, int32_t type, const Vocabulary& vocabulary,
                   const std::array<int32_t, 10>& colorTypeKit, uint32_t randomBits);

// The calibration gap typed by the user: 500..3000 micrometres. The message
// of a refusal, or the gap.
struct GapCheck {
  std::optional<int32_t> gap;
  QString refusal;
};
GapCheck CheckCalibrationGap(const QString& text);
QString CalibrationGapPrompt();

// Ku from the mean codes against the shaft and at the gap, truncated to
// hundredths of a millivolt per micrometre.
float CalibrationKu(double meanPressed, double meanAtGap, int32_t gapMicrometres);

// Reads the 32 mean codes of `rows` rows; returns the engine's error number.
using ReadChannelMeans = std::function<int32_t(std::array<double, kMaxChannels>& means, int32_t rows)>;
// Hooks of the calibration: the message queue pumped before a question,
// the busy pointer while the module reads.
struct CalibrationHooks {
  ReadChannelMeans read;
  std::function<void()> pump;
  std::function<void(bool busy)> busy;
};

// cmdSetup (channel 0: every run-out channel that is on) and cmdSetKu (one
// channel): the questions, the two readings, Ku and KS written at once for
// each channel whose factor is at least 0.5. Returns the channels written.
std::vector<int> CalibrateRunOutSensors(AppState& s, Prompts& prompts, int channel, const CalibrationHooks& hooks);

}  // namespace aqx
