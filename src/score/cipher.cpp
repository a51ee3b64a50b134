#include "score/cipher.h"

#include <nettle/arcfour.h>
#include <nettle/md5.h>

#include <array>
#include <cstdint>

namespace plectaro {

std::string CipherBytes(std::string_view data, std::string_view passPhrase) {
  std::string out(data);
  CipherInPlace(out, passPhrase);
  return out;
}

void CipherInPlace(std::string& data, std::string_view passPhrase) {
  StreamCipher(passPhrase).apply(data.data(), data.size());
}

StreamCipher::StreamCipher(std::string_view passPhrase) : state_(std::make_unique<arcfour_ctx>()) {
  std::array<uint8_t, MD5_DIGEST_SIZE> digest{};
  md5_ctx md5;
  md5_init(&md5);
  md5_update(&md5, passPhrase.size(), reinterpret_cast<const uint8_t*>(passPhrase.data()));
  md5_digest(&md5, digest.size(), digest.data());

  std::array<uint8_t, 16> key{};  // 5 key bytes, then 11 bytes of zero salt
  for (size_t i = 0; i < 5; ++i) key[i] = digest[i];

  arcfour_set_key(state_.get(), key.size(), key.data());
}

StreamCipher::~StreamCipher() = default;

void StreamCipher::apply(char* bytes, size_t n) {
  // A stream cipher reads each byte before it writes it, so source and target may be one.
  auto* b = reinterpret_cast<uint8_t*>(bytes);
  if (n > 0) arcfour_crypt(state_.get(), n, b, b);
}

}  // namespace plectaro
