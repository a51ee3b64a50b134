#include "cli.h"

#include <algorithm>
#include <ostream>
#include <map>

#include "score/new_score.h"

namespace plectaro::cli {

namespace {

std::vector<Verb>& verbList() {
  static std::vector<Verb> verbs;
  return verbs;
}
std::map<std::string, Loader>& loaders() {
  static std::map<std::string, Loader> m;
  return m;
}
std::map<std::string, Saver>& savers() {
  static std::map<std::string, Saver> m;
  return m;
}
std::map<std::pair<std::string, std::string>, Converter>& converters() {
  static std::map<std::pair<std::string, std::string>, Converter> m;
  return m;
}
std::map<std::string, Player>& players() {
  static std::map<std::string, Player> m;
  return m;
}

bool contains(const std::vector<std::string>& v, const std::string& s) {
  return std::find(v.begin(), v.end(), s) != v.end();
}

std::string knownKinds(const auto& map) {
  std::string s;
  for (const auto& [ext, fn] : map) s += (s.empty() ? "" : ", ") + ext;
  return s;
}

}  // namespace

Args::Args(std::vector<std::string> words, std::vector<std::string> valueOptions,
           std::vector<std::string> flagOptions) {
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string& w = words[i];
    if (w.size() > 2 && w.rfind("--", 0) == 0) {
      if (contains(flagOptions, w)) {
        options_.emplace_back(w, "");
      } else if (contains(valueOptions, w)) {
        if (i + 1 >= words.size()) throw UsageError(w + " needs a value");
        options_.emplace_back(w, words[++i]);
      } else {
        throw UsageError("unknown option " + w);
      }
    } else {
      positional_.push_back(w);
    }
  }
}

const std::string& Args::at(size_t i) const {
  if (i >= positional_.size()) throw UsageError("missing argument");
  return positional_[i];
}

bool Args::has(const std::string& option) const {
  return std::any_of(options_.begin(), options_.end(), [&](const auto& o) { return o.first == option; });
}

std::string Args::value(const std::string& option, const std::string& fallback) const {
  for (const auto& [name, v] : options_)
    if (name == option) return v;
  return fallback;
}

int Args::intValue(const std::string& option, int fallback) const {
  if (!has(option)) return fallback;
  const std::string v = value(option);
  try {
    size_t used = 0;
    int n = std::stoi(v, &used);
    if (used != v.size()) throw std::invalid_argument(v);
    return n;
  } catch (const std::exception&) {
    throw UsageError(option + " takes a whole number, not \"" + v + "\"");
  }
}

void Args::expectPositional(size_t min, size_t max) const {
  if (positional_.size() < min) throw UsageError("missing argument");
  if (positional_.size() > max) throw UsageError("too many arguments");
}

Registrar::Registrar(Verb verb) { verbList().push_back(std::move(verb)); }
Registrar::Registrar(const std::string& ext, Loader loader) { loaders()[ext] = std::move(loader); }
Registrar::Registrar(const std::string& ext, Saver saver) { savers()[ext] = std::move(saver); }
Registrar::Registrar(const std::string& in, const std::string& out, Converter c) { converters()[{in, out}] = std::move(c); }
Registrar::Registrar(const std::string& ext, Player player) { players()[ext] = std::move(player); }

const Converter* FindConverter(const std::filesystem::path& in, const std::filesystem::path& out) {
  auto it = converters().find({ExtensionOf(in), ExtensionOf(out)});
  return it == converters().end() ? nullptr : &it->second;
}

const Player* FindPlayer(const std::filesystem::path& file) {
  auto it = players().find(ExtensionOf(file));
  return it == players().end() ? nullptr : &it->second;
}

const std::vector<Verb>& Verbs() {
  std::sort(verbList().begin(), verbList().end(), [](const Verb& a, const Verb& b) { return a.name < b.name; });
  return verbList();
}

const Verb* FindVerb(const std::string& name) {
  for (const Verb& v : Verbs())
    if (v.name == name) return &v;
  return nullptr;
}

void PrintUsage(std::ostream& out) {
  out << "usage: plectaro-cli [--home DIR] VERB ...\n\nverbs:\n";
  for (const Verb& v : Verbs()) out << "  " << v.usage << "\n";
}

CommandLine ParseCommandLine(int argc, char** argv) {
  CommandLine line;
  line.words.assign(argv + 1, argv + argc);
  if (line.words.size() >= 2 && line.words[0] == "--home") {
    line.home = line.words[1];
    line.words.erase(line.words.begin(), line.words.begin() + 2);
  }
  return line;
}

int RunVerb(const Verb& verb, const std::vector<std::string>& arguments, Context& ctx) {
  try {
    Args args(arguments, verb.valueOptions, verb.flagOptions);
    ctx.args = &args;
    return verb.run(ctx, args);
  } catch (const UsageError& e) {
    ctx.err << "plectaro-cli " << verb.name << ": " << e.what() << "\nusage: plectaro-cli " << verb.usage << "\n";
    return 2;
  } catch (const std::exception& e) {
    // Bad input of every kind (InputError, FileError, ScoreError...): one line, exit 1.
    ctx.err << "plectaro-cli: " << e.what() << "\n";
    return 1;
  }
}

std::string ExtensionOf(const std::filesystem::path& path) {
  std::string ext = path.extension().string();
  std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return std::tolower(c); });
  return ext;
}

Document LoadDocument(Context& ctx, const std::filesystem::path& path) {
  auto it = loaders().find(path == "-" ? std::string("-") : ExtensionOf(path));
  if (it == loaders().end())
    throw InputError("cannot read \"" + path.string() + "\": not a kind of file this program reads (" +
                     knownKinds(loaders()) + ")");
  Document doc;
  InitScore(doc, ctx.settings);
  it->second(ctx, path, doc);
  return doc;
}

void SaveDocument(Context& ctx, const Document& doc, const std::filesystem::path& path, const Args& args) {
  auto it = savers().find(ExtensionOf(path));
  if (it == savers().end())
    throw InputError("cannot write \"" + path.string() + "\": not a kind of file this program writes (" +
                     knownKinds(savers()) + ")");
  it->second(ctx, doc, path, args);
}

}  // namespace plectaro::cli
