#include "core/Evaluation.h"


#include <QStringList>

#include <cmath>

namespace aqx {

namespace {

// Index of grade g (1..5) in the result.
constexpr size_t Grade(int g) { return static_cast<size_t>(g - 1); }

QString Whole(double v) { return QString::number(static_cast<long long>(std::trunc(v))); }

}  // namespace

std::array<QString, kEvaluationGradeCount> AccountEvaluation(float frequencyHz, int structureClass) {
  std::array<QString, kEvaluationGradeCount> out;
  const float f = frequencyHz;
  if (!(f > 0.0f)) return out;
  switch (structureClass) {
    case 0: {
      // Straight lines through the grade amplitudes at 1 Hz and at 13 or 30 Hz.
      const double fd = f;
      if (fd < 1.0) {
        out[Grade(1)] = QStringLiteral("180");
      } else if (fd <= 30.0) {
        const double a = (13.0 - fd) * 50.0 / 12.0;
        const double b = (37.25 - fd) * 100.0 / 36.25;
        const double c = (37.9090909090909 - fd) * 140.0 / 36.9090909090909;
        const double d = (38.285714285 - fd) * 180.0 / 37.285714285;
        out[Grade(5)] = fd >= 13.0 ? QStringLiteral("0") : QStringLiteral("< ") + Whole(a);
        out[Grade(4)] = QStringLiteral("< ") + Whole(b);
        out[Grade(3)] = QStringLiteral("< ") + Whole(c);
        out[Grade(2)] = QStringLiteral("< ") + Whole(d);
        out[Grade(1)] = QStringLiteral("> ") + Whole(d);
      } else if (fd <= 300.0) {
        out[Grade(1)] = QStringLiteral("40");
      }
      break;
    }
    case 1:
      out[Grade(3)] = QStringLiteral("< 50");
      out[Grade(2)] = QStringLiteral("< 100");
      out[Grade(1)] = QStringLiteral("> 100");
      break;
    case 2:
      if (f == 100.0f) {
        out[Grade(3)] = QStringLiteral("< 30(50)");
        out[Grade(2)] = QStringLiteral("> 30(50)");
        out[Grade(1)] = QStringLiteral("> 30(50)");
      } else {
        out[Grade(3)] = QStringLiteral("< 80");
        out[Grade(2)] = QStringLiteral("< 180");
        out[Grade(1)] = QStringLiteral("> 180");
      }
      break;
    default:
      break;
  }
  return out;
}

QStringList EvaluationClassNames() {
  return {QStringLiteral("Опорные конструкции гидроагрегата"), QStringLiteral("Стальные конструкции статора"),
          QStringLiteral("Лобовые части обмотки статора")};
}

QStringList EvaluationGradeNames() {
  return {QStringLiteral("Недопустимо"), QStringLiteral("Неудовлетворительно"), QStringLiteral("Удовлетворительно"),
          QStringLiteral("Хорошо"), QStringLiteral("Отлично")};
}

std::vector<EvaluationCurve> EvaluationCurves() {
  return {
      {{{0, 180}, {1, 180}, {10, 136}, {30, 40}}, 0x0000FF, true},  // red: "Недопустимо"
      {{{0, 140}, {1, 140}, {10, 105}, {30, 30}}, 0x00FFFF, false},  // yellow
      {{{0, 100}, {1, 100}, {10, 75}, {30, 20}}, 0xFF0000, false},   // blue
      {{{0, 50}, {1, 50}, {13, 0}}, 0x00FF00, false},                // green
  };
}

}  // namespace aqx
