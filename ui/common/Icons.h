#pragma once
// Toolbar pictures drawn by the program itself, so that no image file has to
// travel with it.

#include <QColor>
#include <QIcon>

namespace aqx::ui {

enum class ToolIcon {
  Record,
  Stop,
  Open,
  Save,
  FileData,
  Copy,
  Signal,
  Spectr,
  Spectrum,
  Traectoria,
  FormaRotor,
  FormaRotorDiagram,
  FormaRotorSpectr,
  Parameters,
  ADC,
  Imposition,
  BlockFirst,
  BlockPrevious,
  BlockNext,
  BlockLast,
  BlockMinus,
  BlockPlus,
  BlockMin,
  BlockMax,
  Application,
};

QIcon MakeToolIcon(ToolIcon which);

// Channel button face: the number on the channel's type colour; the current
// channel carries a bar under the number.
QIcon MakeChannelIcon(int channel, const QColor& face, bool current);

}  // namespace aqx::ui
