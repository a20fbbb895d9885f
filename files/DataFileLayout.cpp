#include "files/DataFileLayout.h"

#include <utility>
#include <vector>

namespace aqx {

namespace {

using H = FileHeader;
using F = FieldType;

// One field of the header in the order of the current layout, with the
// layouts that carry it and, for the per-channel tables that grew, the
// number of entries per channel from a layout on.
struct VersionedField {
  LayoutField<H> field;
  int since = kOldestFileLayout;
  int until = kCurrentFileLayout;
  std::vector<std::pair<int, int>> columnsFrom = {};
};

template <class T>
LayoutField<H> ChannelField(std::string_view name, F type, std::array<T, kMaxChannels> H::*member,
                          size_t textBytes = 0) {
  return ArrayField(name, type, kMaxChannels, member, textBytes);
}

template <class T>
LayoutField<H> MarkerField(std::string_view name, F type, std::array<T, kMaxMarkers> H::*member,
                         size_t textBytes = 0) {
  return ArrayField(name, type, kMaxMarkers, member, textBytes);
}

// Entries of a channel, channel by channel; the file may keep fewer entries
// than memory has.
template <size_t N>
LayoutField<H> ChannelEntries(std::string_view name,
                                 std::array<std::array<float, N>, kMaxChannels> H::*member) {
  return TableField<H>(name, F::Float, kMaxChannels, static_cast<int>(N),
                       [member](H& h, int channel, int entry) -> FieldTarget {
                         return &(h.*member)[static_cast<size_t>(channel)][static_cast<size_t>(entry)];
                       });
}

std::vector<VersionedField> FieldSequence() {
  return {
      {TextField<H>("magic", 10, &H::magic)},
      {ScalarField("FileVersionMajor", F::Int32, &H::FileVersionMajor)},
      {ScalarField("FileVersionMinor", F::Int32, &H::FileVersionMinor)},
      {ScalarField("FileVersionRevision", F::Int32, &H::FileVersionRevision)},
      {ScalarField("Polus", F::Int32, &H::Polus)},
      {ScalarField("FreqSety", F::Int32, &H::FreqSety)},
      {ScalarField("NumberRotorRecord", F::Int32, &H::NumberRotorRecord)},
      {ScalarField("StepDesc", F::Double, &H::StepDesc)},
      {ScalarField("FreqRotorReal", F::Float, &H::FreqRotorReal)},
      {ScalarField("FreqDesc", F::Int32, &H::FreqDesc)},
      {ScalarField("FreqDescR", F::Int32, &H::FreqDescR), 3},
      {ScalarField("FreqRotorN", F::Double, &H::FreqRotorN), 3},
      {ScalarField("FreqOneGarmonic", F::Double, &H::FreqOneGarmonic), 3},
      {TextField<H>("Station", 50, &H::Station)},
      {ScalarField("Agregat", F::Int32, &H::Agregat)},
      {TextField<H>("Mode", 50, &H::Mode)},
      {ScalarField("RecordDate", F::Double, &H::RecordDate)},
      {ScalarField("Imposition", F::Int32, &H::Imposition)},
      {ScalarField("FirstChannelActive", F::Int32, &H::FirstChannelActive)},
      {ScalarField("BlockSizeFFT", F::Int32, &H::BlockSizeFFT), 5},
      {ScalarField("BlockSizeFFTa", F::Int32, &H::BlockSizeFFTa), 6},
      {ScalarField("BlockSizeFFTr", F::Int32, &H::BlockSizeFFTr), 6},
      {ChannelField("Channel", F::Int32, &H::Channel)},
      {ChannelField("Active", F::Int32, &H::Active)},
      {ChannelField("Type", F::Int32, &H::Type)},
      {ChannelField("Place", F::Text, &H::Place, 50)},
      {ChannelField("Direct", F::Text, &H::Direct, 25)},
      {ChannelField("Ku", F::Float, &H::Ku)},
      {ChannelField("Zero", F::Int32, &H::Zero), 10},
      {ChannelField("KS", F::Float, &H::KS), 1},
      {ChannelField("ChannelColor", F::Int32, &H::ChannelColor)},
      {ChannelField("Volume", F::Int32, &H::Volume), 2},
      {ChannelField("SensorName", F::Text, &H::SensorName, 25), 4},
      {ChannelField("ChannelY", F::Int32, &H::ChannelY), 5},
      {ChannelField("ChannelYm", F::Int32, &H::ChannelYm), 5},
      {ScalarField("ChannelDifferential", F::Int32, &H::ChannelDifferential), 11},
      {ChannelEntries("ProbeFreq", &H::ProbeFreq), 0, kCurrentFileLayout, {{0, 5}, {8, 7}}},
      {ChannelEntries("Filter", &H::Filter), 0, kCurrentFileLayout, {{0, 3}, {9, 4}}},
      {ScalarField("SignalDataN", F::Int32, &H::SignalDataN)},
      {ScalarField("InputMode", F::Int32, &H::InputMode), 2},
      {ScalarField("SynchroAdType", F::Int32, &H::SynchroAdType), 2},
      {ScalarField("SynchroAdMode", F::Int32, &H::SynchroAdMode), 2},
      {ScalarField("SynchroAdChannel", F::Int32, &H::SynchroAdChannel), 2},
      {ScalarField("SynchroAdPorog", F::Int32, &H::SynchroAdPorog), 2},
      {ScalarField("ViewStyle", F::Int32, &H::ViewStyle), 6},
      {TextField<H>("ModuleTag", 16, &H::ModuleTag), 7},
      {ScalarField("SolidMode", F::Int16, &H::SolidMode), 11},
      {TextField<H>("SolidFileName", 25, &H::SolidFileName), 11},
      {ScalarField("FreqADC", F::Int32, &H::FreqADC), 11},
      // Layout 7 alone kept a second free text in front of the remarks; it is
      // skipped.
      {ReservedField<H>("SecondText", 1000), 7, 7},
      // The 1000 remark bytes: Remark(0..26) of 10 bytes each, then the free
      // comment Remark(27) in the rest.
      {ArrayField("Remark", F::Text, kRemarkShortCount, &H::Remark, kRemarkShortBytes)},
      {TableField<H>(
          "RemarkComment", F::Text, 1, 1,
          [](H& h, int, int) -> FieldTarget { return &h.Remark[kRemarkShortCount]; },
          kRemarkFieldBytes - kRemarkShortCount * kRemarkShortBytes)},
      {ScalarField("MarkerN", F::Int32, &H::MarkerN), 12},
      {MarkerField("MarkerDate", F::Double, &H::MarkerDate), 12},
      {MarkerField("MarkerRemark", F::Text, &H::MarkerRemark, 50), 12},
      {MarkerField("MarkerColor", F::Int32, &H::MarkerColor), 12},
      {MarkerField("MarkerOn", F::Int32, &H::MarkerOn), 12},
      {MarkerField("MarkerShift", F::Int32, &H::MarkerShift), 12},
  };
}

}  // namespace

Layout<FileHeader> DataFileLayout(int minor) {
  Layout<FileHeader> layout;
  if (minor < kOldestFileLayout || minor > kCurrentFileLayout) return layout;
  for (VersionedField& v : FieldSequence()) {
    if (minor < v.since || minor > v.until) continue;
    for (const auto& [from, columns] : v.columnsFrom)
      if (minor >= from) v.field.columns = columns;
    layout.push_back(std::move(v.field));
  }
  return layout;
}

size_t DataFileHeaderBytes(int minor) { return PlaceLayout(DataFileLayout(minor)).recordBytes; }

Layout<FileHeader> DataFileIdentityLayout() {
  Layout<FileHeader> layout = DataFileLayout(kOldestFileLayout);
  layout.resize(4);
  return layout;
}

}  // namespace aqx
