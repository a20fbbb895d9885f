#include "core/EngineErrors.h"

#include <gtest/gtest.h>

using namespace aqx;

namespace {
QString Shown(int number) {
  ScriptedPrompts prompts;
  ShowEngineError(prompts, number);
  EXPECT_EQ(prompts.messages().size(), 1u);
  const ShownPrompt box = prompts.messages().front();
  EXPECT_EQ(box.title, QStringLiteral("Aquilonix"));
  EXPECT_EQ(box.buttons, PromptButtons::Ok);
  EXPECT_EQ(box.icon, PromptIcon::Critical);
  return box.text;
}
}  // namespace

TEST(EngineErrors, StepFaultsNameTheStepOnTheThirdLine) {
  EXPECT_EQ(Shown(1), QStringLiteral("Error #1\nБиблиотеки Lusbapi.dll не версии 3.1!\nGetDllVersion"));
  EXPECT_EQ(Shown(3), QStringLiteral(
                          "Error #3\nНевозможно обнаружить модуль E14-140 в виртуальных слотах!\n"
                          "OpenLDevice"));
  EXPECT_EQ(Shown(22), QStringLiteral("Error #22\nНевозможно прервать возможно незавершённый "
                                      "асинхронный запрос на приём данных!\nCancelIo"));
  EXPECT_EQ(Shown(29),
            QStringLiteral("Error #29\nНевозможно выделить память под буфер заголовка!\nBufferHeadline"));
}

TEST(EngineErrors, SameMessageDifferentStepsStayApart) {
  EXPECT_EQ(Shown(14), QStringLiteral("Error #14\nНевозможно выделить память под хранение данных!\nSignalDataDll"));
  EXPECT_EQ(Shown(15), QStringLiteral("Error #15\nНевозможно выделить память под хранение данных!\nChannelOnDll"));
  EXPECT_EQ(Shown(16), QStringLiteral("Error #16\nНевозможно выделить память под хранение данных!\nChannelVolumeDll"));
  EXPECT_EQ(Shown(33), QStringLiteral("Error #33\nНевозможно выделить память под хранение данных!"));
  EXPECT_EQ(Shown(19), QStringLiteral("Error #19\nНевозможно остановить работу АЦП!\nSTOP_ADC"));
  EXPECT_EQ(Shown(21), QStringLiteral("Error #21\nНевозможно остановить работу АЦП!\nSTOP_ADC"));
}

TEST(EngineErrors, NumbersWithoutStepHaveTwoLines) {
  EXPECT_EQ(Shown(6), QStringLiteral("Error #6\nМодуль не E14-140!"));
  EXPECT_EQ(Shown(18), QStringLiteral("Error #18\nЧастота АЦП превышает 100 кГц!"));
  EXPECT_EQ(Shown(26), QStringLiteral(
                           "Error #26\nНевозможно создать файл для записи получаемых с модуля данных"));
  EXPECT_EQ(Shown(36), QStringLiteral("Error #36\nНевозможно чтение файла данных!"));
}

TEST(EngineErrors, EveryOtherNumberIsUnknown) {
  for (int n : {0, 17, 37, -1, -20, 1000})
    EXPECT_EQ(Shown(n), QStringLiteral("Error #%1\nНеизвестная ошибка!").arg(n)) << n;
}

TEST(EngineErrors, EveryKnownNumberHasItsOwnMessage) {
  int known = 0;
  for (int n = 1; n <= 36; ++n) {
    const EngineErrorEntry e = DescribeEngineError(n);
    if (e.message != QStringLiteral("Неизвестная ошибка!")) ++known;
  }
  EXPECT_EQ(known, 35);  // all of 1..36 but 17
}
