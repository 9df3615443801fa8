// The RC4 cipher: page 0 is masked by it with a key that everyone knows, and an encrypted file has
// it on every other page.
#pragma once

#include <span>

#include "ambrelio/engine/jetfile/bytes.h"

namespace ambrelio::jetfile {

// Enciphers in place, which deciphers as well. `key` is taken as its four bytes, the lowest first.
void Rc4(uint32_t key, std::span<uint8_t> bytes);

}  // namespace ambrelio::jetfile
