// A collection of DAO's: Count, Item, Append, Delete and Refresh, each one call.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "ambrelio/dao/collection.h"
#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/dao_com/dao_object.h"
#include "ambrelio/value/convert.h"

namespace ambrelio::dao_com {

// `Adapter` is the class of the adapter for the items.
template <class T, class Adapter>
class Collection : public dao::Collection<T>, public DaoObject {
 public:
  using DaoObject::DaoObject;

  int Count() const override { return ToLong(dao().Call("Count")); }
  std::shared_ptr<T> Item(int index) const override {
    return std::make_shared<Adapter>(dao().Item(int32_t{index}));
  }
  std::shared_ptr<T> Item(std::string_view name) const override {
    return std::make_shared<Adapter>(dao().Item(name));
  }
  void Append(const std::shared_ptr<T>& item) override {
    const auto own = std::dynamic_pointer_cast<Adapter>(item);
    if (own == nullptr) dao::Raise(dao::DaoError::kConversion, "DAO");
    dao().Call("Append", {own->dao().AsArgument()});
  }
  void Delete(std::string_view name) override { dao().Call("Delete", {name}); }
  void Refresh() override { dao().Call("Refresh"); }
};

}  // namespace ambrelio::dao_com
