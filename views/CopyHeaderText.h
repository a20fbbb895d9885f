#pragma once
// The text block above a copied picture of the shaft and rotor views: the
// object, its mode, speed and date, then a line per channel shown.

#include "core/AppState.h"
#include "core/Vocabulary.h"

#include <QString>
#include <QStringList>

namespace aqx::views {

// "Станция: ...     Гидроагрегат №...", "Режим: ...", "Частота вращения: ...",
// "Дата и время: ...".
QStringList ObjectHeaderLines(const AppState& s, const QString& speedText);
// "Тип измерения: ...<tab>Место: ...<tab>Направление: ..." of a channel.
QString ChannelHeaderLine(const AppState& s, const Vocabulary& vocab, int channel);

}  // namespace aqx::views
