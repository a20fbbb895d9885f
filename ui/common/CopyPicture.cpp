#include "ui/common/CopyPicture.h"

#include "ui/main/Workspace.h"

#include <QClipboard>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>

#include <algorithm>

namespace aqx::ui {

QStringList CopyHeaderLines(const AppState& s, const Vocabulary& vocab, const CopyHeader& header) {
  QStringList lines;
  const int c = std::clamp(s.FirstChannelActive, 1, kMaxChannels);
  const QString station = s.object.Station.trimmed();
  lines << (station.isEmpty() ? QString() : station + QStringLiteral(", ")) + QStringLiteral("Гидроагрегат №") +
               QString::number(s.object.Agregat);
  lines << QStringLiteral("Режим: ") + s.object.Mode.trimmed();
  if (!header.rotorSpeedText.isEmpty()) lines << QStringLiteral("Частота вращения: ") + header.rotorSpeedText.trimmed();
  lines << QStringLiteral("Дата и время: ") + RecordDateText(s.object.RecordDate);
  const int type = s.channels.Type[c];
  lines << QStringLiteral("Тип измерения: ") +
               (type >= 0 && type < vocab.SensorTypeList.size() ? vocab.SensorTypeList[type] : QString());
  lines << QStringLiteral("Место: ") + s.channels.Place[c].trimmed();
  lines << QStringLiteral("Направление: ") + s.channels.Direct[c].trimmed();
  lines << QStringLiteral("Тип диаграмы: ") + header.diagramType;
  if (!header.parameterText.trimmed().isEmpty()) lines << header.parameterText.trimmed();
  return lines;
}

QImage ComposeCopyImage(const QStringList& header, const QImage& picture, const QFont& font) {
  const QFontMetrics fm(font);
  constexpr int kMarginPx = 8;
  int textWidth = 0;
  for (const QString& line : header) textWidth = std::max(textWidth, fm.horizontalAdvance(line));
  const int headerHeight = header.isEmpty() ? 0 : static_cast<int>(header.size()) * fm.lineSpacing() + 2 * kMarginPx;
  const int width = std::max(picture.width(), textWidth + 2 * kMarginPx);
  QImage image(std::max(1, width), std::max(1, headerHeight + picture.height()), QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter p(&image);
  p.setFont(font);
  p.setPen(Qt::black);
  int y = kMarginPx + fm.ascent();
  for (const QString& line : header) {
    p.drawText(kMarginPx, y, line);
    y += fm.lineSpacing();
  }
  p.drawImage(0, headerHeight, picture);
  return image;
}

void PutPictureOnClipboard(const QImage& image, const QStringList& header) {
  auto* data = new QMimeData;
  data->setImageData(image);
  if (!header.isEmpty()) data->setText(header.join(QLatin1Char('\n')));
  QGuiApplication::clipboard()->setMimeData(data);
}

}  // namespace aqx::ui
