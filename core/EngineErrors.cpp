#include "core/EngineErrors.h"

#include <array>

namespace aqx {

namespace {

struct ErrorRow {
  int number;
  const char* message;
  const char* step;
};

// The numbers are part of the engine's interface; the library uses each in
// exactly this meaning.
constexpr std::array<ErrorRow, 35> kErrors{{
    {1, "Библиотеки Lusbapi.dll не версии 3.1!", "GetDllVersion"},
    {2, "Невозможно получить указатель на интерфейс!", "CreateLInstance"},
    {3, "Невозможно обнаружить модуль E14-140 в виртуальных слотах!", "OpenLDevice"},
    {4, "Невозможно прочитать дескриптор устройства!", "GetModuleHandle"},
    {5, "Невозможно прочитать название модуля!", "GetModuleName"},
    {6, "Модуль не E14-140!", ""},
    {7, "Невозможно получить скорость работы шины USB!", "GetUsbSpeed"},
    {8, "Невозможно получить информацию из ППЗУ модуля!", "GET_MODULE_DESCRIPTION"},
    {9, "Невозможно получить текущие параметры работы АЦП!", "GET_ADC_PARS"},
    {10, "Невозможно передать требуемые параметры работы АЦП в модуль!", "SET_ADC_PARS"},
    {11, "Невозможно выделить память под буфер данных!", "ReadBuffer"},
    {12, "Невозможно освободить интерфейс модуля!", "ReleaseLInstance"},
    {13, "Невозможно создать и запустить поток сбора данных!", "ServiceReadThread"},
    {14, "Невозможно выделить память под хранение данных!", "SignalDataDll"},
    {15, "Невозможно выделить память под хранение данных!", "ChannelOnDll"},
    {16, "Невозможно выделить память под хранение данных!", "ChannelVolumeDll"},
    {18, "Частота АЦП превышает 100 кГц!", ""},
    {19, "Невозможно остановить работу АЦП!", "STOP_ADC"},
    {20, "Невозможно выполнить запрос на ввод данных!", "ReadData"},
    {21, "Невозможно остановить работу АЦП!", "STOP_ADC"},
    {22, "Невозможно прервать возможно незавершённый асинхронный запрос на приём данных!",
     "CancelIo"},
    {23, "Невозможно запустить АЦП!", "START_ADC"},
    {24, "Невозможно перевести в высокоимпендансное состояние выходные цифровые линии!",
     "ENABLE_TTL_OUT"},
    {25, "Невозможно чтение состояния входных цифровых линий!", "TTL_IN"},
    {26, "Невозможно создать файл для записи получаемых с модуля данных", ""},
    {27, "Ошибка выполнения потока сбора данных", ""},
    {28, "Невозможно сохранить заголовок файла", ""},
    {29, "Невозможно выделить память под буфер заголовка!", "BufferHeadline"},
    {30, "Невозможно открыть файл для чтения заголовка", ""},
    {31, "Невозможно чтение заголовка!", ""},
    {32, "Невозможно сохранить заголовок!", ""},
    {33, "Невозможно выделить память под хранение данных!", ""},
    {34, "Невозможно выделить память под буфер данных!", ""},
    {35, "Невозможно открыть файл для чтения данных!", ""},
    {36, "Невозможно чтение файла данных!", ""},
}};

}  // namespace

EngineErrorEntry DescribeEngineError(int number) {
  for (const ErrorRow& row : kErrors)
    if (row.number == number)
      return {QString::fromUtf8(row.message), QString::fromUtf8(row.step)};
  return {QStringLiteral("Неизвестная ошибка!"), QString()};
}

QString EngineErrorText(int number) {
  const EngineErrorEntry e = DescribeEngineError(number);
  QString text = QStringLiteral("Error #") + QString::number(number) + QLatin1Char('\n') + e.message;
  if (!e.step.isEmpty()) text += QLatin1Char('\n') + e.step;
  return text;
}

void ShowEngineError(Prompts& prompts, const int& number) {
  prompts.message(EngineErrorText(number), QStringLiteral("Aquilonix"), PromptButtons::Ok,
                  PromptIcon::Critical);
}

}  // namespace aqx
