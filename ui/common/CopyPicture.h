#pragma once
// A view's picture as it goes to the clipboard: a text header naming the
// recording above the picture (the copy window frmCopy of the views).

#include "core/AppState.h"
#include "core/Vocabulary.h"

#include <QFont>
#include <QImage>
#include <QStringList>

namespace aqx::ui {

struct CopyHeader {
  QString rotorSpeedText;  // empty: no shaft marker channel, no line
  QString diagramType;     // "Сигнал", ...
  QString parameterText;   // the parameter bar's line, may be empty
};

// Station and unit, mode, speed, date and time, measurement type, place,
// direction, diagram type, then the parameters.
QStringList CopyHeaderLines(const AppState& s, const Vocabulary& vocab, const CopyHeader& header);
// The header lines in the picture's text colour on white above the picture,
// the whole as wide as the wider of the two.
QImage ComposeCopyImage(const QStringList& header, const QImage& picture, const QFont& font);
// Picture and the header text to the clipboard.
void PutPictureOnClipboard(const QImage& image, const QStringList& header = {});

}  // namespace aqx::ui
