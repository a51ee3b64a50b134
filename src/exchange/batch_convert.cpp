#include "exchange/batch_convert.h"

#include <algorithm>
#include <system_error>

#include "exchange/midi_export.h"
#include "exchange/wave_export.h"
#include "playback/fluidsynth_out.h"
#include "score/file_io.h"
#include "score/music_file.h"
#include "score/new_score.h"

namespace plectaro {

namespace {

std::string lower(std::string s) {
  std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return std::tolower(c); });
  return s;
}

void readPlm(const std::filesystem::path& path, Document& doc, const BatchSettings& settings) {
  const MemorySettingsStore none;
  ReadProgress progress;
  const OpenOutcome r = OpenMusicFile(
      doc, path, settings.Settings ? *settings.Settings : static_cast<const SettingsStore&>(none), &progress);
  if (r == OpenOutcome::WrongFile) throw FileError("\"" + path.string() + "\" is not a Plectaro music file");
  if (r == OpenOutcome::Damaged) throw FileError("\"" + path.string() + "\" is " + DescribeDamage(progress));
}

void readMid(const std::filesystem::path& path, Document& doc, const BatchSettings& settings) {
  ImportMIDIFile(path, settings.Midi, doc.score);
}

void readTxt(const std::filesystem::path& path, Document& doc, const BatchSettings& settings) {
  const std::string untitled = doc.score.Title;
  ASCIIToPLM(doc.score, 0, DecodeTabText(ReadWholeFile(path, size_t(64) << 20)), settings.Ascii);
  // A title found in the text wins; else the song is named after its file, as MIDI imports are.
  if (doc.score.Title == untitled) doc.score.Title = path.stem().string();
}

// A text file holds one track. The first that is not a drum track is the one a guitarist
// wants as tab; a song of drums only writes its first track.
void writeTxt(const Document& doc, const std::filesystem::path& path, const BatchSettings& settings) {
  int track = 0;
  for (int t = doc.score.LastTrack(); t >= 0; --t)
    if (!doc.score.Tracks[static_cast<size_t>(t)].DrumTrack) track = t;
  ExportASCII(doc.score, track, settings.Text, path);
}

void writeWav(const Document& doc, const std::filesystem::path& path, const BatchSettings& settings) {
  WaveJob job;
  job.ToBar = static_cast<int>(doc.score.BarInfos.size()) - 1;
  job.Options.FollowPlayback = false;
  job.SoundFont = FindSoundFont(settings.Settings);
  ExportWave(doc.score, job, path);
}

std::vector<BatchFormat>& formats() {
  static std::vector<BatchFormat> list = {
      {".plm", "Plectaro music files", {}, readPlm,
       [](const Document& d, const std::filesystem::path& p, const BatchSettings&) { SaveMusicFile(d.score, p); }},
      {".mid", "MIDI files", {".midi"}, readMid,
       [](const Document& d, const std::filesystem::path& p, const BatchSettings&) { MakeMIDIFile(d.score, p); }},
      {".txt", "Text tab files", {".tab"}, readTxt, writeTxt},
      {".wav", "Wave files", {}, {}, writeWav},
  };
  return list;
}

}  // namespace

const std::vector<BatchFormat>& BatchFormats() { return formats(); }

void AddBatchFormat(const BatchFormat& format) {
  for (BatchFormat& f : formats()) {
    if (f.Extension != format.Extension) continue;
    if (format.Read) f.Read = format.Read;
    if (format.Write) f.Write = format.Write;
    return;
  }
  formats().push_back(format);
}

const BatchFormat* FindBatchFormat(const std::string& extension) {
  const std::string ext = lower(extension);
  for (const BatchFormat& f : BatchFormats())
    if (f.Extension == ext || std::find(f.Aliases.begin(), f.Aliases.end(), ext) != f.Aliases.end()) return &f;
  return nullptr;
}

std::vector<std::filesystem::path> BatchFiles(const BatchJob& job) {
  const BatchFormat* to = FindBatchFormat(job.To);
  if (!to || !to->Write) throw ScoreError("cannot write files of the kind \"" + job.To + "\"");
  const BatchFormat* from = job.From.empty() ? nullptr : FindBatchFormat(job.From);
  if (!job.From.empty() && (!from || !from->Read)) throw ScoreError("cannot read files of the kind \"" + job.From + "\"");

  std::error_code ec;
  std::filesystem::directory_iterator it(job.InFolder, ec);
  if (ec) throw FileError("cannot read the folder \"" + job.InFolder.string() + "\": " + ec.message());
  std::vector<std::filesystem::path> files;
  for (const auto& entry : it) {
    if (!entry.is_regular_file(ec)) continue;
    const BatchFormat* kind = FindBatchFormat(entry.path().extension().string());
    if (!kind || !kind->Read) continue;
    if (from ? kind != from : kind == to) continue;
    files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

BatchResult BatchConvert(const BatchJob& job,
                         const std::function<bool(int, int, const std::filesystem::path&)>& progress) {
  const std::vector<std::filesystem::path> files = BatchFiles(job);
  const BatchFormat* to = FindBatchFormat(job.To);
  const std::filesystem::path outFolder = job.OutFolder.empty() ? job.InFolder : job.OutFolder;
  BatchResult result;
  result.Total = static_cast<int>(files.size());
  std::error_code ec;
  if (!files.empty()) std::filesystem::create_directories(outFolder, ec);
  for (size_t i = 0; i < files.size(); ++i) {
    if (progress && !progress(static_cast<int>(i), result.Total, files[i])) {
      result.Cancelled = true;
      break;
    }
    const std::filesystem::path out = outFolder / files[i].stem().concat(to->Extension);
    try {
      if (ec) throw FileError("cannot make the folder \"" + outFolder.string() + "\": " + ec.message());
      Document doc;
      const MemorySettingsStore none;
      InitScore(doc, job.Settings.Settings ? *job.Settings.Settings : static_cast<const SettingsStore&>(none));
      FindBatchFormat(files[i].extension().string())->Read(files[i], doc, job.Settings);
      to->Write(doc, out, job.Settings);
      ++result.Converted;
    } catch (const std::exception& e) {
      result.Failures.push_back({files[i], e.what()});
    }
  }
  if (progress && !result.Cancelled) progress(result.Total, result.Total, {});
  return result;
}

}  // namespace plectaro
