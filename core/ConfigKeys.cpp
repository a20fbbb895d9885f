#include "core/ConfigKeys.h"

#include "core/Numeric.h"
#include "core/Vocabulary.h"

#include <cmath>
#include <cstring>
#include <memory>

namespace aqx {

namespace {

using F = SettingField;
constexpr int32_t kMaxChannel = kMaxChannels;
// Beyond any probe's range; guards the clearance limits typed into the sheet.
constexpr int32_t kMaxClearanceMicrons = 100000;
constexpr int32_t kMaxColorWord = 0xFFFFFF;

// Scalar keys after the fixed first group, in the order of the key table.
const SettingKey kScalarKeys[] = {
    // Config: recording description and parameters.
    {kSectionConfig, "Station", "", [](AppState& s) -> F { return &s.object.Station; }},
    {kSectionConfig, "Agregat", "1", [](AppState& s) -> F { return &s.object.Agregat; }},
    {kSectionConfig, "Mode", "", [](AppState& s) -> F { return &s.object.Mode; }},
    {kSectionConfig, "InitDirOpen", "C:\\", [](AppState& s) -> F { return &s.InitDirOpen; }},
    {kSectionConfig, "InitDirSave", "C:\\", [](AppState& s) -> F { return &s.InitDirSave; }},
    {kSectionConfig, "FreqDescWaveN", "8", [](AppState& s) -> F { return &s.options.config.FreqDescWaveN; }},
    {kSectionConfig, "Polus", "72", [](AppState& s) -> F { return &s.Polus; }},
    {kSectionConfig, "FreqSety", "50", [](AppState& s) -> F { return &s.FreqSety; }},
    {kSectionConfig, "FreqRotorN", "83.3", [](AppState& s) -> F { return &s.FreqRotorN; }},
    {kSectionConfig, "FreqOneGarmonic", "1.38", [](AppState& s) -> F { return &s.FreqOneGarmonic; }},
    {kSectionConfig, "NumberRotorRecord", "17", [](AppState& s) -> F { return &s.NumberRotorRecord; }},
    {kSectionConfig, "StepDesc", "0.082", [](AppState& s) -> F { return &s.StepDesc; }},
    {kSectionConfig, "FreqDesc", "2677", [](AppState& s) -> F { return &s.FreqDesc; }},
    {kSectionConfig, "FreqDescR", "2677", [](AppState& s) -> F { return &s.FreqDescR; }},
    {kSectionConfig, "TimeRefresh", "0.25", [](AppState& s) -> F { return &s.options.config.TimeRefresh; }},
    {kSectionConfig, "SolidMode", "0", [](AppState& s) -> F { return &s.SolidMode; }},
    {kSectionConfig, "SolidFileName", "Aquilonix", [](AppState& s) -> F { return &s.SolidFileName; }},
    {kSectionConfig, "FreqADC", "32000", [](AppState& s) -> F { return &s.FreqADC; }, {}, kMinFreqADC, kMaxFreqADC},
    {kSectionConfig, "Clearance", "2500", [](AppState& s) -> F { return &s.Clearance; }},
    {kSectionConfig, "FirstChannelActive", "1", [](AppState& s) -> F { return &s.FirstChannelActive; }, {}, 1, kMaxChannel},
    // Config: the view menu and the main window.
    {kSectionConfig, "ViewToolbarMain", "1", [](AppState& s) -> F { return &s.options.config.ViewToolbarMain; }, {"Панель инструментов", "mnuViewToolbarMain", 0}},
    {kSectionConfig, "ViewToolbarChannels", "1", [](AppState& s) -> F { return &s.options.config.ViewToolbarChannels; }, {"Панель каналов", "mnuViewToolbarChannels", 0}},
    {kSectionConfig, "ViewStatusBar", "1", [](AppState& s) -> F { return &s.options.config.ViewStatusBar; }, {"Информационная строка", "mnuViewStatusBar", 0}},
    {kSectionConfig, "ViewFiles", "0", [](AppState& s) -> F { return &s.options.config.ViewFiles; }},
    {kSectionConfig, "ViewStyle", "1", [](AppState& s) -> F { return &s.ViewStyle; }},
    {kSectionConfig, "Imposition", "0", [](AppState& s) -> F { return &s.Imposition; }},
    {kSectionConfig, "SaveProbe", "0", [](AppState& s) -> F { return &s.SaveProbe; }},
    {kSectionConfig, "SaveFilter", "0", [](AppState& s) -> F { return &s.SaveFilter; }},
    {kSectionConfig, "ColorBackKitSel", "1", [](AppState& s) -> F { return &s.options.config.ColorBackKitSel; }, {}, 0, kColorBackKitSets - 1},
    {kSectionConfig, "Advice", "1", [](AppState& s) -> F { return &s.options.config.Advice; }},
    {kSectionConfig, "AdviceN", "0", [](AppState& s) -> F { return &s.options.config.AdviceN; }},
    {kSectionConfig, "StartUpPicture", "1", [](AppState& s) -> F { return &s.options.config.StartUpPicture; }},
    {kSectionConfig, "ProbeType", "0", [](AppState& s) -> F { return &s.options.config.ProbeType; }},
    {kSectionConfig, "FilterType", "0", [](AppState& s) -> F { return &s.options.config.FilterType; }},
    {kSectionConfig, "SmoothingWindow", "1", [](AppState& s) -> F { return &s.options.config.SmoothingWindow; }, {}, 0, 8},
    {kSectionConfig, "AlphaParametr", "0", [](AppState& s) -> F { return &s.options.config.AlphaParametr; }},
    {kSectionConfig, "Overlapping", "50", [](AppState& s) -> F { return &s.options.config.Overlapping; }, {}, 0, 99},
    {kSectionConfig, "ParametersTab", "0", [](AppState& s) -> F { return &s.options.config.ParametersTab; }, {}, 0, 3},
    // Signal view: the ticks of its menu in their order, then the rest.
    {kSectionSignal, "ScaleX", "1", [](AppState& s) -> F { return &s.options.signal.ScaleX; }, {"Шкала времени", "mnuSignalScaleX", 0}},
    {kSectionSignal, "ScaleY", "1", [](AppState& s) -> F { return &s.options.signal.ScaleY; }, {"Шкала уровня", "mnuSignalScaleY", 0}},
    {kSectionSignal, "LineCenter", "0", [](AppState& s) -> F { return &s.options.signal.LineCenter; }, {"Линия центра", "mnuSignalLineCenter", 0}},
    {kSectionSignal, "LineZero", "1", [](AppState& s) -> F { return &s.options.signal.LineZero; }, {"Нулевая линия", "mnuSignalLineZero", 0}},
    {kSectionSignal, "OtmetchickLine", "1", [](AppState& s) -> F { return &s.options.signal.OtmetchickLine; }, {"Линии отметчика", "mnuSignalOtmetchickLine", 0}},
    {kSectionSignal, "Otmetchick", "1", [](AppState& s) -> F { return &s.options.signal.Otmetchick; }, {"Порог отметчика", "mnuSignalOtmetchick", 0}},
    {kSectionSignal, "BeginPoint", "0", [](AppState& s) -> F { return &s.options.signal.BeginPoint; }, {"Начальная точка", "mnuSignalBeginPoint", 0}},
    {kSectionSignal, "StatusBarParameter", "1", [](AppState& s) -> F { return &s.options.signal.StatusBarParameter; }, {"Панель параметров", "mnuSignalStatusBarParameter", 1}},
    {kSectionSignal, "Control", "1", [](AppState& s) -> F { return &s.options.signal.Control; }, {"Элементы управления", "mnuSignalControl", 1}},
    {kSectionSignal, "StatusBar", "1", [](AppState& s) -> F { return &s.options.signal.StatusBar; }, {"Информационная строка", "mnuSignalStatusBar", 1}},
    {kSectionSignal, "Cursor", "-1", [](AppState& s) -> F { return &s.options.signal.Cursor; }},
    {kSectionSignal, "Corner", "0", [](AppState& s) -> F { return &s.options.signal.Corner; }},
    {kSectionSignal, "SignalViewColorProperty", "1", [](AppState& s) -> F { return &s.options.signal.SignalViewColorProperty; }, {"Окно значений", "mnuSignalViewColorProperty", 1}},
    // Spectrum view: the ticks of its menu in their groups, then the rest.
    {kSectionSpectr, "ViewGarmonic", "0", [](AppState& s) -> F { return &s.options.spectr.ViewGarmonic; }, {"Гармоники", "mnuSpectrGarmonica", 1}},
    {kSectionSpectr, "ViewLinesProbeFreq", "0", [](AppState& s) -> F { return &s.options.spectr.ViewLinesProbeFreq; }, {"Проверочные частоты", "mnuSpectrLinesProbeFreq", 1}},
    {kSectionSpectr, "StatusBarParameter", "1", [](AppState& s) -> F { return &s.options.spectr.StatusBarParameter; }, {"Панель параметров", "mnuSpectrStatusBarParameter", 0}},
    {kSectionSpectr, "StatusBar", "1", [](AppState& s) -> F { return &s.options.spectr.StatusBar; }, {"Информационная строка", "mnuSpectrStatusBar", 0}},
    {kSectionSpectr, "Cursor", "-1", [](AppState& s) -> F { return &s.options.spectr.Cursor; }, {}, -1, 1},
    {kSectionSpectr, "SpectrViewType", "1", [](AppState& s) -> F { return &s.options.spectr.SpectrViewType; }, {}, 0, 1},
    {kSectionSpectr, "Evaluation", "0", [](AppState& s) -> F { return &s.options.spectr.Evaluation; }, {}, 0, 3},
    {kSectionSpectr, "GarmonicaN", "10", [](AppState& s) -> F { return &s.options.spectr.GarmonicaN; }, {}, 1, 10},
    // Cascade of spectra.
    {kSectionSpectrum, "StatusBar", "1", [](AppState& s) -> F { return &s.options.spectrum.StatusBar; }, {"Информационная строка", "mnuSpectrumStatusBar", 0}},
    {kSectionSpectrum, "SpectrumViewType", "1", [](AppState& s) -> F { return &s.options.spectrum.SpectrumViewType; }, {}, 0, 1},
    // Trajectory view.
    {kSectionTraectoria, "StatusBar", "1", [](AppState& s) -> F { return &s.options.traectoria.StatusBar; }, {"Информационная строка", "mnuTraectoriaStatusBar", 2}},
    {kSectionTraectoria, "Cursor", "0", [](AppState& s) -> F { return &s.options.traectoria.Cursor; }, {"Курсор", "mnuTraectoriaCursor", 1}},
    {kSectionTraectoria, "CenterRotor", "1", [](AppState& s) -> F { return &s.options.traectoria.CenterRotor; }, {"Центр ротора", "mnuTraectoriaCenterRotor", 0}},
    {kSectionTraectoria, "TraectoriaFirstGarmonic", "0", [](AppState& s) -> F { return &s.options.traectoria.TraectoriaFirstGarmonic; }, {"Оборотная траектория", "mnuTraectoriaFirstGarmonic", 0}},
    {kSectionTraectoria, "TraectoriaOtmetchick", "1", [](AppState& s) -> F { return &s.options.traectoria.TraectoriaOtmetchick; }, {"Отметчик", "mnuTraectoriaOtmetchick", 0}},
    {kSectionTraectoria, "BeginPoint", "1", [](AppState& s) -> F { return &s.options.traectoria.BeginPoint; }, {"Начальная точка", "mnuTraectoriaBeginPoint", 0}},
    {kSectionTraectoria, "ScaleXY", "-1", [](AppState& s) -> F { return &s.options.traectoria.ScaleXY; }},
    // The option sheet.
    {kSectionParameters, "VisibleChannels", "1", [](AppState& s) -> F { return &s.options.parameters.VisibleChannels; }, {"Скрывать отключенные каналы", "chkVisibleChannels", 0}},
    {kSectionParameters, "ColorType", "1", [](AppState& s) -> F { return &s.options.parameters.ColorType; }, {"Цветовое различие типа каналов", "chkColorType", 0}},
    {kSectionParameters, "FileLastLoad", "0", [](AppState& s) -> F { return &s.options.parameters.FileLastLoad; }, {"Автоматическая загрузка последнего файла", "chkFileLastLoad", 0}},
    {kSectionParameters, "AutoY0", "1", [](AppState& s) -> F { return &s.options.parameters.AutoY0; }, {"Автоматическое центрирование нулевой оси сигнала", "chkAutoY0", 1}},
    {kSectionParameters, "ViewRealTime", "0", [](AppState& s) -> F { return &s.options.parameters.ViewRealTime; }, {"Отображение действительного времени в осциллограмме сигнала", "chkViewRealTime", 1}},
    {kSectionParameters, "AccountOffset", "1", [](AppState& s) -> F { return &s.AccountOffset; }, {"Учитывать начальное смещение в сигналах биения вала", "chkAccountOffset", 1}},
    {kSectionParameters, "StatusFilterConst", "1", [](AppState& s) -> F { return &s.options.parameters.StatusFilterConst; }, {"Фильтрация постоянной составляющей в сигналах", "chkStatusFilterConst", 1}},
    {kSectionParameters, "StatusFilterBienie", "0", [](AppState& s) -> F { return &s.options.parameters.StatusFilterBienie; }, {"Фильтрация сигналов биения вала (0-20 Гц)", "chkStatusFilterBienie", 1}},
    {kSectionParameters, "SignalParameterMax", "1", [](AppState& s) -> F { return &s.options.parameters.SignalParameterMax; }, {"Вывод максимальных значений параметров сигнала", "chkSignalParameterMax", 1}},
    {kSectionParameters, "SolidClerData", "0", [](AppState& s) -> F { return &s.options.parameters.SolidClerData; }, {"Очистка предыдущих данных при непрерывном сборе", "chkSolidClerData", 0}},
    {kSectionParameters, "ReminderConvertFile", "1", [](AppState& s) -> F { return &s.ReminderConvertFile; }, {"Конвертация файлов предыдущих версий", "chkReminderConvertFile", 2}},
    {kSectionParameters, "ReminderOverload", "1", [](AppState& s) -> F { return &s.options.parameters.ReminderOverload; }, {"Перегрузка в данных сигнала", "chkReminderOverload", 2}},
    {kSectionParameters, "ReminderClearenceMin", "1", [](AppState& s) -> F { return &s.options.parameters.ReminderClearenceMin; }, {"Возможность задевания датчика о вал", "chkReminderClearenceMin", 2}},
    {kSectionParameters, "ValueClearenceMin", "500", [](AppState& s) -> F { return &s.options.parameters.ValueClearenceMin; }, {"Величина минимального зазора, мкм", "txtValueClearenceMin", 2}, 0, kMaxClearanceMicrons},
    {kSectionParameters, "ReminderClearenceMax", "1", [](AppState& s) -> F { return &s.options.parameters.ReminderClearenceMax; }, {"Возможность нахождения вала вне измеряемого диапазона", "chkReminderClearenceMax", 2}},
    {kSectionParameters, "ValueClearenceMax", "4000", [](AppState& s) -> F { return &s.options.parameters.ValueClearenceMax; }, {"Величина максимального зазора, мкм", "txtValueClearenceMax", 2}, 0, kMaxClearanceMicrons},
    {kSectionParameters, "ReminderFileSave", "1", [](AppState& s) -> F { return &s.ReminderFileSave; }, {"Необходимость сохранения файла", "chkReminderFileSave", 2}},
    // Named colours, blue-green-red words as decimal numbers.
    {kSectionColor, "ColorLineOtmetchick", "255", [](AppState& s) -> F { return &s.options.color.ColorLineOtmetchick; }, {"Линия срабатывания отметчика", "cmdColorLineOtmetchick", 3}, 0, kMaxColorWord},
    {kSectionColor, "ColorLinePorogOtmetchick", "32768", [](AppState& s) -> F { return &s.options.color.ColorLinePorogOtmetchick; }, {"Линия порога срабатывания отметчика", "cmdColorLinePorogOtmetchick", 3}, 0, kMaxColorWord},
    {kSectionColor, "ColorLineCenterSignal", "8421504", [](AppState& s) -> F { return &s.options.color.ColorLineCenterSignal; }, {"Вертикальная линия центра сигнала", "cmdColorLineCenterSignal", 3}, 0, kMaxColorWord},
    {kSectionColor, "ColorBeginPoint", "16711680", [](AppState& s) -> F { return &s.options.color.ColorBeginPoint; }, {"Горизонтальная линия начальной точки положения вала", "cmdColorBeginPoint", 3}, 0, kMaxColorWord},
    {kSectionColor, "ColorLineY0Signal", "0", [](AppState& s) -> F { return &s.options.color.ColorLineY0Signal; }, {"Горизонтальная линия нуля сигнала", "cmdColorLineY0Signal", 3}, 0, kMaxColorWord},
    {kSectionColor, "ColorGrid", "12632256", [](AppState& s) -> F { return &s.options.color.ColorGrid; }, {"Сетка", "cmdColorGrid", 3}, 0, kMaxColorWord},
    {kSectionColor, "ColorLineSynchro", "8388736", [](AppState& s) -> F { return &s.options.color.ColorLineSynchro; }, {"Линия порога срабатывания синхронизации", "cmdColorLineSynchro", 3}, 0, kMaxColorWord},
    {kSectionColor, "ColorCarsetSpectrum", "0", [](AppState& s) -> F { return &s.options.color.ColorCarsetSpectrum; }, {"Карсет каскада спектров", "cmdColorCarsetSpectrum", 3}, 0, kMaxColorWord},
    {kSectionColor, "ColorText", "0", [](AppState& s) -> F { return &s.options.color.ColorText; }, {"Шрифт", "cmdColorText", 3}, 0, kMaxColorWord},
    {kSectionColor, "ColorLinesGarmonic", "16711680", [](AppState& s) -> F { return &s.options.color.ColorLinesGarmonic; }, {"Линии ориентриры - Гармоники", "cmdColorLinesGarmonic", 3}, 0, kMaxColorWord},
    {kSectionColor, "ColorLinesProbeFreq", "32768", [](AppState& s) -> F { return &s.options.color.ColorLinesProbeFreq; }, {"Линии ориентриры - Проверочные частоты", "cmdColorLinesProbeFreq", 3}, 0, kMaxColorWord},
    // Synchronisation of a run.
    {kSectionSynchro, "InputMode", "0", [](AppState& s) -> F { return &s.InputMode; }},
    {kSectionSynchro, "SynchroAdType", "0", [](AppState& s) -> F { return &s.SynchroAdType; }},
    {kSectionSynchro, "SynchroAdMode", "0", [](AppState& s) -> F { return &s.SynchroAdMode; }},
    {kSectionSynchro, "SynchroAdChannel", "32", [](AppState& s) -> F { return &s.SynchroAdChannel; }},
    {kSectionSynchro, "SynchroAdPorog", "1000", [](AppState& s) -> F { return &s.SynchroAdPorog; }},
    // Shaft marker detector.
    {kSectionOtmetchick, "OtmetchickAuto", "1", [](AppState& s) -> F { return &s.options.otmetchick.OtmetchickAuto; }},
    {kSectionOtmetchick, "OtmetchickLevel", "100", [](AppState& s) -> F { return &s.options.otmetchick.OtmetchickLevel; }},
    {kSectionOtmetchick, "OtmetchickDirect", "1", [](AppState& s) -> F { return &s.options.otmetchick.OtmetchickDirect; }},
    {kSectionOtmetchick, "OtmetchickDrebezg", "10", [](AppState& s) -> F { return &s.options.otmetchick.OtmetchickDrebezg; }},
    {kSectionOtmetchick, "OtmetchickNoise", "100", [](AppState& s) -> F { return &s.options.otmetchick.OtmetchickNoise; }},
    // Rotor form views.
    {kSectionFormaRotor, "FormaView", "1", [](AppState& s) -> F { return &s.options.formaRotor.FormaView; }, {}, 0, 1},
    {kSectionFormaRotor, "FormaViewColor", "0", [](AppState& s) -> F { return &s.options.formaRotor.FormaViewColor; }, {"Монотонная", "mnuFormaViewColor", 0}},
    {kSectionFormaRotor, "FormaViewScale", "0", [](AppState& s) -> F { return &s.options.formaRotor.FormaViewScale; }, {"Границы", "mnuFormaViewScale", 0}},
    {kSectionFormaRotor, "FormaValue", "0", [](AppState& s) -> F { return &s.options.formaRotor.FormaValue; }, {"Значения", "mnuFormaValue", 0}},
    {kSectionFormaRotor, "SpicaN", "8", [](AppState& s) -> F { return &s.options.formaRotor.SpicaN; }, {}, 1, 36},
    {kSectionFormaRotor, "SpicaP", "1", [](AppState& s) -> F { return &s.options.formaRotor.SpicaP; }, {}, 1, 360},
    {kSectionFormaRotor, "SpicaD", "1", [](AppState& s) -> F { return &s.options.formaRotor.SpicaD; }},
    {kSectionFormaRotor, "SpicaV", "1", [](AppState& s) -> F { return &s.options.formaRotor.SpicaV; }},
    {kSectionFormaRotor, "DiagramaViewType", "1", [](AppState& s) -> F { return &s.options.formaRotor.DiagramaViewType; }, {}, 1, 2},
    {kSectionFormaRotor, "DiagramaView", "1", [](AppState& s) -> F { return &s.options.formaRotor.DiagramaView; }, {}, 1, 2},
    {kSectionFormaRotor, "DiagramaViewColor", "0", [](AppState& s) -> F { return &s.options.formaRotor.DiagramaViewColor; }, {"Монотонная", "mnuDiagramaViewColor", 1}},
    {kSectionFormaRotor, "DiagramaViewScale", "0", [](AppState& s) -> F { return &s.options.formaRotor.DiagramaViewScale; }, {"Границы", "mnuDiagramaViewScale", 1}},
    {kSectionFormaRotor, "DiagramaValue", "0", [](AppState& s) -> F { return &s.options.formaRotor.DiagramaValue; }, {"Значения", "mnuDiagramaValue", 1}},
    {kSectionFormaRotor, "SpectrFormsValue", "0", [](AppState& s) -> F { return &s.options.formaRotor.SpectrFormsValue; }, {"Значения", "mnuSpectrFormsValue", 2}},
};

const ChannelSettingKey kChannelKeys[] = {
    {"Channel", "1", [](ChannelSetup& ch, int c) -> F { return &ch.Channel[c]; }},
    {"Active", "0", [](ChannelSetup& ch, int c) -> F { return &ch.Active[c]; }},
    {"Type", "1", [](ChannelSetup& ch, int c) -> F { return &ch.Type[c]; }, 0, kSensorTypeCount - 1},
    {"Place", "", [](ChannelSetup& ch, int c) -> F { return &ch.Place[c]; }},
    {"Direct", "", [](ChannelSetup& ch, int c) -> F { return &ch.Direct[c]; }},
    {"Ku", "10", [](ChannelSetup& ch, int c) -> F { return &ch.Ku[c]; }},
    {"Zero", "0", [](ChannelSetup& ch, int c) -> F { return &ch.Zero[c]; }},
    {"KS", "0", [](ChannelSetup& ch, int c) -> F { return &ch.KS[c]; }},
    {"Volume", "0", [](ChannelSetup& ch, int c) -> F { return &ch.Volume[c]; }, 0, 3},
    {"SensorName", "", [](ChannelSetup& ch, int c) -> F { return &ch.SensorName[c]; }},
    {"ChannelColor", nullptr, [](ChannelSetup& ch, int c) -> F { return &ch.ChannelColor[c]; }},
    {"ChannelLineWidthSignal", "1", [](ChannelSetup& ch, int c) -> F { return &ch.ChannelLineWidthSignal[c]; }},
    {"ChannelLineWidthSpectr", "1", [](ChannelSetup& ch, int c) -> F { return &ch.ChannelLineWidthSpectr[c]; }},
    // Not laid out yet: the signal view places such a channel itself.
    {"ChannelY", "1000000", [](ChannelSetup& ch, int c) -> F { return &ch.ChannelY[c]; }},
    {"ChannelYm", "-1", [](ChannelSetup& ch, int c) -> F { return &ch.ChannelYm[c]; }},
};

// Reads text into whichever field the variant holds.
bool ReadInto(const SettingsStore& store, const QString& section, const QString& key,
              const QString& defaultText, const SettingField& field, int32_t minValue,
              int32_t maxValue) {
  const QString text = store.get(section, key, defaultText);
  const QLocale& locale = store.locale();
  if (auto* p = std::get_if<QString*>(&field)) {
    **p = text;
    return true;
  }
  if (auto* p = std::get_if<int32_t*>(&field)) {
    const auto v = ParseSettingInt(text, locale);
    if (!v || *v < minValue || *v > maxValue) return false;
    **p = *v;
    return true;
  }
  if (auto* p = std::get_if<bool*>(&field)) {
    const auto v = ParseSettingBool(text, locale);
    if (v) **p = *v;
    return v.has_value();
  }
  const auto v = ParseSettingDouble(text, locale);
  if (!v) return false;
  if (auto* f = std::get_if<float*>(&field)) {
    if (std::fabs(*v) > std::numeric_limits<float>::max()) return false;
    **f = static_cast<float>(*v);
  } else if (auto* d = std::get_if<double*>(&field)) {
    **d = *v;
  }
  return true;
}

void WriteFrom(SettingsStore& store, const QString& section, const QString& key,
               const SettingField& field) {
  std::visit([&](auto* p) { WriteSetting(store, section, key, *p); }, field);
}

}  // namespace

std::span<const SettingKey> ScalarSettingKeys() { return kScalarKeys; }
std::span<const ChannelSettingKey> ChannelSettingKeys() { return kChannelKeys; }

std::vector<const SettingKey*> MenuOptions(const char* section) {
  std::vector<const SettingKey*> rows;
  for (const SettingKey& k : kScalarKeys)
    if (k.menu.caption && std::strcmp(k.section, section) == 0) rows.push_back(&k);
  return rows;
}

bool OptionFlag(const AppState& s, const SettingKey& key) {
  // The accessor hands out a pointer for loading; here it is only read.
  const SettingField field = key.field(const_cast<AppState&>(s));
  const auto* flag = std::get_if<bool*>(&field);
  return flag && **flag;
}

void FlipOptionFlag(AppState& s, SettingsStore& store, const SettingKey& key) {
  const SettingField field = key.field(s);
  if (auto* flag = std::get_if<bool*>(&field)) **flag = !**flag;
  WriteSettingKey(store, key, s);
}

const SettingKey* FindSettingKey(const QString& section, const QString& key) {
  for (const SettingKey& k : kScalarKeys)
    if (section == QLatin1String(k.section) && key == QLatin1String(k.key)) return &k;
  return nullptr;
}

bool SettingTextAccepted(const QString& section, const QString& key, const QString& text,
                         const QLocale& locale) {
  const SettingKey* k = FindSettingKey(section, key);
  if (!k) return true;  // a key of no field: kept as text
  // The field's kind decides what text it takes; a scratch state tells it.
  const auto scratch = std::make_unique<AppState>();
  const SettingField field = k->field(*scratch);
  if (std::holds_alternative<int32_t*>(field)) {
    const auto v = ParseSettingInt(text, locale);
    return v && *v >= k->minValue && *v <= k->maxValue;
  }
  if (std::holds_alternative<bool*>(field)) return ParseSettingBool(text, locale).has_value();
  if (std::holds_alternative<float*>(field) || std::holds_alternative<double*>(field))
    return ParseSettingDouble(text, locale).has_value();
  return true;
}

QString DefaultSettingText(const char* defaultText, const QLocale& locale) {
  QString text = QString::fromUtf8(defaultText);
  bool isNumber = false;
  QLocale::c().toDouble(text, &isNumber);
  if (isNumber) text.replace(QLatin1Char('.'), locale.decimalPoint());
  return text;
}

QString ChannelKey(const char* key, int channel) {
  return QLatin1String(key) + QString::number(channel);
}
QString ProbeFreqKey(int channel, int entry) {
  return QStringLiteral("ProbeFreq%1N%2").arg(channel).arg(entry);
}
QString FilterKey(int channel, int entry) {
  return QStringLiteral("Filter%1N%2").arg(channel).arg(entry);
}
QString RemarkKey(int number) { return QStringLiteral("Remark%1").arg(number); }
QString ColorTypeKitKey(int type) { return QStringLiteral("ColorTypeKit%1").arg(type); }
QString ColorBackKitKey(int set, int part) {
  return QStringLiteral("ColorBackKit%1%2").arg(set).arg(part);
}
QString MarkerKey(const char* key, int number) {
  return QLatin1String(key) + QString::number(number);
}

bool ReadSettingKey(const SettingsStore& store, const SettingKey& key, AppState& s) {
  return ReadInto(store, QLatin1String(key.section), QLatin1String(key.key),
                  DefaultSettingText(key.defaultText, store.locale()), key.field(s), key.minValue,
                  key.maxValue);
}

// The tables hand out writable fields for the load; a write only reads them.
void WriteSettingKey(SettingsStore& store, const SettingKey& key, const AppState& s) {
  WriteFrom(store, QLatin1String(key.section), QLatin1String(key.key),
            key.field(const_cast<AppState&>(s)));
}

bool ReadChannelSettingKey(const SettingsStore& store, const ChannelSettingKey& key,
                           ChannelSetup& ch, int channel) {
  const QString def = key.defaultText ? DefaultSettingText(key.defaultText, store.locale())
                                      : SettingText(ChannelColorDefault(channel));
  return ReadInto(store, QLatin1String(kSectionChannel), ChannelKey(key.key, channel), def,
                  key.field(ch, channel), key.minValue, key.maxValue);
}

void WriteChannelSettingKey(SettingsStore& store, const ChannelSettingKey& key,
                            const ChannelSetup& ch, int channel) {
  WriteFrom(store, QLatin1String(kSectionChannel), ChannelKey(key.key, channel),
            key.field(const_cast<ChannelSetup&>(ch), channel));
}

}  // namespace aqx
