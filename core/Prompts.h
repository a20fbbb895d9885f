#pragma once
// Every question or message to the user goes through this interface, so that
// command logic runs the same in the window program, the command-line tool
// and the tests (with scripted answers).

#include <QString>
#include <QStringList>

#include <deque>
#include <optional>
#include <vector>

namespace aqx {

enum class PromptIcon { None, Information, Exclamation, Critical, Question };
enum class PromptButtons { Ok, OkCancel, YesNo, YesNoCancel, RetryCancel };
enum class PromptAnswer { Ok, Cancel, Yes, No, Retry };

class Prompts {
 public:
  virtual ~Prompts() = default;

  // Modal message box with title, buttons and icon.
  virtual PromptAnswer message(const QString& text, const QString& title, PromptButtons buttons,
                               PromptIcon icon) = 0;
  // Input box; nullopt when cancelled.
  virtual std::optional<QString> input(const QString& prompt, const QString& title,
                                       const QString& defaultText) = 0;
  // Open and save file choice; filter in the form "Описание (*.ext)|*.ext|...".
  virtual std::optional<QString> chooseOpenFile(const QString& title, const QString& folder,
                                                const QString& filter) = 0;
  virtual std::optional<QString> chooseSaveFile(const QString& title, const QString& folder,
                                                const QString& fileName, const QString& filter) = 0;
  // Non-blocking notice of up to three lines over the main window; empty
  // lines close it.
  virtual void notice(const QStringList& lines) = 0;

  // Shorthands.
  void tell(const QString& text, const QString& title, PromptIcon icon = PromptIcon::Information) {
    message(text, title, PromptButtons::Ok, icon);
  }
  PromptAnswer ask(const QString& text, const QString& title,
                   PromptButtons buttons = PromptButtons::YesNo,
                   PromptIcon icon = PromptIcon::Question) {
    return message(text, title, buttons, icon);
  }
  void closeNotice() { notice({}); }
};

// What a prompt showed, for tests and for the tool's stderr.
struct ShownPrompt {
  enum class Kind { Message, Input, OpenFile, SaveFile, Notice } kind = Kind::Message;
  QString text;
  QString title;
  PromptButtons buttons = PromptButtons::Ok;
  PromptIcon icon = PromptIcon::None;
};

// Answers from a queue and records everything shown. An empty queue answers
// a message with its first button (Ok or Yes) and cancels inputs and files.
class ScriptedPrompts : public Prompts {
 public:
  std::deque<PromptAnswer> answers;
  std::deque<std::optional<QString>> texts;  // inputs and file choices, in order
  std::vector<ShownPrompt> shown;

  PromptAnswer message(const QString& text, const QString& title, PromptButtons buttons,
                       PromptIcon icon) override;
  std::optional<QString> input(const QString& prompt, const QString& title,
                               const QString& defaultText) override;
  std::optional<QString> chooseOpenFile(const QString& title, const QString& folder,
                                        const QString& filter) override;
  std::optional<QString> chooseSaveFile(const QString& title, const QString& folder,
                                        const QString& fileName, const QString& filter) override;
  void notice(const QStringList& lines) override;

  // Messages only (no notices), in order.
  std::vector<ShownPrompt> messages() const;
  // Text of the last message box, or "".
  QString lastMessage() const;

 private:
  std::optional<QString> nextText();
};

// For the command-line tool: messages go to stderr as plain text; questions
// take the given answer; nothing is ever asked interactively.
class StderrPrompts : public Prompts {
 public:
  explicit StderrPrompts(PromptAnswer defaultAnswer = PromptAnswer::Yes, bool showNotices = false)
      : defaultAnswer_(defaultAnswer), showNotices_(showNotices) {}
  PromptAnswer message(const QString& text, const QString& title, PromptButtons buttons,
                       PromptIcon icon) override;
  std::optional<QString> input(const QString& prompt, const QString& title,
                               const QString& defaultText) override;
  std::optional<QString> chooseOpenFile(const QString&, const QString&, const QString&) override {
    return std::nullopt;
  }
  std::optional<QString> chooseSaveFile(const QString&, const QString&, const QString&,
                                        const QString&) override {
    return std::nullopt;
  }
  void notice(const QStringList& lines) override;
  int messageCount() const { return messageCount_; }

 private:
  PromptAnswer defaultAnswer_;
  bool showNotices_;
  int messageCount_ = 0;
};

// The answer a button set gives for "yes" / "ok", used as a default.
PromptAnswer AffirmativeAnswer(PromptButtons buttons);

}  // namespace aqx
