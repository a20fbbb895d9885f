#pragma once
// A recording of a running generator for the rotor form: a shaft marker on
// channel 1 and a stator turn probe on channel 2, the EMF of each pole a
// half sine of alternating sign, each revolution's mark half a pole pitch
// before its pole 1.

#include "core/AppState.h"
#include "core/ChannelPhysics.h"

#include <cmath>
#include <functional>
#include <memory>
#include <numbers>

namespace aqx::testing_views {

inline constexpr int kRotorMarker = 1;
inline constexpr int kRotorTurn = 2;
inline constexpr double kRotorEmfCodes = 2000.0;

// `scale(pole)` multiplies the EMF of pole 1..poles. `marks` shaft marks
// (at least 0) bound marks - 1 revolutions.
inline std::unique_ptr<AppState> RotorRecording(int poles, int perPole, int marks,
                                                const std::function<double(int)>& scale) {
  auto s = std::make_unique<AppState>();
  const int turn = poles * perPole;
  const int samples = std::min(kMaxSamples, perPole + std::max(1, marks) * turn);
  for (int c = 1; c <= kMaxChannels; ++c) s->channels.Channel[c] = s->channels.Active[c] = 0;
  s->channels.Channel[kRotorMarker] = 1;
  s->channels.Type[kRotorMarker] = sensor::ShaftMarker;
  s->channels.Ku[kRotorMarker] = kShaftMarkerKu;
  s->channels.Channel[kRotorTurn] = s->channels.Active[kRotorTurn] = 1;
  s->channels.Type[kRotorTurn] = sensor::TurnProbe;
  s->channels.Ku[kRotorTurn] = 1.0f;
  RecountChannelUsedCount(*s);
  s->FirstChannelActive = kRotorTurn;
  s->Polus = poles;
  s->FreqDesc = s->FreqDescR = 4000;
  s->SignalDataN = samples;
  s->ViewFirst = 1;
  s->ViewLast = samples;
  for (int i = 0; i < samples; ++i) {
    const int t = i - perPole;  // pole 1 of the first revolution starts here
    const int inTurn = ((t % turn) + turn) % turn;
    const int pole = inTurn / perPole + 1;
    const double sign = pole % 2 == 1 ? 1.0 : -1.0;
    const double emf = sign * kRotorEmfCodes * scale(pole) * std::sin(std::numbers::pi * (inTurn % perPole) / perPole);
    s->SignalData.at(i + 1, kRotorTurn) = static_cast<int16_t>(std::lround(emf));
    const int sinceMark = ((t + perPole / 2) % turn + turn) % turn;
    const int mark = (t + perPole / 2 + turn) / turn;  // marks already begun, counting from 1
    s->SignalData.at(i + 1, kRotorMarker) = sinceMark < 10 && mark <= marks ? 3000 : 0;
  }
  return s;
}

// A run-out pair on channels `first` (ВБ) and the next (ЛБ): a circle of
// 100 micrometres over 8 mV/µm, 50 samples a radian.
inline void AddRunOutPair(AppState& s, int first) {
  for (int c : {first, first + 1}) {
    s.channels.Channel[c] = 1;
    s.channels.Type[c] = sensor::Runout;
    s.channels.Ku[c] = 8.0f;
    for (int i = 1; i <= s.SignalDataN; ++i)
      s.SignalData.at(i, c) =
          static_cast<int16_t>(std::lround(640 * std::sin(i / 50.0 + (c - first) * std::numbers::pi / 2)));
  }
  s.channels.Direct[first] = QStringLiteral("ВБ");
  s.channels.Direct[first + 1] = QStringLiteral("ЛБ");
  RecountChannelUsedCount(s);
}

}  // namespace aqx::testing_views
