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
  std::array<uint8_t, MD5_DIGEST_SIZE> digest{};
  md5_ctx md5;
  md5_init(&md5);
  md5_update(&md5, passPhrase.size(), reinterpret_cast<const uint8_t*>(passPhrase.data()));
  md5_digest(&md5, digest.size(), digest.data());

  std::array<uint8_t, 16> key{};  // 5 key bytes, then 11 bytes of zero salt
  for (size_t i = 0; i < 5; ++i) key[i] = digest[i];

  arcfour_ctx rc4;
  arcfour_set_key(&rc4, key.size(), key.data());
  // A stream cipher reads each byte before it writes it, so source and target may be one.
  auto* bytes = reinterpret_cast<uint8_t*>(data.data());
  if (!data.empty()) arcfour_crypt(&rc4, data.size(), bytes, bytes);
}

}  // namespace plectaro
