// The option sheet's rule: every option of the sections Parameters and Color
// is shown, and Apply takes all typed values or none.

#include "core/OptionSheet.h"

#include <gtest/gtest.h>

#include <memory>

namespace aqx {
namespace {

const SettingKey* Row(const char* key) {
  for (const SettingKey* k : OptionSheetRows())
    if (QLatin1String(k->key) == QLatin1String(key)) return k;
  return nullptr;
}

struct Sheet : testing::Test {
  std::unique_ptr<AppState> s = std::make_unique<AppState>();
  MemorySettingsStore store;
};

TEST_F(Sheet, ShowsEveryOptionOfBothSectionsOnFourTabs) {
  const auto rows = OptionSheetRows();
  int parameters = 0;
  int colors = 0;
  for (const SettingKey* k : rows) {
    ASSERT_NE(k->menu.caption, nullptr);
    EXPECT_GE(k->menu.group, 0);
    EXPECT_LT(k->menu.group, kOptionSheetTabCount);
    if (QLatin1String(k->section) == QLatin1String(kSectionParameters)) ++parameters;
    if (QLatin1String(k->section) == QLatin1String(kSectionColor)) ++colors;
  }
  EXPECT_EQ(parameters, 17);
  EXPECT_EQ(colors, 11);
  for (int tab = 0; tab < kOptionSheetTabCount; ++tab) EXPECT_FALSE(OptionSheetTabCaption(tab).isEmpty());
}

TEST_F(Sheet, ApplyWritesFlagsNumbersAndColoursIntoStateAndStore) {
  const int writesBefore = store.writeCount;
  const QString problem = ApplyOptionSheet(*s, store,
                                           {{Row("VisibleChannels"), QStringLiteral("0")},
                                            {Row("AccountOffset"), QStringLiteral("0")},
                                            {Row("ValueClearenceMin"), QStringLiteral(" 1 200 ")},
                                            {Row("ColorGrid"), QStringLiteral("255")}});
  EXPECT_TRUE(problem.isEmpty()) << problem.toStdString();
  EXPECT_FALSE(s->options.parameters.VisibleChannels);
  EXPECT_FALSE(s->AccountOffset);
  EXPECT_EQ(s->options.parameters.ValueClearenceMin, 1200);
  EXPECT_EQ(s->options.color.ColorGrid, 255);
  EXPECT_EQ(store.get(QStringLiteral("Parameters"), QStringLiteral("VisibleChannels")), QStringLiteral("0"));
  EXPECT_EQ(store.get(QStringLiteral("Parameters"), QStringLiteral("ValueClearenceMin")), QStringLiteral("1200"));
  EXPECT_EQ(store.get(QStringLiteral("Color"), QStringLiteral("ColorGrid")), QStringLiteral("255"));
  EXPECT_EQ(store.writeCount, writesBefore + 1);  // one file write for the whole sheet
  EXPECT_EQ(OptionSheetText(*s, *Row("ValueClearenceMin")), QStringLiteral("1200"));
}

TEST_F(Sheet, OneBadValueChangesNothing) {
  for (const QString& typed : {QStringLiteral("abc"), QStringLiteral("-5"), QStringLiteral("1e9"), QStringLiteral("")}) {
    const QString problem = ApplyOptionSheet(*s, store,
                                             {{Row("VisibleChannels"), QStringLiteral("0")},
                                              {Row("ValueClearenceMin"), typed}});
    EXPECT_TRUE(problem.contains(QStringLiteral("Величина минимального зазора"))) << typed.toStdString();
    EXPECT_TRUE(s->options.parameters.VisibleChannels);
    EXPECT_EQ(s->options.parameters.ValueClearenceMin, 500);
    EXPECT_TRUE(store.tree().empty());
  }
  EXPECT_FALSE(ApplyOptionSheet(*s, store, {{Row("ColorText"), QStringLiteral("16777216")}}).isEmpty());
  EXPECT_FALSE(ApplyOptionSheet(*s, store, {{Row("ColorType"), QStringLiteral("да")}}).isEmpty());
  EXPECT_TRUE(store.tree().empty());
}

TEST_F(Sheet, MinimumClearanceMustStayBelowMaximum) {
  const QString problem = ApplyOptionSheet(*s, store,
                                           {{Row("ValueClearenceMin"), QStringLiteral("4000")},
                                            {Row("ValueClearenceMax"), QStringLiteral("4000")}});
  EXPECT_FALSE(problem.isEmpty());
  EXPECT_EQ(s->options.parameters.ValueClearenceMax, 4000);
  EXPECT_EQ(s->options.parameters.ValueClearenceMin, 500);
}

TEST_F(Sheet, OutOfRangeValueInTheStoreKeepsTheDefaultAtLoad) {
  store.save(QStringLiteral("Parameters"), QStringLiteral("ValueClearenceMax"), QStringLiteral("-7"));
  EXPECT_FALSE(ReadSettingKey(store, *Row("ValueClearenceMax"), *s));
  EXPECT_EQ(s->options.parameters.ValueClearenceMax, 4000);
}

}  // namespace
}  // namespace aqx
