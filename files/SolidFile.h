#pragma once
// Continuous recordings (SolidFile): the header of the data file, then the
// rows the engine streamed while measuring, all used channels of one instant
// side by side. Only a block of at most 1,048,576 rows is in memory at a
// time, chosen by number and optionally thinned by a power-of-two scale.

#include "core/AppState.h"
#include "core/Prompts.h"

#include <QString>

#include <cstdint>

namespace aqx {

// Rows per block and blocks at scale 1 of a file of `samplesPerChannel` rows.
struct SolidSizing {
  int32_t SignalDataN = 0;
  int32_t SolidBlockCount = 0;
};
SolidSizing SizeSolidFile(int64_t samplesPerChannel);

// Blocks at scale `scale`: SolidBlockCount / scale, rounded up.
int32_t ScaledBlockCount(int32_t solidBlockCount, int32_t scale);
// The scale of "Минимальный", the whole file in one block:
// 2^(Int(log2 SolidBlockCount) + 1).
int32_t MinimalBlockScale(int32_t solidBlockCount);

// Called by the data file reader once the header of a continuous recording
// is in the state: works out the blocks of state.PathFileData, whose rows
// follow its first headerBytes bytes, and reads the first block (unless
// readBlock is false). The header size becomes SolidDataStart, the data
// offset every later block read uses. True when the block is in SignalData;
// a failure is told through the engine's failure reporter.
bool OpenSolidFileBlocks(AppState& s, int headerBytes, Prompts& p, bool readBlock = true);

// Reads block SolidBlockN at scale SolidBlockM, with the notice
// "Подождите, идет чтение данных ..." while it reads and the sampling
// frequency of the scale. Returns the engine's result, already told to the
// user when not 0; on 0 the caller refreshes the views.
int32_t SubReadSolidBlock(AppState& s, Prompts& p);

enum class SolidBlockCommand {
  First,     // "Первый"
  Previous,  // "Предыдущий"
  Next,      // "Следующий"
  Last,      // "Последний"
  Min,       // "Минимальный": the whole file in one block
  Minus,     // "Уменьшить": twice as much time in a block
  Plus,      // "Увеличить"
  Max,       // "Максимальный": scale 1
};
// The block and scale a command leads to (state only).
void ApplySolidBlockCommand(AppState& s, SolidBlockCommand command);
// The command followed by SubReadSolidBlock.
int32_t RunSolidBlockCommand(AppState& s, SolidBlockCommand command, Prompts& p);

// Texts and enabled states of the block controls of the main window.
struct SolidBlockControls {
  QString blockText;  // txtBlock: "N / count"
  QString scaleText;  // txtSolidBlockM: "1:M"
  bool first = false, previous = false, next = false, last = false;
  bool min = false, minus = false, plus = false, max = false;
};
SolidBlockControls SolidBlockControlState(const AppState& s, bool measuring);

// Figures of the continuous recording in the state, for the file information.
struct SolidFileFigures {
  int64_t fileBytes = 0;
  int64_t dataBytes = 0;
  int64_t samplesPerChannel = 0;
  int32_t blockRows = 0;
  int32_t blockCount = 0;    // at scale 1
  int32_t scaledBlocks = 0;  // at the current scale
  double blockSeconds = 0.0;
  double recordSeconds = 0.0;
};
SolidFileFigures DescribeSolidFile(const AppState& s, int headerBytes);

}  // namespace aqx
