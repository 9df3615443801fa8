// Page 0: what the file is, and where everything starts.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ambrelio/engine/jetfile/format.h"
#include "ambrelio/engine/jetfile/row_pointer.h"

namespace ambrelio::jetfile {

struct Header {
  const Format* format = &kJet4;
  RowPointer free_map;      // pages that nobody owns
  RowPointer released_map;  // pages given up while the file was open
  // The definitions of MSysObjects, MSysACEs, MSysQueries and MSysRelationships.
  std::array<uint32_t, 4> system_tables{};
  uint16_t code_page = 0;
  uint32_t key = 0;  // of the pages' encryption; 0 for none
  std::string password;
  uint16_t language = 0;  // the sort order of new columns
  uint8_t sort_id = 0;    // and what of it columns have beside the language
  uint8_t collation_version = 0;
  double created = 0;  // days, as OleDate has them; 0 in Jet 3
  std::vector<uint16_t> commits;

  uint32_t rights_table() const { return system_tables[1]; }
  uint32_t queries_table() const { return system_tables[2]; }
  uint32_t relationships_table() const { return system_tables[3]; }
};

// Whether a file's first bytes are those of a Jet or ACE database, whatever its version.
bool LooksLikeJet(std::string_view first_bytes);

// The format of a file by its first 24 bytes or more. Raises 3343 for one of a later version and
// for any other file.
const Format& RecogniseFormat(ByteView first_bytes);

// Reads page 0, which is a whole page.
Header ParseHeader(ByteView page);

// Page 0 of a new file of Jet 4 of that date. Raises 3031 when the password is longer than its
// place, which is one of twenty characters.
Bytes NewHeader(double created, std::string_view password);

// Masks the part of page 0 that is kept masked, or unmasks it.
void MaskHeader(std::span<uint8_t> page, const Format& format);

// Raises 3031 unless `password` is exactly the file's, or the file has none.
void CheckPassword(const Header& header, std::string_view password);

}  // namespace ambrelio::jetfile
