#include "score/cipher.h"

#include <nettle/arcfour.h>
#include <nettle/md5.h>

#include <array>
#include <cstdint>

namespace plectaro {

std::string CipherBytes(std::string_view data, std::string_view passPhrase) {
  std::array<uint8_t, MD5_DIGEST_SIZE> digest{};
  md5_ctx md5;
  md5_init(&md5);
  md5_update(&md5, passPhrase.size(), reinterpret_cast<const uint8_t*>(passPhrase.data()));
  md5_digest(&md5, digest.size(), digest.data());

  std::array<uint8_t, 16> key{};  // 5 key bytes, then 11 bytes of zero salt
  for (size_t i = 0; i < 5; ++i) key[i] = digest[i];

  arcfour_ctx rc4;
  arcfour_set_key(&rc4, key.size(), key.data());
  std::string out(data.size(), '\0');
  if (!data.empty())
    arcfour_crypt(&rc4, data.size(), reinterpret_cast<uint8_t*>(out.data()),
                  reinterpret_cast<const uint8_t*>(data.data()));
  return out;
}

}  // namespace plectaro
