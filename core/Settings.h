#pragma once
// The per-user settings tree: sections of named text values, as the program
// has always kept them. The tree lives in memory; a backend writes it whole
// after each change (or once at the end of a batch), so a reader never sees a
// half-written file. Numbers are text in the locale's form ("83,3" with a
// decimal comma).

#include "core/Prompts.h"

#include <QLocale>
#include <QString>

#include <cstdint>
#include <map>
#include <optional>

namespace aqx {

// Application name: the settings folder, file name and the section of Start.
inline constexpr char kApplicationName[] = "Aquilonix";

using SettingsSection = std::map<QString, QString>;
using SettingsTree = std::map<QString, SettingsSection>;

class SettingsStore {
 public:
  virtual ~SettingsStore() = default;
  SettingsStore(const SettingsStore&) = delete;
  SettingsStore& operator=(const SettingsStore&) = delete;

  // A get never fails: a missing key gives the default.
  QString get(const QString& section, const QString& key, const QString& defaultValue = {}) const;
  bool contains(const QString& section, const QString& key) const;
  void save(const QString& section, const QString& key, const QString& value);
  void deleteKey(const QString& section, const QString& key);
  void deleteSection(const QString& section);
  void deleteAll();

  const SettingsTree& tree() const { return tree_; }
  // Replaces the whole tree and writes it. When the write fails the tree as
  // it was stays, in memory and on disk, and false is returned.
  bool replaceAll(SettingsTree tree);

  // Writes pending changes now (a no-op inside a batch). False when the
  // backend could not write; the first failure is told once through the
  // reporter, later ones are silent until a write succeeds again.
  bool flush();
  bool lastWriteFailed() const { return lastWriteFailed_; }
  void setFailureReporter(Prompts* prompts) { reporter_ = prompts; }
  // The backing file existed but could not be read whole: the store then
  // never writes it, so that what it could not read is not lost.
  virtual bool readWasIncomplete() const { return false; }
  // Tells the reporter once why the settings could not be read whole; a
  // no-op when they were.
  void reportReadProblem();

  // Numbers are written and read in this locale's form.
  const QLocale& locale() const { return locale_; }
  void setLocale(const QLocale& locale) { locale_ = locale; }

  // File behind the store; empty for a store in memory.
  virtual QString filePath() const { return {}; }

  // Holds writes back until the outermost batch ends, so that a command that
  // changes many keys writes the file once.
  class Batch {
   public:
    explicit Batch(SettingsStore& store) : store_(store) { ++store_.batchDepth_; }
    ~Batch() {
      if (--store_.batchDepth_ == 0) store_.flush();
    }
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

   private:
    SettingsStore& store_;
  };

 protected:
  explicit SettingsStore(SettingsTree initial = {});
  // Writes the whole tree to the backing medium; false on failure.
  virtual bool writeTree(const SettingsTree& tree) = 0;
  // What the user is told when a write fails.
  virtual QString writeFailureText() const;

 private:
  void changed();
  bool reportWrite(bool ok);

  SettingsTree tree_;
  QLocale locale_;
  int batchDepth_ = 0;
  bool dirty_ = false;
  bool lastWriteFailed_ = false;
  bool failureTold_ = false;
  Prompts* reporter_ = nullptr;
};

// A store that keeps the tree in memory only, for tests and for trying things
// out. failWrites makes every write fail, as a full or read-only disk would.
class MemorySettingsStore : public SettingsStore {
 public:
  explicit MemorySettingsStore(SettingsTree initial = {}) : SettingsStore(std::move(initial)) {}
  bool failWrites = false;
  int writeCount = 0;

 protected:
  bool writeTree(const SettingsTree&) override {
    ++writeCount;
    return !failWrites;
  }
};

struct SettingsFileRead {
  SettingsTree tree;
  bool exists = false;
  bool complete = true;  // false when the file could not be read
  bool wellFormed = true;  // false when some of it made no sense (see ParseIniText)
  QString problem;       // why not, for the user
};

// The tree in an INI file (the form QSettings writes). Garbled lines are
// passed over and dropped at the next write; a file that cannot be read at
// all (no permission, an I/O error, not a file, far too large) is never
// written, and every change then fails with a message.
class IniSettingsStore : public SettingsStore {
 public:
  explicit IniSettingsStore(const QString& filePath);
  QString filePath() const override { return filePath_; }
  bool readWasIncomplete() const override { return !readProblem_.isEmpty(); }

 protected:
  bool writeTree(const SettingsTree& tree) override;
  QString writeFailureText() const override;

 private:
  IniSettingsStore(const QString& filePath, SettingsFileRead read);

  QString filePath_;
  QString readProblem_;
};

// ~/.config/Aquilonix/Aquilonix.conf (or under $XDG_CONFIG_HOME).
QString DefaultSettingsPath();

// Reads an INI settings file from its bytes, with no copy on disk. A missing
// file is an empty tree; an unreadable one is marked incomplete.
SettingsFileRead ReadSettingsFile(const QString& path);
// Writes the tree to a temporary file beside path and renames it over path,
// creating the folder when missing. False when anything failed; path is then
// as it was.
bool WriteSettingsFile(const QString& path, const SettingsTree& tree);

// ---------------------------------------------------------------------------
// Values as text. Integers plainly, fractions with the locale's decimal
// separator and as few digits as give the value back, booleans as "1"/"0".
// ---------------------------------------------------------------------------

QString SettingText(int32_t v);
QString SettingText(double v, const QLocale& locale);
QString SettingText(float v, const QLocale& locale);
QString SettingText(bool v);

// Text to value; nullopt for text that is no number (or out of range).
// Integers take a fraction rounded half to even; booleans take "True",
// "False" or any number (non-zero is true).
std::optional<int32_t> ParseSettingInt(const QString& text, const QLocale& locale);
std::optional<double> ParseSettingDouble(const QString& text, const QLocale& locale);
std::optional<bool> ParseSettingBool(const QString& text, const QLocale& locale);

// Reads a key into a field. A missing key gives def; text that is no number
// leaves the field as it was and returns false, as the settings load always
// did with a garbled value.
bool ReadSetting(const SettingsStore& store, const QString& section, const QString& key,
                 int32_t& field, int32_t def);
bool ReadSetting(const SettingsStore& store, const QString& section, const QString& key,
                 double& field, double def);
bool ReadSetting(const SettingsStore& store, const QString& section, const QString& key,
                 float& field, float def);
bool ReadSetting(const SettingsStore& store, const QString& section, const QString& key,
                 bool& field, bool def);
void ReadSetting(const SettingsStore& store, const QString& section, const QString& key,
                 QString& field, const QString& def);

void WriteSetting(SettingsStore& store, const QString& section, const QString& key, int32_t v);
void WriteSetting(SettingsStore& store, const QString& section, const QString& key, double v);
void WriteSetting(SettingsStore& store, const QString& section, const QString& key, float v);
void WriteSetting(SettingsStore& store, const QString& section, const QString& key, bool v);
void WriteSetting(SettingsStore& store, const QString& section, const QString& key,
                  const QString& v);
// A string literal would otherwise become a bool.
void WriteSetting(SettingsStore& store, const QString& section, const QString& key,
                  const char* v) = delete;

}  // namespace aqx
