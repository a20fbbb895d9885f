#pragma once
// Prompts as the user sees them in the window program: message and input
// boxes, file dialogs and the non-modal notice over the main window.

#include "core/Prompts.h"

#include <QPointer>
#include <QWidget>

class QLabel;

namespace aqx::ui {

// "Описание (*.a;*.b)|*.a;*.b|..." to the Qt form "Описание (*.a *.b);;...".
// A description with a pattern list in brackets gets it replaced by the
// pattern part, so each entry shows its patterns once.
QString ToQtFileFilter(const QString& filter);

// The notice with up to three lines that stands over the main window while
// a long operation runs; it takes no input and never blocks.
class NoticeWindow : public QWidget {
  Q_OBJECT
 public:
  explicit NoticeWindow(QWidget* owner);
  void showLines(const QStringList& lines);
  QStringList lines() const;

 private:
  QLabel* label_ = nullptr;
};

class QtPrompts : public Prompts {
 public:
  // owner: the main window the dialogs are modal to; may be set later.
  explicit QtPrompts(QWidget* owner = nullptr) : owner_(owner) {}
  ~QtPrompts() override;
  void setOwner(QWidget* owner) { owner_ = owner; }

  PromptAnswer message(const QString& text, const QString& title, PromptButtons buttons,
                       PromptIcon icon) override;
  std::optional<QString> input(const QString& prompt, const QString& title,
                               const QString& defaultText) override;
  std::optional<QString> chooseOpenFile(const QString& title, const QString& folder,
                                        const QString& filter) override;
  std::optional<QString> chooseSaveFile(const QString& title, const QString& folder,
                                        const QString& fileName, const QString& filter) override;
  void notice(const QStringList& lines) override;

  // The notice window while it is up, else null.
  NoticeWindow* noticeWindow() const { return notice_; }

 private:
  // A notice stands over everything; a question under it could not be
  // answered, so every dialog takes it down first.
  void hideNotice();

  QPointer<QWidget> owner_;
  QPointer<NoticeWindow> notice_;
};

}  // namespace aqx::ui
