#pragma once
// Pieces that the readers of the ЗОР-16 and РУСЛО-8 files share: how their
// bytes become codes and texts, and the steps around the filling of the
// state that make a foreign file look like an opened recording.

#include "core/AppState.h"
#include "core/ChannelPhysics.h"
#include "core/Prompts.h"
#include "files/DataFileRules.h"
#include "files/Layout.h"

#include <QByteArray>
#include <QLocale>
#include <QString>

#include <array>
#include <cstdint>
#include <optional>

namespace aqx::foreign {

// A field kept as its raw bytes (text with a length of its own, or cut at
// the first zero byte, is decoded afterwards).
template <class Record>
LayoutField<Record> BytesField(std::string_view name, size_t bytes, QByteArray Record::*member,
                               int64_t offset) {
  return {name, FieldType::Bytes, offset, 1, 1, bytes,
          [member](Record& r, int, int) -> FieldTarget { return &(r.*member); }};
}

// Text that carries its length in a byte of its own; the length is held to
// the field.
QString CountedText(const QByteArray& field, int length);
// Text up to the first zero byte.
QString TextCutAtZero(const QByteArray& field);

// A channel name of the older systems holds place and direction in one text;
// the last word is the direction ("Статор 1 стык ВБ": "Статор 1 стык", "ВБ").
// A single word is the place.
void SplitChannelName(const QString& name, QString& place, QString& direct);

// The plain text of a number as a remark takes it: the shortest digits that
// give the same 32-bit float back, in the locale's form without grouping.
QString RemarkNumberText(float value, const QLocale& locale = QLocale());
QString RemarkNumberText(int value);
// A short remark field holds at most 10 characters.
QString ShortRemark(const QString& text);

// One sample byte: b reads as b when b >= 128 and as b + 256 below, and the
// code is round(scale * v / 1.25 * ku), held to the 16-bit store.
int16_t ByteSampleCode(uint8_t b, double scale, double ku);

// 2^(Int(log2 n) + 1), at most `cap`.
int PowerOfTwoAbove(int n, int cap);

// Opens the file for reading, or tells the user why not.
bool OpenForeignFile(PlainFile& file, const QString& path, Prompts& prompts);
// The first `maxBytes` of the file (all of a shorter one), or nullopt after
// telling the user. Bytes past what a reader can use are never read.
std::optional<QByteArray> ReadFileStart(const QString& path, size_t maxBytes, Prompts& prompts);
// A read that failed after the file was opened.
void TellUnreadable(Prompts& prompts, const PlainFile& file);

// What the user is told about a file that cannot be a recording of the
// named system, or that ends before its header says it should.
void TellDamaged(Prompts& prompts, const QString& path, const QString& systemName,
                 const QString& reason);
void TellTruncated(Prompts& prompts, const QString& path, const QString& systemName);

// The start of the filling: the values only the native file carries take
// their defaults, the recording is cleared, and the user's common probe and
// filter tables survive when the options keep them.
class ForeignLoad {
 public:
  explicit ForeignLoad(AppState& state);
  // Probe frequencies of the file go in only when the user's table is not
  // kept (SaveProbe off).
  bool takesProbeFreq() const { return !keepProbe_; }
  // The end: channel defaults for the views, the shaft marker rule, the
  // current channel, the derived rotor data and the sample window.
  void finish();

 private:
  AppState& state_;
  bool keepProbe_;
  bool keepFilter_;
  PerChannel<std::array<float, kProbeEntries>> probe_;
  PerChannel<std::array<float, kFilterEntries>> filter_;
};

// Row of the marker channel that a shaft mark sets.
inline constexpr int16_t kShaftMarkCode = 1000;
inline constexpr int kMarkerChannel = 32;

}  // namespace aqx::foreign
