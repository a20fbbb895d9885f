#include "core/Prompts.h"

#include <cstdio>

namespace aqx {

PromptAnswer AffirmativeAnswer(PromptButtons buttons) {
  switch (buttons) {
    case PromptButtons::YesNo:
    case PromptButtons::YesNoCancel: return PromptAnswer::Yes;
    case PromptButtons::RetryCancel: return PromptAnswer::Retry;
    default: return PromptAnswer::Ok;
  }
}

PromptAnswer ScriptedPrompts::message(const QString& text, const QString& title,
                                      PromptButtons buttons, PromptIcon icon) {
  shown.push_back({ShownPrompt::Kind::Message, text, title, buttons, icon});
  if (answers.empty()) return AffirmativeAnswer(buttons);
  const PromptAnswer a = answers.front();
  answers.pop_front();
  return a;
}

std::optional<QString> ScriptedPrompts::nextText() {
  if (texts.empty()) return std::nullopt;
  auto t = texts.front();
  texts.pop_front();
  return t;
}

std::optional<QString> ScriptedPrompts::input(const QString& prompt, const QString& title,
                                              const QString&) {
  shown.push_back({ShownPrompt::Kind::Input, prompt, title, PromptButtons::OkCancel, PromptIcon::None});
  return nextText();
}

std::optional<QString> ScriptedPrompts::chooseOpenFile(const QString& title, const QString& folder,
                                                       const QString&) {
  shown.push_back({ShownPrompt::Kind::OpenFile, folder, title, PromptButtons::OkCancel, PromptIcon::None});
  return nextText();
}

std::optional<QString> ScriptedPrompts::chooseSaveFile(const QString& title, const QString& folder,
                                                       const QString& fileName, const QString&) {
  shown.push_back({ShownPrompt::Kind::SaveFile, folder + QLatin1Char('|') + fileName, title,
                   PromptButtons::OkCancel, PromptIcon::None});
  return nextText();
}

void ScriptedPrompts::notice(const QStringList& lines) {
  shown.push_back({ShownPrompt::Kind::Notice, lines.join(QLatin1Char('\n')), {}, PromptButtons::Ok,
                   PromptIcon::None});
}

std::vector<ShownPrompt> ScriptedPrompts::messages() const {
  std::vector<ShownPrompt> out;
  for (const auto& p : shown)
    if (p.kind == ShownPrompt::Kind::Message) out.push_back(p);
  return out;
}

QString ScriptedPrompts::lastMessage() const {
  for (auto it = shown.rbegin(); it != shown.rend(); ++it)
    if (it->kind == ShownPrompt::Kind::Message) return it->text;
  return {};
}

PromptAnswer StderrPrompts::message(const QString& text, const QString& title, PromptButtons buttons,
                                    PromptIcon) {
  ++messageCount_;
  const QByteArray out = (title.isEmpty() ? text : title + QStringLiteral(": ") + text).toUtf8();
  std::fprintf(stderr, "%s\n", out.constData());
  if (buttons == PromptButtons::Ok) return PromptAnswer::Ok;
  if (defaultAnswer_ == PromptAnswer::Yes || defaultAnswer_ == PromptAnswer::Ok)
    return AffirmativeAnswer(buttons);
  return buttons == PromptButtons::YesNo ? PromptAnswer::No : PromptAnswer::Cancel;
}

std::optional<QString> StderrPrompts::input(const QString&, const QString&, const QString& defaultText) {
  return defaultText;
}

void StderrPrompts::notice(const QStringList& lines) {
  if (!showNotices_ || lines.isEmpty()) return;
  std::fprintf(stderr, "%s\n", lines.join(QLatin1Char(' ')).toUtf8().constData());
}

}  // namespace aqx
