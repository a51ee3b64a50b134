#include "shell/recovery.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <chrono>

#include "score/cipher.h"
#include "score/file_io.h"
#include "score/music_file.h"

namespace plectaro {

namespace fs = std::filesystem;

namespace {

// First line of a recovery file; then the document's file name, the time of the save in seconds
// since 1970, and the music file's enciphered bytes, exactly as a save would write them.
constexpr std::string_view kMagic = "Plectaro recovery 1\r\n";
constexpr std::string_view kExtension = ".plr";

// Takes the text up to the next CR LF; false when there is none.
bool takeLine(std::string_view& rest, std::string_view& line) {
  const size_t end = rest.find("\r\n");
  if (end == std::string_view::npos) return false;
  line = rest.substr(0, end);
  rest.remove_prefix(end + 2);
  return true;
}

fs::path lockOf(const fs::path& file) {
  fs::path p = file;
  return p.replace_extension(".lock");
}

// True when no living editor holds the lock of this file. A lock file that cannot be opened at
// all (gone, or never made) means the same.
bool ownerGone(const fs::path& file) {
  const int fd = ::open(lockOf(file).c_str(), O_RDWR | O_CLOEXEC);
  if (fd < 0) return true;
  const bool gone = ::flock(fd, LOCK_EX | LOCK_NB) == 0;
  ::close(fd);
  return gone;
}

}  // namespace

int AutosaveMinutes(const SettingsStore& settings) {
  const auto v = settings.value(kAutosaveSection, kAutosaveKey);
  int minutes = kDefaultAutosaveMinutes;
  if (v) {
    const auto [end, ec] = std::from_chars(v->data(), v->data() + v->size(), minutes);
    if (ec != std::errc() || end != v->data() + v->size()) minutes = kDefaultAutosaveMinutes;
  }
  return std::clamp(minutes, 0, 600);
}

fs::path RecoveryFolder(const fs::path& dataFolder) { return dataFolder / "Recovery"; }

Autosave::Autosave(const fs::path& dataFolder) {
  // Editors of one app folder differ by process; sessions inside one process (tests) by count.
  static std::atomic<int> instances{0};
  const fs::path folder = RecoveryFolder(dataFolder);
  std::error_code ec;
  fs::create_directories(folder, ec);
  file_ = folder / (std::to_string(::getpid()) + "-" + std::to_string(instances++) +
                    std::string(kExtension));
  lock_ = lockOf(file_);
  lockFd_ = ::open(lock_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (lockFd_ >= 0 && ::flock(lockFd_, LOCK_EX | LOCK_NB) != 0) {
    ::close(lockFd_);
    lockFd_ = -1;
  }
}

Autosave::~Autosave() {
  if (lockFd_ < 0) return;
  std::error_code ec;
  // The recovery file outlives a session that ends without a clean exit (discard not called).
  if (!fs::exists(file_, ec)) fs::remove(lock_, ec);
  ::close(lockFd_);
}

bool Autosave::save(const Document& doc, std::time_t now) {
  if (!doc.ScoreChanged) {
    discard();
    return false;
  }
  if (written_ && *written_ == doc.score) return false;
  WriteFileAtomically(file_, RecoveryFileBytes(doc, now));
  written_ = doc.score;
  return true;
}

void Autosave::discard() {
  written_.reset();
  std::error_code ec;
  fs::remove(file_, ec);
}

std::string RecoveryFileBytes(const Document& doc, std::time_t savedAt) {
  std::string bytes(kMagic);
  bytes += doc.score.CurrentFileName;
  bytes += "\r\n";
  bytes += std::to_string(static_cast<long long>(savedAt));
  bytes += "\r\n";
  bytes += CipherBytes(WriteMusicText(doc.score));
  return bytes;
}

void ParseRecoveryFile(std::string_view bytes, RecoveryFile& info, Document& doc,
                       const SettingsStore& settings, BeatAllowance allowance) {
  const FileError damaged("the recovery file is damaged");
  if (!bytes.starts_with(kMagic)) throw damaged;
  std::string_view rest = bytes.substr(kMagic.size());
  std::string_view name, time;
  if (!takeLine(rest, name) || !takeLine(rest, time)) throw damaged;
  long long seconds = 0;
  const auto [end, ec] = std::from_chars(time.data(), time.data() + time.size(), seconds);
  if (ec != std::errc() || end != time.data() + time.size()) throw damaged;

  Document fresh;
  if (OpenMusicText(fresh, CipherBytes(rest), settings, nullptr, allowance) != OpenOutcome::Opened)
    throw damaged;
  info.documentName = std::string(name);
  info.savedAt = static_cast<std::time_t>(seconds);
  doc.score = std::move(fresh.score);
  doc.score.CurrentFileName = info.documentName;
  doc.CursorTrack = doc.CursorBar = doc.CursorBeat = doc.CursorString = doc.CursorLine = 0;
  doc.PasswordEntered = false;
  doc.Layout.clear();
  doc.FullRelayout = true;
  // The edits are not in any saved file yet.
  doc.ScoreChanged = true;
}

std::vector<RecoveryFile> FindRecoveryFiles(const fs::path& dataFolder) {
  std::vector<RecoveryFile> found;
  std::error_code ec;
  for (auto it = fs::directory_iterator(RecoveryFolder(dataFolder), ec);
       !ec && it != fs::directory_iterator(); it.increment(ec)) {
    const fs::path& p = it->path();
    if (p.extension() == ".lock") {
      // The lock of an editor that died before it had anything to save.
      fs::path file = p;
      file.replace_extension(kExtension);
      std::error_code rec;
      if (!fs::exists(file, rec) && ownerGone(file)) fs::remove(p, rec);
      continue;
    }
    if (p.extension() != kExtension || !ownerGone(p)) continue;
    RecoveryFile f;
    f.path = p;
    // The time inside the file is read when it is restored; here the file's own time orders
    // the list, so that a damaged file is still offered (and then set aside).
    std::error_code tec;
    const auto t = fs::last_write_time(p, tec);
    if (!tec)
      f.savedAt = std::chrono::system_clock::to_time_t(
          std::chrono::file_clock::to_sys(t));
    found.push_back(std::move(f));
  }
  std::sort(found.begin(), found.end(),
            [](const RecoveryFile& a, const RecoveryFile& b) { return a.savedAt > b.savedAt; });
  return found;
}

void ReadRecoveryFile(RecoveryFile& file, Document& doc, const SettingsStore& settings) {
  ParseRecoveryFile(ReadWholeFile(file.path), file, doc, settings);
}

void RemoveRecoveryFile(const fs::path& path) {
  std::error_code ec;
  fs::remove(path, ec);
  fs::remove(lockOf(path), ec);
}

fs::path SetRecoveryFileAside(const fs::path& path) {
  fs::path aside = path;
  aside += ".damaged";
  std::error_code ec;
  fs::rename(path, aside, ec);
  fs::remove(lockOf(path), ec);
  return ec ? path : aside;
}

}  // namespace plectaro
