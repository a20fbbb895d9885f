#include "core/Vocabulary.h"

#include <algorithm>
#include <cmath>

namespace aqx {

namespace {

const std::array<int32_t, 32> kChannelColorDefault = {
    0x0000FF, 0x00FF00, 0x00FFFF, 0x0080FF, 0xFFFF00, 0xFF00FF, 0x0000C0, 0x0040C0,
    0x00C0C0, 0x00C000, 0xC0C000, 0xC00000, 0xC000C0, 0x000080, 0x004080, 0x008080,
    0x008000, 0x808000, 0x800000, 0x800080, 0x000040, 0x404080, 0x004040, 0x004000,
    0x404000, 0x400000, 0x8080FF, 0x80C0FF, 0x80FFFF, 0x80FF80, 0xFF0000, 0x000456};

const NamedColor kColors[kColorListCount] = {
    {"Черный / Black", 0, 0, 0},
    {"Белый / White", 255, 255, 255},
    {"Янтарный / Amber", 255, 191, 0},
    {"Бистр / Bistre", 61, 43, 31},
    {"Cиний / Blue", 0, 0, 255},
    {"Латунный / Brass", 181, 166, 66},
    {"Ярко-зелёный / Bright green", 102, 255, 0},
    {"Ярко-бирюзовый / Bright turquoise", 8, 232, 222},
    {"Ярко-фиолетовый / Bright violet", 205, 0, 205},
    {"Бронзовый / Bronze", 205, 127, 50},
    {"Коричневый / Brown", 150, 75, 0},
    {"Бургундский / Burgundy", 128, 0, 32},
    {"Защитный / Camouflage green", 120, 134, 107},
    {"Рыжий / Carrot", 237, 145, 33},
    {"Лазурный / Cerulean", 0, 123, 167},
    {"Каштановый / Chestnut", 205, 92, 92},
    {"Коричный / Cinnamon", 123, 63, 0},
    {"Медный / Copper", 184, 115, 51},
    {"Кукурузный / Corn", 251, 236, 93},
    {"Васильковый / Cornflower blue", 100, 149, 237},
    {"Малиновый / Crimson", 220, 20, 60},
    {"Голубой / Cyan", 0, 255, 255},
    {"Изумрудный / Emerald", 80, 200, 120},
    {"Баклажановый / Eggplant", 153, 0, 102},
    {"Розовый Маунтбэттена / Mountbatten pink", 153, 122, 141},
    {"Гуммигут / Gamboge", 228, 155, 15},
    {"Золотой / Gold", 255, 215, 0},
    {"Серый / Gray", 128, 128, 128},
    {"Зелёный / Green", 0, 255, 0},
    {"Гелиотроп / Heliotrope", 223, 115, 255},
    {"Индиго / Indigo", 75, 0, 130},
    {"Международный (сигнальный) оранжевый / International orange (Safety orange)", 255, 79, 0},
    {"Нефритовый / Jade", 0, 168, 107},
    {"Хаки / Khaki", 195, 176, 145},
    {"Лимонный / Lemon", 253, 233, 16},
    {"Сиреневый / Lilac", 200, 162, 200},
    {"Пурпурный / Magenta", 255, 0, 255},
    {"Горчичный / Mustard", 255, 219, 88},
    {"Тёмно-синий  / Navy blue", 0, 0, 128},
    {"Охра / Ochre", 204, 119, 34},
    {"Оливковый / Olive", 128, 128, 0},
    {"Оранжевый / Orange", 255, 165, 0},
    {"Орхидея / Orchid", 218, 112, 214},
    {"Лиловый / Pale red-violet", 219, 112, 147},
    {"Панг / Pang", 199, 252, 236},
    {"Персиковый / Peach", 255, 229, 180},
    {"Грушевый / Pear", 209, 226, 49},
    {"Барвинок / Periwinkle", 204, 204, 255},
    {"Розовый / Pink", 255, 192, 203},
    {"Сливовый / Plum", 102, 0, 102},
    {"Синяя пыль / Powder blue", 0, 51, 153},
    {"Берлинская лазурь / Prussian blue", 0, 49, 83},
    {"Тыква / Pumpkin", 255, 117, 24},
    {"Пурпурный / Purple", 102, 0, 153},
    {"Умбра / Raw umber", 115, 74, 18},
    {"Красный / Red", 255, 0, 0},
    {"Сапфировый / Sapphire", 8, 37, 103},
    {"Сепия / Sepia", 112, 66, 20},
    {"Cине - зелёный / Teal", 0, 128, 128},
    {"Бирюзовый / Turquoise", 48, 213, 200},
    {"Ультрамариновый / Ultramarine", 18, 10, 143},
    {"Фиолетовый / Violet", 139, 0, 255},
    {"Глициния / Wisteria", 201, 160, 220},
    {"Жёлтый / Yellow", 255, 255, 0},
};

QStringList Utf8List(std::initializer_list<const char*> rows) {
  QStringList out;
  for (const char* r : rows) out << QString::fromUtf8(r);
  return out;
}

}  // namespace

int32_t ChannelColorDefault(int channel) {
  if (channel < 1 || channel > 32) return 0;
  return kChannelColorDefault[static_cast<size_t>(channel - 1)];
}

Vocabulary BuildVocabulary() {
  Vocabulary v;
  const double mantissas[3] = {1, 2, 5};
  double decade = 10;
  for (int i = 0; i < kAmplitudeScaleCount; ++i) {
    v.AmplitudeScales[static_cast<size_t>(i)] = mantissas[i % 3] * decade;
    if (i % 3 == 2) decade *= 10;
  }
  v.SensorTypeList = Utf8List({"Биение", "Вибрация", "Тензометрия", "Отметчик", "Виток", "Напряжение",
                               "Давление", "Температура", "Перемещение", "Мощность"});
  v.SensorUnitList =
      Utf8List({"мкм", "мкм", "к", "мВ", "мВ", "мВ", "кгс/см2", "°C", "мкм", "Вт"});
  v.VolumeList = Utf8List({"±10.0В", "±2.5В", "±0.625В", "±0.15625В"});
  v.PlaceList = Utf8List({"ВГП", "НГП", "ГП", "ТП", "КТ", "ПП", "Статор", "Статор 1 стык",
                          "Статор 2 стык", "Статор 3 стык", "Статор 4 стык", "Статор 5 стык",
                          "Статор 6 стык", "Фланец", "Стенд", "ВК", "НК"});
  v.DirectList = Utf8List({"ВБ", "НБ", "ЛБ", "ПБ", "Лево", "Право", "Вертикальное",
                           "Горизонтальное", "Осевое", "Поперечное", "Продольное"});
  // Site data of the installation: the stations this team serves.
  v.StationList = Utf8List({"Волжская ГЭС", "Жигулевская ГЭС", "Саратовская ГЭС",
                            "Чебоксарская ГЭС", "Нижегородская ГЭС", "Рыбинская ГЭС",
                            "Угличская ГЭС", "Камская ГЭС", "Воткинская ГЭС",
                            "Нижнекамская ГЭС", "Загорская ГАЭС"});
  v.ModeList = Utf8List({"Холостой ход без возбуждения", "Сброс нагрузки", "Синхронный компенсатор",
                         "Трехфазное КЗ", "Холостой ход 0,3Uв", "Холостой ход 0,6Uв",
                         "Холостой ход с номинальным возбуждением", "Выбег", "Разгон"});
  for (int p = 10; p <= 250; p += 10)
    v.ModeList << QStringLiteral("Параллельная работа с сетью при Р=%1МВт").arg(p);
  for (const char* n : {"0,7", "0,8", "0,9", "1,0", "1,1"})
    v.ModeList << QStringLiteral("Холостой ход без возбуждения при n=%1nном").arg(QString::fromUtf8(n));
  for (int i = 0; i < kColorListCount; ++i) {
    v.ColorNameList << QString::fromUtf8(kColors[i].name);
    v.ColorList[static_cast<size_t>(i)] =
        static_cast<uint32_t>((kColors[i].red << 16) | (kColors[i].green << 8) | kColors[i].blue);
  }
  return v;
}

BandLabelResult BandLabel(int scaleSpectr) {
  switch (scaleSpectr) {
    case 0: return {QStringLiteral("0-10Гц"), 10};
    case 1: return {QStringLiteral("0-100Гц"), 19};
    case 2: return {QStringLiteral("0-1кГц"), 28};
    case 3: return {QStringLiteral("0-10кГц"), 37};
    default: return {};
  }
}

int32_t ColorBackBgr(const std::array<int32_t, 4>& parts) {
  const double strength = std::clamp(parts[3], 0, 255) / 255.0;
  auto mix = [strength](int32_t part) {
    return static_cast<int>(std::lround(255.0 + (std::clamp(part, 0, 255) - 255.0) * strength));
  };
  return BgrWord(mix(parts[0]), mix(parts[1]), mix(parts[2]));
}

}  // namespace aqx
