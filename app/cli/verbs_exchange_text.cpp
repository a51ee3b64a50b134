// Text tab for `convert`: .txt and .tab files (and "-", standard input) read into a score, and
// a track written as .txt, .tab or .html.
//
//   convert IN.txt|IN.tab|- OUT.plm [--enforce-length L] [--timing N:D] [--details]
//   convert IN.plm OUT.txt|OUT.tab|OUT.html [--track N] [--max-line L] [--warning|--no-warning]
#include <iostream>
#include <iterator>

#include "cli.h"
#include "exchange/text_tab_export.h"
#include "exchange/text_tab_import.h"
#include "score/file_io.h"
#include "shell/ini_settings.h"

namespace plectaro::cli {

namespace {

// --enforce-length takes the note value as guitarists say it: 1 whole ... 64 sixty-fourth.
int lengthOption(const Args& args) {
  const int value = args.intValue("--enforce-length", 16);
  for (int length = kWhole; length <= kSixtyFourth; ++length)
    if (value == 1 << length) return length;
  throw UsageError("--enforce-length takes 1, 2, 4, 8, 16, 32 or 64, not " + std::to_string(value));
}

void importText(Context& ctx, const std::string& bytes, Document& doc) {
  AsciiImportOptions o;
  if (ctx.args) {
    const Args& a = *ctx.args;
    o.GetFileDetails = a.has("--details");
    o.EnforceLength = a.has("--enforce-length");
    if (o.EnforceLength) o.Length = lengthOption(a);
    o.EnforceTiming = a.has("--timing");
    if (o.EnforceTiming) o.Timing = a.value("--timing");
  }
  Transact(doc, [&] { ASCIIToPLM(doc.score, doc.CursorTrack, DecodeTabText(bytes), o); });
}

void loadTextFile(Context& ctx, const std::filesystem::path& path, Document& doc) {
  importText(ctx, ReadWholeFile(path, size_t(64) << 20), doc);
}

void loadStdin(Context& ctx, const std::filesystem::path&, Document& doc) {
  const std::string bytes{std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
  importText(ctx, bytes, doc);
}

// What the export takes from PL4.ini, with this run's options over it.
struct TextExportJob {
  int track = 0;
  TextExportOptions options;
};

TextExportJob exportJob(Context& ctx, const Document& doc, const Args& args) {
  IniSettings ini;
  LoadINISettings(ini, ctx.app.iniFile());
  TextExportJob job;
  job.options.CopyrightWarning = ini.CopyrightWarning;
  job.options.MaxLineLength = ini.MaxLineLength;
  if (args.has("--warning") && args.has("--no-warning"))
    throw UsageError("--warning and --no-warning exclude each other");
  if (args.has("--warning")) job.options.CopyrightWarning = true;
  if (args.has("--no-warning")) job.options.CopyrightWarning = false;
  job.options.MaxLineLength = args.intValue("--max-line", job.options.MaxLineLength);
  if (job.options.MaxLineLength < 1) throw UsageError("--max-line takes a length of 1 or more");
  job.track = args.intValue("--track", 1) - 1;
  if (job.track < 0 || job.track > doc.score.LastTrack())
    throw InputError("the score has no track " + std::to_string(job.track + 1) + " (it has " +
                     std::to_string(doc.score.LastTrack() + 1) + ")");
  return job;
}

void saveText(Context& ctx, const Document& doc, const std::filesystem::path& path, const Args& args) {
  const TextExportJob job = exportJob(ctx, doc, args);
  ExportASCII(doc.score, job.track, job.options, path);
}

void saveHtml(Context& ctx, const Document& doc, const std::filesystem::path& path, const Args& args) {
  const TextExportJob job = exportJob(ctx, doc, args);
  ExportHTML(doc.score, job.track, job.options, path);
}

const Registrar txtLoader(".txt", Loader(loadTextFile));
const Registrar tabLoader(".tab", Loader(loadTextFile));
const Registrar stdinLoader("-", Loader(loadStdin));
const Registrar txtSaver(".txt", Saver(saveText));
const Registrar tabSaver(".tab", Saver(saveText));
const Registrar htmlSaver(".html", Saver(saveHtml));
const Registrar htmSaver(".htm", Saver(saveHtml));

}  // namespace

}  // namespace plectaro::cli
