// The signal view window driven through real widget events: the mouse on
// the picture, keys, the wheel, the bars and the status panels.

#include "UiTestSupport.h"

#include "ui/common/PanelBar.h"
#include "ui/signal/SignalWindow.h"

#include <QAction>
#include <QApplication>
#include <QMdiArea>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QSlider>
#include <QWheelEvent>

#include <gtest/gtest.h>

namespace aqx {
namespace {

class SignalWindowTest : public testing::Test {
 protected:
  void SetUp() override {
    const QString file = w.path(QStringLiteral("demo.aqx"));
    ASSERT_TRUE(uitest::WriteRecording(file, 32768));
    ASSERT_TRUE(w.window->OpenFile(file));
    w.window->action(QStringLiteral("mnuViewStyle0"))->trigger();
    view = w.window->signalWindow();
    ASSERT_NE(view, nullptr);
    picture = view->pictureWidget();
    QCoreApplication::processEvents();
  }

  void mouse(QEvent::Type type, QPointF pos, Qt::MouseButton button, Qt::MouseButtons held) {
    QMouseEvent e(type, pos, picture->mapToGlobal(pos), button, held, Qt::NoModifier);
    QApplication::sendEvent(picture, &e);
  }
  void drag(double fromX, double toX, double y) {
    mouse(QEvent::MouseMove, QPointF(fromX, y), Qt::NoButton, Qt::NoButton);
    mouse(QEvent::MouseButtonPress, QPointF(fromX, y), Qt::LeftButton, Qt::LeftButton);
    for (int k = 1; k <= 4; ++k)
      mouse(QEvent::MouseMove, QPointF(fromX + (toX - fromX) * k / 4, y), Qt::NoButton, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, QPointF(toX, y), Qt::LeftButton, Qt::NoButton);
  }
  void key(int k, Qt::KeyboardModifiers m = Qt::NoModifier) {
    QKeyEvent e(QEvent::KeyPress, k, m);
    QApplication::sendEvent(view, &e);
  }
  void setCursor(int entry) {
    w.state->options.signal.Cursor = entry;
    view->optionsChanged();
  }
  QString panel(const char* key) const { return view->statusBar()->text(QString::fromLatin1(key)); }

  uitest::Workbench w;
  ui::SignalWindow* view = nullptr;
  QWidget* picture = nullptr;
};

TEST_F(SignalWindowTest, DragWithTheCursorSelectsInEitherDirection) {
  setCursor(0);
  const double width = picture->width();
  drag(width * 0.25, width * 0.75, 100);
  EXPECT_GT(w.state->SelectFirst, w.state->ViewFirst);
  EXPECT_LT(w.state->SelectFirst, w.state->SelectLast);
  EXPECT_LT(w.state->SelectLast, w.state->ViewLast);
  EXPECT_TRUE(panel("Select").startsWith(QStringLiteral("S: 0:00:")));
  const int first = w.state->SelectFirst, last = w.state->SelectLast;
  drag(width * 0.75, width * 0.25, 100);
  EXPECT_LT(w.state->SelectFirst, w.state->SelectLast);
  EXPECT_NEAR(w.state->SelectFirst, first, 40);
  EXPECT_NEAR(w.state->SelectLast, last, 40);
  // Past the edge: held to the visible range.
  drag(width * 0.5, width * 3, 100);
  EXPECT_EQ(w.state->SelectLast, w.state->ViewLast);
}

TEST_F(SignalWindowTest, WithoutCursorAClickClearsAndADragPans) {
  setCursor(0);
  drag(picture->width() * 0.2, picture->width() * 0.6, 100);
  ASSERT_GT(w.state->SelectFirst, 0);
  setCursor(-1);
  mouse(QEvent::MouseButtonPress, QPointF(30, 30), Qt::LeftButton, Qt::LeftButton);
  mouse(QEvent::MouseButtonRelease, QPointF(30, 30), Qt::LeftButton, Qt::NoButton);
  EXPECT_EQ(w.state->SelectFirst, 0);
  EXPECT_EQ(w.state->SelectLast, 0);
  EXPECT_EQ(panel("Select"), QStringLiteral("S: - "));
  // Zoomed in, a drag to the left moves the window later in time.
  emit view->statusBar()->panelClicked(QStringLiteral("Scale"), Qt::LeftButton);
  emit view->statusBar()->panelClicked(QStringLiteral("Scale"), Qt::LeftButton);
  ASSERT_EQ(view->viewState().SliderH, 2);
  const int before = w.state->ViewFirst;
  drag(picture->width() * 0.8, picture->width() * 0.2, 100);
  EXPECT_GT(w.state->ViewFirst, before);
  EXPECT_EQ(view->hScroll()->value(), view->viewState().timeScroll);
}

TEST_F(SignalWindowTest, CursorsReadTimeAndValue) {
  setCursor(0);
  mouse(QEvent::MouseMove, QPointF(picture->width() / 2.0, 40), Qt::NoButton, Qt::NoButton);
  EXPECT_TRUE(panel("Cursor").startsWith(QStringLiteral("C1: ")));
  EXPECT_TRUE(panel("Level").startsWith(QStringLiteral("V: ")));
  EXPECT_TRUE(panel("Level").contains(QStringLiteral("мкм")));
  EXPECT_GE(view->viewState().CursorX, 0);
  // Right click on the cursor panel: the bound cursor.
  emit view->statusBar()->panelClicked(QStringLiteral("Cursor"), Qt::RightButton);
  EXPECT_EQ(w.state->options.signal.Cursor, 1);
  EXPECT_EQ(w.store.get(QStringLiteral("Signal"), QStringLiteral("Cursor")), QStringLiteral("1"));
  mouse(QEvent::MouseMove, QPointF(picture->width() / 3.0, 40), Qt::NoButton, Qt::NoButton);
  EXPECT_TRUE(panel("Cursor").startsWith(QStringLiteral("C2: ")));
  EXPECT_TRUE(w.window->action(QStringLiteral("mnuSignalCursor1"))->isChecked());
  // Outside the picture nothing moves.
  const int x = view->viewState().CursorX;
  mouse(QEvent::MouseMove, QPointF(picture->width() + 50, 40), Qt::NoButton, Qt::NoButton);
  EXPECT_EQ(view->viewState().CursorX, x);
  // The same entry again switches the cursor off.
  emit view->statusBar()->panelClicked(QStringLiteral("Cursor"), Qt::RightButton);
  EXPECT_EQ(panel("Cursor"), QStringLiteral("C0: - "));
}

TEST_F(SignalWindowTest, KeysWheelSlidersAndScrollBars) {
  key(Qt::Key_Plus);
  EXPECT_EQ(view->viewState().SliderH, 1);
  EXPECT_EQ(view->sliderH()->value(), 1);
  EXPECT_EQ(panel("Scale"), QStringLiteral("M: 2:1 "));
  const int first = w.state->ViewFirst;
  key(Qt::Key_End);
  EXPECT_GT(w.state->ViewFirst, first);
  EXPECT_NEAR(w.state->ViewLast, 32768, 1);
  key(Qt::Key_Home);
  EXPECT_EQ(w.state->ViewFirst, 1);
  QWheelEvent zoom(QPointF(10, 10), picture->mapToGlobal(QPointF(10, 10)), QPoint(), QPoint(0, 240), Qt::NoButton,
                   Qt::ControlModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(view, &zoom);
  EXPECT_EQ(view->viewState().SliderH, 3);
  key(Qt::Key_Minus);
  EXPECT_EQ(view->viewState().SliderH, 2);
  view->sliderH()->setValue(0);
  EXPECT_EQ(w.state->ViewFirst, 1);
  EXPECT_EQ(w.state->ViewLast, 32768);
  // The amplitude slider: a fixed scale, then "Авто" again.
  view->sliderV()->setValue(3);
  EXPECT_EQ(w.state->channels.ChannelYm[1], views::AmplitudeScale(3));
  EXPECT_TRUE(panel("Dimension").startsWith(QStringLiteral("D: ")));
  view->sliderV()->setValue(-1);
  EXPECT_EQ(view->sliderV()->toolTip(), QStringLiteral("Авто"));
  // The zero line follows its scroll bar.
  view->vScroll()->setValue(view->vScroll()->minimum() + 10);
  EXPECT_EQ(w.state->channels.ChannelY[1], view->vScroll()->minimum() + 10);
}

TEST_F(SignalWindowTest, ParameterBarFollowsTheChannelType) {
  ASSERT_TRUE(view->parameterBar()->isVisible());
  EXPECT_EQ(view->parameterBar()->panels().size(), 3u);  // run-out
  EXPECT_TRUE(view->parameterBar()->panels()[0].text.startsWith(QStringLiteral("ОУ (0-20Гц): ")));
  w.window->SelectActiveChannel(2);
  EXPECT_EQ(view->parameterBar()->panels().size(), 5u);  // vibration
  w.window->SelectActiveChannel(3);
  EXPECT_TRUE(view->parameterBar()->panels()[0].text.startsWith(QStringLiteral("Частота вращения: ")));
  // The menu hides the bar and the controls; the choice is kept.
  w.window->action(QStringLiteral("mnuSignalStatusBarParameter"))->trigger();
  EXPECT_FALSE(view->parameterBar()->isVisible());
  EXPECT_EQ(w.store.get(QStringLiteral("Signal"), QStringLiteral("StatusBarParameter")), QStringLiteral("0"));
  w.window->action(QStringLiteral("mnuSignalControl"))->trigger();
  EXPECT_FALSE(view->sliderH()->isVisible());
  EXPECT_FALSE(view->hScroll()->isVisible());
  w.window->action(QStringLiteral("mnuSignalStatusBar"))->trigger();
  EXPECT_FALSE(view->statusBar()->isVisible());
  EXPECT_EQ(view->pictureWidget()->height(), view->height());
}

TEST_F(SignalWindowTest, RightButtonOpensTheViewMenuAndCloseKeepsThePlacement) {
  mouse(QEvent::MouseButtonPress, QPointF(20, 20), Qt::RightButton, Qt::RightButton);
  EXPECT_TRUE(w.window->signalMenu()->isVisible());
  w.window->signalMenu()->close();
  view->vScroll()->setValue(view->vScroll()->minimum() + 7);
  const int y = w.state->channels.ChannelY[1];
  w.window->action(QStringLiteral("mnuViewSignal"))->trigger();  // closes the view
  EXPECT_EQ(w.window->signalWindow(), nullptr);
  EXPECT_FALSE(w.state->ViewOpenFlags[frmViewSignal]);
  EXPECT_EQ(w.store.get(QStringLiteral("Channel"), QStringLiteral("ChannelY1")), QString::number(y));
}

}  // namespace
}  // namespace aqx
