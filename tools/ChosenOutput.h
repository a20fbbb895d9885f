#pragma once
// Prompts for a tool command that runs a command of the program: everything
// goes on to the tool's prompts, but the save dialog chooses the output
// named on the command line.

#include "core/Prompts.h"

#include <utility>

namespace aqx::tool {

class ChosenOutput : public Prompts {
 public:
  ChosenOutput(Prompts& inner, QString output) : inner_(inner), output_(std::move(output)) {}
  PromptAnswer message(const QString& text, const QString& title, PromptButtons buttons,
                       PromptIcon icon) override {
    return inner_.message(text, title, buttons, icon);
  }
  std::optional<QString> input(const QString& prompt, const QString& title,
                               const QString& defaultText) override {
    return inner_.input(prompt, title, defaultText);
  }
  std::optional<QString> chooseOpenFile(const QString& title, const QString& folder,
                                        const QString& filter) override {
    return inner_.chooseOpenFile(title, folder, filter);
  }
  std::optional<QString> chooseSaveFile(const QString&, const QString&, const QString&,
                                        const QString&) override {
    return output_;
  }
  void notice(const QStringList& lines) override { inner_.notice(lines); }

 private:
  Prompts& inner_;
  QString output_;
};

}  // namespace aqx::tool
