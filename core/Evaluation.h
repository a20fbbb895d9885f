#pragma once
// Vibration evaluation (frmServiceEvaluation, "Оценка вибрационного
// состояния"): the amplitude limits in micrometres of the five state grades
// for a frequency and a class of structure, and the first class's limits as
// curves over a spectrum.

#include <QString>

#include <array>
#include <utility>
#include <vector>

namespace aqx {

// optType: 0 "Опорные конструкции гидроагрегата", 1 "Стальные конструкции
// статора", 2 "Лобовые части обмотки статора".
inline constexpr int kEvaluationClassCount = 3;
inline constexpr int kEvaluationGradeCount = 5;

// Texts of lblEvaluation 1..5 at index 0..4: 1 "Недопустимо", 2
// "Неудовлетворительно", 3 "Удовлетворительно", 4 "Хорошо", 5 "Отлично".
// Frequencies at or below 0 leave all five empty.
std::array<QString, kEvaluationGradeCount> AccountEvaluation(float frequencyHz, int structureClass);
QStringList EvaluationClassNames();
QStringList EvaluationGradeNames();  // grade 1..5 at index 0..4

// One boundary curve of the first class: points (Hz, µm), its colour as a
// blue-green-red word, and whether it runs on at its last level to the
// right edge.
struct EvaluationCurve {
  std::vector<std::pair<double, double>> points;
  int32_t color = 0;
  bool extendsRight = false;
};
std::vector<EvaluationCurve> EvaluationCurves();

}  // namespace aqx
