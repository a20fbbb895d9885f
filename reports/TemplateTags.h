#pragma once
// The tags a station writes into its own protocol form, and their values:
// "Aquilonix/" + mode + "/" + type number + "/" + place + "/" + direction +
// "/" + name, e.g. "Aquilonix/Номинал/1/ВГП/X/ОУ/С".

#include "reports/ReportReadings.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <vector>

namespace aqx::reports {

inline constexpr char16_t kTagRoot[] = u"Aquilonix/";

// "Aquilonix/" + mode + "/" + type + "/" + place + "/" + direction + "/".
QString TagPrefix(const QString& mode, int32_t type, const QString& place, const QString& direct);

class TemplateTags {
 public:
  // The first value given for a tag stays: of two files of the same mode and
  // channel, the first fills the form.
  void add(const QString& tag, const QString& value);
  const QString* find(const QString& tag) const;
  int size() const { return static_cast<int>(values_.size()); }

  // Replaces every tag in a cell's text by its value and returns how many
  // were replaced. A cell whose whole text is a tag takes the value; a tag
  // inside longer text is replaced there and the text around it stays. A
  // tag counts only where it is not followed by more of a name (a letter,
  // a digit, "/", or a decimal separator before a digit), so that the tag
  // ".../А" is not found inside ".../А12,50"; of two tags starting at the
  // same place the longer wins. Unknown tags are left as written.
  int replaceIn(QString& text) const;
  // A channel read from the files; its tags may be in the form.
  void addChannel(const QString& prefix);
  // The tags in a (filled) text that belong to a channel read but name no
  // parameter of the tag grammar: a station's typing error, told to the user.
  QStringList unknownIn(const QString& text) const;

 private:
  QHash<QString, QString> values_;
  std::vector<qsizetype> lengths_;  // of the tags known, longest first
  QStringList prefixes_;            // of the channels read
};

// The tags of every channel of the files read, in file order.
TemplateTags BuildTemplateTags(const std::vector<FileReadings>& files);

}  // namespace aqx::reports
