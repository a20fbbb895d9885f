// Continuous recordings: the header of the data file followed by rows of all
// used channels. An accepted file is walked through its blocks and scales,
// and its header saved back must leave the rows as they were.
#include "fuzz/FuzzSupport.h"

#include "files/DataFile.h"
#include "files/SolidFile.h"

#include <array>

namespace {

using aqx::SolidBlockCommand;
constexpr std::array kWalk{SolidBlockCommand::Last, SolidBlockCommand::Previous, SolidBlockCommand::Min,
                           SolidBlockCommand::Plus, SolidBlockCommand::Minus,    SolidBlockCommand::Max,
                           SolidBlockCommand::Next, SolidBlockCommand::First};

void CheckBlock(const aqx::AppState& s) {
  using aqx::fuzz::Expect;
  aqx::fuzz::CheckRecordingLimits(s);
  const int32_t blocks = aqx::ScaledBlockCount(s.SolidBlockCount, s.SolidBlockM);
  Expect(s.SolidBlockN >= 1 && s.SolidBlockN <= std::max(blocks, 1), "block number within the file");
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using aqx::fuzz::Expect;
  if (!aqx::fuzz::OpenAndCheck(aqx::fuzz::World(), QStringLiteral("input.aqx"), data, size)) return 0;
  aqx::AppState& s = aqx::fuzz::World().state();
  if (!s.SolidMode) return 0;
  CheckBlock(s);

  // The header saved back: the file must read the same.
  const QString copy = aqx::fuzz::World().path(QStringLiteral("copy.aqx"));
  aqx::fuzz::FuzzWorld::writeFile(copy, QByteArray(reinterpret_cast<const char*>(data),
                                                   static_cast<qsizetype>(size)));
  s.PathFileData = copy;
  aqx::ScriptedPrompts prompts;
  Expect(aqx::SaveDataFileCommand(s, prompts), "a continuous recording's header can be saved");
  const QByteArray header = aqx::BuildFileHeaderBytes(s);
  const std::vector<int16_t> samples = aqx::fuzz::UsedSamples(s);
  const int32_t blocks = s.SolidBlockCount;
  Expect(aqx::ReadDataFile(s, prompts), "a saved continuous recording reads back");
  Expect(aqx::BuildFileHeaderBytes(s) == header, "header values survive a save and read back");
  Expect(s.SolidBlockCount == blocks, "block count survives a save and read back");
  Expect(aqx::fuzz::UsedSamples(s) == samples, "rows survive a save and read back");

  // Two steps of the walk, chosen by the last byte: each block read costs
  // the engine's whole read buffer, and the corpus covers the rest.
  const uint8_t choice = data[size - 1];
  for (const SolidBlockCommand command : {kWalk[choice % kWalk.size()], kWalk[(choice / 8) % kWalk.size()]}) {
    aqx::ScriptedPrompts told;
    if (aqx::RunSolidBlockCommand(s, command, told) != 0)
      Expect(!told.messages().empty(), "a failed block read tells the user why");
    CheckBlock(s);
  }
  return 0;
}
