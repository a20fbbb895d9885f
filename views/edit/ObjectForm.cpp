#include "views/edit/ObjectForm.h"

namespace aqx::views {

const std::array<QString, kRemarkCount>& ObjectFieldLabels() {
  static const std::array<QString, kRemarkCount> labels = {
      QStringLiteral("Активная мощность, МВт"), QStringLiteral("Реактивная мощность, Мвар"),
      QStringLiteral("Напряжение статора, кВ"), QStringLiteral("Напряжение ротора, В"),
      QStringLiteral("Ток ротора, А"), QStringLiteral("Ток фазы А, кА"), QStringLiteral("Ток фазы В, кА"),
      QStringLiteral("Ток фазы С, кА"), QStringLiteral("Уровень ВБ, м"), QStringLiteral("Уровень НБ, м"),
      QStringLiteral("Открытие НА, мм"), QStringLiteral("Открытие НА, %"),
      QStringLiteral("Открытие РК (колонка), град."), QStringLiteral("Открытие РК (шток), град."),
      QStringLiteral("Давление после НА"), QStringLiteral("Давление перед РК"), QStringLiteral("Давление перед ТП"),
      QStringLiteral("Давление после ТП"), QStringLiteral("Давление спирале"), QStringLiteral("Давление о. сектора"),
      QStringLiteral("Давление в. трубы"), QStringLiteral("Температура ВГП"), QStringLiteral("Температура НГП"),
      QStringLiteral("Температура ПП"), QStringLiteral("Температура ж. статора"),
      QStringLiteral("Температура м. статора"), QStringLiteral("Температура охладителей"),
      QStringLiteral("Примечание:")};
  return labels;
}

ObjectForm ObjectFormOf(const AppState& s) {
  ObjectForm f;
  f.station = s.object.Station;
  f.agregat = s.object.Agregat != 0 ? QString::number(s.object.Agregat) : QString();
  f.mode = s.object.Mode;
  f.data = s.object.Remark;
  return f;
}

void ApplyObjectForm(AppState& s, const ObjectForm& form) {
  s.object.Station = form.station.trimmed();
  bool ok = false;
  const int agregat = form.agregat.trimmed().toInt(&ok);
  s.object.Agregat = ok ? agregat : 0;
  s.object.Mode = form.mode.trimmed();
  for (size_t i = 0; i < form.data.size(); ++i) s.object.Remark[i] = form.data[i].trimmed();
  // The description belongs to the recording, changed or not.
  s.DataSaved = false;
}

}  // namespace aqx::views
