// The cipher of the music file: RC4 with a 40-bit key taken from the MD5 digest of a pass
// phrase (five digest bytes and eleven zero bytes of salt make the 16-byte key). A stream
// cipher, so enciphering and deciphering are one operation and the length never changes.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

struct arcfour_ctx;

namespace plectaro {

// The pass phrase of every music file.
inline constexpr std::string_view kMusicFilePassPhrase = "tessel";

std::string CipherBytes(std::string_view data, std::string_view passPhrase = kMusicFilePassPhrase);
// The same, over the bytes where they lie: opening and saving a large score then never holds
// the enciphered and the plain text at once.
void CipherInPlace(std::string& data, std::string_view passPhrase = kMusicFilePassPhrase);

// The cipher over bytes that come in pieces, each going on where the last one stopped: a large
// file is then read and written without ever being whole in memory.
class StreamCipher {
 public:
  explicit StreamCipher(std::string_view passPhrase = kMusicFilePassPhrase);
  ~StreamCipher();
  void apply(char* bytes, size_t n);

 private:
  std::unique_ptr<arcfour_ctx> state_;
};

}  // namespace plectaro
