// The pages of one index, kept taken apart as long as the file has the same bytes; taking new ones
// and giving them back, and the links between neighbours.
#pragma once

#include <unordered_map>

#include "ambrelio/engine/jetfile/index_items.h"

namespace ambrelio::jetfile {

class IndexPages {
 public:
  // The file must outlive this. `table` is the page of the table's definition.
  IndexPages(JetFile& file, uint32_t table, RowPointer map)
      : file_(file), table_(table), map_(map) {}

  const JetFile& file() const { return file_; }
  // Stays until a page of that number is read, taken, saved or freed. Raises Damage.
  const IndexPage& Read(uint32_t number) const;
  // A page to change, which has to be saved. Raises Damage.
  IndexPage Take(uint32_t number);
  void Save(IndexPage page);

  // A page of the same kind without entries, linked behind `page`, which is not saved here.
  IndexPage NewBehind(IndexPage& page);
  // A page without links.
  IndexPage NewPage(bool leaf);
  // Gives a page back; its neighbours become each other's.
  void Free(uint32_t number);
  // Lets go of what is kept when it has become much.
  void ForgetSome();
  // Makes the page behind `page`, if there is one, name it as the one before.
  void LinkNext(const IndexPage& page);

 private:
  struct Kept {
    Page bytes;
    IndexPage page;
  };

  JetFile& file_;
  uint32_t table_;
  RowPointer map_;
  mutable std::unordered_map<uint32_t, Kept> kept_;
};

}  // namespace ambrelio::jetfile
