#pragma once
// The command table of aquilonix-tool. Each command lives in its own file and
// is one row of the table in CommandTable.cpp.

#include "core/Prompts.h"

#include <QStringList>

#include <cstdio>
#include <optional>
#include <span>

namespace aqx::tool {

// Exit codes shared by all commands.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;  // the operation failed
inline constexpr int kExitRefused = 2;  // the input was refused (wrong file, bad arguments)

struct ToolContext {
  QStringList args;        // arguments after the command name
  QString settingsFile;    // --settings FILE, empty for the user's own
  FILE* out = stdout;
  Prompts* prompts = nullptr;  // messages the program would show go to stderr
};

struct ToolCommand {
  const char* name;
  const char* usage;  // one line for the help
  int (*run)(ToolContext& ctx);
};

std::span<const ToolCommand> CommandTable();
// Commands that paint pictures run under a GUI application object.
bool CommandNeedsGui(const QString& name);

// Small argument helpers: "--name value" options and positional arguments.
QString OptionValue(const QStringList& args, const QString& name, const QString& fallback = {});
bool HasFlag(const QStringList& args, const QString& name);
// Positional arguments, skipping options listed in valueOptions with their values.
QStringList Positionals(const QStringList& args, const QStringList& valueOptions);
// An integer option within bounds: the fallback when absent, nullopt (and a
// message naming the command) when given but no such number.
std::optional<int> IntOption(const QStringList& args, const QString& command, const QString& name, int fallback,
                             int low, int high);
// Writes UTF-8 text to a stream.
void Print(FILE* stream, const QString& text);

}  // namespace aqx::tool
