#pragma once
// The shaft and rotor views of the main window: the trajectory and the three
// rotor form windows, their commands in the view menu, their popup menus,
// the console and the spoke settings. The main window owns one and asks it
// whenever one of these windows is opened, refreshed, copied or closed.

#include "core/Prompts.h"
#include "ui/main/ViewHost.h"
#include "ui/rotor/FormaWindow.h"
#include "views/ViewRefresh.h"

#include <QHash>
#include <QObject>
#include <QPointer>

#include <array>
#include <functional>

class QAction;
class QActionGroup;
class QMdiSubWindow;
class QMenu;

namespace aqx::ui {

class ConsoleWindow;
class SpicaWindow;
class TraectoriaWindow;

class ShaftViews : public QObject {
  Q_OBJECT
 public:
  struct Hooks {
    std::function<QMdiSubWindow*(int window)> openView;
    std::function<void(int window)> closeView;
    std::function<void()> viewRefresh;
    std::function<void()> refreshToolbars;
  };

  ShaftViews(ViewHost& host, Prompts& prompts, QHash<QString, QAction*>& actions, QWidget* frame, Hooks hooks);
  ~ShaftViews() override;

  // mnuViewTraectoria, mnuViewFormaRotor, mnuViewFormaRotorDiagram and
  // mnuViewFormaRotorSpectr, appended to the view menu.
  void addViewCommands(QMenu* view);
  // The popups mnuTraectoria, mnuFormaRotorS, mnuFormaRotorDiagrams and
  // mnuFormaRotorSpectrs; they never stand in the menu bar.
  void buildPopupMenus();

  // The main window's view slots for these windows.
  bool handles(int window) const;
  QPointer<QMdiSubWindow>* slot(int window);
  QWidget* createContent(int window);
  void closeAll();

  // The view command of a window: closes it when open; else opens it, for
  // the rotor form windows after computing the form unless one of them
  // stands already.
  void toggleView(int window);
  void installRefresh(views::ViewRegistry& registry);
  // mnuFileCopy for an active window of these; false for another window.
  bool copyPicture(QWidget* content);
  void refreshCommands(bool data);
  void updateChecks();

  // Commands of the popups.
  void showPopup(int window, const QPoint& globalPos);
  void showConsole();
  void showSpicaSettings();

  // For tests.
  TraectoriaWindow* traectoriaWindow() const;
  FormaWindow* formaWindow(FormaKind kind) const;
  ConsoleWindow* console() const;
  SpicaWindow* spicaWindow() const;
  QMenu* popupMenu(int window) const;

 private:
  QAction* command(QMenu* menu, const char* name, const QString& caption, std::function<void()> run);
  QAction* choice(QMenu* menu, QActionGroup* group, const char* key, int value, const QString& caption);
  void formaOptionsChanged();
  void refreshPopupChecks();

  ViewHost& host_;
  AppState& s_;
  Prompts& prompts_;
  QHash<QString, QAction*>& actions_;
  QWidget* frame_;
  Hooks hooks_;
  QPointer<QMdiSubWindow> traectoriaSub_;
  std::array<QPointer<QMdiSubWindow>, 3> formaSubs_;
  QPointer<ConsoleWindow> console_;
  QPointer<SpicaWindow> spica_;
  QMenu* traectoriaMenu_ = nullptr;
  QMenu* formaRotorMenu_ = nullptr;
  QMenu* formaDiagramMenu_ = nullptr;
  QMenu* formaSpectrMenu_ = nullptr;
  // The one-of-a-set entries and the value each stands for.
  std::vector<std::pair<QAction*, int>> choices_;
};

}  // namespace aqx::ui
