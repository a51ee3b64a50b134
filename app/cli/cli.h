// plectaro-cli: batch verbs over the same libraries as the editor.
//
// Each verbs_*.cpp file registers its verbs with a static Registrar, so a subsystem adds its
// verbs without touching main.cpp. The same goes for the file kinds that `convert` and `info`
// understand: loaders by input extension, savers by output extension.
//
// Exit codes: 0 done; 1 bad input (one line on stderr, nothing written); 2 wrong usage.
#pragma once

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "score/document.h"
#include "score/settings_store.h"
#include "shell/app_folder.h"

namespace plectaro {
struct PlaybackOptions;
}

namespace plectaro::cli {

// Wrong usage: exit 2 with the usage line of the verb.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};
// Bad input: exit 1 with this message.
struct InputError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class Args;

struct Context {
  AppFolder app;
  SettingsStore& settings;
  std::ostream& out;
  std::ostream& err;
  // The options of the running verb, for loaders that take some (how to read text tab).
  const Args* args = nullptr;
};

// Arguments after the verb: positionals and --options, the latter with or without a value.
class Args {
 public:
  Args(std::vector<std::string> words, std::vector<std::string> valueOptions,
       std::vector<std::string> flagOptions);
  const std::vector<std::string>& positional() const { return positional_; }
  const std::string& at(size_t i) const;  // UsageError when missing
  bool has(const std::string& option) const;
  std::string value(const std::string& option, const std::string& fallback = "") const;
  int intValue(const std::string& option, int fallback) const;  // UsageError when not a number
  void expectPositional(size_t min, size_t max) const;

 private:
  std::vector<std::string> positional_;
  std::vector<std::pair<std::string, std::string>> options_;
};

struct Verb {
  std::string name;
  std::string usage;  // "info FILE [--json]"
  std::vector<std::string> valueOptions;
  std::vector<std::string> flagOptions;
  std::function<int(Context&, const Args&)> run;
};

// Reads a file of some kind into a document (InitScore has run on it).
using Loader = std::function<void(Context&, const std::filesystem::path&, Document&)>;
// Writes the document to a file of some kind; the Args are those of the verb that saves.
using Saver = std::function<void(Context&, const Document&, const std::filesystem::path&, const Args&)>;

// Turns one kind of file that is not a score into another (a drum pattern into a MIDI file);
// `convert` asks these first, by the pair of extensions.
using Converter = std::function<void(Context&, const std::filesystem::path& in, const std::filesystem::path& out)>;
// Plays a file that is not a score (a drum pattern, a metronome program); `play` hands such a
// file to the player of its extension, with the verb's Args.
using Player = std::function<int(Context&, const Args&)>;

struct Registrar {
  explicit Registrar(Verb verb);
  Registrar(const std::string& extension, Loader loader);
  Registrar(const std::string& extension, Saver saver);
  Registrar(const std::string& inExtension, const std::string& outExtension, Converter converter);
  Registrar(const std::string& extension, Player player);
};

// Null when no converter or player is registered for the file kinds.
const Converter* FindConverter(const std::filesystem::path& in, const std::filesystem::path& out);
const Player* FindPlayer(const std::filesystem::path& file);

const std::vector<Verb>& Verbs();
const Verb* FindVerb(const std::string& name);
void PrintUsage(std::ostream& out);

// The words of a command line: --home DIR first if given, then the verb and its arguments.
struct CommandLine {
  std::string home;
  std::vector<std::string> words;
};
CommandLine ParseCommandLine(int argc, char** argv);
// Runs the verb on the arguments after it; the exit code, with the message of any failure.
int RunVerb(const Verb& verb, const std::vector<std::string>& arguments, Context& ctx);
// Lower-case extension with its dot: ".plm".
std::string ExtensionOf(const std::filesystem::path& path);
// Loads any known kind into a fresh document; InputError for an unknown kind or a bad file.
// The path "-" is standard input, read by the loader registered for "-".
Document LoadDocument(Context& ctx, const std::filesystem::path& path);
// Playback as the user set it up in the editor: count-in, metronome and the effect settings of
// the app folder's PL4.ini, with --count-in and --metronome switching those on besides. With no
// PL4.ini yet, count-in and metronome are off unless asked for: a batch run does not click
// through a count-in that nobody chose. Defined with the playback verbs.
PlaybackOptions UserPlaybackOptions(const Context& ctx, bool countIn, bool metronome);
// Saves through the saver of the path's extension; InputError for an unknown kind.
void SaveDocument(Context& ctx, const Document& doc, const std::filesystem::path& path, const Args& args);

}  // namespace plectaro::cli
