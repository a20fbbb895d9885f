#pragma once
// The failure reporter of the engine library: an error number becomes a modal
// stop box titled "Aquilonix" with the number, the message and, for faults of
// a step of the library, the step's name. It changes no state; what to do
// next is the caller's.

#include "core/Prompts.h"

#include <QString>

namespace aqx {

struct EngineErrorEntry {
  QString message;  // "Неизвестная ошибка!" for a number the library never returns
  QString step;     // empty when the number belongs to no step
};

// The message and step of an error number.
EngineErrorEntry DescribeEngineError(int number);
// The full text of the box: "Error #", the number, a line break, the message,
// and a line break and the step where there is one.
QString EngineErrorText(int number);
// Shows the box through the prompts.
void ShowEngineError(Prompts& prompts, const int& number);

}  // namespace aqx
