#include "score/file_io.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace plectaro {

namespace {

std::string reason(int err) { return std::strerror(err); }

}  // namespace

std::string ReadWholeFile(const std::filesystem::path& path, size_t maxBytes) {
  FileReader in(path, maxBytes);
  std::string data;
  data.reserve(in.size());
  in.readSome(data, in.size());
  return data;
}

FileReader::FileReader(const std::filesystem::path& path, size_t maxBytes) : path_(path) {
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec))
    throw FileError("cannot open \"" + path.string() + "\": it is a folder");
  in_.open(path, std::ios::binary);
  if (!in_) throw FileError("cannot open \"" + path.string() + "\": " + reason(errno));
  in_.seekg(0, std::ios::end);
  const std::streamoff size = in_.tellg();
  if (size < 0) throw FileError("cannot read \"" + path.string() + "\"");
  if (static_cast<size_t>(size) > maxBytes)
    throw FileError("\"" + path.string() + "\" is too large (" + std::to_string(size) + " bytes)");
  in_.seekg(0, std::ios::beg);
  size_ = static_cast<size_t>(size);
}

bool FileReader::readSome(std::string& to, size_t most) {
  const size_t n = std::min(most, size_ - done_);
  if (n == 0) return false;
  const size_t at = to.size();
  to.resize(at + n);
  if (!in_.read(to.data() + at, static_cast<std::streamsize>(n)))
    throw FileError("cannot read \"" + path_.string() + "\": " + reason(errno));
  done_ += n;
  return true;
}

void WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes) {
  WriteFileAtomically(path, [bytes](const ByteSink& put) { put(bytes); });
}

void WriteFileAtomically(const std::filesystem::path& path, const std::function<void(const ByteSink&)>& produce) {
  const std::filesystem::path dir = path.has_parent_path() ? path.parent_path() : ".";
  std::string tmpl = (dir / ("." + path.filename().string() + ".XXXXXX")).string();
  int fd = ::mkstemp(tmpl.data());
  if (fd < 0)
    throw FileError("cannot save \"" + path.string() + "\": " + reason(errno));
  bool removed = false;
  auto fail = [&](int err) {
    removed = true;
    ::close(fd);
    ::unlink(tmpl.c_str());
    throw FileError("cannot save \"" + path.string() + "\": " + reason(err));
  };
  const ByteSink put = [&](std::string_view bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
      ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
      if (n < 0) {
        if (errno == EINTR) continue;
        fail(errno);
      }
      done += static_cast<size_t>(n);
    }
  };
  try {
    produce(put);
  } catch (...) {
    // A failed write has removed the temporary file already.
    if (!removed) {
      ::close(fd);
      ::unlink(tmpl.c_str());
    }
    throw;
  }
  if (::fsync(fd) != 0) fail(errno);
  // mkstemp makes the file private; a saved document gets the usual permissions.
  mode_t mask = ::umask(0);
  ::umask(mask);
  ::fchmod(fd, 0666 & ~mask);
  if (::close(fd) != 0) {
    int err = errno;
    ::unlink(tmpl.c_str());
    throw FileError("cannot save \"" + path.string() + "\": " + reason(err));
  }
  if (::rename(tmpl.c_str(), path.c_str()) != 0) {
    int err = errno;
    ::unlink(tmpl.c_str());
    throw FileError("cannot save \"" + path.string() + "\": " + reason(err));
  }
}

}  // namespace plectaro
