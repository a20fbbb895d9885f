#include "views/CopyHeaderText.h"

#include "core/Numeric.h"

#include <QDateTime>

namespace aqx::views {

QStringList ObjectHeaderLines(const AppState& s, const QString& speedText) {
  const QDateTime date = OleToDateTime(s.object.RecordDate);
  return {QStringLiteral("Станция: ") + s.object.Station.trimmed() + QStringLiteral("     Гидроагрегат №") +
              QString::number(s.object.Agregat),
          QStringLiteral("Режим: ") + s.object.Mode.trimmed(),
          QStringLiteral("Частота вращения: ") + speedText.trimmed(),
          QStringLiteral("Дата и время: ") + (s.object.RecordDate != 0.0 && date.isValid()
                                                  ? date.toString(QStringLiteral("dd.MM.yyyy HH:mm:ss"))
                                                  : QString())};
}

QString ChannelHeaderLine(const AppState& s, const Vocabulary& vocab, int channel) {
  if (channel < 1 || channel > kMaxChannels) return {};
  const int type = s.channels.Type[channel];
  const QString typeName = type >= 0 && type < vocab.SensorTypeList.size() ? vocab.SensorTypeList[type] : QString();
  return QStringLiteral("Тип измерения: ") + typeName + QStringLiteral("\tМесто: ") + s.channels.Place[channel].trimmed() +
         QStringLiteral("\tНаправление: ") + s.channels.Direct[channel].trimmed();
}

}  // namespace aqx::views
