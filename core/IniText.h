#pragma once
// The settings tree in the INI form that QSettings writes (sections, escaped
// keys, quoted and escaped values, "@" types): read from and written to
// bytes, with no file, no cache and no temporary copy in between.

#include "core/Settings.h"

#include <QByteArray>

namespace aqx {

struct IniParse {
  SettingsTree tree;
  // False when a line could not be made sense of (a section name that is
  // never closed); what could be read is in the tree all the same.
  bool wellFormed = true;
};

// Never fails: lines that are neither a section, a key nor a comment are
// passed over. A value that QSettings would read as a list ("83,3" without
// quotes) is its items joined by commas.
IniParse ParseIniText(const QByteArray& bytes);

// The text that ParseIniText reads back as the same tree, whatever the
// characters of sections, keys and values.
QByteArray IniTextOf(const SettingsTree& tree);

}  // namespace aqx
