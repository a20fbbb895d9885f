// The small widgets: prompts as message boxes and notices, the panel bar,
// the start window, the drawn icons.

#include "ui/common/CopyPicture.h"
#include "ui/common/Icons.h"
#include "ui/common/PanelBar.h"
#include "ui/common/QtPrompts.h"
#include "ui/main/StartWindow.h"

#include <QAbstractButton>
#include <QApplication>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QElapsedTimer>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

namespace aqx {
namespace {

// Runs `act` on the modal dialog as soon as it is up.
void WhenModal(std::function<void(QWidget*)> act) {
  QTimer::singleShot(0, [act = std::move(act)] {
    QWidget* modal = QApplication::activeModalWidget();
    ASSERT_NE(modal, nullptr);
    act(modal);
  });
}

QAbstractButton* ButtonNamed(QMessageBox* box, const QString& text) {
  for (QAbstractButton* b : box->buttons())
    if (b->text() == text) return b;
  return nullptr;
}

TEST(QtPrompts, MessageBoxesAnswerWithTheButtonPressed) {
  ui::QtPrompts prompts;
  QStringList captions;
  WhenModal([&](QWidget* w) {
    auto* box = qobject_cast<QMessageBox*>(w);
    ASSERT_NE(box, nullptr);
    for (QAbstractButton* b : box->buttons()) captions << b->text();
    EXPECT_EQ(box->windowTitle(), QStringLiteral("Внимание"));
    EXPECT_EQ(box->text(), QStringLiteral("Данные не сохранены, продолжить?"));
    ButtonNamed(box, QStringLiteral("Нет"))->click();
  });
  EXPECT_EQ(prompts.ask(QStringLiteral("Данные не сохранены, продолжить?"), QStringLiteral("Внимание")), PromptAnswer::No);
  EXPECT_TRUE(captions.contains(QStringLiteral("Да")));
  EXPECT_TRUE(captions.contains(QStringLiteral("Нет")));

  WhenModal([](QWidget* w) { qobject_cast<QMessageBox*>(w)->reject(); });  // Escape or the frame
  EXPECT_EQ(prompts.message(QStringLiteral("?"), QStringLiteral("t"), PromptButtons::OkCancel, PromptIcon::Exclamation),
            PromptAnswer::Cancel);
  WhenModal([](QWidget* w) { ButtonNamed(qobject_cast<QMessageBox*>(w), QStringLiteral("Повтор"))->click(); });
  EXPECT_EQ(prompts.message(QStringLiteral("?"), QStringLiteral("t"), PromptButtons::RetryCancel, PromptIcon::Critical),
            PromptAnswer::Retry);
}

TEST(QtPrompts, InputReturnsTheTextOrNothing) {
  ui::QtPrompts prompts;
  WhenModal([](QWidget* w) {
    auto* dialog = qobject_cast<QInputDialog*>(w);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->textValue(), QStringLiteral("30"));
    dialog->setTextValue(QStringLiteral("45"));
    dialog->accept();
  });
  EXPECT_EQ(prompts.input(QStringLiteral("Угол сдвига"), QStringLiteral("Угол сдвига"), QStringLiteral("30")),
            std::optional<QString>(QStringLiteral("45")));
  WhenModal([](QWidget* w) { qobject_cast<QInputDialog*>(w)->reject(); });
  EXPECT_EQ(prompts.input(QStringLiteral("?"), QStringLiteral("t"), QString()), std::nullopt);
}

TEST(QtPrompts, NoticeShowsUpToThreeLinesAndEmptyLinesCloseIt) {
  QWidget owner;
  owner.resize(400, 300);
  owner.show();
  ui::QtPrompts prompts(&owner);
  prompts.notice({QStringLiteral("Подождите, идет обработка данных ..."), QString(), QString()});
  ASSERT_NE(prompts.noticeWindow(), nullptr);
  EXPECT_TRUE(prompts.noticeWindow()->isVisible());
  EXPECT_EQ(prompts.noticeWindow()->lines().front(), QStringLiteral("Подождите, идет обработка данных ..."));
  prompts.notice({QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4")});
  EXPECT_EQ(prompts.noticeWindow()->lines().size(), 3);
  prompts.closeNotice();
  EXPECT_FALSE(prompts.noticeWindow()->isVisible());
  prompts.notice({QString(), QString(), QString()});
  EXPECT_FALSE(prompts.noticeWindow()->isVisible());
}

class PanelBarTest : public testing::Test {
 protected:
  void SetUp() override {
    bar.resize(600, 24);
    bar.setPanels({{QStringLiteral("A"), QStringLiteral("M: 1:1 "), {}},
                   {QStringLiteral("B"), QStringLiteral("hidden"), {}, false},
                   {QStringLiteral("C"), QStringLiteral("off"), {}, true, false},
                   {QStringLiteral("D"), QStringLiteral("/a/very/long/path/to/the/recording.aqx"), {}, true, true, true, 40,
                    Qt::ElideMiddle}});
    bar.show();
  }
  void click(const QString& key, Qt::MouseButton button) {
    const QPointF at = bar.panelRect(key).center();
    QMouseEvent e(QEvent::MouseButtonPress, at, bar.mapToGlobal(at), button, button, Qt::NoModifier);
    QApplication::sendEvent(&bar, &e);
  }
  ui::PanelBar bar;
};

TEST_F(PanelBarTest, PanelsAreButtonsByKey) {
  std::vector<std::pair<QString, Qt::MouseButton>> clicks;
  QObject::connect(&bar, &ui::PanelBar::panelClicked,
                   [&](const QString& key, Qt::MouseButton button) { clicks.emplace_back(key, button); });
  click(QStringLiteral("A"), Qt::RightButton);
  ASSERT_EQ(clicks.size(), 1u);
  EXPECT_EQ(clicks[0].first, QStringLiteral("A"));
  EXPECT_EQ(clicks[0].second, Qt::RightButton);
  click(QStringLiteral("C"), Qt::LeftButton);  // disabled: no click
  EXPECT_EQ(clicks.size(), 1u);
  EXPECT_TRUE(bar.panelRect(QStringLiteral("B")).isEmpty());
  EXPECT_EQ(bar.joinedText(), QStringLiteral("M: 1:1 off /a/very/long/path/to/the/recording.aqx"));
}

TEST_F(PanelBarTest, StretchPanelFillsTheRestAndEqualWidthsShare) {
  const QRect a = bar.panelRect(QStringLiteral("A"));
  const QRect d = bar.panelRect(QStringLiteral("D"));
  EXPECT_LT(a.right(), bar.panelRect(QStringLiteral("C")).left());
  EXPECT_EQ(d.right(), bar.width() - 1);
  bar.setEqualWidths(true);
  EXPECT_NEAR(bar.panelRect(QStringLiteral("A")).width(), bar.panelRect(QStringLiteral("D")).width(), 1);
  bar.setVisibleOf(QStringLiteral("C"), false);
  EXPECT_EQ(bar.keyAt(bar.panelRect(QStringLiteral("D")).center()), QStringLiteral("D"));
}

TEST(StartWindow, StartsTheLoadOnceByTimerOrClick) {
  ui::StartWindow byClick(2, 60000);
  EXPECT_EQ(byClick.productText(), QStringLiteral("Aquilonix"));
  EXPECT_EQ(byClick.versionText(), QStringLiteral("v %1.%2").arg(AQX_VERSION_MAJOR).arg(AQX_VERSION_MINOR));
  EXPECT_FALSE(byClick.stationText().isEmpty());
  int clicked = 0;
  QObject::connect(&byClick, &ui::StartWindow::speedLoad, [&] { ++clicked; });
  byClick.show();
  for (int i = 0; i < 2; ++i) {
    QMouseEvent e(QEvent::MouseButtonPress, QPointF(100, 100), byClick.mapToGlobal(QPointF(100, 100)), Qt::LeftButton,
                  Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&byClick, &e);
  }
  EXPECT_EQ(clicked, 1);

  ui::StartWindow byTimer(1, 5);
  int timed = 0;
  QObject::connect(&byTimer, &ui::StartWindow::speedLoad, [&] { ++timed; });
  QElapsedTimer clock;
  clock.start();
  while (clock.elapsed() < 300) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  EXPECT_EQ(timed, 1);
}

TEST(Icons, EveryToolbarPictureIsDrawnAndDistinct) {
  std::vector<QImage> images;
  for (int i = 0; i <= static_cast<int>(ui::ToolIcon::Application); ++i) {
    const QIcon icon = ui::MakeToolIcon(static_cast<ui::ToolIcon>(i));
    ASSERT_FALSE(icon.isNull());
    const QImage image = icon.pixmap(24, 24).toImage();
    for (const QImage& other : images) EXPECT_NE(image, other) << i;
    images.push_back(image);
  }
  EXPECT_NE(ui::MakeChannelIcon(3, Qt::yellow, true).pixmap(24, 24).toImage(),
            ui::MakeChannelIcon(3, Qt::yellow, false).pixmap(24, 24).toImage());
}

TEST(CopyPicture, HeaderStandsAboveAWhiteMargin) {
  QImage picture(300, 100, QImage::Format_RGB32);
  picture.fill(Qt::green);
  const QImage copy = ui::ComposeCopyImage({QStringLiteral("Волжская ГЭС, Гидроагрегат №5"), QStringLiteral("Режим: Разгон")},
                                           picture, QFont(QStringLiteral("DejaVu Sans"), 10));
  ASSERT_GT(copy.height(), 100);
  EXPECT_EQ(copy.width(), 300);
  EXPECT_EQ(copy.pixelColor(5, copy.height() - 1), QColor(Qt::green));
  EXPECT_EQ(copy.pixelColor(299, copy.height() - 101), QColor(Qt::white));
  const QImage wide = ui::ComposeCopyImage({QString(200, QLatin1Char('W'))}, picture, QFont());
  EXPECT_GT(wide.width(), 300);
}

}  // namespace
}  // namespace aqx
