#include "score/file_io.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>

namespace plectaro {

namespace {

std::string reason(int err) { return std::strerror(err); }

}  // namespace

std::string ReadWholeFile(const std::filesystem::path& path, size_t maxBytes) {
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec))
    throw FileError("cannot open \"" + path.string() + "\": it is a folder");
  std::ifstream in(path, std::ios::binary);
  if (!in) throw FileError("cannot open \"" + path.string() + "\": " + reason(errno));
  in.seekg(0, std::ios::end);
  const std::streamoff size = in.tellg();
  if (size < 0) throw FileError("cannot read \"" + path.string() + "\"");
  if (static_cast<size_t>(size) > maxBytes)
    throw FileError("\"" + path.string() + "\" is too large (" + std::to_string(size) + " bytes)");
  in.seekg(0, std::ios::beg);
  std::string data(static_cast<size_t>(size), '\0');
  if (size > 0 && !in.read(data.data(), size))
    throw FileError("cannot read \"" + path.string() + "\": " + reason(errno));
  return data;
}

void WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes) {
  const std::filesystem::path dir = path.has_parent_path() ? path.parent_path() : ".";
  std::string tmpl = (dir / ("." + path.filename().string() + ".XXXXXX")).string();
  int fd = ::mkstemp(tmpl.data());
  if (fd < 0)
    throw FileError("cannot save \"" + path.string() + "\": " + reason(errno));
  auto fail = [&](int err) {
    ::close(fd);
    ::unlink(tmpl.c_str());
    throw FileError("cannot save \"" + path.string() + "\": " + reason(err));
  };
  size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      fail(errno);
    }
    done += static_cast<size_t>(n);
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
