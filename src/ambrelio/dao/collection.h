// A DAO collection: counted from 0, items by place or by name without regard to case.
#pragma once

#include <memory>
#include <string_view>

namespace ambrelio::dao {

template <class T>
class Collection {
 public:
  virtual ~Collection() = default;

  virtual int Count() const = 0;
  // 3265 when there is no such item.
  virtual std::shared_ptr<T> Item(int index) const = 0;
  virtual std::shared_ptr<T> Item(std::string_view name) const = 0;

  // Stores the object where the owner is stored; else keeps it in memory until the owner is.
  virtual void Append(const std::shared_ptr<T>& item) = 0;
  virtual void Delete(std::string_view name) = 0;
  // Reads again what other connections may have changed.
  virtual void Refresh() = 0;

 protected:
  Collection() = default;
  Collection(const Collection&) = default;
  Collection& operator=(const Collection&) = default;
};

}  // namespace ambrelio::dao
