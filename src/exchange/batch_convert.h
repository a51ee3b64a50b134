// Batch conversion: every file of one kind in a folder turned into another kind, one by one,
// through the same readers and writers as File > Import, File > Export and the command line.
//
// The kinds are a table by extension (BatchFormats): each format that can be read or written
// adds its row there, and both the Batch Convert window and `plectaro-cli batch` offer it.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "exchange/midi_import.h"
#include "exchange/text_tab_export.h"
#include "exchange/text_tab_import.h"
#include "score/document.h"
#include "score/settings_store.h"

namespace plectaro {

struct BatchSettings {
  const SettingsStore* Settings = nullptr;  // the defaults of a new document
  MidiImportOptions Midi;                   // how MIDI files are imported
  AsciiImportOptions Ascii;                 // how text tab is read
  TextExportOptions Text;                   // the warning block and line length of text tab
};

// Fills a document that InitScore has prepared from a file.
using BatchReader = std::function<void(const std::filesystem::path&, Document&, const BatchSettings&)>;
// Writes a document; the old file stays whole on failure (it goes through WriteFileAtomically).
using BatchWriter = std::function<void(const Document&, const std::filesystem::path&, const BatchSettings&)>;

struct BatchFormat {
  std::string Extension;            // ".mid"
  std::string Name;                 // "MIDI files", shown in the window's lists
  std::vector<std::string> Aliases; // more extensions read as this kind: ".midi"
  BatchReader Read;                 // empty when the kind cannot be read
  BatchWriter Write;                // empty when the kind cannot be written
};

const std::vector<BatchFormat>& BatchFormats();
// Adds a kind, or fills in the reader or writer of a kind already there. Kinds that need the
// window system (the engraved PDF) are added by the program that has one.
void AddBatchFormat(const BatchFormat& format);
// The format of an extension (".MID" and ".midi" included); null if none.
const BatchFormat* FindBatchFormat(const std::string& extension);

struct BatchJob {
  std::filesystem::path InFolder;
  std::string From;  // extension of the files to convert; "" every readable kind but To
  std::string To;    // extension to write
  std::filesystem::path OutFolder;  // "" beside the originals
  BatchSettings Settings;
};

struct BatchFailure {
  std::filesystem::path File;
  std::string Reason;
};

struct BatchResult {
  int Total = 0;
  int Converted = 0;
  std::vector<BatchFailure> Failures;
  bool Cancelled = false;
};

// The files the job would convert, sorted by name. Throws FileError when the folder cannot be
// read and ScoreError for a kind that cannot be read or written.
std::vector<std::filesystem::path> BatchFiles(const BatchJob& job);

// Converts them one by one. `progress` is told before each file (done so far, total, the file)
// and may return false to cancel; the file being written when cancel comes is finished, never
// left half-written.
BatchResult BatchConvert(const BatchJob& job,
                         const std::function<bool(int done, int total, const std::filesystem::path& file)>& progress = {});

}  // namespace plectaro
